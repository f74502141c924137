// How the page moves through a long conversation: scrolling, jumping, finding.

import { openAlbum, startBrowser } from "../../tests/web/support/browser.js";
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

/** @param {Bench} bench */
export async function readRows(bench) {
  if (!bench.wants("read")) return;
  const folder = bench.album(500_000, 10);
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
  for (const problem of page.problems()) console.log(problem);
  await browser.close();
}
