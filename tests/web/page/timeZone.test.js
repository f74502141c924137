// Days and clocks in the reader's time zone and in UTC, and the switch between them.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { conversation, makeFolder, manyMessages, message, mia, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";
import { plainBlanks } from "../support/measures.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

/** @type {import("playwright-core").Browser} */
let browser;
const folder = makeFolder();
before(async () => {
  writeAlbum(folder, conversation([message(1, mia, "Evening", "2026-04-30T18:14:59Z"), message(2, mia, "Night", "2026-04-30T18:15:00Z"),
    message(3, mia, "Morning", "2026-05-01T00:00:00Z")]));
  browser = await startBrowser();
});
after(() => browser.close());

/** Day headings and clocks from top to bottom. @param {Page} page */
const told = async (page) => (await page.locator("h2.day, article .meta > time").allTextContents()).map(plainBlanks);

const inKathmandu = ["Thursday, April 30, 2026", "11:59 PM", "Friday, May 1, 2026", "12:00 AM", "5:45 AM"];
const inUTC = ["Thursday, April 30, 2026", "6:14 PM", "6:15 PM", "Friday, May 1, 2026", "12:00 AM"];

/** @param {Page} page */
const openMenu = (page) => page.getByRole("button", { name: "More", exact: true }).click();
const chosenInMenu = ".menu input[name=timeZone]:checked";

test("the menu switches to UTC and back, and the next visit keeps to it", async () => {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: "en-US", timezoneId: "Asia/Kathmandu" });
  const page = await openAlbum(browser, folder, { context });
  assert.deepEqual(await told(page), inKathmandu);
  await openMenu(page);
  await page.locator(".menu input[value=local]").check();
  await page.locator(".menu input[value=UTC]").check();
  await until(page, () => document.querySelector("article:nth-child(3) h2") !== null);
  assert.deepEqual(await told(page), inUTC);
  await page.close();
  const next = await openAlbum(browser, folder, { context });
  assert.deepEqual(await told(next), inUTC);
  await openMenu(next);
  await next.locator(".menu input[value=local]").check();
  await until(next, () => document.querySelector("article:nth-child(2) h2") !== null);
  assert.deepEqual(await told(next), inKathmandu);
  await context.close();
});

test("the menu knows what was chosen under “About this album”, and the focus stays on the choice", async () => {
  const page = await openAlbum(browser, folder, { timezoneId: "Asia/Kathmandu" });
  await page.locator("#actions > button[title='About this album']").click();
  const first = page.locator(".facts dd").nth(2);
  assert.match(plainBlanks(await first.textContent() ?? ""), /11:59:59 PM/);
  await page.locator(".about input[value=local]").focus();
  await page.keyboard.press("ArrowRight");
  await until(page, () => document.querySelector(".facts dd:nth-of-type(3)")?.textContent?.includes("6:14:59"));
  assert.equal(await page.evaluate(() => /** @type {HTMLInputElement} */ (document.activeElement).value), "UTC");
  await page.keyboard.press("Escape");
  assert.deepEqual(await told(page), inUTC);
  await openMenu(page);
  assert.equal(await page.locator(chosenInMenu).getAttribute("value"), "UTC");
  await page.locator(".menu input[value=local]").check();
  await until(page, () => document.querySelector("article:nth-child(2) h2") !== null);
  assert.deepEqual(await told(page), inKathmandu);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a window that gets another width meanwhile does not undo the switch", async () => {
  const page = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(60_000)), { timezoneId: "Asia/Kathmandu" });
  assert.deepEqual((await told(page)).slice(0, 2), ["Monday, March 1, 2010", "5:45 AM"]);
  await page.evaluate(() => {
    /** @type {HTMLElement} */ (document.querySelector(".menu input[value=UTC]")).click();
    document.body.style.width = "600px";
  });
  await until(page, () => document.querySelector("article time")?.textContent?.startsWith("12:00"));
  await frames(page, 10);
  assert.deepEqual((await told(page)).slice(0, 2), ["Monday, March 1, 2010", "12:00 AM"]);
  assert.match(await page.locator(".cover-facts").first().textContent() ?? "", /^March 1, 2010 – March \d+, 2011$/);
  await page.close();
});

test("the switch leaves the row under the eye where it was", async () => {
  const page = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(2000)), { timezoneId: "Asia/Kathmandu", hash: "#m=GUID-2400" });
  const top = () => page.locator("article[data-id='2400']").evaluate((row) => row.getBoundingClientRect().top);
  await frames(page, 5);
  const before = await top();
  await page.evaluate(() => /** @type {HTMLElement} */ (document.querySelector(".menu input[value=UTC]")).click());
  await until(page, () => document.querySelector("article[data-id='2400'] time")?.textContent?.startsWith("8:00"));
  await frames(page, 20);
  assert.ok(Math.abs(await top() - before) < 1, `${before} ${await top()}`);
  await page.close();
});

/**
 * Where clocks are changed: two moments on either side of midnight or of a change, and on which day each lies.
 * @type {[string, [string, string][]][]}
 */
const changes = [
  // No midnight: the clock goes from 0:00 to 1:00.
  ["America/Sao_Paulo", [["2018-11-04T02:59:59Z", "Saturday, November 3, 2018"], ["2018-11-04T03:00:00Z", "Sunday, November 4, 2018"],
    ["2018-11-05T01:59:59Z", "Sunday, November 4, 2018"], ["2018-11-05T02:00:00Z", "Monday, November 5, 2018"]]],
  // Midnight twice: the clock goes from 1:00 to 0:00.
  ["America/Havana", [["2024-11-03T03:59:59Z", "Saturday, November 2, 2024"], ["2024-11-03T04:00:00Z", "Sunday, November 3, 2024"],
    ["2024-11-03T05:00:00Z", "Sunday, November 3, 2024"], ["2024-11-04T05:00:00Z", "Monday, November 4, 2024"]]],
  // A day that there was not.
  ["Pacific/Apia", [["2011-12-30T09:59:59Z", "Thursday, December 29, 2011"], ["2011-12-30T10:00:00Z", "Saturday, December 31, 2011"]]],
  // A day of 25 hours.
  ["America/New_York", [["2024-11-03T04:00:00Z", "Sunday, November 3, 2024"], ["2024-11-04T04:59:59Z", "Sunday, November 3, 2024"],
    ["2024-11-04T05:00:00Z", "Monday, November 4, 2024"]]],
];
for (const [zone, moments] of changes) {
  test(`days begin where they begin in ${zone}`, async () => {
    const album = conversation(moments.map(([moment], index) => message(index, mia, moment, moment)));
    const page = await openAlbum(browser, writeAlbum(makeFolder(), album), { timezoneId: zone });
    const found = await page.locator("article").evaluateAll((rows) => {
      let day = "";
      return rows.map((row) => {
        day = row.querySelector("h2.day")?.textContent ?? day;
        return day;
      });
    });
    assert.deepEqual(found, moments.map(([, day]) => day));
    const headings = await page.locator("h2.day").allTextContents();
    assert.equal(new Set(headings).size, headings.length, "each day has one heading");
    await page.close();
  });
}
