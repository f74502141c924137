// Takes pictures of an album's page, wide and narrow, in light and dark.
//
//   node tests/web/tour.js ALBUM FOLDER

import path from "node:path";
import { frames, openAlbum, startBrowser } from "./support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

const [album, folder] = process.argv.slice(2);
if (!album || !folder) throw new Error("usage: tour.js ALBUM FOLDER");

/** @param {Page} page @param {string} name an action of the bar, or of its menu where the window is too narrow for it */
async function choose(page, name) {
  const action = page.locator("#actions > .icon-button").and(page.getByRole("button", { name, exact: true })).filter({ visible: true });
  if (await action.count() > 0) return action.click();
  await page.getByRole("button", { name: "More", exact: true }).click();
  return page.locator(".menu-item").filter({ hasText: name }).filter({ visible: true }).click();
}

/** What each picture shows. @type {{ [name: string]: (page: Page) => Promise<unknown> }} */
const views = {
  timeline: (page) => page.locator(".picture").nth(2).evaluate((picture) => picture.scrollIntoView({ block: "center" })),
  find: async (page) => {
    await page.keyboard.press("Control+f");
    await page.keyboard.type("lake");
    await page.keyboard.press("Enter");
    await page.locator(".row mark").first().waitFor();
  },
  gallery: (page) => choose(page, "Photos and files"),
  viewer: (page) => page.locator(".picture").nth(2).click(),
  about: (page) => choose(page, "About this album"),
  check: async (page) => {
    await choose(page, "Check this album");
    await page.locator(".check-field").setInputFiles(album);
    await page.getByText("Valid", { exact: true }).waitFor();
  },
};
const windows = {
  light: { width: 1280, height: 800 },
  dark: { width: 1280, height: 800, colorScheme: "dark" },
  "narrow-light": { width: 390, height: 844 },
  "narrow-dark": { width: 390, height: 844, colorScheme: "dark" },
};

const browser = await startBrowser();
for (const [name, options] of Object.entries(windows)) {
  for (const [view, open] of Object.entries(views)) {
    const page = await openAlbum(browser, album, /** @type {any} */ ({ ...options, reducedMotion: "reduce" }));
    await open(page);
    // The mark on a found message and the floating date go by themselves; pictures come when they are decoded.
    await page.waitForTimeout(3000);
    await frames(page, 2);
    await page.screenshot({ path: path.join(folder, `album-${view}-${name}.png`) });
    await page.close();
  }
}
await browser.close();
