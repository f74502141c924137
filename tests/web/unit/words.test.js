import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { describe, test } from "node:test";
import { kindNames } from "../../../resources/Web/app/search/conditions.js";
import { fold } from "../../../resources/Web/app/search/fold.js";
import { english } from "../../../resources/Web/app/words/en.js";
import { languageFor, wordsByTag } from "../../../resources/Web/app/words/languages.js";
import { Speech } from "../../../resources/Web/app/words/Speech.js";

const tags = "en es-MX es-ES pt-BR pt-PT ja de zh-Hans fr ko it ru id hi uk".split(" ");
const translated = Object.entries(wordsByTag).filter(([tag]) => tag !== "en");
const keys = Object.keys(english);
const countedKeys = keys.filter((key) => typeof english[key] !== "string");

const romance = ["one", "many", "other"];
const slavic = ["one", "few", "many", "other"];
/** The forms that a word with a count takes (CLDR, plural rules of cardinal numbers). */
const pluralForms = {
  en: ["one", "other"], de: ["one", "other"], hi: ["one", "other"],
  "es-MX": romance, "es-ES": romance, "pt-BR": romance, "pt-PT": romance, fr: romance, it: romance,
  ru: slavic, uk: slavic, ja: ["other"], "zh-Hans": ["other"], ko: ["other"], id: ["other"],
};

/** Each language's own quotes and apostrophe. */
const ownMarks = {
  en: "“”’", de: "„“", "es-MX": "“”", "es-ES": "«»", "pt-BR": "“”", "pt-PT": "«»", ja: "「」", "zh-Hans": "“”", fr: "«»’",
  ko: "‘’", it: "“”’", ru: "«»", id: "“”", hi: "“”", uk: "«»’",
};

/** Nothing but signs may stand between the places of these. */
const joiningKeys = ["dateRange", "sentBy", "checkProgress"];
/** Words that a language shares with English. */
const sameAsEnglish = {
  de: ["video", "audio", "audioFiles", "links", "dateRange", "sentBy"],
  fr: ["messageCount", "messagesLabel", "messages", "image", "audio", "audioFiles", "document", "date", "service",
    "participants", "dateRange", "sentBy"],
  "es-MX": ["video", "audio", "audioFiles", "dateRange", "sentBy"],
  "es-ES": ["audio", "audioFiles", "dateRange", "sentBy"],
  "pt-BR": ["links", "dateRange", "sentBy"],
  "pt-PT": ["dateRange", "sentBy"],
  it: ["video", "audio", "audioFiles", "dateRange", "sentBy"],
  id: ["video", "audio", "audioFiles", "dateRange", "sentBy"],
  ko: ["sentBy"],
  ru: ["sentBy"],
  hi: ["dateRange", "sentBy"],
  uk: ["sentBy"],
};

const toBeToldApart = [
  ["loved", "liked", "disliked", "laughed", "emphasized", "questioned", "otherReaction", "reactionRemoved"],
  ["verdictValid", "verdictIncomplete", "verdictDamaged"], ["appearanceSystem", "appearanceLight", "appearanceDark"],
  ["missingFiles", "changedFiles", "unexpectedFiles"], ["edited", "unsent"], ["unsentMessage", "emptyMessage"],
  ["missingAttachment", "unreadableAttachment"], ["previousHit", "nextHit"], ["previousItem", "nextItem"],
];

/** @param {unknown} word @returns {string[]} */
function formsOf(word) {
  return typeof word === "string" ? [word] : Object.values(word);
}

/** Every text of a table, with the name of its place. */
function textsOf(table) {
  return Object.entries(table).flatMap(([key, word]) => (typeof word === "string" ? [[key, word]]
    : Object.entries(word).map(([category, form]) => [`${key} ${category}`, form])));
}

/** Beside what is filled in. */
function hasLetters(text) {
  return /\p{L}/u.test(text.replace(/\{\w+\}/g, ""));
}

function placesOf(text) {
  return Array.from(new Set(text.match(/\{\w+\}/g) ?? [])).sort();
}

/** The places of the texts for which something holds, so that a failure names them all. */
function placesWhere(table, holds) {
  return textsOf(table).filter(([, text]) => holds(text)).map(([place]) => place);
}

/** Whether a category holds no number but one, or none and one. */
function isSingular(tag, category) {
  const rules = new Intl.PluralRules(tag);
  for (let number = 2; number < 200; number++) if (rules.select(number) === category) return false;
  return true;
}

test("the page speaks the fifteen languages", () => assert.deepEqual(Object.keys(wordsByTag), tags));

for (const [tag, table] of Object.entries(wordsByTag)) {
  describe(`the words of ${tag}`, () => {
    test("are as many as the English ones, in the same order", () => assert.deepEqual(Object.keys(table), keys));

    test("are counted where the English ones are", () => {
      assert.deepEqual(keys.filter((key) => typeof table[key] !== "string"), countedKeys);
    });

    test("have each plural form of the language and no other", () => {
      for (const key of countedKeys) assert.deepEqual(Object.keys(table[key]), pluralForms[tag], key);
      for (const category of new Intl.PluralRules(tag).resolvedOptions().pluralCategories) {
        assert.ok(pluralForms[tag].includes(category), category);
      }
    });

    test("have the places of the English ones; a singular may say its number in words", () => {
      for (const key of keys) {
        const wanted = placesOf(formsOf(english[key]).join(" "));
        const word = table[key];
        for (const [category, form] of Object.entries(typeof word === "string" ? { "": word } : word)) {
          const places = placesOf(form);
          if (category === "one" && isSingular(tag, category) && !places.includes("{count}")) places.push("{count}");
          assert.deepEqual(places.sort(), wanted, `${key} ${category}`);
        }
      }
    });

    test("are none of them empty, and only joined places have no letters", () => {
      const silent = keys.filter((key) => formsOf(table[key]).some((form) => !hasLetters(form)));
      assert.deepEqual(silent.filter((key) => !joiningKeys.includes(key)), []);
      assert.deepEqual(placesWhere(table, (text) => /^(\{\w+\}\s*)*$/.test(text)), []);
    });

    test("have no blanks side by side or at an end", () => {
      assert.deepEqual(placesWhere(table, (text) => /\s\s|^\s|\s$/.test(text)), []);
    });

    test("have no straight quotes and none of another language", () => {
      const foreign = Array.from("“”„‟‘’‚‛«»‹›「」『』\"'`´").filter((mark) => !ownMarks[tag].includes(mark));
      assert.deepEqual(placesWhere(table, (text) => foreign.some((mark) => text.includes(mark))), []);
    });

    test("close every quote that they open", () => {
      const [open, close] = ownMarks[tag];
      const quotation = new RegExp(`${open}[^${open}${close}]*${close}`, "g");
      const strays = new RegExp(`[${open}${close}]`);
      assert.deepEqual(placesWhere(table, (text) => strays.test(text.replace(quotation, ""))), []);
    });

    test("quote what the English ones quote", () => {
      const [open, close] = ownMarks[tag];
      const isQuoted = (form, place) => form.replace(/\u00a0/g, "").includes(`${open}${place}${close}`);
      for (const [key, word] of Object.entries(english)) {
        for (const [, place] of formsOf(word)[0].matchAll(/“({\w+}|manifest\.json|data\/messages\.js)”/g)) {
          for (const form of formsOf(table[key])) assert.ok(isQuoted(form, place), `${key}: ${form}`);
        }
      }
    });

    test("write an ellipsis as one sign", () => {
      assert.deepEqual(placesWhere(table, (text) => text.includes("...")), []);
    });

    test("name the files as they are called", () => {
      for (const [key, word] of Object.entries(english)) {
        for (const [name] of formsOf(word)[0].matchAll(/[\w/]+\.js(?:on)?\b/g)) {
          for (const form of formsOf(table[key])) assert.ok(form.includes(name), `${key}: ${name}`);
        }
      }
    });

    test("name the command to print as it is called", () => assert.ok(table.printTooLong.includes(table.print)));

    test("show what is to be typed after has:", () => {
      const told = fold(table.findHelpHas);
      for (const kind of kindNames.filter((name) => name !== "attachment")) assert.ok(told.includes(kind), kind);
    });

    test("show dates as they are to be typed", () => {
      for (const date of ["2024-05-01", "2024-05"]) assert.ok(table.badDate.includes(date), date);
      assert.match(table.badDate, /(?<![-\d])2024(?![-\d])/u);
    });

    test("leave no place open when they are said", () => {
      const speech = new Speech(tag);
      for (const key of keys) {
        const places = placesOf(formsOf(english[key]).join(" ")).map((place) => place.slice(1, -1));
        const values = Object.fromEntries(places.map((place) => [place, "x"]));
        assert.doesNotMatch(speech.say(key, values), /[{}]/, key);
        for (const count of [0, 1, 2, 5, 21, 1.5, 1_000_000]) {
          assert.doesNotMatch(speech.sayCount(key, count, values), /[{}]/, key);
        }
      }
    });
  });
}

for (const [tag, table] of translated) {
  describe(`the translation into ${tag}`, () => {
    test("leaves no English but words that both languages have", () => {
      const shared = keys.filter((key) => formsOf(table[key]).some((form) => formsOf(english[key]).includes(form)));
      assert.deepEqual(shared.sort(), [...sameAsEnglish[tag] ?? []].sort());
    });

    test("has no longer text than its place holds", () => {
      for (const key of keys) {
        const longest = Math.max(...formsOf(english[key]).map((form) => form.length));
        for (const form of formsOf(table[key])) assert.ok(form.length <= longest * 2 + 24, `${key}: ${form}`);
      }
    });

    test("tells different things in different words", () => {
      for (const group of toBeToldApart) {
        assert.equal(new Set(group.map((key) => formsOf(table[key])[0])).size, group.length, group[0]);
      }
    });
  });
}

const scripts = {
  ja: /[\p{sc=Hiragana}\p{sc=Katakana}\p{sc=Han}]/u, "zh-Hans": /\p{sc=Han}/u, ko: /\p{sc=Hangul}/u,
  ru: /\p{sc=Cyrillic}/u, uk: /\p{sc=Cyrillic}/u, hi: /\p{sc=Devanagari}/u,
};
for (const [tag, script] of Object.entries(scripts)) {
  test(`every text of ${tag} with letters is in its script`, () => {
    assert.deepEqual(placesWhere(wordsByTag[tag], (text) => hasLetters(text) && !script.test(text)), []);
  });
}

test("French keeps its high signs and guillemets on the line of their word", () => {
  assert.deepEqual(placesWhere(wordsByTag.fr, (text) => /(^|[^\u00a0])[:;!?»]|«[^\u00a0]/.test(text)), []);
});

test("Ukrainian and Russian do not borrow each other's letters", () => {
  assert.deepEqual(placesWhere(wordsByTag.uk, (text) => /[ыэёъ]/i.test(text)), []);
  assert.deepEqual(placesWhere(wordsByTag.ru, (text) => /[іїєґ]/i.test(text)), []);
});

describe("counts are told", () => {
  const told = [
    ["ru", 1, "1 сообщение"], ["ru", 21, "21 сообщение"], ["ru", 3, "3 сообщения"],
    ["ru", 11, "11 сообщений"], ["ru", 0, "0 сообщений"],
    ["uk", 1, "1 повідомлення"], ["uk", 24, "24 повідомлення"], ["uk", 12, "12 повідомлень"],
    ["fr", 0, "0 message"], ["fr", 2, "2 messages"], ["fr", 1_000_000, "1 000 000 de messages"],
    ["es-ES", 1, "1 mensaje"], ["es-MX", 1_000_000, "1,000,000 de mensajes"], ["pt-BR", 2, "2 mensagens"],
    ["pt-PT", 0, "0 mensagens"], ["it", 1, "1 messaggio"],
    ["de", 1234, "1.234 Nachrichten"], ["ja", 5, "5件のメッセージ"], ["zh-Hans", 5, "5 条信息"],
    ["ko", 5, "메시지 5개"], ["id", 5, "5 pesan"], ["hi", 1, "1 संदेश"],
  ];
  for (const [tag, count, text] of told) {
    test(`${count} in ${tag}`, () => {
      assert.equal(new Speech(tag).sayCount("messageCount", count).replace(/[\u00a0\u202f]/g, " "), text);
    });
  }
});

describe("a page marked", () => {
  const marked = [
    // As the page is marked, and its words and formats.
    ["es", "es-MX", "es"], ["es-AR", "es-MX", "es-AR"], ["es-ES", "es-ES", "es-ES"], ["ES-es", "es-ES", "es-ES"],
    ["pt", "pt-BR", "pt"], ["pt-AO", "pt-BR", "pt-AO"], ["pt-PT", "pt-PT", "pt-PT"],
    ["pt-pt-u-nu-latn", "pt-PT", "pt-PT-u-nu-latn"],
    ["zh", "zh-Hans", "zh"], ["zh-CN", "zh-Hans", "zh-CN"], ["zh-hans", "zh-Hans", "zh-Hans"],
    ["zh-Hant", "zh-Hans", "zh-Hans"], ["zh-TW", "zh-Hans", "zh-Hans"],
    ["hi-Latn", "hi", "hi"], ["de-AT", "de", "de-AT"], ["in", "id", "id"],
    ["en-GB", "en", "en-GB"],
    // Neither words nor dates of a language that the page does not speak.
    ["nb-NO", "en", "en"], ["ar", "en", "en"], ["deu", "de", "de"], ["dex", "en", "en"], ["valueOf", "en", "en"],
    ["", "en", "en"], ["{{LANG}}", "en", "en"], ["de_DE", "en", "en"], ["-", "en", "en"],
  ];
  for (const [tag, words, format] of marked) {
    test(`"${tag}" has the words of ${words} and the dates of ${format}`, () => {
      const found = languageFor(tag);
      assert.equal(Object.keys(wordsByTag).find((one) => wordsByTag[one] === found.words), words);
      assert.equal(found.tag, format);
    });
  }
});

describe("the page's own sources", () => {
  const app = new URL("../../../resources/Web/app/", import.meta.url);
  const sources = sourcesIn(app);

  /** @param {URL} folder @returns {{ name: string, text: string }[]} */
  function sourcesIn(folder) {
    return readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
      if (entry.isDirectory()) return entry.name === "words" ? [] : sourcesIn(new URL(`${entry.name}/`, folder));
      if (!entry.name.endsWith(".js")) return [];
      // A comment uses no words.
      const text = readFileSync(new URL(entry.name, folder), "utf8").replace(/\/\*[\s\S]*?\*\/|(^|\s)\/\/.*$/gm, "$1");
      return [{ name: entry.name, text }];
    });
  }

  /** The keys that are said by name, those of both branches of a choice included. */
  function saidIn(text) {
    const calls = text.matchAll(/\.say(?:Count)?\((?:[^()"]*(?:\([^()]*\))?[^()"]*\?\s*)?"(\w+)"(?:\s*:\s*"(\w+)")?/g);
    return Array.from(calls).flatMap(([, one, other]) => [one, other]).filter((key) => key !== undefined);
  }

  test("say something", () => assert.ok(sources.flatMap(({ text }) => saidIn(text)).length > 50));

  test("say no words that English lacks", () => {
    const unknown = sources.map(({ name, text }) => [name, ...saidIn(text).filter((key) => !keys.includes(key))]);
    assert.deepEqual(unknown.filter(({ length }) => length > 1), []);
  });

  test("use every word there is", () => {
    const named = new Set(sources.flatMap(({ text }) => Array.from(text.matchAll(/"(\w+)"/g), ([, one]) => one)));
    assert.deepEqual(keys.filter((key) => !named.has(key)), []);
  });
});
