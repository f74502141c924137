// A Chromium for the tests of a file, and albums opened in it as a reader opens them: by their file addresses.
//
//   const browser = await startBrowser();               one for the whole test file
//   after(() => browser.close());
//   const page = await openAlbum(browser, folder, { width: 390, height: 844, colorScheme: "dark" });
//   … everything that Playwright's Page has: page.locator(…), page.evaluate(…), page.keyboard, page.screenshot …
//   assert.deepEqual(page.problems(), []);              no console line, no error of a script, nothing asked of the outside
//   await page.close();                                 closes its context as well
//
// Wait by locators, or with until(page, () => …), which asks once a frame; never for a stretch of time alone.

import path from "node:path";
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

/** @typedef {import("playwright-core").Browser} Browser */
/** @typedef {import("playwright-core").Page} Page */

/**
 * With `hasScrollBars` they take room, as with a mouse; without it they lie over the page or are not drawn at all.
 * @param {{ hasScrollBars?: boolean }} [options]
 * @returns {Promise<Browser>}
 */
export function startBrowser({ hasScrollBars = false } = {}) {
  return chromium.launch({
    ignoreDefaultArgs: hasScrollBars ? ["--hide-scrollbars"] : [],
    executablePath: process.env.QUILLBOOK_CHROMIUM || "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--disable-background-networking", "--disable-dev-shm-usage"],
  });
}

/** The address of an album's page. @param {string} folder @param {string} [hash] as in "#m=GUID-7" */
export function addressOf(folder, hash = "") {
  return pathToFileURL(path.join(folder, "index.html")).href + (hash && !hash.startsWith("#") ? `#${hash}` : hash);
}

/**
 * Opens an album in a context of its own (no storage of another one) and resolves when the page says that it is ready. Options:
 *   width, height   the window, 1280 × 800 unless told
 *   colorScheme     "light" (unless told) or "dark"; reducedMotion, forcedColors, deviceScaleFactor likewise as in Playwright
 *   locale          of the browser, "en-US" unless told; timezoneId the system's (TZ) unless told
 *   hash            as in "#m=GUID-7"
 *   state           what the page must come to: "ready" unless told; "failed" for an album that cannot be shown
 *   context         one made before (browser.newContext), to open a second page beside the first with the same storage
 * @param {Browser} browser
 * @param {string} folder
 * @param {{ width?: number, height?: number, colorScheme?: "light" | "dark", reducedMotion?: "reduce" | "no-preference",
 *   forcedColors?: "active" | "none", deviceScaleFactor?: number, locale?: string, timezoneId?: string, hash?: string,
 *   state?: "ready" | "failed", permissions?: string[], context?: import("playwright-core").BrowserContext }} [options]
 * @returns {Promise<Page & { problems(): string[], consoleLines: string[] }>}
 */
export async function openAlbum(browser, folder, options = {}) {
  const { width = 1280, height = 800, locale = "en-US", hash = "", state = "ready", context, ...others } = options;
  const own = context ?? await browser.newContext({ viewport: { width, height }, locale, ...others });
  const page = await own.newPage();
  if (!context) page.once("close", () => void own.close().catch(() => {}));
  const watched = watch(page, `${pathToFileURL(folder).href}/`);
  await page.goto(addressOf(folder, hash));
  const html = page.locator("html[data-state=ready], html[data-state=failed]");
  await html.waitFor({ state: "attached", timeout: 30_000 }).catch(() => {
    throw new Error(`The page says neither that it is ready nor that it failed.\n${watched.problems().join("\n")}`);
  });
  const found = await html.getAttribute("data-state");
  if (found !== state) throw new Error(`The page is ${found}, not ${state}.\n${watched.problems().join("\n")}`);
  return Object.assign(page, watched);
}

/**
 * Everything that a page of an album must never do.
 * @param {Page} page
 * @param {string} inside the album's address
 */
function watch(page, inside) {
  /** @type {string[]} */
  const consoleLines = [];
  /** @type {string[]} */
  const others = [];
  page.on("console", (line) => consoleLines.push(`console: ${line.text()}`));
  page.on("pageerror", (error) => others.push(`error: ${error.stack || error}`));
  page.on("crash", () => others.push("crash"));
  page.on("request", (request) => {
    const address = request.url();
    if (!address.startsWith(inside) && !address.startsWith("blob:")) others.push(`outside: ${address.slice(0, 200)}`);
  });
  page.on("requestfailed", (request) => {
    // Leaving a page or dropping a player ends its requests; a file that is not there is a problem.
    const reason = request.failure()?.errorText ?? "";
    if (!reason.includes("ERR_ABORTED")) others.push(`failed: ${request.url().slice(0, 200)} ${reason}`);
  });
  return { consoleLines, problems: () => [...others, ...consoleLines] };
}

/**
 * Resolves when `condition`, run in the page with `argument`, is true; asks once a frame.
 * @template Argument
 * @param {Page} page
 * @param {(argument: Argument) => unknown} condition
 * @param {Argument} [argument]
 * @param {number} [patience] milliseconds
 */
export async function until(page, condition, argument, patience = 5000) {
  const end = Date.now() + patience;
  while (!await page.evaluate(condition, argument)) {
    if (Date.now() > end) throw new Error(`It never came to be: ${condition}`);
    await frames(page, 1);
  }
}

/** Resolves when the page has drawn so many frames. @param {Page} page @param {number} [count] */
export function frames(page, count = 2) {
  return page.evaluate((/** @type {number} */ wanted) => new Promise((done) => {
    const next = (/** @type {number} */ left) => (left === 0 ? done(undefined) : requestAnimationFrame(() => next(left - 1)));
    next(wanted);
  }), count);
}
