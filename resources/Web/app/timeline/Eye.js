/**
 * What the reader looks at within a row: the number of its part (a bubble, a picture, a tile), and how far down that part, in
 * pixels and as a share of its height, at a width.
 * @typedef {{ part: number, pixels: number, share: number, width: number }} Sight
 */

/** @param {HTMLElement} row */
const partsOf = (row) => row.querySelectorAll(".part");

/**
 * What lies `y` pixels below a row's top edge; nothing where it has no part there.
 * @param {HTMLElement} row
 * @param {number} y
 * @returns {Sight | undefined}
 */
export function sightIn(row, y) {
  const parts = partsOf(row);
  const at = row.getBoundingClientRect().top + y;
  let first = 0;
  for (let end = parts.length; first < end;) {
    const middle = (first + end) >> 1;
    if (parts[middle].getBoundingClientRect().bottom < at) first = middle + 1;
    else end = middle;
  }
  if (first === parts.length) return undefined;
  const { top, width, height } = parts[first].getBoundingClientRect();
  const pixels = Math.max(0, at - top);
  return { part: first, pixels, share: pixels / Math.max(1, height), width };
}

/**
 * How many pixels below a row's top edge something lies now. A text of the same width has its lines where they were, however much
 * of it was folded out below; pictures grow as a whole when they have been loaded.
 * @param {HTMLElement} row
 * @param {Sight} sight
 * @returns {number | undefined}
 */
export function heightOf(row, { part: number, pixels, share, width }) {
  const part = partsOf(row)[number];
  if (!part) return undefined;
  const box = part.getBoundingClientRect();
  const isLineForLine = part.classList.contains("bubble") && Math.abs(box.width - width) < 1;
  const inPart = isLineForLine ? Math.min(pixels, box.height) : share * box.height;
  return box.top - row.getBoundingClientRect().top + inPart;
}

/** Keeps what is under the eye where it is, within a row that reaches above the window's top edge. */
export class Eye {
  constructor() {
    this.index_ = -1;
    /** @type {Sight | undefined} */
    this.sight_ = undefined;
    this.y_ = 0;
  }

  /** @returns {Sight | undefined} */
  get sight() {
    return this.sight_;
  }

  /**
   * Looks at what lies `y` pixels below a row's top edge.
   * @param {HTMLElement} row
   * @param {number} y
   */
  lookAt(row, y) {
    this.index_ = Number(row.dataset.index);
    this.sight_ = sightIn(row, y);
    this.y_ = y;
  }

  close() {
    this.sight_ = undefined;
  }

  /**
   * How many pixels what is looked at has moved within its row since it was asked last.
   * @param {HTMLElement} row one whose height has changed
   */
  drift(row) {
    if (!this.sight_ || Number(row.dataset.index) !== this.index_) return 0;
    const y = heightOf(row, this.sight_);
    if (y === undefined) return 0;
    const drift = y - this.y_;
    // Less is the error of reckoning.
    if (Math.abs(drift) < 0.1) return 0;
    this.y_ = y;
    return drift;
  }
}
