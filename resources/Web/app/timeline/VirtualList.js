import { Eye, heightOf } from "./Eye.js";
import { HeightMap } from "./HeightMap.js";
import { ScrollScale } from "./ScrollScale.js";
import { ShownRows } from "./ShownRows.js";

/** So many rows all stand in the page at once: the browser's own search, selection and printing then see everything. */
const mostWhole = 300;
/** Rows stand ready for so many pixels on either side of the window. */
const widestMargin = 800;
/** Scrolling has come to rest when it has been still for so many milliseconds. */
const restTime = 150;
/** The browser may still glide when the last it told of scrolling, or a key that scrolls, is no older than so many milliseconds. */
const glideTime = 600;
/** What the browser glides to shows in so many frames, however late they come. */
const glideFrames = 3;
const scrollingKeys = new Set(["PageUp", "PageDown", "ArrowUp", "ArrowDown", " "]);

/** @typedef {import("./Eye.js").Sight} Sight */
/**
 * A row, how many pixels of it lie above the window's top edge, and what of it is under the eye, where that can be told.
 * @typedef {{ index: number, above: number, sight?: Sight }} Place
 */

/**
 * Shows the rows near the window and lays them where the height map says. Whatever is measured, loaded or folded out, one
 * row, the anchor, stays where the eye has it; the scroll bar follows when scrolling has come to rest.
 */
export class VirtualList {
  /**
   * @param {HTMLElement} track as tall as the scroll range
   * @param {HTMLElement} rows holds the rows
   * @param {Float32Array} heights a first estimate of each row's height, in pixels
   * @param {(index: number) => HTMLElement} buildRow
   */
  constructor(track, rows, heights, buildRow) {
    this.track = track;
    this.rows_ = new ShownRows(rows, buildRow, (resized) => this.onRowsResized_(resized));
    this.heights = new HeightMap(heights);
    /** Called when other rows have come into sight, or the same ones elsewhere. */
    this.onMove = () => {};
    /** Called when scrolling has come to rest. */
    this.onRest = () => {};
    /** Called when the track has another width, for which the estimates no longer hold. */
    this.onWidthChange = () => {};
    /** @type {Place} The row under the eye. */
    this.anchor_ = { index: 0, above: 0 };
    /** The scroll position for which the rows were last laid. */
    this.position_ = 0;
    this.isAtEnd_ = false;
    this.isSuspended_ = false;
    this.eye_ = new Eye();
    /** A jump holds against what the browser was gliding to, until the reader does something else. */
    this.isHeld_ = false;
    this.scrolledAt_ = -Infinity;
    this.width_ = track.clientWidth;
    /** @type {number | undefined} */
    this.restTimer_ = undefined;
    this.moveTo_(window.scrollY - this.trackTop_());
    this.render_();
    window.addEventListener("scroll", () => this.onScroll_(), { passive: true });
    window.addEventListener("resize", () => this.onWindowResized_());
    for (const kind of ["keydown", "pointerdown", "wheel", "touchstart"]) {
      window.addEventListener(kind, () => { this.isHeld_ = false; }, { passive: true, capture: true });
    }
    window.addEventListener("keydown", (event) => this.onKey_(event));
    // What a press folds out grows below the press, at the list's end too.
    rows.addEventListener("click", () => {
      this.isAtEnd_ = false;
    });
    new ResizeObserver(() => this.onTrackResized_()).observe(track);
  }

  get count() {
    return this.heights.count;
  }

  /**
   * The rows in the page, in their order.
   * @returns {readonly HTMLElement[]}
   */
  get shown() {
    return this.rows_.all;
  }

  /**
   * Called before a row leaves the page.
   * @param {(row: HTMLElement) => void} onLeave
   */
  set onLeave(onLeave) {
    this.rows_.onLeave = onLeave;
  }

  /**
   * The row under the eye, and where it lies.
   * @returns {Place}
   */
  get place() {
    this.onScroll_();
    return { ...this.anchor_, sight: this.eye_.sight };
  }

  /**
   * The row at a height of the window, in pixels below its top edge.
   * @param {number} y
   */
  indexAt(y) {
    return this.heights.indexAt(this.offset_() + y);
  }

  /**
   * The element of a row, where it stands in the page.
   * @param {number} index
   * @returns {HTMLElement | undefined}
   */
  row(index) {
    return this.rows_.at(index);
  }

  /**
   * Brings a row to a place of the window; by default to its upper third.
   * @param {number} index
   * @param {number} [above]
   * @param {Sight} [sight] what was under the eye there, which decides where it is still found
   */
  reveal(index, above = -window.innerHeight / 3, sight = undefined) {
    this.jump_(() => {
      this.isAtEnd_ = false;
      this.eye_.close();
      this.anchor_ = { index: Math.max(0, Math.min(index, this.count - 1)), above: sight ? 0 : above };
      this.render_();
      if (sight) {
        const row = this.row(this.anchor_.index);
        const y = row && heightOf(row, sight);
        const sighted = y === undefined ? above : y - this.eyeLine_();
        // What differs by the error of reckoning alone is the same place.
        this.anchor_.above = Math.abs(sighted - above) < 0.5 ? above : sighted;
        this.render_();
      }
      this.followWithScrollBar_();
    });
    return this.row(index);
  }

  toStart() {
    this.jump_(() => {
      window.scrollTo(0, 0);
      this.onScroll_();
    });
  }

  toEnd() {
    this.jump_(() => {
      window.scrollTo(0, document.documentElement.scrollHeight);
      this.onScroll_();
    });
  }

  /**
   * A browser that glides goes on with that after a jump, as though it had begun there.
   * @param {() => void} jump
   */
  jump_(jump) {
    const isGliding = performance.now() - this.scrolledAt_ < glideTime;
    this.isHeld_ = false;
    jump();
    this.isHeld_ = isGliding;
    this.restSoon_();
  }

  /** Builds the rows in the page anew, each in its place. */
  rebuildRows() {
    this.onScroll_();
    const focused = this.shown.find((row) => row.contains(document.activeElement));
    this.rows_.clear();
    this.render_();
    if (focused) this.row(Number(focused.dataset.index))?.focus({ preventScroll: true });
    this.restSoon_();
  }

  /**
   * Takes better estimates; what has been measured and stands in the page is measured again.
   * @param {Float32Array} heights
   */
  replaceHeights(heights) {
    this.onScroll_();
    this.heights = new HeightMap(heights);
    this.measure_(this.shown);
    this.render_();
    this.followWithScrollBar_();
  }

  /**
   * Browsers glide to the end that there was when the key was pressed, while rows measured on the way move it.
   * @param {KeyboardEvent} event
   */
  onKey_(event) {
    if (scrollingKeys.has(event.key) && !event.defaultPrevented) this.scrolledAt_ = performance.now();
    const isForStart = event.key === "Home" || (event.metaKey && event.key === "ArrowUp");
    const isForEnd = event.key === "End" || (event.metaKey && event.key === "ArrowDown");
    const { target } = event;
    const isElsewhere = target instanceof HTMLMediaElement || target instanceof HTMLInputElement
      || document.querySelector("dialog[open]") !== null;
    if (!(isForStart || isForEnd) || isElsewhere || event.defaultPrevented || event.shiftKey || event.altKey) return;
    event.preventDefault();
    if (isForStart) this.toStart();
    else this.toEnd();
  }

  trackTop_() {
    return this.track.getBoundingClientRect().top + window.scrollY;
  }

  scale_() {
    return new ScrollScale(this.heights.total, window.innerHeight);
  }

  /** The height of rows above the window's top edge; negative while something else stands above the rows. */
  offset_() {
    const { lastOffset } = this.scale_();
    if (this.isAtEnd_) return lastOffset;
    return Math.min(this.heights.offsetOf(this.anchor_.index) + this.anchor_.above, lastOffset);
  }

  /** So many pixels below the window's top edge the eye is taken to be. */
  eyeLine_() {
    return Math.min(120, window.innerHeight / 4);
  }

  /**
   * Makes the row a little below the window's top edge the anchor.
   * @param {number} offset
   */
  moveTo_(offset) {
    const index = this.heights.indexAt(offset + this.eyeLine_());
    this.anchor_ = { index, above: offset - this.heights.offsetOf(index) };
  }

  /** Work that a timer starts calls it too: it may see the new position before the browser has told of the scroll. */
  onScroll_() {
    if (this.isSuspended_) return;
    const position = window.scrollY;
    const moved = position - this.position_;
    if (moved === 0) return;
    if (this.isHeld_) {
      this.lay_();
      this.followWithScrollBar_();
      this.restSoon_();
      return;
    }
    this.scrolledAt_ = performance.now();
    const scale = this.scale_();
    const inList = position - this.trackTop_();
    const isLeap = Math.abs(moved) > 4 * window.innerHeight;
    const offset = this.offset_();
    this.isAtEnd_ = inList > 0 && inList >= scale.lastPosition - 1;
    // A leap goes where the scroll bar points; a step moves the rows by as many pixels as the hand did.
    this.moveTo_(isLeap || inList <= 0 ? scale.offsetAt(inList) : offset + moved);
    this.position_ = position;
    this.render_();
    const nearEnds = 2 * window.innerHeight;
    if (inList < nearEnds || inList > scale.lastPosition - nearEnds) this.followWithScrollBar_();
    this.restSoon_();
  }

  restSoon_() {
    window.clearTimeout(this.restTimer_);
    this.restTimer_ = window.setTimeout(() => this.restBehind_(this.isHeld_ ? glideFrames : 0, this.restTimer_), restTime);
  }

  /**
   * @param {number} frames that are waited for first
   * @param {number | undefined} timer the one that rang; one that was set since takes its place
   */
  restBehind_(frames, timer) {
    if (timer !== this.restTimer_) return;
    if (!this.isSuspended_ && window.scrollY !== this.position_) this.onScroll_();
    else if (frames > 0) requestAnimationFrame(() => this.restBehind_(frames - 1, timer));
    else {
      this.isHeld_ = false;
      this.followWithScrollBar_();
      this.onRest();
    }
  }

  /** Puts the scroll bar where the rows are, without moving the rows. */
  followWithScrollBar_() {
    if (this.isSuspended_) return;
    const wanted = this.trackTop_() + this.scale_().positionOf(this.offset_());
    if (Math.abs(wanted - window.scrollY) < 1) return;
    window.scrollTo(0, wanted);
    this.lay_();
  }

  onWindowResized_() {
    if (this.isSuspended_) return;
    this.render_();
    this.followWithScrollBar_();
  }

  onTrackResized_() {
    const width = this.track.clientWidth;
    if (this.isSuspended_ || width === this.width_ || width === 0) return;
    this.width_ = width;
    this.measure_(this.shown);
    this.onWindowResized_();
    this.onWidthChange();
  }

  /** @param {readonly Element[]} rows */
  onRowsResized_(rows) {
    if (this.isSuspended_) return;
    if (this.measure_(rows)) this.render_();
  }

  /**
   * While the page shows something else, as on paper, nothing here is measured or moved.
   * @param {boolean} isSuspended
   */
  suspend(isSuspended) {
    this.isSuspended_ = isSuspended;
    if (!isSuspended) this.onWindowResized_();
  }

  render_() {
    if (this.isSuspended_) return;
    const margin = this.count <= mostWhole ? Infinity : Math.min(window.innerHeight, widestMargin);
    // Rows that turn out shorter than estimated leave room for more of them, which must be measured in turn.
    for (let pass = 0; pass < 10; pass++) {
      const offset = this.offset_();
      this.rows_.show(this.heights.indexAt(offset - margin), this.heights.indexAt(offset + window.innerHeight + margin) + 1);
      if (!this.measure_(this.shown)) break;
    }
    this.holdAnchor_();
    this.lay_();
    this.onMove();
  }

  /** The anchor tells where the rows lie now, even where the list's end did not let it lie where it should. */
  holdAnchor_() {
    const offset = this.offset_();
    if (this.isAtEnd_) this.moveTo_(offset);
    else this.anchor_.above = offset - this.heights.offsetOf(this.anchor_.index);
  }

  /**
   * Returns whether any height was news.
   * @param {readonly Element[]} rows
   */
  measure_(rows) {
    let isNews = false;
    for (const row of rows) {
      if (!row.isConnected || !(row instanceof HTMLElement)) continue;
      const index = Number(row.dataset.index);
      if (!this.heights.setHeight(index, row.getBoundingClientRect().height)) continue;
      isNews = true;
      if (index === this.anchor_.index) this.anchor_.above += this.eye_.drift(row);
    }
    return isNews;
  }

  lay_() {
    const row = this.row(this.anchor_.index);
    if (row && this.anchor_.above > 0) this.eye_.lookAt(row, this.anchor_.above + this.eyeLine_());
    else this.eye_.close();
    this.track.style.height = `${this.scale_().height}px`;
    // A shorter track may have moved the scroll position just now; the rows are laid for where it is.
    this.position_ = window.scrollY;
    const windowTop = this.position_ - this.trackTop_();
    const above = this.offset_() - this.heights.offsetOf(this.rows_.first);
    this.rows_.element.style.top = `${Math.round(windowTop - above)}px`;
  }
}
