import { cutText } from "../text/messageText.js";
import { fold, rangesOf } from "./fold.js";

const longest = 200;
/** So much of what stands before a hit is shown, less where a word begins later. */
const before = 36;
/** A word longer than the rest of it is cut. */
const leastBefore = 12;

/**
 * The one of several texts in which most terms occur, the first among equals; empty without any.
 * @param {readonly string[]} texts
 * @param {readonly string[]} terms
 */
export function textWithMost(texts, terms) {
  let best = texts[0] ?? "";
  let most = 0;
  for (const text of terms.length > 0 && texts.length > 1 ? texts : []) {
    const folded = fold(text);
    const count = terms.filter((term) => folded.includes(term)).length;
    if (count > most) [best, most] = [text, count];
  }
  return best;
}

/**
 * A line or two of a text around the first hit in it.
 * @param {string} text
 * @param {readonly string[]} terms folded
 */
export function snippetOf(text, terms) {
  const words = text.replace(/[\s\uFFFC]+/gu, " ").trim();
  const hit = rangesOf(words, terms, 1)[0]?.[0] ?? 0;
  const start = hit > before ? startBefore(words, hit) : 0;
  const shown = cutText(words.slice(start, start + longest + 1), Math.min(longest, words.length - start));
  return `${start > 0 ? "…" : ""}${shown}${start + shown.length < words.length ? "…" : ""}`;
}

/** @param {string} text @param {number} hit */
function startBefore(text, hit) {
  const blank = text.indexOf(" ", hit - before);
  if (blank >= 0 && blank < hit - leastBefore) return blank + 1;
  const code = text.charCodeAt(hit - leastBefore);
  return code >= 0xdc00 && code <= 0xdfff ? hit - leastBefore - 1 : hit - leastBefore;
}
