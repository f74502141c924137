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
    ["an indent behind an attachment", `${mark}\n  poem\n    indented`, ["A"], ["<A>", "  poem\n    indented"]],
    ["a Japanese indent behind an attachment", `${mark}\r\n\u3000\u8A69`, ["A"], ["<A>", "\u3000\u8A69"]],
    ["a Japanese indent beside an attachment", `${mark}\u3000\u8A69`, ["A"], ["<A>", "\u3000\u8A69"]],
    ["an indent before an attachment", `  poem\n${mark}`, ["A"], ["  poem", "<A>"]],
    ["an indent between attachments", `${mark}\n\n\tone\n \n${mark}`, ["A", "B"], ["<A>", "\tone", "<B>"]],
    ["blank lines of every kind", `${mark}\u2028 \t\r\n\u2029\u3000\n  end \u3000\n`, ["A"], ["<A>", "  end"]],
    ["one blank between an attachment and words", `${mark} look ${mark}`, ["A", "B"], ["<A>", "look", "<B>"]],
    ["two blanks between an attachment and words", `${mark}  look`, ["A"], ["<A>", "  look"]],
    ["one blank that begins the message", ` look${mark}`, ["A"], [" look", "<A>"]],
    ["nothing but blanks round attachments", ` \n${mark} ${mark}\u3000\n`, ["A", "B"], ["<A>", "<B>"]],
    ["an indent where the places are not known", `${mark}\n  poem`, ["A", "B"], ["  poem", "<A>", "<B>"]],
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

  for (const [name, blank] of [["blanks", " "], ["blank lines", "\n"], ["blank lines of blanks", " \n"]]) {
    test(`of a megabyte of ${name} behind an attachment ends soon`, () => {
      const text = `${mark}\n${blank.repeat(1e6)}x`;
      assert.ok(timeTaken(() => assert.equal(piecesOf(text, ["A"]).length, 2)) < 2000);
    });
  }
});

describe("shownText", () => {
  const cases = { [mark]: "", [`${mark}\nSee`]: "See", [`${mark}\n  See\n`]: "  See", [`${mark} See`]: "See", [`a${mark} b`]: "a b",
    [`\u3000See${mark}`]: "\u3000See", [` \n${mark} `]: "", " as it is ": " as it is ", "": "" };
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
