// The main paths of a reader, in Firefox: it reads a page from a disk by other rules than Chromium.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { everyCase, makeFolder, manyMessages, writeAlbum } from "../support/album.js";
import { openInFirefox, startFirefox } from "../support/firefox.js";

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
  await page.waitForFunction(() => {
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
  await page.waitForFunction(isInSight, {}, 2599);
  await page.evaluate(() => scrollTo(0, 0));
  await page.waitForFunction(isInSight, {}, 0);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a link leads to its message, a reply to what it answers, and Back leads back", async () => {
  const page = await openInFirefox(browser, writeAlbum(makeFolder(), manyMessages(2600)), "#m=GUID-4000");
  await page.waitForFunction(isInSight, {}, 2000);
  await page.$eval("article[data-index=\"2000\"] button.reply", (reply) => /** @type {HTMLElement} */ (reply).click());
  await page.waitForFunction(isInSight, {}, 800);
  assert.match(page.url(), /#m=GUID-1600$/);
  await page.evaluate(() => history.back());
  await page.waitForFunction(isInSight, {}, 2000);
  assert.deepEqual(page.problems(), []);
  await page.close();
});
