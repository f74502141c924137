// Every view of the page in each of its languages, in the narrowest window: all words fit, and none of them is English.

import assert from "node:assert/strict";
import path from "node:path";
import { after, before, describe, test } from "node:test";
import { english } from "../../../resources/Web/app/words/en.js";
import { wordsByTag } from "../../../resources/Web/app/words/languages.js";
import { everyCase, longWord, makeFolder, writeAlbum } from "../support/album.js";
import { openAlbum, startBrowser } from "../support/browser.js";
import { layoutProblems } from "../support/layout.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */
/** @typedef {import("../../../resources/Web/app/words/en.js").Word} Word */

const whole = everyCase();
/** Without the longest message; and the stored texts of warnings, English in every language, are no words of the page here. */
const record = { ...whole, messages: /** @type {any[]} */ (whole.messages).filter(({ text }) => text !== longWord), warnings: [
  { id: "w1", code: "attachment_missing", summary: "IMG_0007.MOV", sourceID: "504" },
  { id: "w2", code: "unsupported_payload", summary: "25", sourceID: "25" },
  { id: "w3", code: "unresolved_reaction", summary: "99", sourceID: "99" },
  { id: "w4", code: "attachment_unreadable", summary: "IMG_0008.jpg", sourceID: "505" },
] };

/** Presses a button by its place, for its name is another one in each language. @param {Page} page @param {string} selector @param {number} place */
const press = (page, selector, place) => page.locator(selector).nth(place).evaluate((button) => /** @type {HTMLElement} */ (button).click());
/** @param {Page} page @param {number} place */
const choose = (page, place) => press(page, "#actions > .icon-button", place);
/** Counted from the menu's end. @param {Page} page @param {number} place */
const chooseFromEnd = async (page, place) => press(page, ".menu-item", await page.locator(".menu-item").count() - place);
/** @param {Page} page @param {string} query */
const find = async (page, query) => {
  await page.keyboard.press("Control+f");
  await page.locator(".search-input").fill(query);
};
/** @param {Page} page @param {number} place */
const openShelf = async (page, place) => {
  await choose(page, 2);
  await press(page, "[role=tab]", place);
  await page.locator(".gallery .entry, .gallery .photo").filter({ visible: true }).first().waitFor();
};

/** Ways to each view from the page as it opens. @type {{ [view: string]: (page: Page, folder: string) => Promise<unknown> }} */
const views = {
  beginning: async () => {},
  "reactions folded out": (page) => press(page, ".reaction", 0),
  menu: (page) => page.locator(".menu-corner > .icon-button").click(),
  about: async (page) => {
    await choose(page, 3);
    await page.locator(".about [aria-busy=false]").waitFor();
  },
  dates: (page) => choose(page, 1),
  "find with help": (page) => find(page, ""),
  "find with hits": async (page) => {
    await find(page, "the");
    await page.locator(".result").first().waitFor();
  },
  "find without hits": async (page) => {
    await find(page, "zzzz");
    await page.locator(".search-note:not(:empty)").waitFor();
  },
  "find for what is nothing": (page) => find(page, "has:zzzz"),
  "find on what is no date": (page) => find(page, "on:zzzz"),
  "find from nobody": async (page) => {
    await find(page, "from:zzzz");
    await page.locator(".search-note:not(:empty)").waitFor();
  },
  "gallery of pictures": (page) => openShelf(page, 0),
  "gallery of audio": (page) => openShelf(page, 1),
  "gallery of links": (page) => openShelf(page, 2),
  "gallery of files": (page) => openShelf(page, 3),
  viewer: (page) => press(page, ".picture", 0),
  check: (page) => chooseFromEnd(page, 2),
  "check with a verdict": async (page, folder) => {
    await chooseFromEnd(page, 2);
    await page.locator(".check-field").setInputFiles(folder);
    await page.locator(".check-verdict").waitFor();
  },
  print: (page) => chooseFromEnd(page, 1),
  "print of some days": async (page) => {
    await chooseFromEnd(page, 1);
    await page.locator("input[name=print-what]").last().check();
  },
};

/** What a word says besides what is filled in. @param {Word} word */
const phrasesOf = (word) => (typeof word === "string" ? [word] : Object.values(word)).flatMap((form) => form.split(/\{\w+\}/));

/** What English alone says, in more than twelve letters. @param {string} tag */
function englishPhrases(tag) {
  const own = JSON.stringify(wordsByTag[tag]);
  return Object.values(english).flatMap(phrasesOf).map((phrase) => phrase.trim())
    .filter((phrase) => phrase.replace(/\P{L}/gu, "").length > 12 && !own.includes(JSON.stringify(phrase).slice(1, -1)));
}

/**
 * All that the page says, to the eye or to a screen reader, and what of the words over the conversation is cut or hangs over.
 * @param {Page} page
 */
function wordsOf(page) {
  return page.evaluate(() => {
    const said = Array.from(document.body.querySelectorAll("*:not(script):not(noscript)"), (one) => [
      ...Array.from(one.childNodes, (node) => (node instanceof Text ? node.data : "")),
      ...["aria-label", "title", "placeholder", "alt"].map((name) => one.getAttribute(name) ?? ""),
    ].filter(Boolean).join("\n")).join("\n");
    const over = ".menu *, dialog[open] *:not(input[type=file]), .search *, .rail *, .toast, .notice";
    const cut = Array.from(document.querySelectorAll(over)).filter((one) => {
      if (!(one instanceof HTMLElement) || one.clientWidth === 0 || one.closest(".visually-hidden")) return false;
      const { left, right } = one.getBoundingClientRect();
      return one.scrollWidth > one.clientWidth + 1 || left < -0.5 || right > document.documentElement.clientWidth + 0.5;
    });
    return { said, cut: cut.map((one) => `${one.tagName} ${one.className}: ${one.textContent}`) };
  });
}

/** What is wrong with a view. @param {Page} page @param {readonly string[]} phrases of another language */
async function problemsOf(page, phrases) {
  const { said, cut } = await wordsOf(page);
  const strange = phrases.filter((phrase) => said.includes(phrase)).map((phrase) => `English: ${phrase}`);
  return [...strange, ...cut, ...await layoutProblems(page)];
}

describe("every view", { concurrency: 3 }, () => {
  /** @type {Awaited<ReturnType<typeof startBrowser>>} */
  let browser;
  const album = makeFolder();
  before(async () => {
    browser = await startBrowser();
  });
  after(() => browser.close());

  for (const tag of Object.keys(wordsByTag)) {
    const phrases = tag === "en" ? [] : englishPhrases(tag);

    test(`in ${tag} fits and is in no other language`, async () => {
      const folder = writeAlbum(path.join(album, tag), record, { language: tag, manifest: true });
      const page = await openAlbum(browser, folder, { width: 320, height: 640, reducedMotion: "reduce" });
      for (const [view, open] of Object.entries(views)) {
        await open(page, folder).catch((error) => { throw new Error(`${view}: ${error.message}`, { cause: error }); });
        assert.deepEqual(await problemsOf(page, phrases), [], view);
        for (let step = 0; step < 2; step++) await page.keyboard.press("Escape");
      }
      assert.deepEqual(page.problems(), []);
      await page.close();
    });

    test(`in ${tag} of an album without its data fits and is in no other language`, async () => {
      const folder = writeAlbum(path.join(album, `${tag}-damaged`), record, { language: tag, data: "" });
      const page = await openAlbum(browser, folder, { width: 320, state: "failed" });
      assert.deepEqual(await problemsOf(page, phrases), []);
      await page.close();
    });
  }

  test("in English would not pass for another language", async () => {
    const page = await openAlbum(browser, writeAlbum(path.join(album, "english"), record), { width: 320 });
    await choose(page, 3);
    const found = await problemsOf(page, englishPhrases("de"));
    assert.ok(found.includes("English: What could not be kept") && found.includes("English: Unknown sender"), found.join("\n"));
    await page.close();
  });
});
