import assert from "node:assert/strict";
import { test } from "node:test";
import { WorkQueue } from "../../../resources/Web/app/gallery/WorkQueue.js";

const turn = () => new Promise((resolve) => setTimeout(resolve));

/** A queue whose works end when they are told to. @param {number} mostAtOnce @param {(key: number) => number} [farness] */
function makeQueue(mostAtOnce, farness = () => 0) {
  const queue = new WorkQueue(mostAtOnce, farness);
  /** @type {number[]} */
  const begun = [];
  /** @type {Map<number, { signal: AbortSignal, end: () => void, fail: (error: Error) => void }>} */
  const works = new Map();
  const add = (/** @type {number} */ key) => queue.add(key, (signal) => new Promise((end, fail) => {
    begun.push(key);
    works.set(key, { signal, end, fail });
  }));
  const work = (/** @type {number} */ key) => /** @type {NonNullable<ReturnType<typeof works.get>>} */ (works.get(key));
  return { queue, begun, add, work };
}

test("no more than a few run at once, and each that ends makes room for one", async () => {
  const { add, begun, work } = makeQueue(2);
  [1, 2, 3, 4].forEach(add);
  await turn();
  assert.deepEqual(begun, [1, 2]);
  work(1).end();
  await turn();
  assert.deepEqual(begun, [1, 2, 3]);
});

test("the nearest is next, as near as it is by then", async () => {
  let eye = 5;
  const { add, begun, work } = makeQueue(1, (key) => Math.abs(key - eye));
  [1, 2, 4, 6, 9].forEach(add);
  await turn();
  eye = 10;
  work(4).end();
  await turn();
  assert.deepEqual(begun, [4, 9]);
});

test("a work that fails does not hold up the next", async () => {
  const { add, begun, work } = makeQueue(1);
  [1, 2].forEach(add);
  await turn();
  work(1).fail(new Error("broken"));
  await turn();
  assert.deepEqual(begun, [1, 2]);
});

test("a dropped work that waits never begins", async () => {
  const { queue, add, begun, work } = makeQueue(1);
  [1, 2, 3].forEach(add);
  await turn();
  queue.drop(2);
  work(1).end();
  await turn();
  assert.deepEqual(begun, [1, 3]);
});

test("a dropped work that runs is told, and its place is free at once", async () => {
  const { queue, add, begun, work } = makeQueue(1);
  [1, 2, 3].forEach(add);
  await turn();
  queue.drop(1);
  await turn();
  assert.equal(work(1).signal.aborted, true);
  assert.deepEqual(begun, [1, 2]);
  work(1).end();
  await turn();
  assert.deepEqual(begun, [1, 2], "its end makes no second place");
});

test("a cleared queue begins nothing more and tells all that run", async () => {
  const { queue, add, begun, work } = makeQueue(2);
  [1, 2, 3, 4].forEach(add);
  await turn();
  queue.clear();
  await turn();
  assert.deepEqual(begun, [1, 2]);
  assert.ok(work(1).signal.aborted && work(2).signal.aborted);
});

test("what is added again under one name takes the place of the first", async () => {
  const { add, begun, work } = makeQueue(1);
  add(1);
  await turn();
  const first = work(1);
  add(1);
  await turn();
  assert.equal(first.signal.aborted, true);
  assert.equal(work(1).signal.aborted, false);
  assert.deepEqual(begun, [1, 1]);
});
