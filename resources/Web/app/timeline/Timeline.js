import { element } from "../page/elements.js";
import { enterAtEye, handleFeedKeys } from "./feedKeys.js";
import { FloatingDate } from "./FloatingDate.js";
import { MessageActions } from "./MessageActions.js";
import { VirtualList } from "./VirtualList.js";

/** @typedef {import("../message/MessageView.js").MessageView} MessageView */
/** @typedef {import("../page/Album.js").Album} Album */

const markTime = 2500;
/** What the floating date takes below the bar, in pixels at the usual size of type. */
const floatingRoom = 48;
/** A message that is given the focus stands at least so far from the bar and from the window's foot. */
const focusRoom = 24;

/** The conversation as one list of messages, with what belongs to it: the floating date, the tool beside a message, the keys. */
export class Timeline {
  /**
   * @param {Album} album
   * @param {MessageView} view
   * @param {(index: number) => void} copyLink
   */
  constructor(album, view, copyLink) {
    this.album = album;
    this.view = view;
    /** Called when other messages have come into sight. */
    this.onMove = () => {};
    /** Called when scrolling has come to rest. */
    this.onRest = () => {};
    /** Called when the list has another width. */
    this.onWidthChange = () => {};
    this.floatingDate = new FloatingDate();
    this.actions_ = new MessageActions(album.speech, copyLink);
    this.element = element("section", "track");
    this.element.classList.toggle("is-group", album.conversation.isGroup);
    this.rows_ = element("div", "rows");
    this.rows_.tabIndex = -1;
    this.rows_.setAttribute("role", "feed");
    this.rows_.setAttribute("aria-label", album.speech.say("messagesLabel"));
    this.element.append(this.rows_);
    /** @type {VirtualList | undefined} */
    this.list = undefined;
    this.found_ = -1;
    /** @type {number | undefined} */
    this.foundTimer_ = undefined;
  }

  /**
   * Shows the messages; the element stands in the page by now.
   * @param {Float32Array} heights estimates of all rows
   */
  fill(heights) {
    this.list = new VirtualList(this.element, this.rows_, heights, (index) => this.buildRow_(index));
    this.list.onMove = () => this.onMove_();
    this.list.onRest = () => this.onRest_();
    this.list.onWidthChange = () => this.onWidthChange();
    this.list.onLeave = (row) => this.view.attachments.keepPlaying(row);
    this.actions_.follow(this.rows_);
    handleFeedKeys(this.rows_, this.list, (index) => this.focus(index));
    enterAtEye(this.list);
    this.onMove();
    this.onRest_();
  }

  get width() {
    return this.element.clientWidth;
  }

  /** The day of the message at the window's top, NaN where it has no date. */
  get timeInSight() {
    return this.list ? this.album.timeline.times[this.list.place.index] : NaN;
  }

  /**
   * Brings a message under the eye and marks it for a while.
   * @param {number} index
   */
  reveal(index) {
    this.found_ = index;
    window.clearTimeout(this.foundTimer_);
    const row = this.revealFoundWords_(index, this.list?.reveal(index));
    this.rows_.querySelectorAll(".is-found").forEach((found) => found.classList.remove("is-found"));
    row?.classList.add("is-found");
    this.foundTimer_ = window.setTimeout(() => {
      this.found_ = -1;
      this.rows_.querySelectorAll(".is-found").forEach((found) => found.classList.remove("is-found"));
    }, markTime);
    this.floatingDate.hide();
    return row;
  }

  /**
   * In a message taller than the window, what the reader looks for is brought under the eye.
   * @param {number} index
   * @param {HTMLElement | undefined} row
   */
  revealFoundWords_(index, row) {
    const words = row?.querySelector("mark")?.getBoundingClientRect();
    if (!row || !words || (words.top >= this.barHeight_() && words.bottom <= window.innerHeight)) return row;
    return this.list?.reveal(index, words.top - row.getBoundingClientRect().top - window.innerHeight / 3);
  }

  /**
   * Gives a message the focus and brings it into sight, where it is not.
   * @param {number} index
   */
  focus(index) {
    const list = this.list;
    if (!list) return;
    let row = list.row(index);
    const box = row?.getBoundingClientRect();
    const top = this.barHeight_() + focusRoom;
    if (!box || box.top < top || box.bottom > window.innerHeight) {
      const isAbove = !box || box.top < top || box.height > window.innerHeight - top - focusRoom;
      row = list.reveal(index, isAbove ? -top : box.height - window.innerHeight + focusRoom);
    }
    row?.focus({ preventScroll: true });
  }

  /** The keyboard goes on from here where what had the focus is gone. */
  takeFocus() {
    this.rows_.focus({ preventScroll: true });
  }

  /** The bar over the page grows with the size of type. */
  barHeight_() {
    return document.getElementById("bar")?.offsetHeight ?? 0;
  }

  /** @param {number} index */
  buildRow_(index) {
    const row = this.view.buildRow(index);
    row.classList.toggle("is-found", index === this.found_);
    return row;
  }

  onMove_() {
    const list = this.list;
    if (!list) return;
    // The day of what lies under the floating date.
    const time = this.album.timeline.times[list.indexAt(this.barHeight_() + floatingRoom - 1)];
    const isAtStart = window.scrollY < 240;
    if (isAtStart || Number.isNaN(time) || this.isHeadingNearTop_()) this.floatingDate.hide();
    else this.floatingDate.show(this.album.formats.day(time));
    this.onMove();
  }

  /** Whether a day's own heading stands where the floating date would. */
  isHeadingNearTop_() {
    const list = this.list;
    if (!list) return false;
    const { index } = list.place;
    const barHeight = this.barHeight_();
    return [index - 1, index, index + 1].some((near) => {
      const heading = list.row(near)?.firstElementChild;
      if (!heading?.classList.contains("day")) return false;
      const { top, bottom } = heading.getBoundingClientRect();
      return bottom > barHeight && top < barHeight + floatingRoom;
    });
  }

  /** The keyboard enters the feed at the message under the eye. */
  onRest_() {
    const list = this.list;
    if (!list) return;
    const { index } = list.place;
    for (const row of list.shown) row.tabIndex = Number(row.dataset.index) === index ? 0 : -1;
    this.onRest();
  }
}
