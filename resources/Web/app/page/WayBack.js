import { button } from "./elements.js";
import { icon } from "./icons.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */

/** Behind so many heights of the window from where a jump led, the offer to go back has served its time. */
const farAway = 4;

/** The offer at the window's foot to go back to where a jump began. The browser's own Back does the same, and stays. */
export class WayBack {
  /**
   * @param {Speech} speech
   * @param {() => void} goBack
   * @param {() => void} passFocus to something that stays
   */
  constructor(speech, goBack, passFocus) {
    this.element = button("way-back", goBack);
    this.element.append(icon("back"), speech.say("back"));
    this.element.hidden = true;
    this.from_ = 0;
    window.addEventListener("scroll", () => {
      if (Math.abs(window.scrollY - this.from_) <= farAway * window.innerHeight) return;
      if (document.activeElement === this.element) passFocus();
      this.element.hidden = true;
    }, { passive: true });
  }

  /** @param {boolean} hasWayBack */
  show(hasWayBack) {
    this.from_ = window.scrollY;
    this.element.hidden = !hasWayBack;
  }
}
