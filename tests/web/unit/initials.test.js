import assert from "node:assert/strict";
import { test } from "node:test";
import { toneOf } from "../../../resources/Web/app/people/People.js";
import { initialsOf } from "../../../resources/Web/app/text/initials.js";

const cases = {
  "Mia Okafor": "MO", "mia": "M", "+1 555 0142": "", "Ana de la Cruz": "AC", "": "", "   ": "", "𝒜b": "𝒜",
  "(Work) Mia": "M", "mia@example.org": "M", "Éva ömer": "ÉÖ", "山田 太郎": "山太", "🎉 Party": "P", "\uD800 x": "X",
  "<b>Mia</b>": "",
};
for (const [name, initials] of Object.entries(cases)) {
  test(`initials of ${JSON.stringify(name)}`, () => assert.equal(initialsOf(name), initials));
}

test("a person has the same tone in every album", () => {
  assert.equal(toneOf("participant-+15550142"), toneOf("participant-+15550142"));
  for (const id of ["", "a", "🎉", "\uD800", "x".repeat(100_000)]) assert.ok([0, 1, 2, 3, 4, 5].includes(toneOf(id)), id.slice(0, 5));
});
