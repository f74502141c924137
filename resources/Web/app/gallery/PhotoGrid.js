import { button, element } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { clockLength } from "./clockLength.js";
import { gridColumns, GridRows, monthStarts } from "./gridRows.js";
import { RowScroller } from "./RowScroller.js";
import { Thumbnails, thumbnailSide } from "./Thumbnails.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./Entries.js").Entries} Entries */
/** @typedef {import("./PlaceList.js").PlaceList} PlaceList */

/** Widths in the page's own unit, the size of its type. */
const wantedCell = 9.5;
const gap = 0.25;
const heading = 3;
const foot = 1.5;

/** Pictures and films in a grid under the months; the arrow keys go from one to the next. */
export class PhotoGrid {
  /** @param {Album} album @param {Entries} entries @param {(position: number) => void} onOpen */
  constructor(album, entries, onOpen) {
    this.album = album;
    this.entries = entries;
    this.onOpen_ = onOpen;
    this.element = element("div", "shelf");
    this.list_ = element("div", "photo-grid");
    this.list_.setAttribute("role", "grid");
    this.list_.setAttribute("aria-label", album.speech.say("photosAndVideos"));
    this.list_.addEventListener("keydown", (event) => this.onKey_(event));
    this.element.append(this.list_);
    /** @type {PlaceList | undefined} */
    this.places_ = undefined;
    /** The first picture of each month. */
    this.starts_ = new Uint32Array(0);
    this.layout_ = new GridRows(this.starts_, 0, { columns: 1, cell: 1, gap: 0, heading: 0, foot: 0 });
    /** @type {Map<number, HTMLButtonElement>} */
    this.cells_ = new Map();
    this.current_ = -1;
    this.width_ = 0;
    /**
     * Where the reader was: the first item at the upper edge.
     * @type {{ item: number, above: number } | "end"}
     */
    this.left_ = "end";
    this.thumbnails_ = new Thumbnails(album.showability, (position) => Math.abs(position - this.middle_));
    this.middle_ = 0;
    this.scroller_ = new RowScroller(this.element, this.list_, {
      build: (index) => this.row_(index), forget: (_, row) => this.forget_(row), shown: () => this.onShown_() });
    new ResizeObserver(() => this.onResize_()).observe(this.element);
  }

  /**
   * The panel stands in the page and is in sight.
   * @param {PlaceList} places
   */
  show(places) {
    this.places_ = places;
    const { calendar, timeline } = this.album;
    this.starts_ = monthStarts(places.count, (position) => timeline.times[places.messages[position]], calendar);
    this.lay_(this.left_);
  }

  /** Lets go of everything but the place. */
  hide() {
    if (!this.places_) return;
    this.left_ = this.scroller_.isAtEnd ? "end" : this.itemPlace_();
    this.scroller_.clear();
    this.thumbnails_.clear();
    this.places_ = undefined;
  }

  /**
   * Brings a picture into sight and gives it the focus.
   * @param {number} position
   */
  focus(position) {
    this.current_ = position;
    const row = this.layout_.rowOfItem(position);
    if (this.layout_.rowAt(row - 1).isHeading) this.scroller_.reveal(row - 1);
    this.scroller_.reveal(row);
    this.markCurrent_();
    this.cells_.get(position)?.focus({ preventScroll: true });
  }

  itemPlace_() {
    const { index, above } = this.scroller_.place;
    const { isHeading, first } = this.layout_.rowAt(index);
    return { item: first, above: isHeading ? above - this.layout_.sizes.heading : above };
  }

  /** @param {{ item: number, above: number } | "end"} place */
  lay_(place) {
    const count = this.places_?.count ?? 0;
    if (count === 0) return;
    const unit = parseFloat(getComputedStyle(document.documentElement).fontSize) || 16;
    this.width_ = this.list_.clientWidth;
    const space = { gap: Math.round(gap * unit), heading: Math.round(heading * unit), foot: Math.round(foot * unit) };
    const grid = gridColumns(this.width_, wantedCell * unit, space.gap);
    this.layout_ = new GridRows(this.starts_, count, { ...grid, ...space });
    this.thumbnails_.setSide(thumbnailSide(grid.cell));
    this.list_.style.setProperty("--columns", String(grid.columns));
    this.list_.style.setProperty("--cell", `${grid.cell}px`);
    this.list_.style.setProperty("--gap", `${this.layout_.sizes.gap}px`);
    this.list_.setAttribute("aria-rowcount", String(this.layout_.count));
    this.list_.setAttribute("aria-colcount", String(grid.columns));
    this.scroller_.show(this.layout_, place === "end" ? place : { index: this.layout_.rowOfItem(place.item), above: place.above });
  }

  onResize_() {
    if (!this.places_ || this.element.clientHeight === 0) return;
    if (this.list_.clientWidth === this.width_) this.scroller_.refresh();
    else this.relay_();
  }

  relay_() {
    const focused = this.list_.contains(document.activeElement) ? this.current_ : -1;
    this.lay_(this.scroller_.isAtEnd ? "end" : this.itemPlace_());
    if (focused >= 0) this.focus(focused);
  }

  /** @param {number} index */
  row_(index) {
    const { isHeading, first, end } = this.layout_.rowAt(index);
    const row = element("div", isHeading ? "grid-heading" : "grid-row");
    row.setAttribute("role", "row");
    row.setAttribute("aria-rowindex", String(index + 1));
    if (isHeading) {
      row.style.height = `${this.layout_.sizes.heading}px`;
      row.append(this.monthCell_(first));
    }
    for (let position = first; position < end; position++) row.append(this.cell_(position));
    return row;
  }

  /** @param {number} position of the month's first picture */
  monthCell_(position) {
    const { formats, speech, timeline } = this.album;
    const time = timeline.times[this.places_?.messages[position] ?? -1];
    const cell = element("div");
    cell.setAttribute("role", "gridcell");
    cell.setAttribute("aria-colspan", String(this.layout_.sizes.columns));
    cell.append(element("h3", "", Number.isFinite(time) ? formats.month(time) : speech.say("unknownDate")));
    return cell;
  }

  /** @param {number} position */
  cell_(position) {
    const cell = element("div");
    cell.setAttribute("role", "gridcell");
    const open = button("photo", () => {
      this.current_ = position;
      this.onOpen_(position);
    });
    open.dataset.position = String(position);
    open.tabIndex = -1;
    this.cells_.set(position, open);
    this.fill_(open, position);
    cell.append(open);
    return cell;
  }

  /** @param {HTMLButtonElement} open @param {number} position */
  fill_(open, position) {
    if (!this.places_) return;
    const entry = this.entries.entryAt(this.places_.messages[position], this.places_.parts[position]);
    open.setAttribute("aria-label", this.entries.labelOf(entry));
    open.title = [entry.name, this.entries.troubleOf(entry)].filter(Boolean).join(" · ");
    const isShowable = entry.look === "image" || entry.look === "video";
    open.classList.toggle("is-tile", !isShowable);
    open.classList.toggle("is-absent", entry.look === "absent");
    open.replaceChildren(icon(this.entries.iconOf(entry)));
    if (!isShowable) open.append(element("bdi", "photo-name", entry.name));
    else {
      this.thumbnails_.ask(position, entry, (thumbnail) => {
        if (!thumbnail) this.fill_(open, position);
        else open.replaceChildren(thumbnail.canvas, ...(entry.look === "video" ? [this.badge_(thumbnail.duration)] : []));
      });
    }
  }

  /** @param {number} duration in seconds */
  badge_(duration) {
    const badge = element("span", "photo-badge");
    badge.append(icon("play"), clockLength(duration));
    return badge;
  }

  /** @param {HTMLElement} row */
  forget_(row) {
    for (const open of Array.from(row.querySelectorAll("button"))) {
      const position = Number(open.dataset.position);
      this.thumbnails_.drop(position);
      if (this.cells_.get(position) === open) this.cells_.delete(position);
    }
  }

  onShown_() {
    const { index } = this.scroller_.place;
    const last = this.layout_.indexAt(this.layout_.offsetOf(index) + this.element.clientHeight);
    this.middle_ = (this.layout_.rowAt(index).first + this.layout_.rowAt(last).end) / 2;
    this.markCurrent_();
  }

  /** The Tab key enters the grid at the picture where the reader was, or else at the first in sight. */
  markCurrent_() {
    const first = this.layout_.rowAt(this.scroller_.place.index).first;
    const entry = this.cells_.has(this.current_) ? this.current_ : first;
    for (const [position, cell] of this.cells_) cell.tabIndex = position === entry ? 0 : -1;
  }

  /** @param {KeyboardEvent} event */
  onKey_(event) {
    const position = event.target instanceof HTMLElement ? Number(event.target.dataset.position ?? NaN) : NaN;
    const target = Number.isNaN(position) || event.altKey ? NaN : this.keyTarget_(event, position);
    if (Number.isNaN(target)) return;
    event.preventDefault();
    this.focus(Math.max(0, Math.min(target, this.layout_.itemCount - 1)));
  }

  /**
   * Where a key leads from a picture; NaN for another key.
   * @param {KeyboardEvent} event
   * @param {number} position
   */
  keyTarget_({ key, ctrlKey, metaKey }, position) {
    const { first, end } = this.layout_.rowAt(this.layout_.rowOfItem(position));
    const { cell, gap: between } = this.layout_.sizes;
    const page = Math.max(1, Math.floor(this.element.clientHeight / (cell + between)) - 1);
    const isFar = ctrlKey || metaKey;
    if (key === "Home") return isFar ? 0 : first;
    if (key === "End") return isFar ? this.layout_.itemCount - 1 : end - 1;
    if (isFar) return NaN;
    if (key === "ArrowLeft" || key === "ArrowRight") return position + (key === "ArrowLeft" ? -1 : 1);
    if (key === "ArrowUp" || key === "ArrowDown") return this.layout_.itemBelow(position, key === "ArrowUp" ? -1 : 1);
    if (key !== "PageUp" && key !== "PageDown") return NaN;
    return this.layout_.itemBelow(position, key === "PageUp" ? -page : page);
  }
}
