import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Conversation } from "../../../resources/Web/app/records/Conversation.js";
import { Calendar } from "../../../resources/Web/app/timeline/Calendar.js";
import { endsGroup, startsDay, startsGroup } from "../../../resources/Web/app/timeline/marks.js";
import { TimelineIndex } from "../../../resources/Web/app/timeline/TimelineIndex.js";
import { makeRandom, timeTaken } from "../support/measures.js";

/** @param {(readonly [number, string])[]} rows a time and a sender each */
function indexOf(rows, zone = "local", step = rows.length || 1) {
  const messages = rows.map(([time, senderID]) => ({
    senderID, date: Number.isNaN(time) ? "no date" : new Date(time).toISOString().replace(/^\+0*/, ""),
  }));
  const index = new TimelineIndex(new Conversation({ messages }), new Calendar(zone));
  for (let first = 0; first < rows.length; first += step) index.add(first, Math.min(first + step, rows.length));
  if (rows.length === 0) index.add(0, 0);
  return index;
}

const at = (...parts) => new Date(...parts).getTime();

describe("marks", () => {
  const day = startsDay;
  const first = startsGroup;
  const last = endsGroup;
  const cases = {
    "no message": [[], []],
    "one message": [[[at(2026, 4, 1, 9), "a"]], [day | first | last]],
    "a run of one sender": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 1), "a"], [at(2026, 4, 1, 9, 2), "a"]],
      [day | first, 0, last]],
    "a change of sender": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 1), "b"]], [day | first | last, first | last]],
    "a pause of ten minutes": [[[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 10), "a"]], [day | first, last]],
    "a long pause": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 11), "a"]], [day | first | last, first | last]],
    "a long way back in time": [
      [[at(2026, 4, 1, 9, 11), "a"], [at(2026, 4, 1, 9, 0), "a"]], [day | first | last, first | last]],
    "midnight between two minutes": [
      [[at(2026, 4, 1, 23, 59), "a"], [at(2026, 4, 2, 0, 0), "a"]], [day | first | last, day | first | last]],
    "the same day of another month": [
      [[at(2026, 4, 1, 9), "a"], [at(2026, 5, 1, 9), "b"]], [day | first | last, day | first | last]],
    "the same day of another year": [
      [[at(2026, 4, 1, 9), "a"], [at(2027, 4, 1, 9), "b"]], [day | first | last, day | first | last]],
    "messages without dates": [[[NaN, "a"], [NaN, "a"]], [day | first, last]],
    "a date behind none": [[[NaN, "a"], [at(2026, 4, 1, 9), "a"]], [day | first | last, day | first | last]],
    "a day again behind another": [
      [[at(2026, 4, 1, 9), "a"], [at(2026, 4, 2, 9), "a"], [at(2026, 4, 1, 9), "a"]],
      [day | first | last, day | first | last, day | first | last]],
    "no date between two of one day": [
      [[at(2026, 4, 1, 9), "a"], [NaN, "a"], [at(2026, 4, 1, 9), "a"]],
      [day | first | last, day | first | last, day | first | last]],
  };
  for (const [name, [rows, marks]] of Object.entries(cases)) {
    test(name, () => assert.deepEqual(Array.from(indexOf(rows).marks), marks));
    test(`${name}, added one at a time`, () => assert.deepEqual(Array.from(indexOf(rows, "local", 1).marks), marks));
  }

  test("a reader in UTC has other days", () => {
    const rows = [[Date.UTC(2026, 4, 1, 23, 59), "a"], [Date.UTC(2026, 4, 2, 0, 0), "a"]];
    assert.deepEqual(Array.from(indexOf(rows, "UTC").marks), [day | first | last, day | first | last]);
  });
});

describe("months", () => {
  const told = (index) => index.months.map(({ time, first, count }) => [new Date(time).toISOString().slice(0, 10), first, count]);

  test("are none where there are no dates", () => {
    assert.deepEqual(indexOf([]).months, []);
    assert.deepEqual(indexOf([[NaN, "a"], [NaN, "b"]]).months, []);
  });
  test("ascend, with their first message and how many there are", () => {
    const rows = [[Date.UTC(2026, 0, 31), "a"], [Date.UTC(2026, 1, 1), "a"], [Date.UTC(2026, 1, 2), "a"], [Date.UTC(2027, 0, 1), "a"]];
    assert.deepEqual(told(indexOf(rows, "UTC")), [["2026-01-31", 0, 1], ["2026-02-01", 1, 2], ["2027-01-01", 3, 1]]);
  });
  test("stand once each where messages stand out of order", () => {
    const rows = [[Date.UTC(2026, 4, 9), "a"], [Date.UTC(2026, 3, 1), "a"], [NaN, "a"], [Date.UTC(2026, 4, 2), "a"]];
    assert.deepEqual(told(indexOf(rows, "UTC")), [["2026-04-01", 1, 1], ["2026-05-02", 3, 2]]);
  });
  test("are the same in whatever steps the messages are added", () => {
    const random = makeRandom(3);
    const rows = Array.from({ length: 500 }, () => [random(20) ? random(1_000_000) * 3_600_000 : NaN, `p${random(3)}`]);
    const whole = indexOf(rows, "UTC");
    for (const step of [1, 7, 256]) assert.deepEqual(told(indexOf(rows, "UTC", step)), told(whole));
    assert.equal(whole.months.reduce((sum, { count }) => sum + count, 0), rows.filter(([time]) => !Number.isNaN(time)).length);
  });
});

describe("indexAtOrAfter", () => {
  const cases = [
    ["no message", [], 5, undefined],
    ["no dates", [NaN, NaN], 5, undefined],
    ["the very moment", [10, 20, 30], 20, 1],
    ["between two", [10, 20, 30], 11, 1],
    ["before all", [10, 20, 30], -100, 0],
    ["behind all: the latest", [10, 30, 20], 31, 1],
    ["out of order: the earliest behind it", [50, NaN, 20, 30], 15, 2],
    ["two at one moment: the first", [20, 20], 20, 0],
  ];
  for (const [name, times, time, index] of cases) {
    test(name, () => assert.equal(indexOf(times.map((one) => [one * 1000, "a"])).indexAtOrAfter(time * 1000), index));
  }
});

test("half a million messages are soon added", () => {
  const messages = Array.from({ length: 500_000 }, (_, index) => ({
    senderID: `p${index % 3}`, date: new Date(1.2e12 + index * 600_000).toISOString(),
  }));
  const index = new TimelineIndex(new Conversation({ messages }), new Calendar("local"));
  const time = timeTaken(() => index.add(0, messages.length));
  assert.ok(time < 3000, `${time} ms`);
  assert.ok(timeTaken(() => index.indexAtOrAfter(1.3e12)) < 100);
});
