// How soon an album can be read, what keeps the browser busy meanwhile, and what memory it takes.

import fs from "node:fs";
import path from "node:path";
import { addressOf, startBrowser } from "../../tests/web/support/browser.js";
import { median, report } from "./report.js";

/** @typedef {{ rounds: number, album: (count: number, idStep: number) => string, folder: string, wants: (name: string) => boolean }} Bench */
/** @typedef {{ paint: number, data: number, ready: number, blocked: number, heap: number, buffers: number }} Loading milliseconds, bytes */

/** Runs in the page before anything of it: when the state becomes ready, and every task that takes long. */
function watchLoading() {
  const seen = { ready: 0, long: /** @type {{ start: number, end: number }[]} */ ([]) };
  Object.assign(window, { seen });
  new PerformanceObserver((list) => {
    for (const { startTime, duration } of list.getEntries()) seen.long.push({ start: startTime, end: startTime + duration });
  }).observe({ type: "longtask", buffered: true });
  document.addEventListener("readystatechange", () => {
    new MutationObserver(() => {
      if (document.documentElement.dataset.state === "ready") seen.ready ||= performance.now();
    }).observe(document.documentElement, { attributes: true });
  }, { once: true });
}

/**
 * @param {string} folder
 * @param {boolean} isBare only the data, without the application
 * @returns {Promise<Loading>}
 */
async function load(folder, isBare) {
  const page = path.join(folder, isBare ? "bare.html" : "index.html");
  const browser = await startBrowser();
  const tab = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  await tab.addInitScript(watchLoading);
  await tab.goto(addressOf(folder).replace("index.html", path.basename(page)), { timeout: 0 });
  if (!isBare) await tab.locator("html[data-state=ready]").waitFor({ state: "attached", timeout: 120_000 });
  await tab.waitForTimeout(300);
  const times = await tab.evaluate(() => {
    const { seen } = /** @type {any} */ (window);
    const data = performance.getEntriesByName("data")[0].startTime;
    const paint = performance.getEntriesByType("paint").find(({ name }) => name === "first-contentful-paint")?.startTime ?? NaN;
    // What the engine takes to evaluate the data script is its own; the rest of a task that goes on behind it is ours.
    const blocked = seen.long.map((/** @type {any} */ { start, end }) => end - Math.max(start, data));
    return { data, paint, ready: seen.ready, blocked: Math.max(0, ...blocked) };
  });
  const client = await tab.context().newCDPSession(tab);
  await client.send("HeapProfiler.collectGarbage");
  const use = await client.send("Runtime.getHeapUsage");
  await browser.close();
  return { ...times, heap: use.usedSize, buffers: /** @type {any} */ (use).backingStorageSize ?? 0 };
}

/** The data script with a mark at its end, and a page that holds nothing else. @param {string} folder */
export function prepare(folder) {
  const script = path.join(folder, "data/messages.js");
  const marker = 'performance.mark("data");\n';
  const size = fs.statSync(script).size;
  const end = Buffer.alloc(marker.length);
  const file = fs.openSync(script, "r+");
  fs.readSync(file, end, 0, end.length, size - end.length);
  if (end.toString() !== marker) fs.writeSync(file, marker, size);
  fs.closeSync(file);
  const page = fs.readFileSync(path.join(folder, "index.html"), "utf8");
  fs.writeFileSync(path.join(folder, "bare.html"), page.replace(/.*assets\/app\.js.*\n/, ""));
}

/** @param {Bench} bench */
export async function loadRows(bench) {
  if (!bench.wants("load")) return;
  const shapes = [{ count: 1000, idStep: 10 }, { count: 100_000, idStep: 10, ready: 500, block: 150 },
    { count: 500_000, idStep: 10, ready: 1500 }, { count: 100_000, idStep: 1, ready: 500 }];
  for (const { count, idStep, ready, block } of shapes) {
    const folder = bench.album(count, idStep);
    prepare(folder);
    const pairs = [];
    // Chromium takes so long over runs of consecutive ids that one round has to do.
    for (let round = 0; round < (idStep === 1 ? 1 : bench.rounds); round++) pairs.push({ bare: await load(folder, true), full: await load(folder, false) });
    const of = (/** @type {(pair: { bare: Loading, full: Loading }) => number} */ figure) => median(pairs.map(figure));
    const name = `${count.toLocaleString("en")} messages${idStep === 1 ? ", consecutive ids" : ""}`;
    report(`${name}: first paint`, of(({ full }) => full.paint), 150, "ms");
    if (!ready) continue;
    const parsed = of(({ bare }) => bare.data);
    report(`${name}: ready behind the data`, of(({ full }) => full.ready) - parsed, ready, "ms",
      `ready at ${of(({ full }) => full.ready).toFixed(0)} ms, data alone ${parsed.toFixed(0)} ms`);
    if (block) report(`${name}: longest block behind the data`, of(({ full }) => full.blocked), block, "ms");
    const bare = of(({ bare: { heap, buffers } }) => heap + buffers);
    const full = of(({ full: { heap, buffers } }) => heap + buffers);
    report(`${name}: heap beside the bare data's`, full / bare, 1.3, "×", `${(full / 1e6).toFixed(0)} MB against ${(bare / 1e6).toFixed(0)} MB`);
  }
}
