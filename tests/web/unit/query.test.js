import assert from "node:assert/strict";
import { test } from "node:test";
import { isNamed } from "../../../resources/Web/app/search/conditions.js";
import { conditionText, parseQuery } from "../../../resources/Web/app/search/query.js";

/** @type {[string, string, string[], [string, string][]][]} */
const queries = [
  ["nothing", "", [], []],
  ["blanks", "  \t ", [], []],
  ["words", "Lake  TENT", ["lake", "tent"], []],
  ["a word twice", "tent Tent", ["tent"], []],
  ["a phrase", "\"the big  tent\" lake", ["the big tent", "lake"], []],
  ["a phrase in curved quotes", "“big tent”", ["big tent"], []],
  ["a phrase that is not yet closed", "lake \"big te", ["lake", "big te"], []],
  ["an empty phrase", "\"\" lake", ["lake"], []],
  ["operators", "from:mia has:photo before:2024 after:2023-01 on:2023-05-06",
    [], [["from", "mia"], ["has", "photo"], ["before", "2024"], ["after", "2023-01"], ["on", "2023-05-06"]]],
  ["an operator in capitals", "FROM:Mia", [], [["from", "Mia"]]],
  ["a quoted value", "from:\"Mia Okafor\" lake", ["lake"], [["from", "Mia Okafor"]]],
  ["an operator without a value yet", "lake from:", ["lake"], []],
  ["an operator with an empty quoted value", "from:\"\"", [], []],
  ["a word before a colon that is no operator", "note:this", ["note:this"], []],
  ["an address", "https://example.org", ["https://example.org"], []],
  ["a time", "12:30", ["12:30"], []],
  ["a word of accents alone", "\u0301 lake", ["lake"], []],
  ["operators with full-width colons", "from：Mia has：\"photo\" on：２０２４",
    [], [["from", "Mia"], ["has", "photo"], ["on", "２０２４"]]],
  ["an operator in full-width letters", "ｆｒｏｍ：Mia", [], [["from", "Mia"]]],
  ["a word before a full-width colon that is no operator", "note：this", ["note:this"], []],
  ["a quoted phrase behind a word with a full-width colon", "note：\"big tent\"", ["note:", "big tent"], []],
  ["an operator with a blank behind its colon", "from: Mia lake", ["lake"], [["from", "Mia"]]],
  ["every operator with blanks behind its colon", "from:  Mia has: photo before: 2024 after:\t2023-01 on: 2023-05-06",
    [], [["from", "Mia"], ["has", "photo"], ["before", "2024"], ["after", "2023-01"], ["on", "2023-05-06"]]],
  ["an operator with a wide blank behind a full-width colon", "from：\u3000Mia", [], [["from", "Mia"]]],
  ["an operator with a quoted value behind a blank", "from: \"Mia Okafor\" lake", ["lake"], [["from", "Mia Okafor"]]],
  ["an operator with a quoted value not yet closed behind a blank", "from: “Mia Ok", [], [["from", "Mia Ok"]]],
  ["an operator with an empty quoted value behind a blank", "from: \"\" lake", ["lake"], []],
  ["an operator with an empty quoted value before a word", "from:\"\" lake", ["lake"], []],
  ["an operator before another one", "from: has:photo", [], [["has", "photo"]]],
  ["operators of which only the last one has a value", "from: on: 2024", [], [["on", "2024"]]],
  ["an operator before a word with a colon", "from: note:this lake", ["lake"], [["from", "note:this"]]],
  ["an operator at the end with a blank", "lake from: ", ["lake"], []],
  ["an operator in a phrase before a word", "\"from:\" Mia", ["from:", "mia"], []],
  ["a word with a colon before another word", "note: this", ["note:", "this"], []],
  ["an operator with a direction mark behind its colon", "from:\u200e", [], []],
];
for (const [name, text, terms, conditions] of queries) {
  test(`a query of ${name} is taken apart`, () => {
    const expected = conditions.map(([operator, value]) => ({ operator, value }));
    assert.deepEqual(parseQuery(text), { terms, conditions: expected });
  });
}

test("of a pasted book only the beginning is looked for", () => {
  assert.ok(parseQuery("word ".repeat(100_000)).terms.length === 1);
  assert.ok(parseQuery("x".repeat(100_000))["terms"][0].length <= 1000);
});

test("a query is cut between characters", () => {
  for (let shift = 0; shift < 2; shift++) {
    const start = "x".repeat(998 + shift);
    assert.deepEqual(parseQuery(`${start}${"🎉".repeat(9)}`).terms, [shift ? start : `${start}🎉`]);
  }
});

test("a value with quotes becomes a condition of its words", () => {
  for (const [value, plain] of [["O\"Neil", "O Neil"], ["\u201eMia\u201c", "Mia"]]) {
    assert.deepEqual(parseQuery(conditionText("from", value)), { terms: [], conditions: [{ operator: "from", value: plain }] });
    assert.equal(isNamed(value, plain), true);
  }
});

test("a condition as text is read as that condition", () => {
  for (const value of ["mia", "Mia Okafor", "+1 555 01 42", "2024-05-01"]) {
    assert.deepEqual(parseQuery(conditionText("from", value)).conditions, [{ operator: "from", value }]);
  }
});

/** @type {[string, string, boolean][]} */
const names = [
  ["Mia Okafor", "mia", true], ["Mia Okafor", "oka", true],
  ["Mia Okafor", "mia okafor", true], ["Mia Okafor", "kafor", false],
  ["Zoë O’Brien", "zoe", true], ["Zoë O’Brien", "brien", true], ["田中 太郎", "太郎", true], ["山田太郎", "太郎", true],
  ["+1 (555) 01-42", "5550142", true], ["+15550142", "555 01", true], ["+15550142", "55", false],
  ["jonas@example.org", "jonas", true], ["jonas@example.org", "example", true], ["Mia", "?", false], ["", "mia", false],
  ["+15550142", "\u2066+1 555 01 42\u2069", true], ["+15550142", "\u202a(555) 01\u201142\u202c", true],
  ["\u200e+1 555 01\u00ad42\u200f", "5550142", true], ["+15550142", "\u202e555\u200b0142\u202c", true],
  ["+15550142", "\u206655\u2069", false], ["+15550142", "\u2066\u2069", false],
  ["+15550142", "٥٥٥ ٠١٤٢", true], ["\u200f+١٥٥٥٠١٤٢", "555 01 42", true], ["+15550142", "５５５０１４２", true],
  ["Team 7", "٧", true],
  ["Mum ❤️", "❤️", true], ["🎉", "🎉", true], ["Mum ❤", "❤️", true], ["Mia", "❤️", false], ["12 Angry", "❤️", false],
];
for (const [name, value, isMeant] of names) {
  test(`${JSON.stringify(value)} ${isMeant ? "means" : "does not mean"} ${JSON.stringify(name)}`, () => {
    assert.equal(isNamed(name, value), isMeant);
  });
}
