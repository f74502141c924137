// A Firefox for the tests of a file, spoken to by WebDriver BiDi, the protocol that browsers have in common.

import puppeteer from "puppeteer-core";
import { addressOf, until } from "./browser.js";

/** @typedef {import("puppeteer-core").Page} Page */

/** @returns {Promise<import("puppeteer-core").Browser>} */
export function startFirefox() {
  return puppeteer.launch({
    browser: "firefox",
    protocol: "webDriverBiDi",
    executablePath: process.env.QUILLBOOK_FIREFOX || "/usr/bin/firefox-esr",
    headless: true,
    defaultViewport: { width: 1280, height: 800 },
    // In a profile of its own, Firefox asks nothing of the network.
    extraPrefsFirefox: {
      "app.normandy.enabled": false,
      "app.update.enabled": false,
      "browser.newtabpage.enabled": false,
      "browser.safebrowsing.malware.enabled": false,
      "browser.safebrowsing.phishing.enabled": false,
      "datareporting.policy.dataSubmissionEnabled": false,
      "extensions.update.enabled": false,
      "network.captive-portal-service.enabled": false,
      "network.connectivity-service.enabled": false,
    },
  });
}

/**
 * Opens an album and resolves when the page says that it is ready; `problems()` tells what a page must never do.
 * @param {import("puppeteer-core").Browser} browser
 * @param {string} folder
 * @param {string} [hash]
 * @returns {Promise<Page & { problems(): string[] }>}
 */
export async function openInFirefox(browser, folder, hash = "") {
  const page = await browser.newPage();
  /** @type {string[]} */
  const found = [];
  page.on("console", (line) => found.push(`console: ${line.text()}`));
  page.on("pageerror", (error) => found.push(`error: ${error}`));
  await page.goto(addressOf(folder, hash), { waitUntil: "domcontentloaded" });
  await page.waitForSelector("html[data-state=ready]", { timeout: 20_000 });
  return Object.assign(page, { problems: () => found });
}

/**
 * Resolves when `condition`, run in the page with `argument`, is true; asks once a frame. (The driver's own way makes functions
 * out of texts, which the page's content policy forbids before Firefox 153.)
 * @template Argument
 * @param {Page} page
 * @param {(argument: Argument) => unknown} condition
 * @param {Argument} [argument]
 * @returns {Promise<void>}
 */
export function untilInFirefox(page, condition, argument) {
  return until(/** @type {any} */ (page), condition, argument, 30_000);
}
