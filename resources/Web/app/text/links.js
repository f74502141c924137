// Web addresses in a text.

// Bidi controls end a link, so that its words cannot be made to read as another address.
const linkStart = /https?:\/\/[^\s<>"\uFFFC\u061C\u200E\u200F\u202A-\u202E\u2066-\u2069]+/giu;
const closingBrackets = new Map([[")", "("], ["]", "["], ["}", "{"]]);
const openingBrackets = new Set(closingBrackets.values());

/**
 * Leaves behind what belongs to the sentence: its full stop, and a bracket that was opened before the link.
 * @param {string} link
 */
function withoutSentenceEnd(link) {
  /** @type {Map<string, number>} How many more of each kind of bracket are opened than closed. */
  const opened = new Map();
  for (const character of link) addBracket(opened, character, 1);
  let end = link.length;
  while (end > 0) {
    const last = link[end - 1];
    const opening = closingBrackets.get(last);
    const isUnopened = opening !== undefined && (opened.get(opening) ?? 0) < 0;
    if (!isUnopened && !/[.,;:!?'’”»…*]/u.test(last)) break;
    addBracket(opened, last, -1);
    end -= 1;
  }
  return link.slice(0, end);
}

/** @param {Map<string, number>} opened @param {string} character @param {number} count */
function addBracket(opened, character, count) {
  const opening = closingBrackets.get(character);
  if (opening !== undefined) opened.set(opening, (opened.get(opening) ?? 0) - count);
  else if (openingBrackets.has(character)) opened.set(character, (opened.get(character) ?? 0) + count);
}

/** The longest link worth making: browsers take no longer address, and the sentence's end is sought in no longer text. */
const longestLink = 2_000;

/** @param {string} text @returns {string | undefined} */
function webAddress(text) {
  try {
    const url = new URL(text);
    return (url.protocol === "http:" || url.protocol === "https:") && url.hostname !== "" ? url.href : undefined;
  } catch {
    return undefined;
  }
}

/**
 * A text cut into plain pieces and links; joined again the pieces are the text. Only http and https make a link.
 * @param {string} text
 * @returns {{ text: string, href?: string }[]}
 */
export function splitLinks(text) {
  /** @type {{ text: string, href?: string }[]} */
  const pieces = [];
  let done = 0;
  for (const { 0: found, index = 0 } of text.matchAll(linkStart)) {
    if (found.length > longestLink) continue;
    const link = withoutSentenceEnd(found);
    const href = webAddress(link);
    if (href === undefined) continue;
    if (index > done) pieces.push({ text: text.slice(done, index) });
    pieces.push({ text: link, href });
    done = index + link.length;
  }
  if (done < text.length) pieces.push({ text: text.slice(done) });
  return pieces;
}
