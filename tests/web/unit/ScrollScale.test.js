import assert from "node:assert/strict";
import { test } from "node:test";
import { ScrollScale, tallestLayout } from "../../../resources/Web/app/timeline/ScrollScale.js";

test("is pixel for pixel while the rows fit", () => {
  const scale = new ScrollScale(50_000, 800);
  assert.equal(scale.height, 50_000);
  assert.equal(scale.isScaled, false);
  for (const position of [0, 1, 700, 49_200]) assert.equal(scale.offsetAt(position), position);
});

test("never lays out more than browsers bear", () => {
  assert.equal(new ScrollScale(30_000_000, 800).height, tallestLayout);
  assert.ok(tallestLayout <= 7_000_000);
});

test("reaches both ends of a scaled list", () => {
  const scale = new ScrollScale(30_000_000, 800);
  assert.equal(scale.offsetAt(0), 0);
  assert.equal(scale.offsetAt(scale.lastPosition), 30_000_000 - 800);
  assert.equal(scale.offsetAt(100), 100);
  assert.equal(scale.lastOffset - scale.offsetAt(scale.lastPosition - 100), 100);
});

for (const total of [tallestLayout, tallestLayout + 1, 7_100_000, 30_000_000, 500_000_000]) {
  test(`maps back what it maps, and rises all the way, with ${total} px`, () => {
    const scale = new ScrollScale(total, 800);
    let last = -1;
    for (let position = 0; position <= scale.lastPosition; position += 9_973) {
      const offset = scale.offsetAt(position);
      assert.ok(offset > last);
      assert.ok(Math.abs(scale.positionOf(offset) - position) < 0.01);
      last = offset;
    }
    assert.ok(last <= scale.lastOffset);
  });
}

test("lets what stands above the list pass unscaled", () => {
  assert.equal(new ScrollScale(30_000_000, 800).offsetAt(-300), -300);
});

test("of a list shorter than the window stays at its beginning", () => {
  const scale = new ScrollScale(200, 800);
  assert.equal(scale.lastPosition, 0);
  assert.equal(scale.offsetAt(50), 0);
});
