/** @typedef {import("./VirtualList.js").VirtualList} VirtualList */

/**
 * Keys within the feed of messages, as screen readers expect them: Page Down and Page Up go to the next and the previous
 * message when one has the focus (ARIA Authoring Practices, feed pattern).
 * @param {HTMLElement} rows
 * @param {VirtualList} list
 * @param {(index: number) => void} focusMessage
 */
export function handleFeedKeys(rows, list, focusMessage) {
  rows.addEventListener("keydown", (event) => {
    const row = event.target instanceof Element ? event.target.closest(".row") : null;
    const step = event.key === "PageDown" ? 1 : event.key === "PageUp" ? -1 : 0;
    if (!(row instanceof HTMLElement) || step === 0 || event.ctrlKey || event.metaKey || event.altKey) return;
    const index = Number(row.dataset.index) + step;
    if (index < 0 || index >= list.count) return;
    event.preventDefault();
    focusMessage(index);
  });
}

/**
 * From elsewhere the keyboard enters the feed at the message under the eye, not at the first control of a row or of a cover that
 * is out of sight: these stand aside while the browser looks for what comes next.
 * @param {VirtualList} list
 */
export function enterAtEye(list) {
  document.addEventListener("keydown", (event) => {
    if (event.key !== "Tab" || event.defaultPrevented || document.querySelector("dialog[open]")) return;
    if (document.activeElement?.closest(".row")) return;
    const { index } = list.place;
    const others = list.shown.filter((row) => Number(row.dataset.index) !== index);
    const cover = document.querySelector(".cover");
    if (cover instanceof HTMLElement && cover.getBoundingClientRect().bottom < 0) others.push(cover);
    const row = list.row(index);
    if (row) row.tabIndex = 0;
    setAside(others, true);
    const done = new AbortController();
    const comeBack = () => {
      done.abort();
      setAside(others, false);
    };
    for (const kind of ["focusin", "keyup", "blur"]) window.addEventListener(kind, comeBack, { signal: done.signal });
  });
}

/** @param {readonly HTMLElement[]} elements @param {boolean} isAside */
function setAside(elements, isAside) {
  for (const element of elements) element.inert = isAside;
}
