import assert from "node:assert/strict";
import { test } from "node:test";
import { gridColumns, GridRows, monthStarts } from "../../../resources/Web/app/gallery/gridRows.js";
import { Calendar } from "../../../resources/Web/app/timeline/Calendar.js";
import { makeRandom } from "../support/measures.js";

const sizes = { columns: 4, cell: 100, gap: 4, heading: 48, foot: 24 };
/** Months of 5, 1 and 8 items. */
const few = () => new GridRows(Uint32Array.of(0, 5, 6), 14, sizes);

test("every item stands in one row, under the heading of its month, no row longer than the columns", () => {
  const rows = few();
  const told = Array.from({ length: rows.count }, (_, row) => rows.rowAt(row));
  assert.deepEqual(told.map(({ isHeading, section, first, end }) => [isHeading, section, first, end]), [
    [true, 0, 0, 0], [false, 0, 0, 4], [false, 0, 4, 5], [true, 1, 5, 5], [false, 1, 5, 6],
    [true, 2, 6, 6], [false, 2, 6, 10], [false, 2, 10, 14]]);
});

test("offsets are the heights before a row, and lead back to it", () => {
  const rows = few();
  let offset = 0;
  for (let row = 0; row < rows.count; row++) {
    assert.equal(rows.offsetOf(row), offset);
    assert.equal(rows.indexAt(offset), row);
    offset += rows.rowAt(row).isHeading ? 48 : 104;
    assert.equal(rows.indexAt(offset - 1), row);
  }
  assert.equal(rows.total, offset + 24);
});

for (const { offset, row } of [{ offset: -500, row: 0 }, { offset: 1e9, row: 7 }]) {
  test(`an offset of ${offset} is taken for the row at that end`, () => assert.equal(few().indexAt(offset), row));
}

test("the row of an item holds it, whatever the months are", () => {
  const random = makeRandom(7);
  for (let round = 0; round < 50; round++) {
    const starts = [0];
    while (starts.length < 20) starts.push(starts[starts.length - 1] + 1 + random(30));
    const count = starts[starts.length - 1] + 1 + random(30);
    const rows = new GridRows(Uint32Array.from(starts), count, { ...sizes, columns: 1 + random(9) });
    for (let item = 0; item < count; item++) {
      const { isHeading, first, end } = rows.rowAt(rows.rowOfItem(item));
      assert.ok(!isHeading && first <= item && item < end, `${item} in ${first} to ${end}`);
    }
  }
});

for (const { from, steps, to, name } of [
  { from: 1, steps: 1, to: 4, name: "down to the last of a shorter row" },
  { from: 4, steps: 1, to: 5, name: "down over a heading" },
  { from: 9, steps: -1, to: 5, name: "up over a heading to the last of a shorter row" },
  { from: 7, steps: 1, to: 11, name: "down in the same column" },
  { from: 2, steps: -1, to: 2, name: "up at the top stays" },
  { from: 12, steps: 3, to: 12, name: "down at the bottom stays" },
  { from: 0, steps: 9, to: 10, name: "far down to the last row" },
]) {
  test(`from item to item: ${name}`, () => assert.equal(few().itemBelow(from, steps), to));
}

test("nothing makes no rows", () => {
  const rows = new GridRows(new Uint32Array(0), 0, sizes);
  assert.equal(rows.count, 0);
  assert.equal(rows.total, 24);
  assert.equal(rows.indexAt(100), 0);
});

const dates = (/** @type {string[]} */ ...days) => days.map((day) => Date.parse(day));
for (const { name, times, starts } of [
  { name: "one month", times: dates("2024-05-01", "2024-05-31T23:59:59Z"), starts: [0] },
  { name: "the first moment of the next month", times: dates("2024-05-31T23:59:59Z", "2024-06-01T00:00:00Z"), starts: [0, 1] },
  { name: "the same month of another year", times: dates("2023-05-01", "2024-05-01"), starts: [0, 1] },
  { name: "out of order a month begins anew", times: dates("2024-05-01", "2024-04-01", "2024-05-02"), starts: [0, 1, 2] },
  { name: "those without a date together", times: [NaN, NaN, ...dates("2024-05-01"), NaN], starts: [0, 2, 3] },
  { name: "none", times: [], starts: [] },
]) {
  test(`months: ${name}`, () => {
    assert.deepEqual(Array.from(monthStarts(times.length, (index) => times[index], new Calendar("UTC"))), starts);
  });
}

for (const { width, columns } of [
  { width: 100, columns: 3 }, { width: 366, columns: 3 }, { width: 1232, columns: 7 }, { width: 3800, columns: 10 },
]) {
  test(`${width} pixels are ${columns} columns that fill them`, () => {
    const made = gridColumns(width, 152, 4);
    assert.equal(made.columns, columns);
    assert.ok(Math.abs(made.columns * made.cell + (columns - 1) * 4 - width) <= columns / 2);
  });
}
