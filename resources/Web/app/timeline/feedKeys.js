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
