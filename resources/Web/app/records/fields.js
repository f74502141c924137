// Fields of the record in the data file. It may be old, new or damaged, so every field is looked at before it is believed.

/** @typedef {{ readonly [key: string]: unknown }} RawRecord */

/** @param {unknown} value @returns {RawRecord} */
export function recordOf(value) {
  return typeof value === "object" && value !== null ? /** @type {RawRecord} */ (value) : {};
}

/** @param {unknown} value @returns {readonly unknown[]} */
export function listOf(value) {
  return Array.isArray(value) ? value : [];
}

/** @param {unknown} value @returns {string | undefined} */
export function textOf(value) {
  return typeof value === "string" ? value : undefined;
}

/**
 * Identifiers are texts, but one that came as a number still names what it names.
 * @param {unknown} value
 */
export function identifierOf(value) {
  return typeof value === "number" ? String(value) : textOf(value);
}

const isoDate = /^([+-]?\d{4,9})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(?:\.\d+)?Z$/;

/**
 * Milliseconds since 1970 of an ISO 8601 date, NaN when it cannot be read or lies beyond what a Date can hold. Years of five
 * digits stand in the file without a sign, which Date.parse refuses.
 * @param {unknown} value
 */
export function timeOf(value) {
  if (typeof value !== "string") return NaN;
  const time = Date.parse(value);
  if (!Number.isNaN(time)) return time;
  const match = isoDate.exec(value);
  if (!match) return NaN;
  const [year, month, day, hour, minute, second] = match.slice(1).map(Number);
  const date = new Date(0);
  date.setUTCFullYear(year, month - 1, day);
  return date.setUTCHours(hour, minute, second);
}
