// The text of a message and its pieces.

/** Unicode's object replacement character: it stands in a text where an attachment stood. */
export const attachmentMark = "\uFFFC";

/**
 * A text without the blank lines before and behind it. Its first line keeps its indent, as every other does.
 * @param {string} text
 */
function withoutBlankLines(text) {
  const start = text.search(/^.*?\S/m);
  return start < 0 ? "" : text.slice(start).trimEnd();
}

/**
 * What follows a mark, without the one blank that parts it from words on the same line.
 * @param {string} text
 */
function withoutParting(text) {
  return text.replace(/^ (?=\S)/, "");
}

/**
 * The text as it is shown: without the marks of attachments, and without the blank lines that stood only round them.
 * @param {string} text
 */
export function shownText(text) {
  if (!text.includes(attachmentMark)) return text;
  const words = text.split(attachmentMark).join("");
  return withoutBlankLines(text.startsWith(attachmentMark) ? withoutParting(words) : words);
}

/**
 * The pieces of a message in their order: its text, cut where its attachments stood. Without one mark for each attachment
 * their places are not known, and they follow the whole text.
 * @template Item
 * @param {string} text
 * @param {readonly Item[]} attachments
 * @returns {({ text: string } | { attachment: Item })[]}
 */
export function piecesOf(text, attachments) {
  const cuts = text.split(attachmentMark);
  const isPlaced = attachments.length > 0 && cuts.length === attachments.length + 1;
  const texts = isPlaced
    ? cuts.map((cut, index) => withoutBlankLines(index > 0 ? withoutParting(cut) : cut)) : [shownText(text)];
  /** @type {({ text: string } | { attachment: Item })[]} */
  const pieces = [];
  for (let index = 0; index < Math.max(texts.length, attachments.length); index++) {
    if (texts[index]) pieces.push({ text: texts[index] });
    if (index < attachments.length) pieces.push({ attachment: attachments[index] });
  }
  return pieces;
}

/**
 * The beginning of a text, cut between characters.
 * @param {string} text
 * @param {number} length
 */
export function beginningOf(text, length) {
  const start = cutText(text, length * 4).replace(/\s+/gu, " ").trim();
  const characters = Array.from(start).slice(0, length).join("");
  return characters.length < start.length || text.length > length * 4 ? `${characters}…` : start;
}

/**
 * The first so many UTF-16 units of a text, less one where that would halve a character.
 * @param {string} text
 * @param {number} length
 */
export function cutText(text, length) {
  const last = text.charCodeAt(length - 1);
  return text.slice(0, last >= 0xd800 && last <= 0xdbff ? length - 1 : length);
}
