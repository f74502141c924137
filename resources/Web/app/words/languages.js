// The languages that a page can be marked with, and which of them speaks for any other.
import { german } from "./de.js";
import { english } from "./en.js";
import { spanish } from "./es-ES.js";
import { mexicanSpanish } from "./es-MX.js";
import { french } from "./fr.js";
import { hindi } from "./hi.js";
import { indonesian } from "./id.js";
import { italian } from "./it.js";
import { japanese } from "./ja.js";
import { korean } from "./ko.js";
import { brazilianPortuguese } from "./pt-BR.js";
import { portuguese } from "./pt-PT.js";
import { russian } from "./ru.js";
import { ukrainian } from "./uk.js";
import { simplifiedChinese } from "./zh-Hans.js";

/** @typedef {import("./en.js").Word} Word */
/** @typedef {import("./en.js").WordKey} WordKey */
/** @typedef {{ readonly [Key in WordKey]: Word }} Table */

/** @type {{ readonly [tag: string]: Table }} Of two of one language the first speaks for its other regions. */
export const wordsByTag = {
  en: english,
  "es-MX": mexicanSpanish,
  "es-ES": spanish,
  "pt-BR": brazilianPortuguese,
  "pt-PT": portuguese,
  ja: japanese,
  de: german,
  "zh-Hans": simplifiedChinese,
  fr: french,
  ko: korean,
  it: italian,
  ru: russian,
  id: indonesian,
  hi: hindi,
  uk: ukrainian,
};

/** @param {string} tag @returns {Intl.Locale | undefined} */
function localeOf(tag) {
  try {
    return new Intl.Locale(tag);
  } catch {
    return undefined;
  }
}

/**
 * The words for a tag, and the tag by which Intl writes the dates, numbers and lists among them: the tag's own where it
 * stands for the same language in the same script, so that a date never speaks another language than the words beside it.
 * @param {string} tag
 * @returns {{ tag: string, words: Table }}
 */
export function languageFor(tag) {
  const locale = localeOf(tag);
  const language = locale?.language;
  const tags = Object.keys(wordsByTag);
  const found = tags.find((one) => one === locale?.baseName) ?? tags.find((one) => one.split("-")[0] === language);
  if (locale === undefined || found === undefined) return { tag: "en", words: english };
  const isSameScript = locale.maximize().script === new Intl.Locale(found).maximize().script;
  return { tag: isSameScript ? locale.toString() : found, words: wordsByTag[found] };
}
