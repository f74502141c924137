import { element } from "../page/elements.js";

const restTime = 1200;

/** The day of the messages in sight, over them while they are being scrolled. The day headings say the same to everybody else. */
export class FloatingDate {
  constructor() {
    this.element = element("div", "floating-date");
    this.element.setAttribute("aria-hidden", "true");
    this.words_ = element("span", "floating-date-words");
    this.element.append(this.words_);
    /** @type {number | undefined} */
    this.timer_ = undefined;
  }

  /** @param {string} text */
  show(text) {
    if (this.words_.textContent !== text) this.words_.textContent = text;
    this.element.classList.add("is-shown");
    window.clearTimeout(this.timer_);
    this.timer_ = window.setTimeout(() => this.hide(), restTime);
  }

  hide() {
    window.clearTimeout(this.timer_);
    this.element.classList.remove("is-shown");
  }
}
