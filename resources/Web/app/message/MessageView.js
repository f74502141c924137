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
    this.reactions = new ReactionView(album);
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
    row.setAttribute("aria-label", this.labelOf_(message));
    row.classList.add(message.isFromMe ? "is-own" : "is-other");
    row.classList.toggle("is-text-service", /^(sms|mms|rcs)/i.test(message.service ?? conversation.service ?? ""));
    row.classList.toggle("is-retracted", message.retractedAt !== undefined);
    row.classList.toggle("starts-group", (marks & startsGroup) !== 0);
    if (marks & startsDay) {
      row.classList.add("starts-day");
      row.append(element("h2", "day", Number.isNaN(message.time) ? speech.say("unknownDate") : formats.day(message.time)));
    }
    row.append(this.message_(message, marks, index));
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

  /** @param {Message} message */
  labelOf_(message) {
    const name = this.album.people.senderName(message.senderID, message.isFromMe);
    return this.album.speech.say("sentBy", { name, date: this.timeText_(message) });
  }

  /** @param {Message} message @param {number} marks @param {number} index */
  message_(message, marks, index) {
    const made = element("div", "message");
    made.append(this.sender_(message, marks));
    if (message.replyToGUID !== undefined) made.append(this.reply_(message.replyToGUID));
    const stack = this.stack_(message, marks, index);
    made.append(stack, ...this.reactions.build(message.reactions));
    const meta = this.meta_(message, marks);
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
    stack.append(...this.parts_(message, index));
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
    let attachment = -1;
    const parts = piecesOf(message.text, message.attachments).map((piece) => {
      if ("text" in piece) return this.bubble_(piece.text);
      attachment += 1;
      return this.attachments.build(piece.attachment, { message: index, attachment });
    });
    if (message.subject) this.addSubject_(parts, message.subject);
    const isUnread = message.payloadState === "unsupported" || message.payloadState === "partiallyDecoded";
    if (parts.length === 0 || isUnread) parts.push(element("div", "bubble part is-note", this.wordsForNothing_(message)));
    return parts;
  }

  /**
   * Why a message shows no words, or not all of them.
   * @param {Message} message
   */
  wordsForNothing_(message) {
    const { speech } = this.album;
    if (message.payloadState === "partiallyDecoded") return speech.say("partialMessage");
    if (message.payloadState === "unsupported") return speech.say("unsupportedMessage");
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
    words.dir = "auto";
    bubble.append(words);
    if (text.length <= longestText || this.isWhole) {
      words.append(...this.nodesOf_(text));
      return bubble;
    }
    words.append(...this.nodesOf_(cutText(text, longestText)), "…");
    const more = button("text-button is-inherited", () => {
      words.replaceChildren(...this.nodesOf_(text));
      more.remove();
    });
    more.textContent = this.album.speech.say("showWholeMessage");
    bubble.append(more);
    return bubble;
  }

  /**
   * A text with its links, and with what the reader looks for marked.
   * @param {string} text
   * @returns {(string | HTMLElement)[]}
   */
  nodesOf_(text) {
    const ranges = this.album.highlight(text);
    /** @type {(string | HTMLElement)[]} */
    const nodes = [];
    let offset = 0;
    for (const { text: piece, href } of splitLinks(text)) {
      const words = marked(piece, ranges, offset);
      nodes.push(...(href === undefined ? words : [this.link_(words, href)]));
      offset += piece.length;
    }
    return nodes;
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
   * Time and marks: below the last message of a run and below every changed one, else beside the message on pointing.
   * @param {Message} message
   * @param {number} marks
   */
  meta_(message, marks) {
    const { conversation } = this.album;
    const meta = element("p", "meta");
    meta.append(this.time_(message));
    if (message.service !== undefined && message.service !== conversation.service) meta.append(isolated(message.service));
    if (message.editedAt !== undefined) meta.append(this.mark_("edited", "editedOn", message.editedAt, message.time));
    if (message.retractedAt !== undefined) meta.append(this.mark_("unsent", "unsentOn", message.retractedAt, message.time));
    const isChanged = message.editedAt !== undefined || message.retractedAt !== undefined;
    meta.classList.toggle("is-quiet", !isChanged && !(marks & endsGroup));
    return meta;
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
