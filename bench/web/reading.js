// How the page moves through a long conversation: scrolling, jumping, finding.

import { addressOf, openAlbum, startBrowser } from "../../tests/web/support/browser.js";
import { prepare } from "./loading.js";
import { median, report } from "./report.js";

/** @typedef {import("./loading.js").Bench} Bench */
/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */
/** @typedef {{ longestFrame: number, longestBlank: number, mostElements: number }} Motion milliseconds, elements */

/** What the page-side functions below share; handed to the page as a script. */
function watchMotion() {
  const bench = {
    /** Whether messages cover the window below the bar. */
    isCovered() {
      const rows = Array.from(document.querySelectorAll(".rows > .row"), (row) => row.getBoundingClientRect());
      if (rows.length === 0) return false;
      const isTop = rows[0].top <= 61 || window.scrollY < 600;
      const isBottom = rows[rows.length - 1].bottom >= window.innerHeight - 64;
      return isTop && isBottom;
    },
    frame: () => new Promise((resolve) => { requestAnimationFrame(resolve); }),
    /** Calls `step` before each of `count` frames. @param {number} count @param {(number: number) => void} step */
    async move(count, step) {
      const motion = { longestFrame: 0, longestBlank: 0, mostElements: 0 };
      let last = await bench.frame();
      for (let number = 0; number < count; number++) {
        step(number);
        let now = await bench.frame();
        const start = now;
        motion.longestFrame = Math.max(motion.longestFrame, now - last);
        for (last = now; !bench.isCovered(); last = now) {
          now = await bench.frame();
          motion.longestFrame = Math.max(motion.longestFrame, now - last);
          motion.longestBlank = Math.max(motion.longestBlank, now - start);
        }
        motion.mostElements = Math.max(motion.mostElements, document.getElementsByTagName("*").length);
      }
      return motion;
    },
    /** Milliseconds from `act` to the frame that shows the message that it leads to. @param {() => void} act */
    async timeToMessage(act) {
      document.querySelectorAll(".is-found").forEach((row) => row.classList.remove("is-found"));
      const start = performance.now();
      act();
      for (;;) {
        await bench.frame();
        const box = document.querySelector(".row.is-found")?.getBoundingClientRect();
        if (box && box.top < window.innerHeight && box.bottom > 60) return performance.now() - start;
      }
    },
  };
  Object.assign(window, { bench });
}

/** @param {Page} page @returns {Promise<{ [name: string]: Motion }>} */
async function moveThrough(page) {
  return page.evaluate(async () => {
    const { bench } = /** @type {any} */ (window);
    let seed = 7;
    const random = () => (seed = (seed * 48271) % 2147483647) / 2147483647;
    const steady = await bench.move(400, () => window.scrollBy(0, 90));
    const fast = await bench.move(200, () => window.scrollBy(0, 1500));
    const jumps = await bench.move(200, () => window.scrollTo(0, random() * document.documentElement.scrollHeight));
    return { steady, fast, jumps };
  });
}

/** Milliseconds of ten deep links to messages all over the conversation. @param {Page} page */
function followLinks(page) {
  return page.evaluate(async () => {
    const { bench, QUILLBOOK_DATA } = /** @type {any} */ (window);
    const times = [];
    for (let step = 1; step <= 10; step++) {
      const { guid } = QUILLBOOK_DATA.messages[Math.floor((QUILLBOOK_DATA.messages.length * step) / 11)];
      times.push(await bench.timeToMessage(() => { window.location.hash = `#m=${guid}`; }));
    }
    return times;
  });
}

/** Milliseconds of ten jumps by the date panel. @param {Page} page */
function jumpToDates(page) {
  return page.evaluate(async () => {
    const { bench } = /** @type {any} */ (window);
    const times = [];
    for (let step = 0; step < 10; step++) {
      /** @type {HTMLElement} */ (document.querySelectorAll("#actions .icon-button")[1]).click();
      const field = /** @type {HTMLInputElement} */ (document.querySelector(".date-panel input"));
      field.value = `${2013 + step}-0${1 + (step % 9)}-15`;
      const go = /** @type {HTMLElement} */ (document.querySelector(".date-panel .is-primary"));
      times.push(await bench.timeToMessage(() => go.click()));
    }
    return times;
  });
}

/** Ten replies followed to what they answer and back again: milliseconds there, back, and pixels by which the place differs. @param {Page} page */
function followReplies(page) {
  return page.evaluate(async () => {
    const { bench, QUILLBOOK_DATA } = /** @type {any} */ (window);
    const replies = QUILLBOOK_DATA.messages.filter((/** @type {any} */ message) => message.replyToGUID);
    const result = { there: /** @type {number[]} */ ([]), back: /** @type {number[]} */ ([]), apart: 0 };
    for (let step = 1; step <= 10; step++) {
      const { guid, id } = replies[Math.floor((replies.length * step) / 11)];
      await bench.timeToMessage(() => { window.location.hash = `#m=${guid}`; });
      const row = () => document.querySelector(`[data-id="${id}"]`);
      const top = row()?.getBoundingClientRect().top ?? NaN;
      result.there.push(await bench.timeToMessage(() => /** @type {HTMLElement} */ (row()?.querySelector(".reply")).click()));
      const start = performance.now();
      window.history.back();
      do await bench.frame(); while (!row());
      await bench.frame();
      result.back.push(performance.now() - start);
      result.apart = Math.max(result.apart, Math.abs((row()?.getBoundingClientRect().top ?? Infinity) - top));
    }
    return result;
  });
}

const queries = ["lighthouse", "a", "piano concert", "zurich", "from:alma coffee", "has:photo before:2020", "nowhere to be found"];

/**
 * Milliseconds from a key press to the first row of the results, and to the last count.
 * @param {Page} page
 * @param {string} query
 * @returns {Promise<{ first: number, complete: number }>}
 */
async function find(page, query) {
  const field = page.locator(".search-input");
  await field.fill(query);
  await page.waitForTimeout(1500);
  const told = await page.locator(".search-status").textContent();
  await field.fill("");
  await page.waitForTimeout(300);
  return page.evaluate(async ({ query, told }) => {
    const { bench } = /** @type {any} */ (window);
    const input = /** @type {HTMLInputElement} */ (document.querySelector(".search-input"));
    const status = /** @type {HTMLElement} */ (document.querySelector(".search-status"));
    const hasNone = !/\d/.test(told ?? "");
    const start = performance.now();
    input.value = query;
    input.dispatchEvent(new InputEvent("input", { bubbles: true }));
    let first = NaN;
    for (;;) {
      await bench.frame();
      const now = performance.now() - start;
      if (Number.isNaN(first) && document.querySelector(".result")) first = now;
      if (status.textContent === told && (hasNone || !Number.isNaN(first))) return { first: hasNone ? 0 : first, complete: now };
      if (now > 20_000) throw new Error(`${query} comes to no end`);
    }
  }, { query, told });
}

/** @param {Page} page */
async function findRows(page) {
  await page.keyboard.press("Control+f");
  await page.waitForTimeout(4000);
  const times = [];
  for (const query of queries) times.push({ query, ...await find(page, query) });
  const slowest = (/** @type {"first" | "complete"} */ what) => times.reduce((one, other) => (other[what] > one[what] ? other : one));
  report("500,000 messages, find: first hits", median(times.map(({ first }) => first)), 50, "ms",
    `slowest "${slowest("first").query}" ${slowest("first").first.toFixed(0)} ms`);
  report("500,000 messages, find: complete", median(times.map(({ complete }) => complete)), 300, "ms",
    `slowest "${slowest("complete").query}" ${slowest("complete").complete.toFixed(0)} ms`);
  await page.keyboard.press("Escape");
}

/** What the data takes alone, and with the page when its index of words is made. @param {Page} page */
async function memoryOf(page) {
  const client = await page.context().newCDPSession(page);
  await client.send("HeapProfiler.collectGarbage");
  const { usedSize, backingStorageSize = 0 } = /** @type {any} */ (await client.send("Runtime.getHeapUsage"));
  return usedSize + backingStorageSize;
}

/** @param {Bench} bench */
export async function readRows(bench) {
  if (!bench.wants("read")) return;
  const folder = bench.album(500_000, 10);
  prepare(folder);
  const browser = await startBrowser();
  const page = await openAlbum(browser, folder);
  await page.evaluate(watchMotion);
  /** @type {{ [name: string]: Motion }[]} */
  const motions = [];
  for (let round = 0; round < bench.rounds; round++) motions.push(await moveThrough(page));
  for (const name of Object.keys(motions[0])) {
    const of = (/** @type {keyof Motion} */ figure) => median(motions.map((motion) => motion[name][figure]));
    report(`500,000 messages, ${name}: longest frame`, of("longestFrame"), 50, "ms");
    report(`500,000 messages, ${name}: longest blank`, of("longestBlank"), 100, "ms");
    report(`500,000 messages, ${name}: most elements`, of("mostElements"), 1500, "");
  }
  report("500,000 messages: deep link", median(await followLinks(page)), 100, "ms");
  report("500,000 messages: date", median(await jumpToDates(page)), 100, "ms");
  const { there, back, apart } = await followReplies(page);
  report("500,000 messages: reply", median(there), 100, "ms");
  report("500,000 messages: back", median(back), 100, "ms");
  report("500,000 messages: place after back", apart, 0, "px");
  await findRows(page);
  const full = await memoryOf(page);
  const bare = await browser.newPage();
  await bare.goto(addressOf(folder).replace("index.html", "bare.html"), { timeout: 0 });
  const alone = await memoryOf(/** @type {any} */ (bare));
  report("500,000 messages: heap beside the bare data's, after all that", full / alone, 1.3, "×",
    `${(full / 1e6).toFixed(0)} MB against ${(alone / 1e6).toFixed(0)} MB`);
  for (const problem of page.problems()) console.log(problem);
  await browser.close();
}
