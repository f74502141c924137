import { languageFor } from "./languages.js";

/** @typedef {import("./en.js").Word} Word */
/** @typedef {import("./en.js").WordKey} WordKey */
/** @typedef {{ readonly [name: string]: string }} Values */

/** @param {string} template @param {Values} values */
function fillIn(template, values) {
  return template.replace(/\{(\w+)\}/g, (place, name) => (Object.prototype.hasOwnProperty.call(values, name) ? values[name] : place));
}

/** Says the page's words in one language. */
export class Speech {
  /** @param {string} tag */
  constructor(tag) {
    const language = languageFor(tag);
    this.tag = language.tag;
    this.words = language.words;
    this.plurals = new Intl.PluralRules(this.tag);
    this.numbers = new Intl.NumberFormat(this.tag);
    this.lists = new Intl.ListFormat(this.tag, { type: "conjunction" });
    this.choices = new Intl.ListFormat(this.tag, { type: "disjunction" });
  }

  /** @param {WordKey} key @param {Values} [values] */
  say(key, values = {}) {
    const word = this.words[key];
    return fillIn(typeof word === "string" ? word : word.other, values);
  }

  /** @param {WordKey} key @param {number} count @param {Values} [values] */
  sayCount(key, count, values = {}) {
    /** @type {Word} */
    const word = this.words[key];
    const form = typeof word === "string" ? word : word[this.plurals.select(count)] ?? word.other;
    return fillIn(form, { count: this.numbers.format(count), ...values });
  }

  /** @param {readonly string[]} names */
  list(names) {
    return this.lists.format(names);
  }
}
