import assert from "node:assert/strict";
import { test } from "node:test";
import { RecentMap } from "../../../resources/Web/app/gallery/RecentMap.js";

/** @returns {RecentMap<string, number>} */
const makeMap = () => new RecentMap(10, (value) => value);

test("what was unused for longest goes when all weigh too much", () => {
  const map = makeMap();
  map.set("a", 4);
  map.set("b", 4);
  map.get("a");
  map.set("c", 4);
  assert.deepEqual(["a", "b", "c"].map((key) => map.get(key)), [4, undefined, 4]);
  assert.equal(map.weight, 8);
});

test("a value set again weighs once", () => {
  const map = makeMap();
  for (let round = 0; round < 5; round++) map.set("a", 6);
  assert.deepEqual([map.weight, map.size], [6, 1]);
});

test("what alone weighs too much is not held", () => {
  const map = makeMap();
  map.set("a", 11);
  assert.deepEqual([map.weight, map.size], [0, 0]);
});

test("deleting and clearing take the weight with them", () => {
  const map = makeMap();
  map.set("a", 3);
  map.set("b", 3);
  map.delete("a");
  map.delete("a");
  assert.equal(map.weight, 3);
  map.clear();
  assert.deepEqual([map.weight, map.size], [0, 0]);
});
