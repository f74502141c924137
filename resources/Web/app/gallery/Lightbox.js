import { openDialog, whenClosed } from "../page/dialogs.js";
import { button, element } from "../page/elements.js";
import { iconButton } from "../page/iconButton.js";
import { opening } from "./EntryRows.js";
import { Stage, zoomStep } from "./Stage.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./Entries.js").Entries} Entries */
/** @typedef {import("./PlaceList.js").PlaceList} PlaceList */

const panShare = 0.2;
/** @type {{ readonly [key: string]: readonly [number, number] | undefined }} */
const panByKey = { ArrowLeft: [1, 0], ArrowRight: [-1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };

/** One picture or film in a window of its own, with the way to its neighbours and to its message. */
export class Lightbox {
  /** @param {Album} album @param {Entries} entries @param {(messageIndex: number) => void} onShow leads to a message */
  constructor(album, entries, onShow) {
    this.album = album;
    this.entries = entries;
    /** @type {(position: number) => void} Called with what was shown last. */
    this.onClose = () => {};
    /** @type {PlaceList | undefined} */
    this.places_ = undefined;
    this.position_ = -1;
    this.stage_ = new Stage(album, entries, (steps) => this.step_(steps));
    this.stage_.onZoom = () => this.markZoom_();
    this.counter_ = element("p", "lightbox-counter");
    this.name_ = element("bdi", "lightbox-name");
    this.sent_ = element("p", "lightbox-sent");
    this.openFile_ = opening("lightbox-action", "");
    this.openFile_.append(album.speech.say("openFile"));
    this.show_ = button("lightbox-action", () => onShow(this.places_?.messages[this.position_] ?? 0));
    this.show_.append(album.speech.say("showInConversation"));
    this.zoomOut_ = iconButton(this.album.speech, "zoomOut", "zoomOut", () => this.stage_.zoom(1 / zoomStep));
    this.zoomIn_ = iconButton(this.album.speech, "zoomIn", "zoomIn", () => this.stage_.zoom(zoomStep));
    this.previous_ = iconButton(this.album.speech, "previous", "previousItem", () => this.step_(-1));
    this.next_ = iconButton(this.album.speech, "next", "nextItem", () => this.step_(1));
    this.dialog = this.dialog_();
  }

  /** @param {PlaceList} places @param {number} position */
  open(places, position) {
    this.places_ = places;
    this.position_ = position;
    openDialog(this.dialog);
    this.fill_();
  }

  /**
   * Gives what is shown its neighbours, found meanwhile.
   * @param {PlaceList} places
   * @param {number} position
   */
  setPlaces(places, position) {
    this.places_ = places;
    this.position_ = position;
    this.markPosition_();
  }

  /** What is shown, as its message and its part. */
  get shown() {
    if (!this.dialog.open || !this.places_) return undefined;
    return { message: this.places_.messages[this.position_], part: this.places_.parts[this.position_] };
  }

  close() {
    if (this.dialog.open) this.dialog.close();
  }

  dialog_() {
    const dialog = element("dialog", "lightbox");
    dialog.setAttribute("aria-label", this.album.speech.say("viewer"));
    const close = iconButton(this.album.speech, "close", "close", () => dialog.close());
    close.autofocus = true;
    const tools = element("div", "lightbox-tools");
    tools.append(this.zoomOut_, this.zoomIn_, close);
    const head = element("header", "lightbox-head");
    head.append(this.counter_, tools);
    this.previous_.classList.add("lightbox-previous");
    this.next_.classList.add("lightbox-next");
    const ground = element("div", "lightbox-ground");
    ground.append(this.previous_, this.stage_.element, this.next_);
    dialog.append(head, ground, this.foot_());
    dialog.addEventListener("keydown", (event) => this.onKey_(event));
    whenClosed(dialog, () => this.onClosed_());
    return dialog;
  }

  foot_() {
    const words = element("div", "lightbox-words");
    words.setAttribute("role", "status");
    words.setAttribute("aria-atomic", "true");
    words.append(this.name_, this.sent_);
    const actions = element("div", "lightbox-actions");
    actions.append(this.show_, this.openFile_);
    const foot = element("footer", "lightbox-foot");
    foot.append(words, actions);
    return foot;
  }

  fill_() {
    if (!this.places_) return;
    const entry = this.entries.entryAt(this.places_.messages[this.position_], this.places_.parts[this.position_]);
    this.stage_.show(entry);
    this.name_.textContent = entry.name;
    this.sent_.textContent = this.entries.sentAt(entry.messageIndex);
    this.openFile_.hidden = entry.address === undefined;
    this.openFile_.href = entry.address ?? "";
    this.markPosition_();
  }

  markPosition_() {
    const count = this.places_?.count ?? 0;
    const { numbers } = this.album.speech;
    this.counter_.textContent = count < 2 ? "" : this.album.speech.say("itemPosition", {
      position: numbers.format(this.position_ + 1), count: numbers.format(count) });
    // Not disabled, for the focus would be lost with it.
    this.previous_.setAttribute("aria-disabled", String(this.position_ <= 0));
    this.next_.setAttribute("aria-disabled", String(this.position_ >= count - 1));
  }

  markZoom_() {
    this.zoomOut_.setAttribute("aria-disabled", String(!this.stage_.isZoomed));
    this.zoomIn_.setAttribute("aria-disabled", String(!this.stage_.canZoom));
  }

  /** @param {number} steps */
  step_(steps) {
    this.goTo_(this.position_ + steps);
  }

  /** @param {number} position */
  goTo_(position) {
    if (position < 0 || position >= (this.places_?.count ?? 0) || position === this.position_) return;
    // A film that had the focus goes, and keys would go nowhere.
    if (this.stage_.element.contains(document.activeElement)) this.next_.focus();
    this.position_ = position;
    this.fill_();
  }

  onClosed_() {
    this.stage_.show(undefined);
    this.onClose(this.position_);
  }

  /** @param {KeyboardEvent} event */
  onKey_(event) {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    // A player has uses of its own for the arrow keys.
    if (event.target instanceof HTMLMediaElement) return;
    const work = this.keyWork_(event.key);
    if (!work) return;
    event.preventDefault();
    work();
  }

  /** @param {string} key @returns {(() => void) | undefined} */
  keyWork_(key) {
    const way = this.stage_.isZoomed ? panByKey[key] : undefined;
    if (way) return () => this.stage_.pan(way[0] * panShare, way[1] * panShare);
    if (key === "ArrowLeft" || key === "ArrowRight") return () => this.step_(key === "ArrowLeft" ? -1 : 1);
    if (key === "Home") return () => this.goTo_(0);
    if (key === "End") return () => this.goTo_((this.places_?.count ?? 0) - 1);
    if (key === "+" || key === "=") return () => this.stage_.zoom(zoomStep);
    if (key === "-") return () => this.stage_.zoom(1 / zoomStep);
    return key === "0" ? () => this.stage_.zoom(0) : undefined;
  }
}
