const firstRoom = 64;

/** Where in the conversation something stands: its message, and which part of it. Ascending, and compact for many. */
export class PlaceList {
  constructor() {
    this.count = 0;
    this.messages = new Uint32Array(firstRoom);
    this.parts = new Uint32Array(firstRoom);
  }

  /** @param {number} message @param {number} part */
  add(message, part) {
    if (this.count === this.messages.length) this.grow_();
    this.messages[this.count] = message;
    this.parts[this.count] = part;
    this.count += 1;
  }

  /**
   * The position of a part of a message, or -1.
   * @param {number} message
   * @param {number} part
   */
  positionOf(message, part) {
    let low = 0;
    let high = this.count;
    while (low < high) {
      const middle = (low + high) >> 1;
      const isBefore = this.messages[middle] < message || (this.messages[middle] === message && this.parts[middle] < part);
      if (isBefore) low = middle + 1;
      else high = middle;
    }
    return low < this.count && this.messages[low] === message && this.parts[low] === part ? low : -1;
  }

  grow_() {
    const { messages, parts } = this;
    this.messages = new Uint32Array(messages.length * 2);
    this.parts = new Uint32Array(messages.length * 2);
    this.messages.set(messages);
    this.parts.set(parts);
  }
}
