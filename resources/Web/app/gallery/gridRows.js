// A grid of cells under month headings, reckoned in pixels without a page.

/** @typedef {import("../timeline/Calendar.js").Calendar} Calendar */
/**
 * @typedef {object} GridRow
 * @property {boolean} isHeading
 * @property {number} section which month, counted from 0
 * @property {number} first index of its first item; of a heading, of the first below it
 * @property {number} end index behind its last item; of a heading the same as `first`
 */
/** @typedef {{ columns: number, cell: number, gap: number, heading: number, foot: number }} GridSizes `gap` stands below
 * each row as well, `foot` below all */

const fewestColumns = 3;
const mostColumns = 10;

/**
 * Cells of about one size in a window of any width. In a very wide one they grow, so that a screen never holds very many.
 * @param {number} width
 * @param {number} wantedCell
 * @param {number} gap
 */
export function gridColumns(width, wantedCell, gap) {
  const columns = Math.max(fewestColumns, Math.min(mostColumns, Math.floor((width + gap) / (wantedCell + gap))));
  return { columns, cell: Math.max(1, Math.round((width - (columns - 1) * gap) / columns)) };
}

/**
 * The index of the first item of each month. Where items stand out of order a month begins anew; those without a date are
 * a month of their own.
 * @param {number} count
 * @param {(index: number) => number} timeOf
 * @param {Calendar} calendar
 */
export function monthStarts(count, timeOf, calendar) {
  /** @type {number[]} */
  const starts = [];
  let month = -1;
  let day = { start: NaN, end: NaN };
  for (let index = 0; index < count; index++) {
    const time = timeOf(index);
    // A day lies in one month, so most items are told by their day.
    if (time >= day.start && time < day.end) continue;
    day = Number.isNaN(time) ? { start: NaN, end: NaN } : calendar.dayOf(time);
    const own = calendar.monthNumber(time);
    if (index === 0 || !Object.is(own, month)) starts.push(index);
    month = own;
  }
  return Uint32Array.from(starts);
}

/** Rows are counted through all months: of each its heading, then its cells. */
export class GridRows {
  /** @param {Uint32Array} starts the first item of each month @param {number} itemCount @param {GridSizes} sizes */
  constructor(starts, itemCount, sizes) {
    this.starts = starts;
    this.itemCount = itemCount;
    this.sizes = sizes;
    /** The row of each month's heading, and behind them the count of all rows. */
    this.headingRows = new Uint32Array(starts.length + 1);
    for (let section = 0; section < starts.length; section++) {
      const rows = Math.ceil((this.endOf_(section) - starts[section]) / sizes.columns);
      this.headingRows[section + 1] = this.headingRows[section] + 1 + rows;
    }
  }

  get count() {
    return this.headingRows[this.starts.length];
  }

  get total() {
    return this.offsetOf(this.count) + this.sizes.foot;
  }

  /**
   * The height of all rows before one, which may be the count.
   * @param {number} row
   */
  offsetOf(row) {
    const { cell, gap, heading } = this.sizes;
    const headings = row >= this.count ? this.starts.length : this.sectionOfRow(row) + Number(!this.isHeading_(row));
    return headings * heading + (row - headings) * (cell + gap);
  }

  /**
   * The row at an offset; before the first row the first, behind the last the last.
   * @param {number} offset
   */
  indexAt(offset) {
    return Math.max(0, lastAtMost(this.count, (row) => this.offsetOf(row), offset));
  }

  /** @param {number} row */
  sectionOfRow(row) {
    return lastAtMost(this.starts.length, (section) => this.headingRows[section], row);
  }

  /** @param {number} row @returns {GridRow} */
  rowAt(row) {
    const section = this.sectionOfRow(row);
    const start = this.starts[section];
    if (this.isHeading_(row)) return { isHeading: true, section, first: start, end: start };
    const first = start + (row - this.headingRows[section] - 1) * this.sizes.columns;
    return { isHeading: false, section, first, end: Math.min(first + this.sizes.columns, this.endOf_(section)) };
  }

  /**
   * The row that an item stands in.
   * @param {number} item
   */
  rowOfItem(item) {
    const section = lastAtMost(this.starts.length, (index) => this.starts[index], item);
    return this.headingRows[section] + 1 + Math.floor((item - this.starts[section]) / this.sizes.columns);
  }

  /**
   * The item so many rows of cells above (negative) or below, in the same column or the last of a shorter row; at the ends
   * the item itself.
   * @param {number} item
   * @param {number} steps
   */
  itemBelow(item, steps) {
    const column = item - this.rowAt(this.rowOfItem(item)).first;
    let row = this.rowOfItem(item);
    let found = item;
    for (let left = Math.abs(steps); left > 0; left--) {
      row += Math.sign(steps);
      if (this.isHeading_(row)) row += Math.sign(steps);
      if (row < 0 || row >= this.count) break;
      const { first, end } = this.rowAt(row);
      found = Math.min(first + column, end - 1);
    }
    return found;
  }

  /** @param {number} row */
  isHeading_(row) {
    return row >= 0 && row < this.count && this.headingRows[this.sectionOfRow(row)] === row;
  }

  /** @param {number} section */
  endOf_(section) {
    return section + 1 < this.starts.length ? this.starts[section + 1] : this.itemCount;
  }
}

/**
 * The last of `count` ascending values that is at most `limit`, or -1.
 * @param {number} count
 * @param {(index: number) => number} valueAt
 * @param {number} limit
 */
function lastAtMost(count, valueAt, limit) {
  let low = 0;
  let high = count;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (valueAt(middle) <= limit) low = middle + 1;
    else high = middle;
  }
  return low - 1;
}
