import { button, element, isolated } from "../page/elements.js";
import { beginningOf, piecesOf, shownText } from "../text/messageText.js";
import { endsGroup, startsDay, startsGroup } from "../timeline/marks.js";
import { AttachmentView } from "./AttachmentView.js";
import { marked } from "./marked.js";
import { MetaLine } from "./MetaLine.js";
import { ReactionView } from "./ReactionView.js";
import { wordsForNothing } from "./wordsForNothing.js";
import { WordsView } from "./WordsView.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Message} Message */
/** @typedef {import("../records/ReplyTargets.js").ReplyTargets} ReplyTargets */

/** A message shows so many attachments and texts at once; the rest follows on demand. */
const mostParts = 100;

/**
 * The next few of a sequence.
 * @template Item
 * @param {Iterator<Item, void>} items
 * @param {number} count
 */
function taken(items, count) {
  /** @type {Item[]} */
  const found = [];
  while (found.length < count) {
    const { done, value } = items.next();
    if (done) break;
    found.push(/** @type {Item} */ (value));
  }
  return found;
}

/** One message as a row of the conversation. */
export class MessageView {
  /**
   * @param {Album} album
   * @param {ReplyTargets} replies
   * @param {{ isWhole?: boolean }} [options] isWhole: no text is shortened
   */
  constructor(album, replies, options = {}) {
    this.album = album;
    this.replies = replies;
    this.isWhole = options.isWhole === true;
    this.attachments = new AttachmentView(album);
    this.words_ = new WordsView(album, this.isWhole);
    this.meta_ = new MetaLine(album);
    this.reactions = new ReactionView(album, this.isWhole);
    /** @type {Map<number, number>} How many parts of a message the reader has asked for, for when its row comes back. */
    this.partCounts_ = new Map();
  }

  /** @param {number} index @returns {HTMLElement} */
  buildRow(index) {
    const { conversation, timeline, formats, speech } = this.album;
    const message = conversation.message(index);
    const marks = timeline.marks[index];
    const row = element("article", "row");
    row.dataset.index = String(index);
    row.dataset.id = message.id;
    row.tabIndex = -1;
    row.setAttribute("aria-setsize", String(conversation.messageCount));
    row.setAttribute("aria-posinset", String(index + 1));
    row.setAttribute("aria-label", this.labelOf_(message, marks));
    row.classList.add(message.isFromMe ? "is-own" : "is-other");
    row.classList.toggle("is-text-service", /^(sms|mms|rcs)/i.test(message.service ?? conversation.service ?? ""));
    row.classList.toggle("is-retracted", message.retractedAt !== undefined);
    row.classList.toggle("starts-group", (marks & startsGroup) !== 0);
    if (marks & startsDay) {
      row.classList.add("starts-day");
      row.append(element("h2", "day", Number.isNaN(message.time) ? speech.say("unknownDate") : formats.day(message.time)));
    }
    row.append(this.message_(message, marks, index));
    if (!this.isWhole) this.describe_(row, index);
    return row;
  }

  /**
   * What a reply shows of the message it answers.
   * @param {Message} message
   */
  summaryOf(message) {
    const words = beginningOf(shownText(message.text) || message.subject, 160);
    if (words) return words;
    if (message.attachments.length > 0) return message.attachments.map((one) => this.attachments.nameOf(one)).join(", ");
    return this.album.speech.say(wordsForNothing(message));
  }

  /**
   * What a screen reader says of a message that has the focus: who and when, with the day where one begins.
   * @param {Message} message
   * @param {number} marks
   */
  labelOf_(message, marks) {
    const { formats, people, speech } = this.album;
    const clock = this.meta_.timeText(message);
    const date = marks & startsDay && !Number.isNaN(message.time) ? `${formats.day(message.time)}, ${clock}` : clock;
    return speech.say("sentBy", { name: people.senderName(message.senderID, message.isFromMe), date });
  }

  /**
   * And then what was said, to what.
   * @param {HTMLElement} row
   * @param {number} index
   */
  describe_(row, index) {
    const said = Array.from(row.querySelectorAll(".reply, .part"));
    said.forEach((part, place) => {
      part.id = `message-${index}-${place}`;
    });
    row.setAttribute("aria-describedby", said.map(({ id }) => id).join(" "));
  }

  /** @param {Message} message @param {number} marks @param {number} index */
  message_(message, marks, index) {
    const made = element("div", "message");
    made.append(this.sender_(message, marks));
    if (message.replyToGUID !== undefined) made.append(this.reply_(message.replyToGUID));
    const stack = this.stack_(message, marks, index);
    made.append(stack, ...this.reactions.build(message.reactions, index));
    const meta = this.meta_.build(message, marks, index);
    (meta.classList.contains("is-quiet") ? stack : made).append(meta);
    return made;
  }

  /**
   * Every message says who wrote it; only the first of a run, and only where it is in question, says so to the eye.
   * @param {Message} message
   * @param {number} marks
   */
  sender_(message, marks) {
    const { conversation, people } = this.album;
    const isKnown = message.senderID !== undefined && conversation.participantByID.has(message.senderID);
    const isShown = !message.isFromMe && (marks & startsGroup) !== 0 && (conversation.isGroup || !isKnown);
    const sender = element("p", isShown ? "sender" : "visually-hidden");
    sender.append(isolated(people.senderName(message.senderID, message.isFromMe), "sender-name"));
    return sender;
  }

  /** @param {Message} message @param {number} marks @param {number} index */
  stack_(message, marks, index) {
    const stack = element("div", "stack");
    for (const part of this.parts_(message, index)) stack.append(part);
    stack.firstElementChild?.classList.toggle("first-of-run", (marks & startsGroup) !== 0 || message.replyToGUID !== undefined);
    stack.lastElementChild?.classList.toggle("last-of-run", (marks & endsGroup) !== 0);
    if (this.album.conversation.isGroup && !message.isFromMe && marks & endsGroup) {
      stack.append(this.album.people.avatar(message.senderID));
    }
    return stack;
  }

  /**
   * What was said, from top to bottom; never nothing.
   * @param {Message} message
   * @param {number} index
   * @returns {HTMLElement[]}
   */
  parts_(message, index) {
    const pieces = this.pieces_(message, index);
    const wanted = this.isWhole ? Infinity : this.partCounts_.get(index) ?? mostParts;
    const parts = taken(pieces, wanted);
    const more = parts.length < wanted ? undefined : this.moreParts_(pieces, index, wanted);
    if (message.subject) this.addSubject_(parts, message.subject);
    if (parts.length === 0 || message.payloadState !== "decoded") {
      parts.push(element("div", "bubble part is-note", this.album.speech.say(wordsForNothing(message))));
    }
    return more ? [...parts, more] : parts;
  }

  /**
   * Texts and attachments, each made when it is asked for.
   * @param {Message} message
   * @param {number} index
   * @returns {Generator<HTMLElement, void>}
   */
  * pieces_(message, index) {
    let attachment = -1;
    for (const piece of piecesOf(message.text, message.attachments)) {
      if ("text" in piece) yield this.words_.build(piece.text);
      else {
        attachment += 1;
        yield this.attachments.build(piece.attachment, { message: index, attachment });
      }
    }
  }

  /**
   * The way to the parts that follow, some at a time; nothing where none follow.
   * @param {Generator<HTMLElement, void>} pieces
   * @param {number} index of the message
   * @param {number} shown so many parts stand there already
   * @returns {HTMLElement | undefined}
   */
  moreParts_(pieces, index, shown) {
    let [next] = taken(pieces, 1);
    if (!next) return undefined;
    const more = button("text-button", () => {
      shown += mostParts;
      this.partCounts_.set(index, shown);
      more.before(next, ...taken(pieces, mostParts - 1));
      [next] = taken(pieces, 1);
      if (!next) more.remove();
    });
    more.textContent = this.album.speech.say("showMore");
    return more;
  }

  /**
   * The subject heads the first bubble, or is one when the message has no words.
   * @param {HTMLElement[]} parts
   * @param {string} subject
   */
  addSubject_(parts, subject) {
    const heading = element("p", "subject");
    heading.append(...marked(subject, this.album.highlight(subject)));
    heading.dir = "auto";
    const first = parts[0];
    if (first?.classList.contains("bubble")) {
      first.classList.remove("is-large");
      first.prepend(heading);
      return;
    }
    const bubble = element("div", "bubble part");
    bubble.append(heading);
    parts.unshift(bubble);
  }

  /** @param {string} guid */
  reply_(guid) {
    const { conversation, people, speech } = this.album;
    const index = this.replies.indexOf(guid);
    if (index === undefined) return element("p", "reply", speech.say("replyToUnknown"));
    const target = conversation.message(index);
    const name = people.senderName(target.senderID, target.isFromMe);
    const reply = button("reply", () => this.album.show(index));
    const words = element("span", "reply-words", this.summaryOf(target));
    words.dir = "auto";
    reply.append(isolated(speech.say("replyTo", { name }), "reply-sender"), words);
    return reply;
  }
}
