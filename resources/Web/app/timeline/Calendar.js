// Days and months in the reader's time zone or in UTC.

/** @typedef {import("../words/Formats.js").Zone} Zone */
/** @typedef {{ start: number, end: number }} TimeRange milliseconds since 1970; the end is the first moment behind it */

const dayLength = 86_400_000;
const datePattern = /^(\d{4,6})(?:-(\d{1,2})(?:-(\d{1,2}))?)?$/;

/** Answers for one zone. Times are milliseconds since 1970; NaN stands for no date. */
export class Calendar {
  /** @param {Zone} zone */
  constructor(zone) {
    this.zone = zone;
  }

  /**
   * The first moment of a day; the month counts from 0, and what lies beyond its month runs on into the next. NaN
   * beyond what a Date can hold.
   * @param {number} year
   * @param {number} month
   * @param {number} day
   */
  startOfDay(year, month, day) {
    const date = new Date(0);
    if (this.zone === "UTC") return date.setUTCFullYear(year, month, day);
    date.setHours(0, 0, 0, 0);
    date.setFullYear(year, month, day);
    return date.setHours(0, 0, 0, 0);
  }

  /**
   * Year, month from 0, and day.
   * @param {number} time
   */
  partsOf(time) {
    const date = new Date(time);
    return this.zone === "UTC"
      ? { year: date.getUTCFullYear(), month: date.getUTCMonth(), day: date.getUTCDate() }
      : { year: date.getFullYear(), month: date.getMonth(), day: date.getDate() };
  }

  /**
   * The day that holds a moment; no range holds NaN.
   * @param {number} time
   * @returns {TimeRange}
   */
  dayOf(time) {
    if (this.zone === "UTC") {
      const start = Math.floor(time / dayLength) * dayLength;
      return { start, end: start + dayLength };
    }
    if (Number.isNaN(time)) return { start: NaN, end: NaN };
    const { year, month, day } = this.partsOf(time);
    const start = this.startOfDay(year, month, day);
    const end = this.startOfDay(year, month, day + 1);
    // At the ends of what a Date can hold a day may have no first or no last moment.
    return { start: Number.isNaN(start) ? -Infinity : start, end: Number.isNaN(end) ? Infinity : end };
  }

  /**
   * One number for each month, ascending with time; NaN for NaN.
   * @param {number} time
   */
  monthNumber(time) {
    const { year, month } = this.partsOf(time);
    return year * 12 + month;
  }

  /**
   * The day, month or year that a text like 2024-05-01, 2024-05 or 2024 names; nothing for another text or a day that does
   * not exist.
   * @param {string} text
   * @returns {TimeRange | undefined}
   */
  rangeOf(text) {
    const match = datePattern.exec(text);
    if (!match) return undefined;
    const [year, month, day] = [Number(match[1]), match[2] ? Number(match[2]) - 1 : 0, match[3] ? Number(match[3]) : 1];
    const start = this.startOfDay(year, month, day);
    const found = this.partsOf(start);
    if (found.year !== year || found.month !== month || found.day !== day) return undefined;
    if (match[3]) return this.dayOf(start);
    const end = match[2] ? this.startOfDay(year, month + 1, 1) : this.startOfDay(year + 1, 0, 1);
    return { start, end: Number.isNaN(end) ? Infinity : end };
  }

  /**
   * The day of a moment in the form of a date field, as in 2024-05-01; empty for NaN.
   * @param {number} time
   */
  fieldText(time) {
    if (Number.isNaN(time)) return "";
    const { year, month, day } = this.partsOf(time);
    const two = (/** @type {number} */ number) => String(number).padStart(2, "0");
    return `${String(year).padStart(4, "0")}-${two(month + 1)}-${two(day)}`;
  }
}
