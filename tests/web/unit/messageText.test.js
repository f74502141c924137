import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { attachmentMark, beginningOf, piecesOf, shownText } from "../../../resources/Web/app/text/messageText.js";
import { timeTaken } from "../support/measures.js";

const mark = attachmentMark;

describe("piecesOf", () => {
  const cases = [
    ["words and no attachment", "hello", [], ["hello"]],
    ["nothing at all", "", [], []],
    ["a mark and its attachment", mark, ["A"], ["<A>"]],
    ["a mark without an attachment", mark, [], []],
    ["words round an attachment", `before${mark}behind`, ["A"], ["before", "<A>", "behind"]],
    ["two marks and two attachments", `${mark}${mark}\nbehind`, ["A", "B"], ["<A>", "<B>", "behind"]],
    ["fewer marks than attachments", `${mark}words`, ["A", "B"], ["words", "<A>", "<B>"]],
    ["more marks than attachments", `a${mark}b${mark}c`, ["A"], ["abc", "<A>"]],
    ["attachments without marks", "words", ["A"], ["words", "<A>"]],
    ["attachments and no words", "", ["A", "B"], ["<A>", "<B>"]],
    ["blanks of a message without marks", "  two\n", [], ["  two\n"]],
  ];
  for (const [name, text, attachments, pieces] of cases) {
    test(name, () => {
      const found = piecesOf(text, attachments).map((piece) => ("text" in piece ? piece.text : `<${piece.attachment}>`));
      assert.deepEqual(found, pieces);
    });
  }

  test("of a megabyte of marks ends soon", () => {
    assert.ok(timeTaken(() => assert.deepEqual(piecesOf(mark.repeat(1e6), []), [])) < 2000);
  });
});

describe("shownText", () => {
  const cases = { [mark]: "", [`${mark}\nSee`]: "See", " as it is ": " as it is ", "": "" };
  for (const [text, shown] of Object.entries(cases)) {
    test(`of ${JSON.stringify(text)}`, () => assert.equal(shownText(text), shown));
  }
});

describe("beginningOf", () => {
  const cases = [
    ["short", 10, "short"],
    ["exactly", 7, "exactly"],
    ["exactly!", 7, "exactly…"],
    ["🎉🎉🎉", 2, "🎉🎉…"],
    ["two\n lines", 20, "two lines"],
    ["", 5, ""],
    ["   ", 5, ""],
  ];
  for (const [text, length, beginning] of cases) {
    test(`of ${JSON.stringify(text)} with ${length}`, () => assert.equal(beginningOf(text, length), beginning));
  }

  test("never ends in half a character", () => {
    for (let blanks = 0; blanks < 12; blanks++) {
      const beginning = beginningOf(`a${" ".repeat(blanks)}${"🎉".repeat(9)}`, 3);
      assert.ok(!/[\uD800-\uDBFF](?![\uDC00-\uDFFF])/.test(beginning), JSON.stringify([blanks, beginning]));
    }
  });
});
