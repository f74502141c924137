import { namesOf } from "../files/absence.js";
import { listOf, recordOf, textOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";
import { inSlices, yieldTurn } from "../work/slices.js";
import { Alphabet } from "./Alphabet.js";
import { fold, isPlain } from "./fold.js";
import { SearchBlock } from "./SearchBlock.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("./conditions.js").Accepts} Accepts */
/**
 * @typedef {object} Search
 * @property {readonly string[]} terms folded; all must occur in one message
 * @property {readonly Accepts[]} accepts
 */

/** A block ends with so many messages, or with so long a text, so that going through one takes about a millisecond. */
const mostMessages = 8_192;
const mostText = 2_000_000;
const sliceTime = 10;

/**
 * What a message can be found by: subject, text and the names of its attachments, each by itself, none of them empty.
 * @param {unknown} rawMessage
 * @returns {string[]}
 */
export function searchedTexts(rawMessage) {
  const raw = recordOf(rawMessage);
  const subject = textOf(raw.subject);
  const text = textOf(raw.text);
  const texts = subject ? [subject] : [];
  if (text) texts.push(text);
  for (const one of listOf(raw.attachments)) {
    const made = attachmentOf(one);
    if (made.availability !== "available") texts.push(...namesOf(made));
    else if (made.name) texts.push(made.name);
  }
  return texts;
}

/** The folded words of all messages. Made in slices when it is first needed; a search goes along with the making. */
export class SearchIndex {
  /** @param {Conversation} conversation */
  constructor(conversation) {
    this.conversation_ = conversation;
    /** @type {SearchBlock[]} */
    this.blocks_ = [];
    this.alphabet_ = new Alphabet();
    this.textOf_ = (/** @type {number} */ index) => textOf(recordOf(conversation.rawMessages[index]).text) ?? "";
    this.block_ = new SearchBlock(0, this.alphabet_, this.textOf_);
    /** @type {Promise<void> | undefined} */
    this.making_ = undefined;
    /** @type {(() => void)[]} */
    this.waiting_ = [];
  }

  /** Begins to make the index, if nobody did. Resolves when it is complete. */
  make() {
    this.making_ = this.making_ ?? this.make_();
    return this.making_;
  }

  async make_() {
    await inSlices(this.conversation_.messageCount, (first, end) => {
      for (let index = first; index < end; index++) this.add_(index);
    });
    if (this.block_.end > this.block_.first) this.finishBlock_();
  }

  /** @param {number} index */
  add_(index) {
    const texts = searchedTexts(this.conversation_.rawMessages[index]);
    if (texts.length === 1 && isPlain(texts[0]) && texts[0] === this.textOf_(index)) this.block_.addPlain();
    else this.block_.add(texts.map(fold).filter((folded) => folded !== "" && folded !== " "));
    if (this.block_.end - this.block_.first >= mostMessages || this.block_.length >= mostText) this.finishBlock_();
  }

  finishBlock_() {
    this.blocks_.push(this.block_.finish());
    this.block_ = new SearchBlock(this.block_.end, this.alphabet_, this.textOf_);
    for (const go of this.waiting_.splice(0)) go();
  }

  /**
   * Tells the messages that are found, ascending, some at a time, and resolves whether it came to the end; an aborted
   * signal stops it.
   * @param {Search} search
   * @param {(indexes: readonly number[]) => void} tell
   * @param {AbortSignal} [signal]
   * @returns {Promise<boolean>}
   */
  async search(search, tell, signal) {
    const terms = Array.from(search.terms).sort((one, other) => other.length - one.length);
    const count = this.conversation_.messageCount;
    if (terms.length > 0) void this.make();
    let sliceEnd = performance.now() + sliceTime;
    for (let first = 0, block = 0; first < count; block++) {
      if (terms.length > 0 && block >= this.blocks_.length) await this.nextBlock_();
      if (performance.now() >= sliceEnd) {
        await yieldTurn();
        sliceEnd = performance.now() + sliceTime;
      }
      if (signal?.aborted) return false;
      const end = terms.length > 0 ? this.blocks_[block].end : Math.min(count, first + mostMessages / 4);
      const candidates = terms.length > 0 ? this.blocks_[block].search(terms) : everyIndex(first, end);
      const found = candidates.filter((index) => search.accepts.every((accepts) => accepts(index)));
      if (found.length > 0) tell(found);
      first = end;
    }
    return !signal?.aborted;
  }

  /** @returns {Promise<void>} */
  nextBlock_() {
    return new Promise((resolve) => void this.waiting_.push(resolve));
  }
}

/** @param {number} first @param {number} end */
function everyIndex(first, end) {
  return Array.from({ length: end - first }, (_, place) => first + place);
}
