import { isPlain } from "./fold.js";

/** @typedef {import("./Alphabet.js").Alphabet} Alphabet */

/** Stand between two fields of a message and between two messages; no folded text holds them. */
const fieldEnd = "\u0001";
const messageEnd = "\u0002";

/** Folded texts of some messages in a row, as one string to go through. */
class Haystack {
  constructor() {
    /** @type {string[]} */
    this.parts_ = [];
    /** @type {number[]} */
    this.building_ = [];
    /** Which message, counted from the block's first. */
    this.messages = new Uint16Array(0);
    /** Where its text begins; one more than there are messages. */
    this.starts = new Uint32Array(0);
    this.text = "";
    this.length = 0;
  }

  /** @param {number} message @param {string} text */
  add(message, text) {
    this.parts_.push(text, messageEnd);
    this.building_.push(message, this.length);
    this.length += text.length + 1;
  }

  finish() {
    const count = this.building_.length / 2;
    this.messages = new Uint16Array(count);
    this.starts = new Uint32Array(count + 1).fill(this.length);
    for (let place = 0; place < count; place++) {
      this.messages[place] = this.building_[2 * place];
      this.starts[place] = this.building_[2 * place + 1];
    }
    this.text = this.parts_.join("");
    this.parts_ = [];
    this.building_ = [];
  }

  /**
   * The messages in which every term occurs.
   * @param {readonly string[]} terms the rarest first
   * @param {(message: number) => void} found
   */
  search(terms, found) {
    const [driver, ...others] = terms;
    let entry = 0;
    for (let place = this.text.indexOf(driver); place >= 0; place = this.text.indexOf(driver, this.starts[entry])) {
      entry = this.entryAfter_(place, entry);
      const start = this.starts[entry - 1];
      const end = this.starts[entry];
      if (others.length === 0 || this.holdsAll_(others, start, end)) found(this.messages[entry - 1]);
      if (end >= this.text.length) return;
    }
  }

  /** @param {readonly string[]} terms @param {number} start @param {number} end */
  holdsAll_(terms, start, end) {
    const own = this.text.slice(start, end);
    return terms.every((term) => own.includes(term));
  }

  /**
   * The first entry that begins behind a place, in leaps that grow: the next hit is often near.
   * @param {number} place
   * @param {number} from
   */
  entryAfter_(place, from) {
    let low = from;
    let leap = 1;
    while (low + leap < this.starts.length && this.starts[low + leap] <= place) {
      low += leap;
      leap *= 2;
    }
    let high = Math.min(low + leap, this.starts.length - 1);
    while (low < high) {
      const middle = (low + high) >>> 1;
      if (this.starts[middle] <= place) low = middle + 1;
      else high = middle;
    }
    return low;
  }
}

/**
 * The words of some thousand messages. Plain texts are not copied: they are read anew in each search. What the alphabet
 * can write with one byte a character is kept apart from the rest, for one wide character would double the size of all.
 */
export class SearchBlock {
  /**
   * @param {number} first index of its first message
   * @param {Alphabet} alphabet
   * @param {(index: number) => string} textOf the text of a message that was added as plain
   */
  constructor(first, alphabet, textOf) {
    this.first = first;
    this.end = first;
    this.alphabet_ = alphabet;
    this.textOf_ = textOf;
    /** @type {number[]} */
    this.addedPlain_ = [];
    this.plain_ = new Uint16Array(0);
    this.narrow_ = new Haystack();
    this.wide_ = new Haystack();
  }

  get length() {
    return this.narrow_.length + this.wide_.length;
  }

  /** @param {readonly string[]} fields of the next message, folded */
  add(fields) {
    const encoded = fields.map((field) => this.alphabet_.encode(field));
    const isNarrow = !encoded.includes(undefined);
    const haystack = isNarrow ? this.narrow_ : this.wide_;
    if (fields.length > 0) haystack.add(this.end - this.first, (isNarrow ? encoded : fields).join(fieldEnd));
    this.end += 1;
  }

  /** The next message, of which nothing is searched but a plain text. */
  addPlain() {
    this.addedPlain_.push(this.end - this.first);
    this.end += 1;
  }

  finish() {
    this.narrow_.finish();
    this.wide_.finish();
    this.plain_ = Uint16Array.from(this.addedPlain_);
    this.addedPlain_ = [];
    return this;
  }

  /** @param {readonly string[]} terms the longest first @returns {number[]} indexes, ascending */
  search(terms) {
    /** @type {number[]} */
    const found = [];
    const add = (/** @type {number} */ message) => found.push(this.first + message);
    const encoded = terms.map((term) => this.alphabet_.encodeKnown(term));
    if (!encoded.includes(undefined)) this.narrow_.search(/** @type {string[]} */ (encoded), add);
    this.wide_.search(terms, add);
    if (terms.every(isPlain)) this.searchPlain_(terms, add);
    return found.sort((one, other) => one - other);
  }

  /** @param {readonly string[]} terms @param {(message: number) => void} found */
  searchPlain_([driver, ...others], found) {
    for (const message of this.plain_) {
      const text = this.textOf_(this.first + message).toLowerCase();
      if (text.includes(driver) && others.every((term) => text.includes(term))) found(message);
    }
  }
}
