// Single messages out of all proportion: what is looked for comes into sight, and nothing grows without being asked.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { attachment, conversation, makeFolder, message, mia, reaction, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";

/** @type {Awaited<ReturnType<typeof startBrowser>>} */
let browser;
before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

/** @param {any[]} messages */
const open = (messages) => openAlbum(browser, writeAlbum(makeFolder(), conversation(messages)));
/** @param {import("playwright-core").Page} page */
const countElements = (page) => page.evaluate(() => document.getElementsByTagName("*").length);

for (const length of [14_000, 60_000]) {
  test(`a word at the end of ${length} characters is marked and comes into sight`, async () => {
    const page = await open([message(1, mia, `${"word and ".repeat(length / 9)}harbour`), message(3, mia, "behind")]);
    await page.keyboard.press("Control+f");
    await page.keyboard.type("harbour");
    await page.keyboard.press("Enter");
    await until(page, () => {
      const box = document.querySelector(".row mark")?.getBoundingClientRect();
      return box !== undefined && box.top > 60 && box.bottom < innerHeight;
    });
    assert.equal(await page.locator(".row mark").textContent(), "harbour");
    assert.deepEqual(page.problems(), []);
    await page.close();
  });
}

test("a word in the name of a picture is marked below it", async () => {
  const page = await open([message(1, mia, undefined, undefined, {
    attachments: [attachment(1, "Sunset #1 50%?.png", "available", { mimeType: "image/png" })] })]);
  assert.equal(await page.locator(".picture-name").count(), 0);
  await page.keyboard.press("Control+f");
  await page.keyboard.type("sunset");
  await until(page, () => document.querySelector(".picture-name mark")?.textContent === "Sunset");
  await page.close();
});

test("a message of 40,000 links is shown whole when it is asked for", async () => {
  const page = await open([message(1, mia, "https://example.org/a ".repeat(40_000))]);
  await page.getByRole("button", { name: "Show the whole message" }).click();
  await until(page, () => document.querySelectorAll(".words a").length === 40_000, undefined, 20_000);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("5,000 reactions are few elements until somebody asks who they are from", async () => {
  const page = await open([message(1, mia, "Look", undefined, {
    reactions: Array.from({ length: 5000 }, (_, number) => reaction(number, `participant-${number}`, "loved")) })]);
  assert.ok(await countElements(page) < 400, `${await countElements(page)} elements`);
  assert.match(await page.locator(".reaction").getAttribute("aria-label") ?? "", /^Loved by Unknown sender \(participant-0\), .* …$/);
  await page.locator(".reaction").click();
  assert.equal(await page.locator(".reaction-people li").count(), 5000);
  await page.close();
});

test("5,000 attachments of one message are shown a hundred at a time, none left out", async () => {
  const page = await open([message(1, mia, undefined, undefined, {
    attachments: Array.from({ length: 5000 }, (_, number) => attachment(number, `List ${number}.pdf`, "missing")) })]);
  assert.ok(await countElements(page) < 1500, `${await countElements(page)} elements`);
  const more = page.locator(".stack > .text-button");
  for (let shown = 100; shown < 5000; shown += 100) {
    assert.equal(await page.locator(".tile").count(), shown);
    await more.evaluate((button) => /** @type {HTMLElement} */ (button).click());
  }
  assert.equal(await page.locator(".tile-name").last().textContent(), "List 4999.pdf");
  assert.equal(await page.locator(".tile").count(), 5000);
  await frames(page);
  assert.equal(await more.count(), 0);
  await page.close();
});
