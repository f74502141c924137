// Every view of the page under axe-core's rules for WCAG 2.2 AA: in light and dark, narrow, zoomed, with forced colours.

import assert from "node:assert/strict";
import fs from "node:fs";
import { createRequire } from "node:module";
import { after, before, describe, test } from "node:test";
import { conversation, everyCase, makeFolder, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser } from "../support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

const axe = fs.readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const rules = ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa"];
const surroundings = {
  light: {},
  dark: { colorScheme: "dark" },
  "narrow and dark": { width: 320, height: 640, colorScheme: "dark" },
  // 200 % of a window of 1280 by 800 pixels.
  zoomed: { width: 640, height: 400, deviceScaleFactor: 2 },
  "forced colours": { forcedColors: "active" },
};

/** Chooses an action of the bar, or of its menu where the window is too narrow for it. @param {Page} page @param {string} name */
async function choose(page, name) {
  const action = page.locator("#actions > .icon-button").filter({ visible: true }).and(page.getByRole("button", { name, exact: true }));
  if (await action.count() > 0) {
    await action.click();
    return;
  }
  await page.getByRole("button", { name: "More", exact: true }).click();
  await page.locator(".menu-item").filter({ hasText: name }).filter({ visible: true }).click();
}

/** Ways to each view from the page as it opens. @type {{ [view: string]: (page: Page, folder: string) => Promise<unknown> }} */
const views = {
  beginning: async () => {},
  middle: (page) => page.evaluate(() => window.scrollTo(0, 1500)),
  end: (page) => page.keyboard.press("End"),
  "reactions folded out": (page) => page.locator(".reaction").first().click(),
  menu: (page) => page.getByRole("button", { name: "More", exact: true }).click(),
  about: (page) => choose(page, "About this album"),
  dates: (page) => choose(page, "Go to a date"),
  "behind a jump": async (page) => {
    await choose(page, "Go to a date");
    await page.locator(".date-month").last().click();
  },
  find: (page) => page.keyboard.press("Control+f"),
  "find with hits": async (page) => {
    await page.keyboard.press("Control+f");
    await page.keyboard.type("the");
    await page.locator(".row mark").first().waitFor();
  },
  gallery: (page) => choose(page, "Photos and files"),
  "gallery of audio": async (page) => {
    await choose(page, "Photos and files");
    await page.getByRole("tab", { name: /^Audio/ }).click();
  },
  "gallery of links": async (page) => {
    await choose(page, "Photos and files");
    await page.getByRole("tab", { name: /^Links/ }).click();
  },
  "gallery of files": async (page) => {
    await choose(page, "Photos and files");
    await page.getByRole("tab", { name: /^Files/ }).click();
  },
  viewer: (page) => page.locator(".picture").first().click(),
  check: (page) => choose(page, "Check this album"),
  "check with a verdict": async (page, folder) => {
    await choose(page, "Check this album");
    await page.locator(".check-field").setInputFiles(folder);
    await page.getByText("Valid", { exact: true }).waitFor();
  },
  print: (page) => choose(page, "Print"),
};

/** Closes whatever is open. @param {Page} page */
async function leave(page) {
  for (let press = 0; press < 3; press++) await page.keyboard.press("Escape");
  await page.evaluate(() => window.scrollTo(0, 0));
  await frames(page, 1);
}

/** What axe finds, one line for each element. @param {Page} page @returns {Promise<string[]>} */
async function findings(page) {
  if (!await page.evaluate(() => "axe" in window)) await page.evaluate(axe);
  const { violations } = await page.evaluate((tags) => /** @type {any} */ (window).axe.run(document,
    { runOnly: { type: "tag", values: tags }, resultTypes: ["violations"] }), rules);
  return violations.flatMap((/** @type {any} */ { id, nodes }) => nodes.map((/** @type {any} */ node) => `${id}: ${node.html.slice(0, 160)}`
    + ` ${node.any?.[0]?.message ?? ""}`));
}

describe("axe finds nothing", () => {
  /** @type {Awaited<ReturnType<typeof startBrowser>>} */
  let browser;
  const folder = makeFolder();
  before(async () => {
    writeAlbum(folder, everyCase(), { manifest: true });
    browser = await startBrowser();
  });
  after(() => browser.close());

  for (const [place, options] of Object.entries(surroundings)) {
    test(place, async () => {
      const page = await openAlbum(browser, folder, /** @type {any} */ ({ reducedMotion: "reduce", ...options }));
      for (const [view, open] of Object.entries(views)) {
        await open(page, folder);
        await frames(page, 3);
        assert.deepEqual(await findings(page), [], view);
        await leave(page);
      }
      await page.close();
    });
  }

  test("a conversation without messages", async () => {
    const page = await openAlbum(browser, writeAlbum(makeFolder(), conversation([])));
    assert.deepEqual(await findings(page), []);
    await page.close();
  });

  test("an album whose data is gone", async () => {
    const page = await openAlbum(browser, writeAlbum(makeFolder(), conversation([]), { data: "" }), { state: "failed" });
    assert.deepEqual(await findings(page), []);
    await page.close();
  });
});
