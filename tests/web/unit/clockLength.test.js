import assert from "node:assert/strict";
import { test } from "node:test";
import { clockLength } from "../../../resources/Web/app/gallery/clockLength.js";

for (const { seconds, words } of [
  { seconds: 0, words: "0:00" }, { seconds: 7.4, words: "0:07" }, { seconds: 59.6, words: "1:00" },
  { seconds: 750, words: "12:30" }, { seconds: 3725, words: "1:02:05" }, { seconds: 360_000, words: "100:00:00" },
  { seconds: NaN, words: "" }, { seconds: Infinity, words: "" }, { seconds: -1, words: "" },
]) {
  test(`${seconds} seconds are “${words}”`, () => assert.equal(clockLength(seconds), words));
}
