import assert from "node:assert/strict";
import { test } from "node:test";
import { fold, rangesOf } from "../../../resources/Web/app/search/fold.js";
import { makeRandom } from "../support/measures.js";

/** @type {[string, string, string][]} */
const alike = [
  ["case", "Lake WEEKEND", "lake weekend"],
  ["accents", "Éléonore à la crème brûlée", "eleonore a la creme brulee"],
  ["accents that stand apart", "e\u0301te\u0302", "été"],
  ["sharp s", "Straße", "STRASSE"],
  ["ligatures", "Ærø cœur ﬁn", "aero coeur fin"],
  ["barred letters", "Łódź Øystein Đorđe", "lodz oystein dorde"],
  ["Turkish i", "İstanbul ılık", "istanbul ilik"],
  ["Vietnamese", "Nguyễn Thị Hồng", "nguyen thi hong"],
  ["sigma at a word's end", "ΟΔΥΣΣΕΥΣ", "οδυσσευς"],
  ["Cyrillic", "Ёлка ЙОД", "елка иод"],
  ["half-width kana", "ｶﾞｷﾞｸﾞｹﾞｺﾞ ﾊﾟﾝ", "ガギグゲゴ パン"],
  ["kana with a mark apart", "か\u3099", "が"],
  ["full-width letters", "ＡＢＣ１２３", "abc123"],
  ["Hangul letters", "\u1112\u1161\u11ab\u1100\u116e\u11a8", "한국"],
  ["Arabic marks and alefs", "أَهْلًا شُكـــرًا", "اهلا شكرا"],
  ["Persian letters", "کی", "كي"],
  ["Hebrew points", "שָׁלוֹם", "שלום"],
  ["curved quotes", "don’t “say”", "don't \"say\""],
  ["dashes and dots", "on – off…", "on - off..."],
  ["runs of blanks", "two\u00a0 \t\nlines\u3000here", "two lines here"],
  ["soft hyphens and joiners", "week\u00adend\u200b\u2060", "weekend"],
  ["direction marks", "\u202eabc\u202c\u200f", "abc"],
  ["emoji tones and selectors", "👍🏽 ❤️", "👍 ❤"],
  ["the place of an attachment", "before\ufffcbehind", "before behind"],
  ["controls", "a\u0000b\u0001c", "abc"],
  ["Hawaiian and other letters for an apostrophe", "Hawai\u02bbi Hawai\u02bci", "hawai'i hawai'i"],
];
for (const [name, one, other] of alike) {
  test(`folding is blind to ${name}`, () => assert.equal(fold(one), fold(other)));
}

/** @type {[string, string][]} */
const digits = [
  ["Arabic", "٠١٢٣٤٥٦٧٨٩"], ["Persian", "۰۱۲۳۴۵۶۷۸۹"], ["Devanagari", "०१२३४५६७८९"], ["Bengali", "০১২৩৪৫৬৭৮৯"],
  ["Thai", "๐๑๒๓๔๕๖๗๘๙"], ["full-width", "０１２３４５６７８９"], ["bold", "𝟎𝟏𝟐𝟑𝟒𝟓𝟔𝟕𝟖𝟗"],
  ["Chakma", "𑄶𑄷𑄸𑄹𑄺𑄻𑄼𑄽𑄾𑄿"], ["Adlam", "𞥐𞥑𞥒𞥓𞥔𞥕𞥖𞥗𞥘𞥙"], ["ASCII", "0123456789"],
];
for (const [name, text] of digits) {
  test(`folding makes ASCII digits of ${name} ones`, () => assert.equal(fold(text), "0123456789"));
}

test("every decimal digit is folded to one ASCII digit, and each of the ten as often as another", () => {
  const counts = new Array(10).fill(0);
  for (let code = 0; code <= 0x10ffff; code++) {
    const sign = String.fromCodePoint(code);
    if (!/\p{Nd}/u.test(sign)) continue;
    const folded = fold(sign);
    assert.match(folded, /^[0-9]$/, code.toString(16));
    counts[Number(folded)] += 1;
  }
  assert.ok(counts[0] >= 60, `${counts[0]} scripts`);
  assert.deepEqual(counts, new Array(10).fill(counts[0]));
});

test("numerals that are no decimal digits stay what they are", () => {
  assert.equal(fold("፩ 𐄇 二 〇"), "፩ 𐄇 二 〇");
});

/** @type {[string, string, string][]} */
const different = [
  ["kana with and without voice", "はは", "ばば"],
  ["Hindi vowels", "हिंदी", "हद"],
  ["Thai vowels", "กิน", "กน"],
  ["Korean syllables", "하", "한"],
  ["words apart and together", "a b", "ab"],
];
for (const [name, one, other] of different) {
  test(`folding keeps apart ${name}`, () => assert.notEqual(fold(one), fold(other)));
}

test("half of a pair is folded to the sign for what is damaged", () => {
  assert.equal(fold("a\ud83d"), "a\ufffd");
  assert.equal(fold("\udc4da"), "\ufffda");
});

/** @type {[string, string, string[], string[]][]} */
const marked = [
  ["a plain word", "The lake, the LAKE", ["lake"], ["lake", "LAKE"]],
  ["a letter that becomes two", "Straße", ["strasse"], ["Straße"]],
  ["half of a letter that becomes two", "Maß", ["s"], ["ß"]],
  ["a letter with its accents", "cafe\u0301\u0302!", ["cafe"], ["cafe\u0301\u0302"]],
  ["words over several blanks", "two \n lines", ["two lines"], ["two \n lines"]],
  ["an emoji with its tone", "👍🏽 ok", ["👍"], ["👍🏽"]],
  ["hits that overlap", "banana", ["ana", "nan"], ["anan"]],
  ["a letter with the vowel that hangs on it", "हिंदी", [fold("ह")], ["हिं"]],
  ["a letter of a pair before another one", "𞤀𞤄𞤀", [fold("𞤀")], ["𞤀", "𞤀"]],
  ["a letter of a pair with a mark of a pair", "𞤀𞥄𞤄", [fold("𞤀")], ["𞤀𞥄"]],
  ["a letter with two marks of pairs", "x𑄇𑄧𑄪y", [fold("𑄇")], ["𑄇𑄧𑄪"]],
  ["a word of pairs with a mark at the text's end", "𞤀𞤄𞥄", [fold("𞤄")], ["𞤄𞥄"]],
  ["a year in digits of another script", "في ٢٠٢٤ و 2024", ["2024"], ["٢٠٢٤", "2024"]],
  ["a part of a year in digits of pairs", "𞥒𞥐𞥒𞥔", ["02"], ["𞥐𞥒"]],
  ["nothing", "banana", ["kiwi"], []],
];
for (const [name, text, terms, expected] of marked) {
  test(`ranges mark ${name}`, () => {
    assert.deepEqual(rangesOf(text, terms).map(([start, end]) => text.slice(start, end)), expected);
  });
}

/** @param {string} text @param {number} place */
function isWithinPair(text, place) {
  return /^[\ud800-\udbff][\udc00-\udfff]$/.test(text.slice(Math.max(0, place - 1), place + 1));
}

test("ranges are ascending, apart, halve no pair, and each holds its term, on 2,000 random texts", () => {
  const random = makeRandom(20);
  const whole = "aAéßæ ıİ\u0301\u00a0\u200d.が\u3099ｶﾞ한\u1112\u1161👍🏽❤️\ufffc\u0000’…ﬁ2٢𞥒𞤀𞥄";
  const signs = Array.from(whole).concat(["\ud83d", "\udc4d"]);
  const draw = (/** @type {number} */ length) => Array.from({ length }, () => signs[random(signs.length)]).join("");
  for (let round = 0; round < 2000; round++) {
    const text = draw(1 + random(30));
    const start = random(text.length);
    const term = fold(text.slice(start, start + 1 + random(4))).trim() || "a";
    const ranges = rangesOf(text, [term]);
    assert.equal(ranges.length > 0, fold(text).includes(term), JSON.stringify([text, term]));
    let done = 0;
    for (const [from, to] of ranges) {
      assert.ok(from >= done && from < to && to <= text.length, JSON.stringify([text, term, ranges]));
      assert.ok(fold(text.slice(from, to)).includes(term), JSON.stringify([text, term, ranges]));
      assert.ok(![from, to].some((place) => isWithinPair(text, place)), JSON.stringify([text, term, ranges]));
      done = to;
    }
  }
});

test("a text with one hit a letter has a bounded number of ranges", () => {
  assert.equal(rangesOf("a ".repeat(10_000), ["a"], 200).length, 200);
});

test("thousands of marks on one letter are folded away", () => assert.equal(fold(`a${"\u0301".repeat(50_000)}`), "a"));
