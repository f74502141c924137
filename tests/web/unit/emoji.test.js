import assert from "node:assert/strict";
import { test } from "node:test";
import { isFewEmoji } from "../../../resources/Web/app/text/emoji.js";
import { timeTaken } from "../support/measures.js";

const cases = {
  "🎉": true, "🎉🎉🎉": true, "🎉🎉🎉🎉": false, "🎉 🎉": true, "\n🎉 ": true, "❤️": true, "👍🏽": true, "👩‍👩‍👧‍👦": true,
  "🏳️‍🌈": true, "🇳🇵": true, "🇳🇵🇩🇪🇯🇵": true, "🇳": false,
  "🏴\u{E0067}\u{E0062}\u{E0073}\u{E0063}\u{E0074}\u{E007F}": true, "1️⃣": true, "1": false,
  "12": false, "©": false, "a🎉": false,
  "🎉!": false, "": false, " ": false, "#": false, "\u200D": false, "\uFE0F": false, "\uD83C": false,
};
for (const [text, isFew] of Object.entries(cases)) {
  test(`${JSON.stringify(text)} is ${isFew ? "" : "not "}of emoji alone`, () => assert.equal(isFewEmoji(text), isFew));
}

test("no text takes long to be told", () => {
  const texts = ["🎉 ".repeat(1e5), `${" ".repeat(119)}x`, `${"👩\u200D".repeat(39)}x`, `🏴${"\u{E0067}".repeat(58)}!`,
    `🎉${" ".repeat(117)}x`, `${"🇳".repeat(59)}x`];
  for (const text of texts) assert.ok(timeTaken(() => assert.equal(isFewEmoji(text), false)) < 200, JSON.stringify(text.slice(0, 20)));
});
