import assert from "node:assert/strict";
import { test } from "node:test";
import { People } from "../../../resources/Web/app/people/People.js";
import { Conversation } from "../../../resources/Web/app/records/Conversation.js";
import { filterOf } from "../../../resources/Web/app/search/conditions.js";
import { fold } from "../../../resources/Web/app/search/fold.js";
import { HitList } from "../../../resources/Web/app/search/HitList.js";
import { parseQuery } from "../../../resources/Web/app/search/query.js";
import { SearchIndex } from "../../../resources/Web/app/search/SearchIndex.js";
import { snippetOf, textWithMost } from "../../../resources/Web/app/search/snippet.js";
import { Calendar } from "../../../resources/Web/app/timeline/Calendar.js";
import { TimelineIndex } from "../../../resources/Web/app/timeline/TimelineIndex.js";
import { Speech } from "../../../resources/Web/app/words/Speech.js";
import { attachment, conversation, everyCase, jonas, message, mia, reaction } from "../support/album.js";
import { makeRandom } from "../support/measures.js";

/** @typedef {import("../../../resources/Web/app/page/Album.js").Album} Album */

/**
 * What a search needs of an album.
 * @param {unknown} data
 */
function albumOf(data) {
  const records = new Conversation(data);
  const speech = new Speech("en");
  const calendar = new Calendar("UTC");
  const timeline = new TimelineIndex(records, calendar);
  timeline.add(0, records.messageCount);
  const album = { conversation: records, speech, calendar, timeline, people: new People(records, speech) };
  return /** @type {Album} */ (/** @type {unknown} */ (album));
}

/** @param {Album} album @param {SearchIndex} index @param {string} text */
async function find(album, index, text) {
  const { terms, conditions } = parseQuery(text);
  const filter = filterOf(conditions, album);
  /** @type {number[]} */
  const found = [];
  const isComplete = await index.search({ terms, accepts: filter.accepts }, (some) => void found.push(...some));
  assert.equal(isComplete, true);
  return found;
}

/** @param {unknown} data @param {string} text */
async function findIn(data, text) {
  const album = albumOf(data);
  return find(album, new SearchIndex(album.conversation), text);
}

const words = ["lake", "Lake", "tent", "weekend", "Straße", "strasse", "café", "cafe\u0301", "naïve", "don’t",
  "don't", "привет", "Ёлка", "дома", "東京", "ガス", "ｶﾞｽ", "한국", "👍🏽", "🎉", "❤️", "a", "I", "on", "onto", "…", "x\u200dy",
  "İzmir", "σοφος", "ΣΟΦΟΣ", "\ufffc", "2024", "٢٠٢٤", "𞥒𞥐𞥒𞥔", "𞤀𞥄𞤄"];
const names = ["IMG_0001.jpg", "Café plan.pdf", "hum.m4a", "clip.mov", ""];

/** @param {number} count @param {(limit: number) => number} random */
function randomMessages(count, random) {
  return Array.from({ length: count }, (_, number) => {
    const sender = [mia, jonas, "me", "participant-nobody", undefined][random(5)];
    const word = () => words[random(words.length)];
    const draw = (/** @type {number} */ most) => Array.from({ length: random(most) }, word).join(" ");
    const files = Array.from({ length: 1 + random(2) }, (__, item) => attachment(item, names[random(5)]));
    const reactions = [reaction(1, mia, "loved"), ...(random(2) ? [reaction(2, mia, "loved", true, 1)] : [])];
    const fields = {
      ...(random(6) === 0 ? { subject: draw(4) } : {}), ...(random(9) === 0 ? { replyToGUID: "GUID-1" } : {}),
      ...(random(9) === 0 ? { editedAt: "2024-01-01T00:00:00Z" } : {}),
      ...(random(7) === 0 ? { attachments: files } : {}),
      ...(random(8) === 0 ? { reactions } : {}),
    };
    const text = random(12) === 0 ? undefined : draw(9) + (random(15) === 0 ? " see https://example.org/a" : "");
    const time = Date.UTC(2019, random(60), 1 + random(28), random(24));
    return message(number, sender, text, random(40) === 0 ? "someday" : new Date(time).toISOString(), fields);
  });
}

const own = { photo: /\.jpg$/, video: /\.mov$/, audio: /\.m4a$/, file: /\.pdf$|^$/, attachment: /./s };

/**
 * What the words say, looked up in the plainest way: every message, every condition, the whole text.
 * @param {any} raw @param {{ words: string[], conditions: [string, string][] }} query
 */
function isHit(raw, query) {
  return query.conditions.every(([operator, value]) => holds(raw, operator, value))
    && query.words.every((word) => textsOf(raw).some((text) => text.includes(fold(word).trim())));
}

/** @type {Map<unknown, string[]>} */
const foldedTexts = new Map();

/** @param {any} raw */
function textsOf(raw) {
  const names = raw.attachments.map((/** @type {any} */ one) => one.displayName);
  const texts = foldedTexts.get(raw) ?? [raw.subject ?? "", raw.text ?? "", ...names].map(fold);
  foldedTexts.set(raw, texts);
  return texts;
}

/** @param {any} raw @param {string} operator @param {string} value */
function holds(raw, operator, value) {
  const day = /^\d{4}-/.test(raw.date) ? raw.date.slice(0, value.length) : undefined;
  if (operator === "before") return day !== undefined && day < value;
  if (operator === "after") return day !== undefined && day > value;
  if (operator === "on") return day === value;
  if (operator === "from") {
    const sender = { mia, jonas, "\"Mia Okafor\"": mia }[value];
    return raw.isFromMe ? value === "me" : sender !== undefined && raw.senderID === sender;
  }
  if (value === "link") return /https:/.test(raw.text ?? "");
  if (value === "reply") return raw.replyToGUID !== undefined;
  if (value === "edit") return raw.editedAt !== undefined;
  if (value === "reaction") return raw.reactions.length === 1;
  const pattern = own[/** @type {keyof typeof own} */ (value)];
  return value === "attachment" ? raw.attachments.length > 0
    : raw.attachments.some((/** @type {any} */ one) => pattern.test(one.displayName));
}

const dates = ["2021", "2020-06", "2022-03-04"];
const values = { from: ["me", "mia", "jonas", "\"Mia Okafor\""], before: dates, after: dates, on: dates,
  has: ["photo", "video", "audio", "file", "attachment", "link", "reply", "edit", "reaction"] };

/** @param {any[]} messages @param {(limit: number) => number} random */
function randomQuery(messages, random) {
  const conditions = Array.from({ length: random(3) ? 0 : 1 + random(2) }, () => {
    const operator = /** @type {keyof typeof values} */ (Object.keys(values)[random(5)]);
    return /** @type {[string, string]} */ ([operator, values[operator][random(values[operator].length)]]);
  }).filter(([operator], place, all) => all.findIndex(([other]) => other === operator) === place);
  const phrases = Array.from({ length: random(4) }, () => {
    const text = String(messages[random(messages.length)].text ?? words[random(words.length)]);
    const start = random(Math.max(1, text.length));
    return text.slice(start, start + 1 + random(12)).replace(/["“”„«»]/gu, "");
  });
  const quoted = phrases.map((phrase) => `"${phrase}"`);
  return { words: phrases, conditions, text: [...quoted, ...conditions.map((one) => one.join(":"))].join(" ") };
}

test("1,000 random queries in 4,000 messages find what a plain look at each message finds", async () => {
  const random = makeRandom(6);
  // The generator's low digits repeat soon.
  const draw = (/** @type {number} */ limit) => Math.floor(random(1 << 30) / 1024) % limit;
  const messages = randomMessages(4000, draw);
  const album = albumOf(conversation(messages));
  const index = new SearchIndex(album.conversation);
  let hits = 0;
  for (let round = 0; round < 1000; round++) {
    const query = randomQuery(messages, draw);
    const expected = messages.flatMap((raw, place) => (isHit(raw, query) ? [place] : []));
    assert.deepEqual(await find(album, index, query.text), expected, query.text);
    hits += expected.length;
  }
  assert.ok(hits > 50_000, `${hits} hits are too few to prove anything`);
});

test("more messages than a block holds, narrow and wide, are found in their order", async () => {
  const count = 20_000;
  const sign = (/** @type {number} */ place) => String.fromCodePoint(0x4e00 + place);
  const text = (/** @type {number} */ place) => (place % 3 ? "plain word" : `word ${sign(place)}`);
  const album = albumOf(conversation(Array.from({ length: count }, (_, place) => message(place, "me", text(place)))));
  const index = new SearchIndex(album.conversation);
  assert.deepEqual(await find(album, index, "word"), Array.from({ length: count }, (_, place) => place));
  assert.deepEqual(await find(album, index, sign(0)), [0]);
  assert.deepEqual(await find(album, index, `word ${sign(18_000)}`), [18_000]);
  assert.deepEqual(await find(album, index, "plain 中"), []);
});

test("a search during the making of the index finds all, and another one after it the same", async () => {
  const text = (/** @type {number} */ place) => (place % 1000 ? "hay" : "needle");
  const album = albumOf(conversation(Array.from({ length: 30_000 }, (_, place) => message(place, "me", text(place)))));
  const index = new SearchIndex(album.conversation);
  const making = index.make();
  const first = await find(album, index, "needle");
  await making;
  assert.equal(first.length, 30);
  assert.deepEqual(await find(album, index, "needle"), first);
});

test("an aborted search says that it did not come to its end", async () => {
  const album = albumOf(conversation(Array.from({ length: 30_000 }, (_, place) => message(place, "me", "word"))));
  const index = new SearchIndex(album.conversation);
  const controller = new AbortController();
  const isComplete = await index.search({ terms: ["word"], accepts: [] }, () => controller.abort(), controller.signal);
  assert.equal(isComplete, false);
});

/** @type {[string, string, string[]][]} */
const cases = [
  ["a subject", "\"subject <b>of\"", ["7"]],
  ["a name of an attachment", "packing", ["21"]],
  ["words of two fields of one message", "subject script", ["7"]],
  ["no phrase over two fields", "\"it script\"", []],
  ["the word of nobody", "from:nobody who", ["35"]],
  ["the reader's own", "from:me seven", ["9"]],
  ["photos, missing ones too", "has:photo", ["17", "19", "21"]],
  ["documents", "has:file", ["21", "23"]],
  ["audio", "has:audio", ["23"]],
  ["links", "has:links", ["5"]],
  ["replies", "has:reply", ["9", "15"]],
  ["edited messages", "has:edit", ["9"]],
  ["reactions that stand", "has:reaction", ["5"]],
  ["a far year", "on:10000", ["45"]],
  ["no message without a date before or after one", "has:photo before:1990", []],
  ["text with direction marks in it", "three desrever", ["39"]],
  ["the end of a long word", "0123456789012345678", ["41"]],
];
for (const [name, text, ids] of cases) {
  test(`a search for ${name}`, async () => {
    const data = everyCase();
    const found = await findIn(data, text);
    assert.deepEqual(found.map((index) => /** @type {any} */ (data.messages)[index].id), ids);
  });
}

test("messages that are no records are passed over", async () => {
  const messages = [null, 7, "word", [], { text: 5, attachments: 3 }, { text: "word" }];
  assert.deepEqual(await findIn({ messages }, "word"), [5]);
});

test("an empty conversation has no hits", async () => assert.deepEqual(await findIn({}, "word"), []));

test("what is no date, no kind and no person is told", () => {
  const album = albumOf(everyCase());
  const told = (/** @type {string} */ text) => filterOf(parseQuery(text).conditions, album);
  assert.deepEqual(told("on:2024-02-30").problem, { word: "badDate", value: "2024-02-30" });
  assert.deepEqual(told("has:cheese").problem, { word: "badKind", value: "cheese" });
  assert.equal(told("from:gudrun").stranger, "gudrun");
  assert.equal(told("from:mia from:me").stranger, undefined);
});

test("a day is one of the calendar's zone, however its parts are divided", async () => {
  const late = message(1, "me", "late", "2024-05-01T23:59:59Z");
  const data = conversation([late, message(2, "me", "early", "2024-05-02T00:00:00Z")]);
  for (const day of ["2024-05-02", "2024/5/2", "2024.05.02"]) assert.deepEqual(await findIn(data, `on:${day}`), [1]);
});

test("a day and a kind are understood in digits, signs and marks of other scripts", async () => {
  const photo = { attachments: [attachment(1, "IMG.jpg")] };
  const first = message(1, "me", "one", "2024-05-01T09:00:00Z");
  const messages = [first, message(2, "me", "two", "2023-05-01T09:00:00Z", photo)];
  for (const day of ["２０２４", "٢٠٢٤", "२०२४-०५", "۲۰۲۴/۵/۱", "２０２４．０５．０１", "\u20662024-05\u2069", "2024\u201105"]) {
    assert.deepEqual(await findIn(conversation(messages), `on:${day}`), [0], day);
    assert.deepEqual(await findIn(conversation(messages), `on： ${day}`), [0], day);
  }
  assert.deepEqual(await findIn(conversation(messages), "has:\u200ephoto\u200f"), [1]);
});

test("numbers are found in whichever digits they are written and looked for", async () => {
  const years = ["2024", "٢٠٢٤", "۲۰۲۴", "२०२४", "２０２４", "𞥒𞥐𞥒𞥔"];
  const texts = [...years.map((year) => `in ${year}.`), "2023", "²⁰²"];
  const data = conversation(texts.map((text, place) => message(place, "me", text)));
  for (const year of years) assert.deepEqual(await findIn(data, year), [0, 1, 2, 3, 4, 5], year);
});

test("the list of hits grows and finds the place of a message", () => {
  const hits = new HitList();
  for (let index = 0; index < 1000; index++) hits.add(index * 3);
  assert.equal(hits.count, 1000);
  assert.deepEqual([0, 1, 3, 2997, 2998].map((index) => hits.placeAtOrAfter(index)), [0, 1, 1, 999, 1000]);
  assert.equal(hits.at(999), 2997);
});

/** @type {[string, string, string[], string][]} */
const snippets = [
  ["a short text", " The \n lake\ufffc is blue ", ["lake"], "The lake is blue"],
  ["a late hit", `${"word ".repeat(40)}needle here`, ["needle"], "…word word word word word word word needle here"],
  ["a hit in a long word", `${"x".repeat(100)}needle`, ["needle"], "…xxxxxxxxxxxxneedle"],
  ["no hit", "y".repeat(300), [], `${"y".repeat(200)}…`],
];
for (const [name, text, terms, expected] of snippets) {
  test(`a snippet of ${name}`, () => assert.equal(snippetOf(text, terms), expected));
}

test("a snippet halves no character at either end", () => {
  for (let shift = 0; shift < 3; shift++) {
    const side = `${"x".repeat(shift)}${"🎉".repeat(300)}`;
    const snippet = snippetOf(`${side}needle${side}`, ["needle"]);
    assert.doesNotMatch(snippet, /[\ud800-\udbff](?![\udc00-\udfff])|(^|[^\ud800-\udbff])[\udc00-\udfff]/);
    assert.match(snippet, /needle/);
  }
});

test("of several texts the one with the most terms is shown", () => {
  const texts = ["Subject", "the lake and the tent", "lake.jpg"];
  assert.equal(textWithMost(texts, ["lake", "tent"]), texts[1]);
  assert.equal(textWithMost(["Subject", "text"], []), "Subject");
  assert.equal(textWithMost([], ["lake"]), "");
});
