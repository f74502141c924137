// What is wrong with where things stand in the window.

/** @typedef {import("playwright-core").Page} Page */

/**
 * What leaves the window sideways, or its own frame: one line each.
 * @param {Page} page
 * @returns {Promise<string[]>}
 */
export function layoutProblems(page) {
  return page.evaluate(() => {
    const problems = [];
    const { scrollWidth, clientWidth } = document.documentElement;
    if (scrollWidth > clientWidth) problems.push(`the page is ${scrollWidth} pixels wide in a window of ${clientWidth}`);
    const where = (/** @type {Element} */ one) =>
      `${one.className} of ${/** @type {HTMLElement | null} */ (one.closest("[data-id]"))?.dataset.id ?? "the page"}`;
    const isCut = (/** @type {Element} */ one) => {
      for (let frame = /** @type {Element | null} */ (one); frame && frame !== document.body; frame = frame.parentElement) {
        if (getComputedStyle(frame).overflowX !== "visible") return true;
      }
      return false;
    };
    const inWindow = ".bar, .cover, .cover *, .row, .part, .day, .meta, .reply, .reactions, .reaction, .sender, .notice";
    for (const one of document.querySelectorAll(inWindow)) {
      const { left, right, width } = one.getBoundingClientRect();
      const isOut = width > 0 && (left < -0.5 || right > clientWidth + 0.5);
      if (isOut && !(one.parentElement && isCut(one.parentElement))) problems.push(`${where(one)} from ${left} to ${right}`);
    }
    const framed = ".words, .subject, .tile-words, .tile-name, .reply-words, .reply-sender, .sender, .meta, .cover, .bar-title, .player-name";
    for (const one of document.querySelectorAll(framed)) {
      if (!isCut(one) && one.scrollWidth > one.clientWidth + 1 && one.clientWidth > 0) {
        problems.push(`${where(one)} holds ${one.scrollWidth} pixels in ${one.clientWidth}`);
      }
    }
    return problems;
  });
}
