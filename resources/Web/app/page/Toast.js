import { element } from "./elements.js";

const shownTime = 3000;

/** A short word at the window's foot that goes by itself; screen readers say it. */
export class Toast {
  constructor() {
    this.element = element("div", "toast");
    this.element.setAttribute("role", "status");
    /** @type {number | undefined} */
    this.timer_ = undefined;
  }

  /** @param {string} text */
  say(text) {
    this.element.textContent = text;
    this.element.classList.add("is-shown");
    window.clearTimeout(this.timer_);
    this.timer_ = window.setTimeout(() => {
      this.element.classList.remove("is-shown");
      this.element.textContent = "";
    }, shownTime);
  }
}
