// The main paths of a reader, in Firefox: it reads a page from a disk by other rules than Chromium.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { after, before, test } from "node:test";
import { attachment, conversation, everyCase, makeFolder, manyMessages, mark, message, mia, png, writeAlbum } from "../support/album.js";
import { openInFirefox, startFirefox, untilInFirefox } from "../support/firefox.js";

/** @type {import("puppeteer-core").Browser} */
let browser;
before(async () => {
  browser = await startFirefox();
});
after(async () => {
  await browser.close();
});

/** @param {number} index */
const isInSight = (index) => {
  const box = document.querySelector(`article[data-index="${index}"]`)?.getBoundingClientRect();
  return box !== undefined && box.top < innerHeight && box.bottom > 60;
};

test("an album opens, and all of its messages stand in it", async () => {
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), everyCase()));
  assert.equal(await page.title(), "Lake & <weekend> \"it's\"");
  assert.equal(await page.$$eval("article", (rows) => rows.length), 25);
  assert.equal(await page.evaluate(() => String(/** @type {any} */ (window).hacked)), "undefined");
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= document.documentElement.clientWidth));
  await page.$eval("article[data-id=\"17\"]", (row) => row.scrollIntoView());
  await untilInFirefox(page, () => {
    const image = /** @type {HTMLImageElement | null} */ (document.querySelector("article[data-id=\"17\"] img"));
    return image !== null && image.complete && image.naturalWidth === 640;
  });
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a long conversation is scrolled to its end and back", async () => {
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), manyMessages(2600)));
  assert.ok(await page.$$eval("article", (rows) => rows.length) < 100);
  await page.keyboard.press("End");
  await untilInFirefox(page, isInSight, 2599);
  await page.evaluate(() => scrollTo(0, 0));
  await untilInFirefox(page, isInSight, 0);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a link leads to its message, a reply to what it answers, and Back leads back", async () => {
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), manyMessages(2600)), "#m=GUID-4000");
  await untilInFirefox(page, isInSight, 2000);
  await page.$eval("article[data-index=\"2000\"] button.reply", (reply) => /** @type {HTMLElement} */ (reply).click());
  await untilInFirefox(page, isInSight, 800);
  assert.match(page.url(), /#m=GUID-1600$/);
  await page.evaluate(() => history.back());
  await untilInFirefox(page, isInSight, 2000);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

/** @param {import("puppeteer-core").Page} page @param {string} selector @param {string} words */
function untilSaid(page, selector, words) {
  return untilInFirefox(page, ([place, wanted]) => document.querySelector(place)?.textContent === wanted, [selector, words]);
}

/** @param {import("puppeteer-core").Page} page @param {string} name */
async function press(page, name) {
  const button = await page.waitForSelector(`::-p-aria([name="${name}"][role="button"])`);
  await button?.click();
}

/** @param {import("puppeteer-core").Page} page */
async function pressControlF(page) {
  await page.keyboard.down("Control");
  await page.keyboard.press("f");
  await page.keyboard.up("Control");
}

test("Ctrl+F finds what is typed, Enter steps round the hits, and a chosen one gets the focus", async () => {
  // Albums of one conversation share the place where the reader was; this is another one.
  const record = { ...manyMessages(2600), guid: "chat-find" };
  const messages = /** @type {any[]} */ (record.messages);
  messages[900] = message(1800, mia, "\u00dcber die Stra\u00dfe zum Caf\u00e9", "2010-03-01T15:00:00Z");
  messages[2200] = message(4400, "me", "uber die strasse", "2010-03-02T12:40:00Z");
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), record));
  await pressControlF(page);
  await page.waitForSelector(".search-input:focus");
  await page.keyboard.type("\u00dcBER strasse");
  await untilSaid(page, ".search-status", "2 messages found");
  await page.keyboard.press("Enter");
  await untilInFirefox(page, isInSight, 900);
  assert.deepEqual(await page.$$eval("article[data-index=\"900\"] mark", (marks) => marks.map((one) => one.textContent)),
    ["\u00dcber", "Stra\u00dfe"]);
  await page.keyboard.press("Enter");
  await untilInFirefox(page, isInSight, 2200);
  await page.keyboard.press("Enter");
  await untilSaid(page, ".search-status", "1 of 2");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Enter");
  await page.waitForSelector("article[data-index=\"2200\"]:focus");
  assert.match(page.url(), /#m=GUID-4400$/);
  await page.keyboard.press("F3");
  await untilInFirefox(page, isInSight, 900);
  await pressControlF(page);
  await page.keyboard.press("Escape");
  await untilInFirefox(page, () => document.querySelector(".track mark") === null);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

/**
 * Checks a folder. The protocol hands single files to a field and no folder, so only where each of them lay in it is told here;
 * the files themselves are read from the disk.
 * @param {import("puppeteer-core").Page} page
 * @param {string} folder
 * @param {readonly string[]} paths of which no two end alike
 */
async function check(page, folder, paths) {
  await page.evaluate((/** @type {readonly string[]} */ all) => {
    const pathByName = new Map(all.map((one) => [one.slice(one.lastIndexOf("/") + 1), `Album/${one}`]));
    Object.defineProperty(File.prototype, "webkitRelativePath", { get() { return pathByName.get(this.name); }, configurable: true });
  }, paths);
  const field = /** @type {import("puppeteer-core").ElementHandle<HTMLInputElement>} */ (await page.waitForSelector(".check-field"));
  await field.uploadFile(...paths.map((one) => path.join(folder, one)));
  await page.waitForSelector(".check-report");
  return page.$$eval(".check-verdict, .check-detail, .check-files h3, .check-files li", (all) => all.map((one) => one.textContent));
}

test("an album is checked, and one of its files that has changed is named", async () => {
  const folder = writeAlbum(makeFolder(), everyCase(), { manifest: true, files: { "attachments/Large.bin": Buffer.alloc(9_000_000, 7) } });
  const { files } = JSON.parse(fs.readFileSync(path.join(folder, "manifest.json"), "utf8"));
  const listed = files.map((/** @type {any} */ file) => file.path);
  const page = await openInFirefox(browser, folder);
  await press(page, "More");
  await page.$$eval(".menu-item", (items) => items.forEach((item) => {
    if (item.textContent === "Check this album") /** @type {HTMLElement} */ (item).click();
  }));
  assert.deepEqual(await check(page, folder, [...listed, "manifest.json"]),
    ["Valid", `All ${files.length} files are as they were written.`]);
  const changed = fs.openSync(path.join(folder, "attachments/Large.bin"), "r+");
  fs.writeSync(changed, Buffer.of(6), 0, 1, 8_999_999);
  fs.closeSync(changed);
  const left = listed.filter((/** @type {string} */ one) => one !== "attachments/Hum.wav");
  assert.deepEqual(await check(page, folder, [...left, "manifest.json"]), ["Damaged", "1 file is not as it was written.", "1 changed file", "attachments/Large.bin",
    "1 missing file", "attachments/Hum.wav"]);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("the gallery shows pictures, the viewer goes from one to the next and leads to its message", async () => {
  const messages = Array.from({ length: 600 }, (_, index) => message(index, mia, `No. ${index}`, "2026-05-01T09:00:00Z"));
  const colours = /** @type {[number, number, number][]} */ ([[200, 40, 40], [40, 160, 60], [40, 60, 200]]);
  /** @type {{ [path: string]: Buffer }} */
  const pictures = {};
  [50, 300, 550].forEach((index, number) => {
    messages[index] = message(index, mia, mark, "2026-05-01T09:00:00Z", { attachments: [attachment(number, `${number}.png`)] });
    pictures[`attachments/${number}.png`] = png(60, 40, colours[number]);
  });
  const record = conversation(messages, { guid: "chat-pictures" });
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), record, { files: pictures }));
  await press(page, "Photos and files");
  await untilInFirefox(page, () => document.querySelectorAll(".photo canvas").length === 3);
  const middles = await page.$$eval(".photo canvas", (all) => all.map((one) => {
    const canvas = /** @type {HTMLCanvasElement} */ (one);
    return Array.from(canvas.getContext("2d")?.getImageData(canvas.width >> 1, canvas.height >> 1, 1, 1).data ?? []).slice(0, 3);
  }));
  assert.deepEqual(middles, colours);
  await (await page.waitForSelector(".photo"))?.click();
  await untilSaid(page, ".lightbox-counter", "1 of 3");
  await page.keyboard.press("ArrowRight");
  await untilSaid(page, ".lightbox-name", "1.png");
  await untilInFirefox(page, () => {
    const image = /** @type {HTMLImageElement | null} */ (document.querySelector(".stage img"));
    return image !== null && image.complete && image.naturalWidth === 60;
  });
  await page.keyboard.press("+");
  await untilInFirefox(page, () => {
    const image = document.querySelector(".stage img");
    return image !== null && new DOMMatrix(getComputedStyle(image).transform).a > 1.4;
  });
  await page.keyboard.press("Escape");
  await untilInFirefox(page, () => document.activeElement?.getAttribute("data-position") === "1");
  await page.keyboard.press("Enter");
  await untilSaid(page, ".lightbox-name", "1.png");
  await press(page, "Show in conversation");
  await page.waitForSelector("article[data-index=\"300\"]:focus");
  await untilInFirefox(page, isInSight, 300);
  assert.equal(await page.$("dialog[open]"), null);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a date leads to its first message, and the way back to where the reader was", async () => {
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), { ...manyMessages(4000), guid: "chat-dates" }));
  await page.evaluate(() => scrollTo(0, 3000));
  await untilInFirefox(page, () => document.querySelector("article[data-index=\"0\"]") === null);
  await untilInFirefox(page, () => history.state !== null);
  const place = () => page.evaluate(() => {
    const row = Array.from(document.querySelectorAll("article")).find((one) => one.getBoundingClientRect().bottom > 100);
    return [row?.dataset.index, Math.round(row?.getBoundingClientRect().top ?? NaN)];
  });
  const left = await place();
  await press(page, "Go to a date");
  await page.waitForSelector("input[type=date]");
  await page.$eval("input[type=date]", (field) => {
    /** @type {HTMLInputElement} */ (field).value = "2010-03-03";
  });
  await press(page, "Go");
  await page.waitForSelector("article[data-index=\"2880\"]:focus");
  await untilInFirefox(page, isInSight, 2880);
  await page.evaluate(() => history.back());
  await untilInFirefox(page, (index) => document.querySelector(`article[data-index="${index}"]`) !== null, left[0]);
  assert.deepEqual(await place(), left);
  assert.deepEqual(page.problems(), []);
  await page.close();
});
