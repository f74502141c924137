// Conditions of a query as questions to one message.
import { attachmentKind } from "../files/albumFiles.js";
import { listOf, recordOf, textOf } from "../records/fields.js";
import { attachmentOf, reactionOf } from "../records/records.js";
import { settleReactions } from "../message/settleReactions.js";
import { splitLinks } from "../text/links.js";
import { fold } from "./fold.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/fields.js").RawRecord} RawRecord */
/** @typedef {import("./query.js").Condition} Condition */
/** @typedef {(index: number) => boolean} Accepts */
/** @typedef {{ word: "badDate" | "badKind" | "badPerson", value: string }} Problem */
/**
 * @typedef {object} Filter
 * @property {Accepts[]} accepts all must
 * @property {Problem | undefined} problem what keeps the query from being understood
 * @property {string | undefined} stranger a name that none of the participants has
 */

/** @param {RawRecord} raw @param {string} kind */
function hasAttachment(raw, kind) {
  return listOf(raw.attachments).some((one) => kind === "" || attachmentKind(attachmentOf(one)) === kind);
}

/** @param {RawRecord} raw */
function hasLink(raw) {
  return [textOf(raw.subject), textOf(raw.text)].some((text) => text !== undefined && /https?:\/\//iu.test(text)
    && splitLinks(text).some(({ href }) => href !== undefined));
}

/**
 * A reaction that nobody took back.
 * @param {RawRecord} raw
 */
function hasReaction(raw) {
  const reactions = listOf(raw.reactions);
  return reactions.length > 0 && settleReactions(reactions.map(reactionOf)).some(({ standing }) => standing.length > 0);
}

/**
 * What a message can have, by the first of the names it goes by.
 * @type {readonly (readonly [readonly string[], (raw: RawRecord) => boolean])[]}
 */
const kinds = [
  [["photo", "image", "picture"], (raw) => hasAttachment(raw, "image")],
  [["video"], (raw) => hasAttachment(raw, "video")],
  [["audio", "voice"], (raw) => hasAttachment(raw, "audio")],
  [["file", "document"], (raw) => hasAttachment(raw, "document")],
  [["attachment"], (raw) => hasAttachment(raw, "")],
  [["link", "url"], hasLink],
  [["reaction"], hasReaction],
  [["reply", "replies"], (raw) => Boolean(textOf(raw.replyToGUID))],
  [["edit", "edited"], (raw) => textOf(raw.editedAt) !== undefined],
];

export const kindNames = kinds.map(([names]) => names[0]);

/** Thai and Lao, Korean, Japanese, Chinese. */
const withoutBlanks = /[\u0e00-\u0eff\u1100-\u11ff\u3040-\u30ff\u3400-\u9fff\uac00-\ud7a3]/;

/** @param {string} value */
function kindOf(value) {
  const folded = fold(value);
  return kinds.find(([names]) => names.some((name) => name === folded || `${name}s` === folded))?.[1];
}

/**
 * Letters and numbers with single blanks between them, and one at each end.
 * @param {string} text
 */
function wordsOf(text) {
  return ` ${fold(text).split(/[^\p{L}\p{M}\p{N}]+/u).filter(Boolean).join(" ")} `;
}

/**
 * Whether a name, or an address, can be meant: one of its words begins as the value does. Scripts that do without
 * blanks are searched anywhere, and so are emoji and the digits of a telephone number.
 * @param {string} name
 * @param {string} value
 */
export function isNamed(name, value) {
  const wanted = wordsOf(value).trimEnd();
  if (wanted !== "" && wordsOf(name).includes(wanted)) return true;
  const whole = fold(value).trim();
  if (withoutBlanks.test(value) || /\p{Extended_Pictographic}/u.test(whole)) return fold(name).includes(whole);
  const digits = closedUp(value);
  return /^\d{3,}$/.test(digits) && closedUp(name).includes(digits);
}

/**
 * Without what stands between the digits of a telephone number; folded, for pasted ones hold marks that are not seen.
 * @param {string} text
 */
function closedUp(text) {
  return fold(text).replace(/[\s()+./-]/g, "");
}

/** Who a value of from: can mean. Of each sender it is found out once. */
class SenderFilter {
  /** @param {Album} album @param {readonly string[]} values any of them may be meant */
  constructor({ conversation, people, speech }, values) {
    this.conversation_ = conversation;
    this.people_ = people;
    this.values_ = values;
    this.ownNames_ = ["me", speech.say("me")].map(fold);
    /** @type {Map<string, boolean>} */
    this.known_ = new Map();
  }

  /** @param {number} index */
  accepts(index) {
    const raw = recordOf(this.conversation_.rawMessages[index]);
    const isOwn = raw.isFromMe === true;
    const id = textOf(raw.senderID);
    const key = `${isOwn ? "me" : "other"} ${id ?? ""}`;
    const known = this.known_.get(key);
    if (known !== undefined) return known;
    const isMeant = this.values_.some((value) => this.isMeant_(value, id, isOwn));
    this.known_.set(key, isMeant);
    return isMeant;
  }

  /** @param {string} value @param {string | undefined} id @param {boolean} isOwn */
  isMeant_(value, id, isOwn) {
    const participant = id === undefined ? undefined : this.conversation_.participantByID.get(id);
    const isMe = isOwn || id === "me" || participant?.isMe === true;
    if (this.ownNames_.includes(fold(value))) return isMe;
    const names = [this.people_.senderName(id, isOwn), participant?.address ?? ""];
    return names.some((name) => isNamed(name, value));
  }

  /**
   * Whether any of the participants, or the reader, can be meant.
   * @param {string} value
   */
  isKnown(value) {
    const ids = this.conversation_.participants.map(({ id }) => id);
    return this.isMeant_(value, "me", true) || ids.some((id) => this.isMeant_(value, id, false));
  }
}

/** @param {readonly Condition[]} conditions @param {Album} album @returns {Filter} */
export function filterOf(conditions, album) {
  /** @type {Filter} */
  const filter = { accepts: [], problem: undefined, stranger: undefined };
  const { rawMessages } = album.conversation;
  for (const { operator, value } of conditions) {
    if (operator === "has") {
      const has = kindOf(value);
      if (has) filter.accepts.push((index) => has(recordOf(rawMessages[index])));
      else filter.problem = { word: "badKind", value };
    } else if (operator !== "from") addDate(filter, album, operator, value);
  }
  const names = conditions.filter(({ operator }) => operator === "from").map(({ value }) => value);
  if (names.length > 0) {
    const senders = new SenderFilter(album, names);
    filter.accepts.unshift((index) => senders.accepts(index));
    filter.stranger = names.find((name) => !senders.isKnown(name));
  }
  return filter;
}

/**
 * No date lies before, after or in a day for a message that has none.
 * @param {Filter} filter
 * @param {Album} album
 * @param {"before" | "after" | "on"} operator
 * @param {string} value
 */
function addDate(filter, { calendar, timeline }, operator, value) {
  const range = calendar.rangeOf(fold(value).trim().replace(/[./]/g, "-"));
  if (!range) {
    filter.problem = { word: "badDate", value };
    return;
  }
  const { times } = timeline;
  const { start, end } = range;
  if (operator === "before") filter.accepts.unshift((index) => times[index] < start);
  else if (operator === "after") filter.accepts.unshift((index) => times[index] >= end);
  else filter.accepts.unshift((index) => times[index] >= start && times[index] < end);
}
