import assert from "node:assert/strict";
import { test } from "node:test";
import { inSlices, yieldTurn } from "../../../resources/Web/app/work/slices.js";

/** Keeps the thread busy. @param {number} milliseconds */
function toil(milliseconds) {
  const end = performance.now() + milliseconds;
  while (performance.now() < end);
}

for (const count of [0, 1, 255, 256, 257, 100_000]) {
  test(`the ranges of ${count} are consecutive and complete`, async () => {
    let next = 0;
    const isComplete = await inSlices(count, (first, end) => {
      assert.equal(first, next);
      assert.ok(end > first && end <= count);
      next = end;
    });
    assert.equal(next, count);
    assert.equal(isComplete, true);
  });
}

for (const cost of [0.001, 0.1, 0.9]) {
  test(`others have their turn between two slices where one item takes ${cost} ms`, async (context) => {
    let clock = 0;
    context.mock.method(performance, "now", () => clock);
    let began = 0;
    const slices = /** @type {number[]} */ ([]);
    const count = 200 / cost;
    await inSlices(count, (first, end) => {
      // What is promised comes to pass only when the slice has let go of the thread.
      Promise.resolve().then(() => {
        if (clock > began) slices.push(clock - began);
        began = clock;
      });
      clock += (end - first) * cost;
    });
    assert.ok(Math.abs(slices.reduce((sum, slice) => sum + slice, 0) - 200) < 1);
    // The first range is long before anything is known of the items.
    assert.ok(slices[0] <= Math.max(15, 256 * cost), slices.join());
    assert.ok(slices.slice(1).every((slice) => slice < 15), slices.join());
  });
}

test("an aborted signal stops between two ranges", async () => {
  const controller = new AbortController();
  let done = 0;
  const isComplete = await inSlices(1_000_000, (first, end) => {
    toil(11);
    done = end;
    controller.abort();
  }, controller.signal);
  assert.equal(isComplete, false);
  assert.ok(done < 1_000_000);
});

test("an abort from outside is heard", async () => {
  const controller = new AbortController();
  setTimeout(() => controller.abort(), 20);
  assert.equal(await inSlices(10_000_000, () => toil(1), controller.signal), false);
});

test("a signal that was aborted before is never told as completion", async () => {
  const controller = new AbortController();
  controller.abort();
  assert.equal(await inSlices(10, () => {}, controller.signal), false);
});

test("an error of the work rejects", async () => {
  await assert.rejects(inSlices(10, () => { throw new RangeError("no"); }), RangeError);
});

test("a turn is given back", async () => {
  let happened = false;
  setImmediate(() => { happened = true; });
  for (let turn = 0; turn < 50 && !happened; turn++) await yieldTurn();
  assert.equal(happened, true);
});
