import { element } from "./elements.js";
import { iconButton } from "./iconButton.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */

let dialogCount = 0;

/** One press of an arrow key, in pixels, and of a key for pages, in heights of what is scrolled. */
const lineStep = 40;
const pageShare = 0.875;

/**
 * A modal dialog with a title, a way out and an empty body. Escape, the close button and a press beside it close it; the
 * browser gives the focus back to where it was. Keys scroll the body also from the dialog's head. It is not yet part of the page.
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
  dialog.addEventListener("keydown", (event) => scrollByKey(body, event));
  return { dialog, head, body };
}

/** @param {HTMLElement} body @param {KeyboardEvent} event */
function scrollByKey(body, event) {
  const { altKey, ctrlKey, defaultPrevented, key, metaKey, shiftKey, target } = event;
  if (defaultPrevented || altKey || ctrlKey || metaKey || shiftKey || (target instanceof Node && body.contains(target))) return;
  const page = body.clientHeight * pageShare;
  /** @type {{ readonly [key: string]: number | undefined }} */
  const ways = { ArrowUp: -lineStep, ArrowDown: lineStep, PageUp: -page, PageDown: page, Home: -body.scrollHeight, End: body.scrollHeight };
  const way = ways[key];
  if (way === undefined) return;
  event.preventDefault();
  body.scrollBy(0, way);
}

/**
 * Shows a dialog over the page, which holds it from the first time on.
 * @param {HTMLDialogElement} dialog
 */
export function openDialog(dialog) {
  if (!dialog.isConnected) document.body.append(dialog);
  if (dialog.open) return;
  dialog.showModal();
  dialog.addEventListener("close", holdPage);
  holdPage();
}

/** Under a dialog the page does not scroll; where it has a scroll bar it keeps the room for it. */
function holdPage() {
  const { classList, clientWidth } = document.documentElement;
  const isCovered = document.querySelector("dialog[open]") !== null;
  if (isCovered === classList.contains("is-covered")) return;
  classList.toggle("has-scroll-bar", isCovered && window.innerWidth > clientWidth);
  classList.toggle("is-covered", isCovered);
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
