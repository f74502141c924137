// Texts made alike for comparing: blind to case, accents, width, typographic signs, and the kind of blanks and digits.
import { TextBuffer } from "./TextBuffer.js";

/** What needs more than its case folded; other texts are the most. */
const needsMore = /[^ -~]| {2}/;
/** Marks of these scripts change how a letter sounds, not which it is; in others a mark can be a vowel. */
const accents = new RegExp("(?=\\p{M})[\\p{Script=Inherited}\\p{Script=Latin}\\p{Script=Greek}\\p{Script=Cyrillic}"
  + "\\p{Script=Hebrew}\\p{Script=Arabic}\\p{Script=Syriac}]", "gu");
/** Soft hyphens, joiners, direction marks, selectors, controls; the tones of emoji; the line that stretches Arabic. */
const unseen = /[\p{Default_Ignorable_Code_Point}\p{Cc}\p{Emoji_Modifier}\u0640]/gu;
/** U+FFFC stands where an attachment stood. */
const blank = /^(?:[^\S\uFEFF]|\uFFFC)$/;
const halfPair = /^[\ud800-\udfff]$/;
/** What makes one letter of several in Korean and Japanese. */
const joined = /[\u1100-\u11FF\u3099\u309A]/;
/** A mark that a kana cannot do without: with it, it is another letter. */
const kanaMark = /[\u3099\u309A]/;
const digit = /^\p{Nd}$/u;

/** For letters and signs that no normalization leads to what people type in their place. */
const substitutes = new Map(Object.entries({
  "ß": "ss", "æ": "ae", "œ": "oe", "ø": "o", "ł": "l", "đ": "d", "ð": "d", "þ": "th", "ħ": "h", "ŧ": "t",
  "ı": "i", "ĸ": "k", "ŋ": "n", "ƒ": "f", "ς": "σ", "ٱ": "ا", "ى": "ي", "ی": "ي", "ک": "ك",
  "‘": "'", "’": "'", "‚": "'", "‛": "'", "´": "'", "ʻ": "'", "ʼ": "'", "′": "'", "׳": "'",
  "“": "\"", "”": "\"", "„": "\"", "‟": "\"", "″": "\"", "״": "\"",
  "‐": "-", "‑": "-", "‒": "-", "–": "-", "—": "-", "―": "-", "−": "-", "־": "-",
}));

/**
 * A unit is what is folded by itself: a character, a kana with its voice mark, or a syllable of Hangul letters.
 * @param {string} text
 * @param {number} start
 */
function endOfUnit(text, start) {
  const code = text.charCodeAt(start);
  if (code < 0x1100) return start + 1;
  const next = text.charCodeAt(start + 1);
  if (code <= 0x1112) return next >= 0x1161 && next <= 0x1175 ? endOfSyllable(text, start + 2) : start + 1;
  if (code >= 0xd800 && code <= 0xdbff) return next >= 0xdc00 && next <= 0xdfff ? start + 2 : start + 1;
  if (code >= 0xac00 && code <= 0xd7a3) return (code - 0xac00) % 28 === 0 ? endOfSyllable(text, start + 1) : start + 1;
  const isKana = (code >= 0x3041 && code <= 0x30ff) || (code >= 0xff66 && code <= 0xff9d);
  const isMarked = next === 0x3099 || next === 0x309a || next === 0xff9e || next === 0xff9f;
  return isKana && isMarked ? start + 2 : start + 1;
}

/** @param {string} text @param {number} place */
function endOfSyllable(text, place) {
  const code = text.charCodeAt(place);
  return code >= 0x11a8 && code <= 0x11c2 ? place + 1 : place;
}

/**
 * What is typed in place of a letter or sign, if anything is.
 * @param {string} letter
 */
function typedFor(letter) {
  return substitutes.get(letter) ?? (digit.test(letter) ? asciiDigit(letter) : letter);
}

/**
 * Unicode encodes the decimal digits of a script in a row from 0 to 9; the rows of two scripts may touch.
 * @param {string} sign
 */
function asciiDigit(sign) {
  const code = /** @type {number} */ (sign.codePointAt(0));
  let first = code;
  while (first > 0 && digit.test(String.fromCodePoint(first - 1))) first -= 1;
  return String((code - first) % 10);
}

/** @param {string} unit */
function foldUnit(unit) {
  if (blank.test(unit)) return " ";
  if (halfPair.test(unit)) return "\uFFFD";
  if (substitutes.has(unit)) return /** @type {string} */ (substitutes.get(unit));
  const letters = Array.from(unit.normalize("NFKD").toLowerCase().normalize("NFKD"));
  const typed = letters.map(typedFor).join("").replace(unseen, "");
  const bare = typed.replace(accents, (mark) => (kanaMark.test(mark) ? mark : ""));
  return joined.test(bare) ? bare.normalize("NFC") : bare;
}

/** What single UTF-16 units are folded to: a unit, or one of these two. Made when it is first needed. */
let foldedUnits = new Uint16Array(0);
const isUnknown = 0;
const isNoUnit = 1;
/**
 * What is folded to several units, or to none, by its text.
 * @type {Map<string, string>}
 */
const foldedTexts = new Map();
/** Hangul letters alone make more than are worth keeping. */
const mostKept = 20_000;

/** @param {string} unit */
function foldedText(unit) {
  const known = foldedTexts.get(unit);
  if (known !== undefined) return known;
  const folded = foldUnit(unit);
  if (foldedTexts.size < mostKept) foldedTexts.set(unit, folded);
  return folded;
}

/** @param {number} code */
function learnUnit(code) {
  const folded = foldedText(String.fromCharCode(code));
  foldedUnits[code] = folded.length === 1 ? folded.charCodeAt(0) : isNoUnit;
}

const buffer = new TextBuffer();

/**
 * @param {string} text
 * @param {(length: number, start: number, end: number) => void} [place] told for each unit the length it has when
 *   folded, and where it stands in the text
 */
function foldUnits(text, place) {
  if (foldedUnits.length === 0) foldedUnits = new Uint16Array(0x10000);
  let last = 0;
  for (let start = 0, end = 0; start < text.length; start = end) {
    end = endOfUnit(text, start);
    const before = buffer.length;
    const code = text.charCodeAt(start);
    if (foldedUnits[code] === isUnknown) learnUnit(code);
    const folded = end === start + 1 ? foldedUnits[code] : isNoUnit;
    if (folded === isNoUnit) last = addText(foldedText(text.slice(start, end)), last);
    else last = addUnit(folded, last);
    if (place) place(buffer.length - before, start, end);
  }
  return buffer.take();
}

/**
 * A run of blanks is one.
 * @param {number} unit
 * @param {number} last what was added before it
 */
function addUnit(unit, last) {
  if (unit !== 0x20 || last !== 0x20) buffer.add(unit);
  return unit;
}

/** @param {string} text @param {number} last */
function addText(text, last) {
  for (let place = 0; place < text.length; place++) last = addUnit(text.charCodeAt(place), last);
  return last;
}

/**
 * Whether folding a text changes the case of its letters at most.
 * @param {string} text
 */
export function isPlain(text) {
  return !needsMore.test(text);
}

/** @param {string} text */
export function fold(text) {
  return needsMore.test(text) ? foldUnits(text) : text.toLowerCase();
}

/**
 * A folded text, and for each of its UTF-16 units where in the text the one began and ended that it was made of;
 * without these where they are the same places.
 * @param {string} text
 * @returns {{ folded: string, starts?: number[], ends?: number[] }}
 */
function foldWithPlaces(text) {
  if (!needsMore.test(text)) return { folded: text.toLowerCase() };
  /** @type {number[]} */
  const starts = [];
  /** @type {number[]} */
  const ends = [];
  const folded = foldUnits(text, (length, start, end) => {
    for (let count = 0; count < length; count++) {
      starts.push(start);
      ends.push(end);
    }
    // What vanishes belongs to what it follows, as an accent to its letter.
    if (length === 0 && ends.length > 0) ends[ends.length - 1] = end;
  });
  return { folded, starts, ends };
}

const mark = /^\p{M}/u;

/**
 * Where the marks at a place end: a letter is not torn from a vowel that hangs on it.
 * @param {string} text
 * @param {number} place
 */
function endOfMarks(text, place) {
  let end = place;
  let found = mark.exec(text.slice(end, end + 2));
  while (found) {
    end += found[0].length;
    found = mark.exec(text.slice(end, end + 2));
  }
  return end;
}

/**
 * The ranges of a text, in its UTF-16 units, where folded terms occur: ascending, apart, and no more than `most` a
 * term.
 * @param {string} text
 * @param {readonly string[]} terms
 * @param {number} [most]
 * @returns {[number, number][]}
 */
export function rangesOf(text, terms, most = 200) {
  if (terms.length === 0) return [];
  const { folded, starts, ends } = foldWithPlaces(text);
  /** @type {[number, number][]} */
  const ranges = [];
  for (const term of terms) {
    let place = folded.indexOf(term);
    for (let count = 0; place >= 0 && count < most; count++) {
      const last = place + term.length;
      const end = endOfMarks(text, ends ? ends[last - 1] : last);
      ranges.push([starts ? starts[place] : place, end]);
      place = folded.indexOf(term, last);
    }
  }
  return joinedRanges(ranges);
}

/** @param {[number, number][]} ranges */
function joinedRanges(ranges) {
  /** @type {[number, number][]} */
  const apart = [];
  for (const range of ranges.sort((one, other) => one[0] - other[0])) {
    const last = apart[apart.length - 1];
    if (last && range[0] <= last[1]) last[1] = Math.max(last[1], range[1]);
    else apart.push(range);
  }
  return apart;
}
