import { ScrollScale } from "../timeline/ScrollScale.js";

/**
 * Where rows lie: a HeightMap, or something of known heights.
 * @typedef {object} RowLayout
 * @property {number} count
 * @property {number} total
 * @property {(index: number) => number} offsetOf
 * @property {(offset: number) => number} indexAt
 * @property {(index: number, height: number) => boolean} [setHeight] told the measured height; answers whether it is news
 */
/**
 * @typedef {object} RowMaker
 * @property {(index: number) => HTMLElement} build
 * @property {(index: number, row: HTMLElement) => void} [forget] the row is gone from the page
 * @property {() => void} [shown] other rows are in the page now, or lie elsewhere
 */

const leapWindows = 4;
const mostPasses = 8;
const restTime = 150;

/**
 * Shows the rows of a scrolled element that are in sight or near. One row, the anchor, stays where the eye has it whatever
 * is measured. A row that has the focus or plays something stays in the page, however far it is scrolled away.
 */
export class RowScroller {
  /** @param {HTMLElement} scroller @param {HTMLElement} list as tall as all rows; the rows are put into it @param {RowMaker} maker */
  constructor(scroller, list, maker) {
    this.scroller = scroller;
    this.list = list;
    this.maker = maker;
    /** @type {RowLayout} */
    this.layout = { count: 0, total: 0, offsetOf: () => 0, indexAt: () => 0 };
    /** @type {Map<number, HTMLElement>} By index, ascending. */
    this.rows = new Map();
    this.anchor_ = { index: 0, above: 0 };
    this.isAtEnd_ = false;
    this.position_ = 0;
    /** @type {number | undefined} */
    this.restTimer_ = undefined;
    list.classList.add("row-list");
    scroller.addEventListener("scroll", () => this.onScroll_(), { passive: true });
  }

  /** @param {RowLayout} layout @param {{ index: number, above: number } | "end"} place what is to be at the upper edge */
  show(layout, place) {
    this.clear();
    this.layout = layout;
    this.isAtEnd_ = place === "end";
    this.anchor_ = place === "end" ? { index: 0, above: 0 } : place;
    this.render_();
    this.follow_();
  }

  /** The row at the upper edge and how far it lies above it, to come back to. */
  get place() {
    const offset = this.offset_();
    const index = this.layout.indexAt(offset);
    return { index, above: offset - this.layout.offsetOf(index) };
  }

  get isAtEnd() {
    return this.isAtEnd_;
  }

  clear() {
    window.clearTimeout(this.restTimer_);
    for (const [index, row] of Array.from(this.rows)) this.forget_(index, row);
  }

  /**
   * Brings a whole row into sight, moving no further than needed.
   * @param {number} index
   */
  reveal(index) {
    const top = this.layout.offsetOf(index);
    const bottom = this.layout.offsetOf(index + 1);
    const offset = this.offset_();
    const height = this.scroller.clientHeight;
    if (top < offset) this.moveTo_(Math.max(0, top));
    else if (bottom > offset + height) this.moveTo_(bottom - height);
    else return;
    this.render_();
    this.follow_();
  }

  /** Asks the rows for their heights anew, as when one has changed, or the window. */
  refresh() {
    this.render_();
    this.follow_();
  }

  scale_() {
    return new ScrollScale(this.layout.total, this.scroller.clientHeight);
  }

  offset_() {
    const { lastOffset } = this.scale_();
    if (this.isAtEnd_) return lastOffset;
    return Math.max(0, Math.min(this.layout.offsetOf(this.anchor_.index) + this.anchor_.above, lastOffset));
  }

  /** @param {number} offset */
  moveTo_(offset) {
    const index = this.layout.indexAt(offset);
    this.anchor_ = { index, above: offset - this.layout.offsetOf(index) };
    this.isAtEnd_ = false;
  }

  onScroll_() {
    const position = this.scroller.scrollTop;
    const moved = position - this.position_;
    if (moved === 0) return;
    const scale = this.scale_();
    const isLeap = Math.abs(moved) > leapWindows * this.scroller.clientHeight;
    // A leap goes where the scroll bar points; a step moves the rows by as many pixels as the hand did.
    this.moveTo_(isLeap ? scale.offsetAt(position) : this.offset_() + moved);
    this.isAtEnd_ = position >= scale.lastPosition - 1;
    this.position_ = position;
    this.render_();
    window.clearTimeout(this.restTimer_);
    const isNearEnd = position < this.scroller.clientHeight || position > scale.lastPosition - this.scroller.clientHeight;
    if (isNearEnd) this.follow_();
    else this.restTimer_ = window.setTimeout(() => this.onRest_(), restTime);
  }

  /** A timer may see a new position before the browser has told of the scroll. */
  onRest_() {
    if (this.scroller.scrollTop === this.position_) this.follow_();
    else this.onScroll_();
  }

  /** Puts the scroll bar where the rows are, without moving the rows. */
  follow_() {
    const wanted = this.scale_().positionOf(this.offset_());
    if (Math.abs(wanted - this.scroller.scrollTop) >= 1) this.scroller.scrollTop = wanted;
    this.position_ = this.scroller.scrollTop;
    this.lay_();
  }

  render_() {
    const height = this.scroller.clientHeight;
    for (let pass = 0; pass < mostPasses; pass++) {
      const offset = this.offset_();
      const first = this.layout.indexAt(offset - height / 2);
      this.fill_(first, Math.min(this.layout.count, this.layout.indexAt(offset + height * 1.5) + 1));
      // Rows that turn out shorter than thought leave room for more of them.
      if (!this.measure_()) break;
    }
    this.lay_();
    this.maker.shown?.();
  }

  /** @param {number} first @param {number} end */
  fill_(first, end) {
    for (const [index, row] of Array.from(this.rows)) {
      if ((index < first || index >= end) && !isInUse(row)) this.forget_(index, row);
    }
    /** @type {Map<number, HTMLElement>} */
    const rows = new Map();
    for (const index of Array.from(this.rows.keys()).filter((one) => one < first)) this.keep_(rows, index);
    for (let index = first; index < end; index++) this.keep_(rows, index);
    for (const index of Array.from(this.rows.keys()).filter((one) => one >= end)) this.keep_(rows, index);
    this.rows = rows;
    this.putInOrder_();
  }

  /** @param {Map<number, HTMLElement>} rows @param {number} index */
  keep_(rows, index) {
    rows.set(index, this.rows.get(index) ?? this.maker.build(index));
  }

  /** What is in the page already is not moved: it would lose the focus or stop playing. */
  putInOrder_() {
    let next = this.list.firstElementChild;
    for (const row of this.rows.values()) {
      if (row === next) next = next.nextElementSibling;
      else this.list.insertBefore(row, next);
    }
  }

  measure_() {
    let isNews = false;
    if (!this.layout.setHeight) return false;
    for (const [index, row] of this.rows) {
      if (this.layout.setHeight(index, row.getBoundingClientRect().height)) isNews = true;
    }
    return isNews;
  }

  lay_() {
    this.list.style.height = `${this.scale_().height}px`;
    // A shorter list may have moved the scroll position just now; the rows are laid for where it is.
    this.position_ = this.scroller.scrollTop;
    const shift = this.position_ - this.offset_();
    for (const [index, row] of this.rows) row.style.top = `${Math.round(this.layout.offsetOf(index) + shift)}px`;
  }

  /** @param {number} index @param {HTMLElement} row */
  forget_(index, row) {
    this.rows.delete(index);
    row.remove();
    this.maker.forget?.(index, row);
  }
}

/** @param {HTMLElement} row */
function isInUse(row) {
  if (row.contains(document.activeElement)) return true;
  return Array.from(row.querySelectorAll("audio, video")).some((player) => !(/** @type {HTMLMediaElement} */ (player).paused));
}
