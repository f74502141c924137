const mostAtOnce = 4096;

/** Collects UTF-16 units; adding to a text one at a time would make as many texts. */
export class TextBuffer {
  constructor() {
    this.units_ = new Uint16Array(1024);
    this.length = 0;
  }

  /** @param {number} unit */
  add(unit) {
    if (this.length === this.units_.length) {
      const larger = new Uint16Array(this.length * 2);
      larger.set(this.units_);
      this.units_ = larger;
    }
    this.units_[this.length] = unit;
    this.length += 1;
  }

  /** The text so far; the buffer is empty again, and no larger than is worth keeping. */
  take() {
    let text = "";
    for (let start = 0; start < this.length; start += mostAtOnce) {
      const some = this.units_.subarray(start, Math.min(this.length, start + mostAtOnce));
      text += String.fromCharCode.apply(null, /** @type {number[]} */ (/** @type {unknown} */ (some)));
    }
    this.length = 0;
    if (this.units_.length > 65_536) this.units_ = new Uint16Array(1024);
    return text;
  }
}
