import assert from "node:assert/strict";
import { test } from "node:test";
import { panned, wholeView, zoomed } from "../../../resources/Web/app/gallery/zoom.js";
import { makeRandom } from "../support/measures.js";

const stage = { width: 800, height: 600 };
const fitted = { width: 800, height: 400 };

test("what is at the point stays there", () => {
  const view = zoomed(wholeView, 3, { x: 200, y: 30 }, fitted, stage);
  assert.equal(view.scale, 3);
  assert.deepEqual([(200 - view.x) / 3, (30 - view.y) / 3], [200, 30]);
});

test("a picture that still fits in its height stays in the middle there", () => {
  assert.equal(zoomed(wholeView, 1.4, { x: 0, y: 150 }, fitted, stage).y, 0);
});

for (const { factor, scale } of [{ factor: 0, scale: 1 }, { factor: 0.1, scale: 1 }, { factor: 100, scale: 8 }]) {
  test(`a factor of ${factor} ends at ${scale}`, () => assert.equal(zoomed(wholeView, factor, { x: 9, y: 9 }, fitted, stage).scale, scale));
}

test("the whole picture again lies in the middle", () => {
  const near = zoomed(wholeView, 4, { x: 350, y: -150 }, fitted, stage);
  assert.deepEqual(zoomed(near, 0.01, { x: -300, y: 100 }, fitted, stage), { scale: 1, x: 0, y: 0 });
});

test("no way of moving brings an edge inside the window", () => {
  const random = makeRandom(3);
  let view = zoomed(wholeView, 3, { x: 0, y: 0 }, fitted, stage);
  for (let round = 0; round < 500; round++) {
    view = random(4) === 0
      ? zoomed(view, 0.5 + random(100) / 50, { x: random(800) - 400, y: random(600) - 300 }, fitted, stage)
      : panned(view, random(900) - 450, random(900) - 450, fitted, stage);
    const room = Math.max(0, (fitted.width * view.scale - stage.width) / 2);
    assert.ok(Math.abs(view.x) <= room + 1e-9 && view.scale >= 1 && view.scale <= 8);
  }
});
