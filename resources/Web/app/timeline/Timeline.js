import { element } from "../page/elements.js";
import { handleFeedKeys } from "./feedKeys.js";
import { FloatingDate } from "./FloatingDate.js";
import { MessageActions } from "./MessageActions.js";
import { VirtualList } from "./VirtualList.js";

/** @typedef {import("../message/MessageView.js").MessageView} MessageView */
/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./VirtualList.js").Place} Place */

const markTime = 2500;
/** Of the bar over the page, and of what the floating date takes below it, in pixels at the usual size of type. */
const barHeight = 60;
const floatingRoom = 48;

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
    this.actions_.follow(this.rows_);
    handleFeedKeys(this.rows_, this.list, (index) => this.focus(index));
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
    const row = this.list?.reveal(index);
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
   * Gives a message the focus and brings it into sight, where it is not.
   * @param {number} index
   */
  focus(index) {
    const list = this.list;
    if (!list) return;
    let row = list.row(index);
    const box = row?.getBoundingClientRect();
    if (!box || box.top < 72 || box.bottom > window.innerHeight) {
      const isAbove = !box || box.top < 72 || box.height > window.innerHeight - 144;
      row = list.reveal(index, isAbove ? -88 : box.height - window.innerHeight + 24);
    }
    row?.focus({ preventScroll: true });
  }

  /** @param {number} index */
  buildRow_(index) {
    const row = this.view.buildRow(index);
    row.classList.toggle("is-found", index === this.found_);
    return row;
  }

  onMove_() {
    const time = this.timeInSight;
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
