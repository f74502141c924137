import assert from "node:assert/strict";
import { test } from "node:test";
import { isolatedText } from "../../../resources/Web/app/text/isolatedText.js";

for (const { name, text, isolated } of [
  { name: "a name stands between the marks", text: "Mia", isolated: "\u2068Mia\u2069" },
  { name: "a name cannot close them", text: "a\u2069b", isolated: "\u2068ab\u2069" },
  { name: "a name cannot turn what follows", text: "\u202Eevil\u2067", isolated: "\u2068evil\u2069" },
]) {
  test(name, () => assert.equal(isolatedText(text), isolated));
}
