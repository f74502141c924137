/** Browsers clamp elements taller than about this many pixels. */
export const tallestLayout = 7_000_000;

/** So near the ends of a scaled list, one pixel of scrolling is one pixel of rows. */
const unscaledEnd = 50_000;

/**
 * How the scroll range stands for the rows: pixel for pixel while they fit, else compressed in the middle.
 * `position` is the scroll position within the list, `offset` the height of rows above the window.
 */
export class ScrollScale {
  /** @param {number} total the height of all rows @param {number} windowHeight */
  constructor(total, windowHeight) {
    this.height = Math.min(total, tallestLayout);
    this.lastPosition = Math.max(0, this.height - windowHeight);
    this.lastOffset = Math.max(0, total - windowHeight);
  }

  get isScaled() {
    return this.lastOffset > this.lastPosition;
  }

  /** @param {number} position */
  offsetAt(position) {
    return this.map_(position, this.lastPosition, this.lastOffset);
  }

  /** @param {number} offset */
  positionOf(offset) {
    return this.map_(offset, this.lastOffset, this.lastPosition);
  }

  /** @param {number} value @param {number} lastFrom @param {number} lastTo */
  map_(value, lastFrom, lastTo) {
    if (value <= unscaledEnd || !this.isScaled) return Math.min(value, lastTo);
    if (value >= lastFrom - unscaledEnd) return lastTo - Math.max(0, lastFrom - value);
    const share = (value - unscaledEnd) / (lastFrom - 2 * unscaledEnd);
    return unscaledEnd + share * (lastTo - 2 * unscaledEnd);
  }
}
