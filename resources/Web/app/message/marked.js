import { element } from "../page/elements.js";

/**
 * A piece of a text as what enters the page: the ranges to mark stand in `mark` elements.
 * @param {string} text
 * @param {readonly (readonly [number, number])[]} ranges of the whole text, ascending and apart
 * @param {number} [offset] where in the whole text this piece begins
 * @returns {(string | HTMLElement)[]}
 */
export function marked(text, ranges, offset = 0) {
  if (ranges.length === 0) return [text];
  /** @type {(string | HTMLElement)[]} */
  const nodes = [];
  let done = 0;
  for (const [start, end] of ranges) {
    const from = Math.max(start - offset, done);
    const to = Math.min(end - offset, text.length);
    if (from >= to) continue;
    if (from > done) nodes.push(text.slice(done, from));
    nodes.push(element("mark", "", text.slice(from, to)));
    done = to;
  }
  if (done < text.length) nodes.push(text.slice(done));
  return nodes;
}
