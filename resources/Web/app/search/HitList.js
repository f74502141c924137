/** Indexes of messages, ascending, as many as there may be. */
export class HitList {
  constructor() {
    this.count = 0;
    this.indexes_ = new Uint32Array(256);
  }

  /** @param {number} index behind all that were added */
  add(index) {
    if (this.count === this.indexes_.length) {
      const larger = new Uint32Array(this.count * 2);
      larger.set(this.indexes_);
      this.indexes_ = larger;
    }
    this.indexes_[this.count] = index;
    this.count += 1;
  }

  /** @param {number} place */
  at(place) {
    return this.indexes_[place];
  }

  /**
   * The place of the first hit at or behind a message; the count where there is none.
   * @param {number} index
   */
  placeAtOrAfter(index) {
    let first = 0;
    let end = this.count;
    while (first < end) {
      const middle = (first + end) >>> 1;
      if (this.indexes_[middle] < index) first = middle + 1;
      else end = middle;
    }
    return first;
  }
}
