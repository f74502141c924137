import { endsGroup, startsDay, startsGroup } from "./marks.js";

/**
 * @typedef {object} RowFeatures
 * @property {number} textLength in UTF-16 units
 * @property {boolean} hasReply
 * @property {boolean} hasReactions
 * @property {boolean} hasChange it was edited or unsent
 * @property {number} pictures
 * @property {number} files
 * @property {number} marks bits of marks.js
 */

/**
 * A first estimate of a row's height in pixels, close enough that the scroll bar does not jump when the row is measured.
 * @param {RowFeatures} row
 * @param {number} charactersPerLine
 */
export function estimateHeight(row, charactersPerLine) {
  const lines = Math.ceil(row.textLength / charactersPerLine);
  let height = 2 + row.pictures * 240 + row.files * 80;
  if (lines > 0) height += 14 + lines * 22;
  else if (row.pictures + row.files === 0) height += 36;
  if (row.hasReply) height += 58;
  if (row.hasReactions) height += 22;
  if (row.marks & startsGroup) height += 6;
  if (row.hasChange || row.marks & endsGroup) height += 24;
  if (row.marks & startsDay) height += 56;
  return height;
}
