import { element } from "./elements.js";
import { iconButton } from "./iconButton.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */

let dialogCount = 0;

/**
 * A modal dialog with a title, a way out and an empty body. Escape, the close button and a press beside it close it; the
 * browser gives the focus back to where it was. It is not yet part of the page.
 * @param {Speech} speech
 * @param {string} className
 * @param {string} title
 */
export function makeDialog(speech, className, title) {
  const dialog = element("dialog", `dialog ${className}`);
  const heading = element("h2", "dialog-title", title);
  dialogCount += 1;
  heading.id = `dialog-title-${dialogCount}`;
  dialog.setAttribute("aria-labelledby", heading.id);
  const close = iconButton(speech, "close", "close", () => dialog.close());
  const head = element("header", "dialog-head");
  head.append(heading, close);
  const body = element("div", "dialog-body");
  dialog.append(head, body);
  dialog.addEventListener("click", (event) => {
    if (event.target === dialog) dialog.close();
  });
  return { dialog, head, body };
}

/**
 * Shows a dialog over the page, which holds it from the first time on.
 * @param {HTMLDialogElement} dialog
 */
export function openDialog(dialog) {
  if (!dialog.isConnected) document.body.append(dialog);
  if (!dialog.open) dialog.showModal();
}

/**
 * Calls `work` when a dialog has been closed. Browsers tell of it late: one that has been opened again by then is not closed.
 * @param {HTMLDialogElement} dialog
 * @param {() => void} work
 */
export function whenClosed(dialog, work) {
  dialog.addEventListener("close", () => {
    if (!dialog.open) work();
  });
}

/** Closes what lies over the page, and returns whether there was something. */
export function closeDialogs() {
  const open = document.querySelectorAll("dialog[open]");
  for (const dialog of open) if (dialog instanceof HTMLDialogElement) dialog.close();
  return open.length > 0;
}
