import assert from "node:assert/strict";
import test from "node:test";
import { allIndices, countWithin, extentOf, indicesWithin } from "../../../resources/Web/app/print/printRange.js";

const times = Float64Array.of(30, NaN, 10, 20, 20, 40);

test("a stretch holds its first moment and not the first behind it, in the conversation's order", () => {
  assert.deepEqual(Array.from(indicesWithin(times, 20, 40)), [0, 3, 4]);
  assert.equal(countWithin(times, 20, 40), 3);
});

test("without bounds it holds all that have a date", () => {
  assert.deepEqual(Array.from(indicesWithin(times, -Infinity, Infinity)), [0, 2, 3, 4, 5]);
});

test("a stretch that ends before it begins is empty", () => {
  assert.deepEqual(Array.from(indicesWithin(times, 40, 10)), []);
});

test("the extent passes over what has no date", () => {
  assert.deepEqual(extentOf(times, Int32Array.of(1, 0, 2, 3)), { first: 10, last: 30 });
  assert.deepEqual(extentOf(times, Int32Array.of(1)), { first: NaN, last: NaN });
});

test("the whole is every message once", () => {
  assert.deepEqual(Array.from(allIndices(3)), [0, 1, 2]);
});
