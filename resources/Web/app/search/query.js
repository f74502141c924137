// What the reader types, taken apart: words, phrases, and operators such as from:name.
import { cutText } from "../text/messageText.js";
import { fold } from "./fold.js";

/** @typedef {"from" | "has" | "before" | "after" | "on"} Operator */
/**
 * @typedef {object} Condition
 * @property {Operator} operator
 * @property {string} value as it was typed, never empty
 */
/**
 * @typedef {object} Query
 * @property {string[]} terms folded; all must occur
 * @property {Condition[]} conditions
 */

const operators = /** @type {readonly Operator[]} */ (["from", "has", "before", "after", "on"]);

/**
 * An operator with its value, a phrase, or a word. Quotes may be curved, and the last one may still be missing; a colon
 * may be of full width.
 */
const tokens = /(?:(\p{L}+)[:：])?["“”„«»]([^"“”„«»]*)(?:["“”„«»]|$)|(\p{L}+)[:：]([^\s"“”„«»]*)|[^\s"“”„«»]+/gu;

/** A query that is only begun is no longer than a reader writes; the rest of a pasted book is not looked for. */
const longestQuery = 1_000;

/** @param {string | undefined} word @returns {Operator | undefined} */
function operatorOf(word) {
  const folded = fold(word ?? "");
  return operators.find((operator) => operator === folded);
}

/**
 * An operator without a value yet takes the word or phrase that follows, and says nothing at the end or before another
 * operator. A word before a colon that is no operator is a word.
 * @param {string} text
 * @returns {Query}
 */
export function parseQuery(text) {
  /** @type {Query} */
  const query = { terms: [], conditions: [] };
  /** @type {Operator | undefined} */
  let waiting;
  for (const [whole, quotedKey, quoted, key, value] of cutText(text, longestQuery).matchAll(tokens)) {
    const operator = operatorOf(quotedKey ?? key);
    if (operator) {
      const isComplete = addCondition(query, operator, quoted ?? value) || quoted !== undefined;
      waiting = isComplete ? undefined : operator;
    } else {
      for (const words of quoted === undefined ? [whole] : phraseOf(quotedKey, quoted)) {
        if (waiting) addCondition(query, waiting, words);
        else addTerm(query, words);
        waiting = undefined;
      }
    }
  }
  return query;
}

/** @param {string | undefined} key @param {string} words */
function phraseOf(key, words) {
  return key ? [`${key}:`, words] : [words];
}

/**
 * Whether there is a value. What cannot be seen is none.
 * @param {Query} query
 * @param {Operator} operator
 * @param {string} value
 */
function addCondition(query, operator, value) {
  const isValue = fold(value).trim() !== "";
  if (isValue) query.conditions.push({ operator, value: value.trim() });
  return isValue;
}

/** @param {Query} query @param {string} text */
function addTerm(query, text) {
  const term = fold(text).trim();
  if (term && !query.terms.includes(term)) query.terms.push(term);
}

/**
 * A condition as it is typed: a value of several words stands in quotes, and so holds none itself.
 * @param {Operator} operator
 * @param {string} value
 */
export function conditionText(operator, value) {
  const plain = value.replace(/["“”„«»]/gu, " ").trim();
  return /\s/u.test(plain) ? `${operator}:"${plain}"` : `${operator}:${plain}`;
}
