// What the reader types, taken apart: words, phrases, and operators such as from:name.
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

/** An operator with its value, a phrase, or a word. Quotes may be curved, and the last one may still be missing. */
const tokens = /(?:(\p{L}+):)?["“”„«»]([^"“”„«»]*)(?:["“”„«»]|$)|(\p{L}+):([^\s"“”„«»]*)|([^\s"“”„«»]+)/gu;

/** A query that is only begun is no longer than a reader writes; the rest of a pasted book is not looked for. */
const longestQuery = 1_000;

/** @param {string | undefined} word @returns {Operator | undefined} */
function operatorOf(word) {
  const folded = fold(word ?? "");
  return operators.find((operator) => operator === folded);
}

/**
 * An operator without a value yet says nothing; a word before a colon that is no operator is a word.
 * @param {string} text
 * @returns {Query}
 */
export function parseQuery(text) {
  /** @type {Query} */
  const query = { terms: [], conditions: [] };
  for (const found of text.slice(0, longestQuery).matchAll(tokens)) {
    const [whole, quotedKey, quoted, key, value] = found;
    const operator = operatorOf(quotedKey ?? key);
    if (operator) addCondition(query, operator, quoted ?? value);
    else if (quoted === undefined) addTerm(query, whole);
    else {
      if (quotedKey) addTerm(query, `${quotedKey}:`);
      addTerm(query, quoted);
    }
  }
  return query;
}

/** @param {Query} query @param {Operator} operator @param {string} value */
function addCondition(query, operator, value) {
  const trimmed = value.trim();
  if (trimmed) query.conditions.push({ operator, value: trimmed });
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
