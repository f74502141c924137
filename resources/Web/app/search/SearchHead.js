import { button, element } from "../page/elements.js";
import { iconButton } from "../page/iconButton.js";
import { icon } from "../page/icons.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */

/** The upper part of the panel: the field, how many there are, and the ways from one to another. */
export class SearchHead {
  /** @param {Speech} speech */
  constructor(speech) {
    this.speech = speech;
    this.onInput = () => {};
    this.onClose = () => {};
    this.onDown = () => {};
    this.onToggleList = () => {};
    /** @type {(direction: 1 | -1) => void} */
    this.onStep = () => {};
    this.field = this.field_();
    this.clear_ = iconButton(this.speech, "close", "clearSearch", () => this.setText(""));
    this.clear_.classList.add("is-small", "search-clear");
    this.previous_ = iconButton(this.speech, "up", "previousHit", () => this.onStep(-1));
    this.next_ = iconButton(this.speech, "down", "nextHit", () => this.onStep(1));
    this.list_ = button("text-button search-list", () => this.onToggleList());
    this.list_.textContent = speech.say("results");
    this.list_.setAttribute("aria-controls", "search-body");
    this.status_ = element("p", "search-status");
    this.element = element("div", "search-head");
    this.element.append(this.form_(), this.steps_());
  }

  get text() {
    return this.field.value;
  }

  /** @param {string} text */
  setText(text) {
    this.field.value = text;
    this.field.focus();
    this.onInput();
  }

  /** @param {string} status @param {boolean} hasHits */
  show(status, hasHits) {
    this.status_.textContent = status;
    this.clear_.hidden = this.field.value === "";
    this.previous_.disabled = !hasHits;
    this.next_.disabled = !hasHits;
    this.list_.hidden = !hasHits;
  }

  /** @param {boolean} isShown */
  showList(isShown) {
    this.list_.setAttribute("aria-expanded", String(isShown));
  }

  field_() {
    const field = element("input", "field search-input");
    field.type = "search";
    field.placeholder = this.speech.say("findPlaceholder");
    field.autocomplete = "off";
    field.spellcheck = false;
    field.enterKeyHint = "search";
    field.dir = "auto";
    field.setAttribute("aria-label", this.speech.say("find"));
    field.setAttribute("autocapitalize", "off");
    field.addEventListener("input", () => this.onInput());
    field.addEventListener("keydown", (event) => this.onKey_(event));
    return field;
  }

  form_() {
    const form = element("form", "search-form");
    form.setAttribute("role", "search");
    form.addEventListener("submit", (event) => event.preventDefault());
    const frame = element("div", "search-field");
    frame.append(icon("find"), this.field, this.clear_);
    form.append(frame, iconButton(this.speech, "close", "close", () => this.onClose()));
    return form;
  }

  steps_() {
    const steps = element("div", "search-steps");
    steps.append(this.status_, this.list_, this.previous_, this.next_);
    return steps;
  }

  /**
   * Keys that compose a character are not ours.
   * @param {KeyboardEvent} event
   */
  onKey_(event) {
    if (event.isComposing) return;
    if (event.key === "Enter") this.onStep(event.shiftKey ? -1 : 1);
    else if (event.key === "ArrowDown") this.onDown();
    else return;
    event.preventDefault();
  }
}
