import { TextBuffer } from "./TextBuffer.js";

const lastPlain = 0x7f;
/** What folded texts leave free among 256, beside what ends a field or a message. */
const freeCodes = Array.from({ length: 0x80 + 0x1d }, (_, place) => (place < 0x80 ? 0x80 + place : place - 0x80 + 3));
const plain = /^[ -\x7f]*$/;

/**
 * Gives the characters beyond ASCII, as they come, codes of one byte. Few conversations use more than an alphabet and
 * some emoji; their words then take half the memory.
 */
export class Alphabet {
  constructor() {
    /** By UTF-16 unit; 0 where there is none. */
    this.codes_ = Uint8Array.from({ length: 0x10000 }, (_, unit) => (unit <= lastPlain ? unit : 0));
    this.count_ = 0;
    this.buffer_ = new TextBuffer();
  }

  /**
   * The text in one byte a character; nothing where there are no more codes.
   * @param {string} text folded
   * @returns {string | undefined}
   */
  encode(text) {
    if (plain.test(text)) return text;
    for (let place = 0; place < text.length; place++) {
      const unit = text.charCodeAt(place);
      if (this.codes_[unit] === 0 && !this.learn_(unit)) return undefined;
    }
    return this.encodeKnown(text);
  }

  /**
   * Nothing where a character has no code.
   * @param {string} text folded
   * @returns {string | undefined}
   */
  encodeKnown(text) {
    let isKnown = true;
    for (let place = 0; place < text.length && isKnown; place++) {
      const code = this.codes_[text.charCodeAt(place)];
      isKnown = code !== 0;
      this.buffer_.add(code);
    }
    const encoded = this.buffer_.take();
    return isKnown ? encoded : undefined;
  }

  /** @param {number} unit */
  learn_(unit) {
    if (this.count_ === freeCodes.length) return false;
    this.codes_[unit] = freeCodes[this.count_];
    this.count_ += 1;
    return true;
  }
}
