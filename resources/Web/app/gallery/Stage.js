import { element } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { followFingers } from "./followFingers.js";
import { panned, wholeView, zoomed } from "./zoom.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./Entries.js").Entries} Entries */
/** @typedef {import("./Entries.js").Entry} Entry */
/** @typedef {import("./zoom.js").View} View */

const middle = { x: 0, y: 0 };
/** One press of a key or button. */
export const zoomStep = 1.5;
const doubleClickScale = 2.5;
/** At the foot of a film lie its player's own controls. */
const playerControls = 72;

/** Shows one picture or film as large as there is room, or says why it cannot. A picture can be brought nearer and moved. */
export class Stage {
  /** @param {Album} album @param {Entries} entries @param {(steps: number) => void} onSwipe */
  constructor(album, entries, onSwipe) {
    this.album = album;
    this.entries = entries;
    /** Called when the whole picture gives way to a part of it, or comes back. */
    this.onZoom = () => {};
    this.onSwipe_ = onSwipe;
    this.element = element("div", "stage");
    /** @type {HTMLImageElement | undefined} */
    this.picture_ = undefined;
    /** @type {View} */
    this.view_ = wholeView;
    /** The size of the stage that the view was made for. */
    this.viewSize_ = { width: 0, height: 0 };
    followFingers(this.element, {
      takes: (event) => this.takes_(event),
      drag: (x, y) => this.drag_(x, y),
      end: (steps) => this.endDrag_(steps),
      zoom: (factor, x, y) => this.zoomAt_(factor, x, y),
    });
    this.element.addEventListener("wheel", (event) => this.onWheel_(event), { passive: false });
    this.element.addEventListener("dblclick", (event) => this.onDoubleClick_(event));
    new ResizeObserver(() => this.onResize_()).observe(this.element);
  }

  get isZoomed() {
    return this.view_.scale > 1;
  }

  get canZoom() {
    return this.picture_ !== undefined;
  }

  /** @param {Entry | undefined} entry nothing empties the stage */
  show(entry) {
    for (const film of Array.from(this.element.querySelectorAll("video"))) {
      film.removeAttribute("src");
      film.load();
    }
    this.picture_ = undefined;
    this.element.replaceChildren(...(entry ? [this.content_(entry)] : []));
    this.setView_(wholeView);
  }

  /** @param {number} factor */
  zoom(factor) {
    this.zoomAt_(factor, middle.x, middle.y);
  }

  /** @param {number} x @param {number} y in shares of the stage */
  pan(x, y) {
    this.moveBy_(x * this.element.clientWidth, y * this.element.clientHeight);
  }

  /** @param {Entry} entry @returns {HTMLElement} */
  content_(entry) {
    const { address, look } = entry;
    if (address === undefined || (look !== "image" && look !== "video")) return this.notice_(entry);
    return look === "video" ? this.film_(entry, address) : this.image_(entry, address);
  }

  /** @param {Entry} entry @param {string} address */
  image_(entry, address) {
    const image = element("img", "stage-content");
    image.alt = entry.name;
    image.draggable = false;
    image.decoding = "async";
    image.addEventListener("error", () => this.giveUp_(image, entry, address));
    image.src = address;
    this.picture_ = image;
    return image;
  }

  /** @param {Entry} entry @param {string} address */
  film_(entry, address) {
    const film = element("video", "stage-content");
    film.controls = true;
    film.playsInline = true;
    film.preload = "metadata";
    film.setAttribute("aria-label", entry.name);
    film.addEventListener("error", () => this.giveUp_(film, entry, address));
    film.addEventListener("loadedmetadata", () => {
      // A film whose pictures this browser cannot decode would play as sound behind a black field.
      if (film.videoWidth === 0) this.giveUp_(film, entry, address);
    });
    film.src = address;
    return film;
  }

  /** @param {HTMLElement} shown @param {Entry} entry @param {string} address */
  giveUp_(shown, { messageIndex, attachment, kind, name }, address) {
    if (!shown.isConnected) return;
    this.album.showability.giveUp(address);
    this.show({ messageIndex, attachment, kind, name, address, look: "document" });
  }

  /** @param {Entry} entry */
  notice_(entry) {
    const notice = element("div", "stage-notice");
    notice.append(icon(this.entries.iconOf(entry)), element("bdi", "stage-notice-name", entry.name),
      element("p", "", this.entries.factsOf(entry)), element("p", "", this.entries.troubleOf(entry)));
    return notice;
  }

  /** @param {PointerEvent} event */
  takes_(event) {
    const { target } = event;
    return !(target instanceof HTMLVideoElement) || event.clientY < target.getBoundingClientRect().bottom - playerControls;
  }

  /** @param {number} x @param {number} y how far the finger went since it was asked last */
  drag_(x, y) {
    if (this.isZoomed) this.moveBy_(x, y);
    else this.lean_(this.leaning_() + x);
  }

  /** @param {number} steps to the neighbours, as far as the finger's whole way tells */
  endDrag_(steps) {
    if (this.isZoomed) return;
    this.lean_(0);
    if (steps !== 0) this.onSwipe_(steps);
  }

  leaning_() {
    return parseFloat(this.element.style.getPropertyValue("--lean")) || 0;
  }

  /**
   * The content goes along with the finger.
   * @param {number} x
   */
  lean_(x) {
    this.element.style.setProperty("--lean", `${x}px`);
    this.element.classList.toggle("is-dragged", x !== 0);
  }

  /** @param {number} x @param {number} y */
  moveBy_(x, y) {
    if (this.picture_) this.setView_(panned(this.view_, x, y, this.fitted_(this.picture_), this.size_()));
  }

  /** @param {number} factor @param {number} x @param {number} y from the middle */
  zoomAt_(factor, x, y) {
    if (this.picture_) this.setView_(zoomed(this.view_, factor, { x, y }, this.fitted_(this.picture_), this.size_()));
  }

  /** @param {HTMLImageElement} image */
  fitted_(image) {
    return { width: image.clientWidth, height: image.clientHeight };
  }

  size_() {
    return { width: this.element.clientWidth, height: this.element.clientHeight };
  }

  /** @param {View} view */
  setView_(view) {
    this.view_ = view;
    this.viewSize_ = this.size_();
    this.element.classList.toggle("is-zoomed", view.scale > 1);
    this.lean_(0);
    const { scale, x, y } = view;
    if (this.picture_) this.picture_.style.transform = scale === 1 ? "" : `translate(${x}px, ${y}px) scale(${scale})`;
    this.onZoom();
  }

  /** The first word of a size may come when a picture in it has been brought nearer already. */
  onResize_() {
    const { width, height } = this.size_();
    if (width !== this.viewSize_.width || height !== this.viewSize_.height) this.setView_(wholeView);
  }

  /** @param {WheelEvent} event */
  onWheel_(event) {
    if (!this.picture_) return;
    event.preventDefault();
    const pixels = event.deltaY * (event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? 1 : 16);
    const { x, y } = this.fromMiddle_(event);
    this.zoomAt_(Math.exp(-Math.max(-100, Math.min(100, pixels)) / 400), x, y);
  }

  /** @param {MouseEvent} event */
  onDoubleClick_(event) {
    if (!this.picture_) return;
    const { x, y } = this.fromMiddle_(event);
    if (this.isZoomed) this.setView_(wholeView);
    else this.zoomAt_(doubleClickScale, x, y);
  }

  /** @param {MouseEvent} event */
  fromMiddle_({ clientX, clientY }) {
    const { left, top, width, height } = this.element.getBoundingClientRect();
    return { x: clientX - left - width / 2, y: clientY - top - height / 2 };
  }
}
