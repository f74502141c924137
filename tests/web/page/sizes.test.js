// Records that are out of all proportion: the page opens, moves and tells of them, with few elements.

import assert from "node:assert/strict";
import path from "node:path";
import { after, before, describe, test } from "node:test";
import { attachment, conversation, makeFolder, message, mia, writeAlbum } from "../support/album.js";
import { openAlbum, startBrowser, until } from "../support/browser.js";
import { layoutProblems } from "../support/layout.js";

/** @template Item @param {number} count @param {(number: number) => Item} make */
const many = (count, make) => Array.from({ length: count }, (_, number) => make(number));
const others = many(400, (number) => message(10 + number, mia, `Message ${number}`));
/** Digits in no order: a browser is slow to read long runs of consecutive numbers. @param {number} number */
const scattered = (number) => `a${(number * 7919 + 13) % 1_000_003}`;

/** Each with the number of people and of warnings that its cover or its panel tells. @type {{ [name: string]: any }} */
const records = {
  "5,000 reactions to one message": conversation([message(1, mia, "Look", undefined, { reactions: many(5000, (number) => (
    { id: `r${number}`, kind: "loved", senderID: `participant-${number}`, isRemoved: false, date: "2026-05-01T10:00:00Z" })) }), ...others]),
  "5,000 attachments of one message": conversation([message(1, mia, undefined, undefined, {
    attachments: many(5000, (number) => attachment(number, `List ${number}.pdf`, "missing")) }), ...others]),
  "300,000 participants": conversation(others, { participants: many(300_000, (number) => (
    { id: `participant-${scattered(number)}`, address: scattered(number), displayName: `Person ${number}`, isMe: false })) }),
  "100,000 warnings": conversation(others, { warnings: many(100_000, (number) => (
    { id: `w${number}`, code: "attachment_missing", summary: `File ${number} was missing.`, sourceID: scattered(number) })) }),
};

describe("an album of", () => {
  /** @type {Awaited<ReturnType<typeof startBrowser>>} */
  let browser;
  const albums = makeFolder();
  before(async () => {
    browser = await startBrowser();
  });
  after(() => browser.close());

  for (const [name, record] of Object.entries(records)) {
    test(`${name} opens, is gone through to its end, and tells about itself`, async () => {
      const page = await openAlbum(browser, writeAlbum(path.join(albums, name), record, { files: {} }), { width: 390 });
      const last = record.messages.length - 1;
      await page.keyboard.press("End");
      await until(page, (index) => {
        const box = document.querySelector(`article[data-index="${index}"]`)?.getBoundingClientRect();
        return box !== undefined && box.bottom <= innerHeight + 1;
      }, last, 15_000);
      assert.deepEqual(await layoutProblems(page), []);
      await page.getByRole("button", { name: "More", exact: true }).click();
      await page.locator(".menu-item").filter({ hasText: "About this album" }).click();
      await page.locator(".about [aria-busy=false]").waitFor();
      assert.equal(await page.locator(".about dd").nth(4).textContent(), String(record.messages.length));
      const elements = await page.evaluate(() => document.querySelectorAll(".about *").length);
      assert.ok(elements < 3000, `${elements} elements tell about the album`);
      await page.keyboard.press("Escape");
      await page.evaluate(() => {
        dispatchEvent(new Event("beforeprint"));
        document.querySelector(".paper p")?.getBoundingClientRect();
        dispatchEvent(new Event("afterprint"));
      });
      assert.deepEqual(page.problems(), []);
      await page.close();
    });
  }
});
