/**
 * Holds what was used last, as long as it does not weigh too much together.
 * @template Key, Value
 */
export class RecentMap {
  /** @param {number} mostWeight @param {(value: Value) => number} weightOf */
  constructor(mostWeight, weightOf) {
    this.mostWeight = mostWeight;
    this.weightOf = weightOf;
    this.weight = 0;
    /** @type {Map<Key, Value>} From the one unused for longest to the one used last. */
    this.values_ = new Map();
  }

  get size() {
    return this.values_.size;
  }

  /** @param {Key} key @returns {Value | undefined} */
  get(key) {
    const value = this.values_.get(key);
    if (value !== undefined) {
      this.values_.delete(key);
      this.values_.set(key, value);
    }
    return value;
  }

  /** @param {Key} key @param {Value} value */
  set(key, value) {
    this.delete(key);
    this.values_.set(key, value);
    this.weight += this.weightOf(value);
    for (const oldest of this.values_.keys()) {
      if (this.weight <= this.mostWeight) break;
      this.delete(oldest);
    }
  }

  /** @param {Key} key */
  delete(key) {
    const value = this.values_.get(key);
    if (value === undefined) return;
    this.values_.delete(key);
    this.weight -= this.weightOf(value);
  }

  clear() {
    this.values_.clear();
    this.weight = 0;
  }
}
