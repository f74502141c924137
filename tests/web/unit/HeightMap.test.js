import assert from "node:assert/strict";
import { test } from "node:test";
import { HeightMap } from "../../../resources/Web/app/timeline/HeightMap.js";
import { makeRandom, timeTaken } from "../support/measures.js";

test("of no rows has no height", () => {
  const map = new HeightMap(new Float32Array(0));
  assert.equal(map.total, 0);
  assert.equal(map.indexAt(100), 0);
});

test("finds the row at each edge", () => {
  const map = new HeightMap(Float32Array.of(10, 20, 30, 40));
  const cases = [[-5, 0], [0, 0], [9.9, 0], [10, 1], [29, 1], [30, 2], [59, 2], [60, 3], [99, 3], [100, 3], [1e9, 3]];
  for (const [offset, index] of cases) assert.equal(map.indexAt(offset), index, `offset ${offset}`);
});

test("tells whether a height was news", () => {
  const map = new HeightMap(Float32Array.of(10, 10));
  assert.equal(map.setHeight(1, 10), false);
  assert.equal(map.setHeight(1, 11), true);
  assert.equal(map.total, 21);
});

for (const count of [1, 2, 3, 7, 8, 9, 64, 100, 1000]) {
  test(`agrees with plain sums of ${count} rows after many changes`, () => {
    const random = makeRandom(count);
    const plain = Array.from({ length: count }, () => 1 + random(200));
    const map = new HeightMap(Float32Array.from(plain));
    for (let change = 0; change < 200; change++) {
      const index = random(count);
      plain[index] = 1 + random(200);
      map.setHeight(index, plain[index]);
    }
    let sum = 0;
    plain.forEach((height, index) => {
      assert.equal(map.offsetOf(index), sum);
      assert.equal(map.indexAt(sum), index);
      assert.equal(map.indexAt(sum + height - 0.5), index);
      sum += height;
    });
    assert.equal(map.total, sum);
  });
}

test("of 500,000 rows answers fast", () => {
  const map = new HeightMap(new Float32Array(500_000).fill(60));
  const time = timeTaken(() => {
    for (let step = 0; step < 100_000; step++) {
      map.setHeight((step * 7919) % 500_000, 50 + (step % 40));
      map.indexAt(step * 300);
    }
  });
  assert.ok(time < 2000, `${time} ms`);
});
