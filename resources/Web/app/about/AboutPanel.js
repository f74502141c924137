import { makeDialog, openDialog } from "../page/dialogs.js";
import { button, element, isolated } from "../page/elements.js";
import { wordsForNothing } from "../message/wordsForNothing.js";
import { timeOf } from "../records/fields.js";
import { ownSender } from "../records/Conversation.js";
import { inSlices } from "../work/slices.js";
import { AlbumFacts } from "./AlbumFacts.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../page/Bar.js").Choice} Choice */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {import("./AlbumFacts.js").Absence} Absence */

/**
 * The warnings whose words the page has; another one is told by its stored text.
 * @type {ReadonlySet<string>}
 */
const knownWarnings = new Set(["unresolved_reaction", "unsupported_payload", "attachment_missing", "attachment_unreadable"]);
/**
 * Somebody who speaks in the conversation, or could have.
 * @typedef {{ id: string, name: string, address: string, count: number | undefined }} Person
 */

/** So many entries of a list are shown at first, and so many with each press. */
const fewEntries = 200;
const moreEntries = 1000;

/** What the album is made of, who speaks in it, and what it could not keep. */
export class AboutPanel {
  /** @param {Album} album @param {Choice} zones the choice of a time zone @param {() => void} openCheck */
  constructor(album, zones, openCheck) {
    this.album = album;
    this.zones_ = zones;
    this.openCheck_ = openCheck;
    const { dialog, body } = makeDialog(album.speech, "about", album.speech.say("about"));
    this.dialog = dialog;
    this.body_ = body;
    /** @type {AlbumFacts | undefined} */
    this.facts_ = undefined;
  }

  open() {
    this.fill_(undefined);
    openDialog(this.dialog);
    this.body_.scrollTop = 0;
    this.count_();
  }

  /** All messages are counted once; until then what is known at once is on show. */
  async count_() {
    if (!this.facts_) {
      const facts = new AlbumFacts(this.album.conversation);
      await inSlices(this.album.conversation.messageCount, (first, end) => facts.add(first, end));
      this.facts_ = facts;
    }
    this.fill_(this.facts_);
  }

  /** @param {AlbumFacts | undefined} facts */
  fill_(facts) {
    const hadFocus = this.body_.querySelector(".segmented")?.contains(document.activeElement);
    this.body_.setAttribute("aria-busy", String(!facts));
    this.body_.replaceChildren(
      this.list_(facts), this.heading_("timeZone"), this.zoneChoice_(),
      this.heading_("participants"), this.participants_(facts),
      this.heading_("warnings"), ...this.warnings_(facts), ...this.absences_(facts), this.check_(),
    );
    const chosen = this.body_.querySelector("input:checked");
    if (hadFocus && chosen instanceof HTMLElement) chosen.focus();
  }

  /** @param {WordKey} word */
  heading_(word) {
    return element("h3", "", this.album.speech.say(word));
  }

  /** @param {AlbumFacts | undefined} facts */
  list_(facts) {
    const { conversation, speech, timeline } = this.album;
    const list = element("dl", "facts");
    /** @param {WordKey} word @param {string | undefined} value */
    const add = (word, value) => {
      if (!value) return;
      const description = element("dd");
      description.append(isolated(value));
      list.append(element("dt", "", speech.say(word)), description);
    };
    add("title", conversation.title);
    add("service", conversation.service);
    add("firstMessage", this.momentOf_(timeline.earliest));
    add("latestMessage", this.momentOf_(timeline.latest));
    add("messages", speech.numbers.format(conversation.messageCount));
    if (conversation.sourceMessageCount !== undefined) add("sourceRecords", speech.numbers.format(conversation.sourceMessageCount));
    add("attachments", facts && this.attachmentText_(facts));
    add("madeOn", this.momentOf_(timeOf(conversation.generatedAt)) ?? conversation.generatedAt);
    add("madeWith", conversation.sourceSystemVersion);
    return list;
  }

  /** @param {number} time */
  momentOf_(time) {
    return Number.isNaN(time) ? undefined : this.album.formats.moment(time);
  }

  /** @param {AlbumFacts} facts */
  attachmentText_({ attachments }) {
    const { speech } = this.album;
    const lines = [speech.numbers.format(attachments.all)];
    if (attachments.all > 0) lines.push(speech.sayCount("attachmentsAvailable", attachments.available));
    if (attachments.missing > 0) lines.push(speech.sayCount("attachmentsMissing", attachments.missing));
    if (attachments.unreadable > 0) lines.push(speech.sayCount("attachmentsUnreadable", attachments.unreadable));
    return lines.join("\n");
  }

  zoneChoice_() {
    const group = element("div", "segmented");
    group.setAttribute("role", "radiogroup");
    group.setAttribute("aria-label", this.album.speech.say("timeZone"));
    for (const { value, words } of this.zones_.options) {
      const label = element("label", "segment");
      const input = element("input");
      input.type = "radio";
      input.name = "about-zone";
      input.value = value;
      input.checked = value === this.zones_.current();
      input.addEventListener("change", () => void this.chooseZone_(value));
      label.append(input, element("span", "", words));
      group.append(label);
    }
    return group;
  }

  /** @param {string} value */
  async chooseZone_(value) {
    await this.zones_.choose(value);
    this.fill_(this.facts_);
  }

  /** @param {AlbumFacts | undefined} facts */
  participants_(facts) {
    const everybody = [...this.named_(facts), ...this.others_(facts)];
    return this.paged_("people", everybody.length, (index) => this.person_(everybody[index]));
  }

  /** @param {AlbumFacts | undefined} facts @returns {Person[]} */
  named_(facts) {
    const { conversation, people } = this.album;
    return conversation.participants.map((participant) => {
      const { id, address, displayName, isMe } = participant;
      const count = facts && (facts.countBySender.get(isMe ? ownSender : id) ?? 0);
      return { id, name: people.nameOf(participant), address: displayName ? address : "", count };
    });
  }

  /**
   * The reader, and senders of whom the record says nothing else.
   * @param {AlbumFacts | undefined} facts
   * @returns {Person[]}
   */
  others_(facts) {
    const { conversation, people } = this.album;
    const others = Array.from(facts?.countBySender ?? []).filter(([key]) =>
      (key === ownSender ? people.me === undefined : !conversation.participantByID.has(key)));
    return others.map(([key, count]) => {
      const id = key === ownSender ? "me" : key;
      return { id, name: people.senderName(id || undefined, false), address: "", count };
    });
  }

  /** @param {Person} person */
  person_({ id, name, address, count }) {
    const { people, speech } = this.album;
    const item = element("li");
    const words = element("div", "person-words");
    words.append(isolated(name, "person-name"));
    const facts = element("span", "person-facts");
    if (address) facts.append(isolated(address));
    if (count !== undefined) facts.append(address ? " · " : "", speech.sayCount("messageCount", count));
    words.append(facts);
    item.append(people.avatar(id), words);
    return item;
  }

  /** @param {AlbumFacts | undefined} facts @returns {HTMLElement[]} */
  warnings_(facts) {
    const { warningCount } = this.album.conversation;
    const partlyRead = facts?.partlyRead ?? [];
    if (warningCount + partlyRead.length > 0) {
      return [this.paged_("warnings", warningCount + partlyRead.length, (place) =>
        (place < warningCount ? this.warning_(place, facts) : this.partlyRead_(partlyRead[place - warningCount])))];
    }
    return facts && facts.absences.length === 0 ? [element("p", "dialog-note", this.album.speech.say("noWarnings"))] : [];
  }

  /**
   * A known warning is told in the page's language; its stored text, which may name the file, stands below.
   * @param {number} place
   * @param {AlbumFacts | undefined} facts
   */
  warning_(place, facts) {
    const warning = this.album.conversation.warning(place);
    const item = element("li");
    const known = knownWarnings.has(warning.code) ? this.album.speech.say(/** @type {WordKey} */ (warning.code)) : "";
    const words = element("p");
    words.append(isolated(known || warning.summary || warning.code));
    item.append(words);
    if (known && warning.summary && warning.summary !== known) {
      const detail = element("p", "warning-detail");
      detail.append(isolated(warning.summary));
      item.append(detail);
    }
    const index = facts?.indexOfSource(warning);
    if (index !== undefined) item.append(this.jump_(index));
    return item;
  }

  /** @param {number} index of a message */
  partlyRead_(index) {
    const { conversation, speech } = this.album;
    const message = conversation.message(index);
    const item = element("li");
    item.append(element("p", "", speech.say(wordsForNothing(message))), this.sent_(message),
      this.jump_(index));
    return item;
  }

  /**
   * Who wrote a message, and when.
   * @param {import("../records/records.js").Message} message
   */
  sent_({ senderID, isFromMe, time, date }) {
    const { formats, people, speech } = this.album;
    const made = element("p", "warning-detail");
    made.append(isolated(speech.say("sentBy", { name: people.senderName(senderID, isFromMe),
      date: Number.isNaN(time) ? date || speech.say("unknownDate") : formats.moment(time) })));
    return made;
  }

  /** @param {AlbumFacts | undefined} facts @returns {HTMLElement[]} */
  absences_(facts) {
    if (!facts || facts.absences.length === 0) return [];
    return [this.heading_("missingAttachments"),
      this.paged_("warnings", facts.absences.length, (place) => this.absence_(facts.absences[place]))];
  }

  /** @param {Absence} absence */
  absence_({ message, attachment }) {
    const { conversation, formats, speech } = this.album;
    const found = conversation.message(message);
    const { name, byteSize, availability } = found.attachments[attachment];
    const item = element("li");
    const words = element("p");
    words.append(isolated(name || speech.say("attachment")));
    const facts = [speech.say(availability === "unreadable" ? "unreadableAttachment" : "missingAttachment")];
    if (byteSize !== undefined) facts.push(formats.size(byteSize));
    item.append(words, element("p", "warning-detail", facts.join(" · ")), this.sent_(found), this.jump_(message));
    return item;
  }

  check_() {
    const made = element("div", "about-check");
    const open = button("push-button", () => {
      this.dialog.close();
      this.openCheck_();
    });
    open.textContent = this.album.speech.say("check");
    made.append(open);
    return made;
  }

  /** @param {number} index */
  jump_(index) {
    const jump = button("text-button", () => {
      this.dialog.close();
      this.album.show(index);
    });
    jump.textContent = this.album.speech.say("showMessage");
    return jump;
  }

  /**
   * A list whose first entries are on show and the others a press away, some at a time.
   * @param {string} className
   * @param {number} count
   * @param {(index: number) => HTMLElement} build
   */
  paged_(className, count, build) {
    const made = element("div");
    const list = element("ul", className);
    let shown = 0;
    const more = button("text-button", () => grow());
    more.textContent = this.album.speech.say("showMore");
    const grow = () => {
      const end = Math.min(count, shown + (shown === 0 ? fewEntries : moreEntries));
      for (; shown < end; shown++) list.append(build(shown));
      more.hidden = shown === count;
    };
    grow();
    made.append(list, more);
    return made;
  }
}
