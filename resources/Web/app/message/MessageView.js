import { button, element, isolated } from "../page/elements.js";
import { timeOf } from "../records/fields.js";
import { isFewEmoji } from "../text/emoji.js";
import { splitLinks } from "../text/links.js";
import { beginningOf, cutText, piecesOf, shownText } from "../text/messageText.js";
import { endsGroup, startsDay, startsGroup } from "../timeline/marks.js";
import { AttachmentView } from "./AttachmentView.js";
import { marked } from "./marked.js";
import { ReactionView } from "./ReactionView.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Message} Message */
/** @typedef {import("../records/ReplyTargets.js").ReplyTargets} ReplyTargets */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */

/** A browser lays out no more of a text than this at once; the rest follows on demand. */
const longestText = 20_000;
/** And so many attachments and texts of one message. */
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
    this.reactions = new ReactionView(album, this.isWhole);
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
    return this.wordsForNothing_(message);
  }

  /**
   * What a screen reader says of a message that has the focus: who and when, with the day where one begins.
   * @param {Message} message
   * @param {number} marks
   */
  labelOf_(message, marks) {
    const { formats, people, speech } = this.album;
    const clock = this.timeText_(message);
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
    made.append(stack, ...this.reactions.build(message.reactions));
    const meta = this.meta_(message, marks, index);
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
    const parts = this.isWhole ? Array.from(pieces) : taken(pieces, mostParts);
    const more = parts.length < mostParts || this.isWhole ? undefined : this.moreParts_(pieces);
    if (message.subject) this.addSubject_(parts, message.subject);
    if (parts.length === 0 || message.payloadState !== "decoded") parts.push(element("div", "bubble part is-note", this.wordsForNothing_(message)));
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
      if ("text" in piece) yield this.bubble_(piece.text);
      else {
        attachment += 1;
        yield this.attachments.build(piece.attachment, { message: index, attachment });
      }
    }
  }

  /**
   * The way to the parts that follow, some at a time; nothing where none follow.
   * @param {Generator<HTMLElement, void>} pieces
   * @returns {HTMLElement | undefined}
   */
  moreParts_(pieces) {
    let [next] = taken(pieces, 1);
    if (!next) return undefined;
    const more = button("text-button", () => {
      more.before(next, ...taken(pieces, mostParts - 1));
      [next] = taken(pieces, 1);
      if (!next) more.remove();
    });
    more.textContent = this.album.speech.say("showMore");
    return more;
  }

  /**
   * Why a message shows no words, or not all of them.
   * @param {Message} message
   */
  wordsForNothing_(message) {
    const { speech } = this.album;
    const { payloadState, text } = message;
    if (payloadState === "unsupported") return speech.say("unsupportedMessage");
    // A state that is not known yet speaks of a body that was not simply read.
    if (payloadState !== "decoded") return speech.say(text || payloadState === "partiallyDecoded" ? "partialMessage" : "unsupportedMessage");
    return speech.say(message.retractedAt === undefined ? "emptyMessage" : "unsentMessage");
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

  /** @param {string} text */
  bubble_(text) {
    const bubble = element("div", isFewEmoji(text) ? "bubble part is-large" : "bubble part");
    const words = element("p", "words");
    bubble.append(words);
    const ranges = this.album.highlight(text);
    const isFoundBehind = ranges.length > 0 && ranges[ranges.length - 1][1] > longestText;
    if (text.length <= longestText || this.isWhole || isFoundBehind) {
      this.fillWords_(words, text, ranges);
      return bubble;
    }
    this.fillWords_(words, cutText(text, longestText), ranges);
    words.append("…");
    const more = button("text-button is-inherited", () => {
      this.fillWords_(words, text, ranges);
      more.remove();
    });
    more.textContent = this.album.speech.say("showWholeMessage");
    bubble.append(more);
    return bubble;
  }

  /**
   * A text with its links, and with what the reader looks for marked.
   * @param {HTMLElement} words
   * @param {string} text
   * @param {readonly (readonly [number, number])[]} ranges
   */
  fillWords_(words, text, ranges) {
    const made = document.createDocumentFragment();
    let offset = 0;
    for (const { text: piece, href } of splitLinks(text)) {
      const nodes = marked(piece, ranges, offset);
      if (href === undefined) for (const node of nodes) made.append(node);
      else made.append(this.link_(nodes, href));
      offset += piece.length;
    }
    // Browsers work out the direction anew for each link that enters an element whose direction follows its text.
    words.removeAttribute("dir");
    words.replaceChildren(made);
    words.dir = "auto";
  }

  /** @param {(string | HTMLElement)[]} words @param {string} href */
  link_(words, href) {
    const link = element("a");
    link.append(...words);
    link.href = href;
    link.dir = "ltr";
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    return link;
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

  /**
   * Time and marks: below the last message of a run and wherever there is more to say than a time, else beside the message
   * on pointing.
   * @param {Message} message
   * @param {number} marks
   * @param {number} index
   */
  meta_(message, marks, index) {
    const service = this.serviceToTell_(message, marks, index);
    const meta = element("p", "meta");
    meta.append(this.time_(message));
    if (service !== undefined) meta.append(isolated(service));
    if (message.editedAt !== undefined) meta.append(this.mark_("edited", "editedOn", message.editedAt, message.time));
    if (message.retractedAt !== undefined) meta.append(this.mark_("unsent", "unsentOn", message.retractedAt, message.time));
    const isOddDate = Number.isNaN(message.time) && message.date !== "";
    meta.classList.toggle("is-quiet", meta.childElementCount === 1 && !isOddDate && !(marks & endsGroup));
    return meta;
  }

  /**
   * Another service than the conversation's, below the last message of a run that went by it.
   * @param {Message} message
   * @param {number} marks
   * @param {number} index
   */
  serviceToTell_({ service }, marks, index) {
    const { conversation } = this.album;
    if (service === undefined || service === conversation.service) return undefined;
    return marks & endsGroup || conversation.message(index + 1).service !== service ? service : undefined;
  }

  /** @param {Message} message */
  timeText_(message) {
    if (Number.isNaN(message.time)) return message.date || this.album.speech.say("unknownDate");
    return this.album.formats.clock(message.time);
  }

  /** @param {Message} message */
  time_(message) {
    const time = element("time", "", this.timeText_(message));
    if (Number.isNaN(message.time)) return time;
    time.dateTime = message.date;
    time.title = [this.album.formats.moment(message.time), ...(message.service ? [message.service] : [])].join(" · ");
    return time;
  }

  /**
   * "Edited 9:32 AM", with the day where it is another one than the message's.
   * @param {WordKey} word
   * @param {WordKey} titleWord
   * @param {string} date
   * @param {number} messageTime
   */
  mark_(word, titleWord, date, messageTime) {
    const { calendar, formats, speech } = this.album;
    const time = timeOf(date);
    const mark = element("span", `mark-${word}`, `${speech.say(word)} `);
    if (Number.isNaN(time)) {
      mark.append(element("time", "", date));
      return mark;
    }
    const day = calendar.dayOf(time);
    const isSameDay = messageTime >= day.start && messageTime < day.end;
    const clock = element("time", "", isSameDay ? formats.clock(time) : `${formats.shortDay(time)}, ${formats.clock(time)}`);
    clock.dateTime = date;
    mark.title = speech.say(titleWord, { date: formats.moment(time) });
    mark.append(clock);
    return mark;
  }
}
