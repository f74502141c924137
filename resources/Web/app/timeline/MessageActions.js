import { element } from "../page/elements.js";
import { iconButton } from "../page/iconButton.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */

/** The one tool beside the message that is pointed at or has the focus: it copies a link to that message. */
export class MessageActions {
  /** @param {Speech} speech @param {(index: number) => void} copyLink */
  constructor(speech, copyLink) {
    this.element = element("div", "message-actions");
    /** @type {HTMLElement | undefined} */
    this.row_ = undefined;
    const copy = iconButton(speech, "link", "copyLink", () => {
      if (this.row_) copyLink(Number(this.row_.dataset.index));
    });
    copy.classList.add("is-small");
    this.element.append(copy);
  }

  /**
   * Follows pointer and focus among the rows.
   * @param {HTMLElement} rows
   */
  follow(rows) {
    const onRow = (/** @type {Event} */ event) => {
      if (event.target instanceof Element) this.moveTo_(event.target.closest(".row"));
    };
    rows.addEventListener("pointerover", (event) => {
      // A finger that scrolls points at every row on its way.
      if (event.pointerType !== "touch" && !this.element.contains(document.activeElement)) onRow(event);
    });
    rows.addEventListener("focusin", onRow);
  }

  /** @param {Element | null} row */
  moveTo_(row) {
    if (!(row instanceof HTMLElement) || row === this.row_) return;
    this.row_ = row;
    row.querySelector(".stack")?.append(this.element);
  }
}
