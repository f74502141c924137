// What the reader looks at stays where it is, and a jump ends where it should, whatever else happens meanwhile.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { attachment, makeFolder, manyMessages, mark, png, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

const tall = 450;
const pictured = 300;
const wordCount = 2500;
const pictureCount = 24;

/** 900 messages; every other one is a reply, one is as tall as many windows, and one has pictures alone. */
function longRecord() {
  const record = /** @type {any} */ (manyMessages(900));
  record.messages.forEach((/** @type {any} */ one, /** @type {number} */ index) => {
    if (index % 2) one.replyToGUID = "GUID-0";
  });
  record.messages[tall].text = Array.from({ length: wordCount }, (_, index) => `w${index}`).join(" ");
  record.messages[pictured].text = mark.repeat(pictureCount);
  record.messages[pictured].attachments = Array.from({ length: pictureCount }, (_, index) =>
    attachment(5000 + index, `P${index}.png`, "available", { mimeType: "image/png" }));
  record.warnings = [{ id: "w1", code: "unresolved_reaction", summary: "A reaction.", sourceID: "1" }];
  return record;
}

/** @type {import("playwright-core").Browser} */
let browser;
const folder = makeFolder();
before(async () => {
  const files = Object.fromEntries(Array.from({ length: pictureCount }, (_, index) => [`attachments/P${index}.png`, png(300, 400)]));
  writeAlbum(folder, longRecord(), { files });
  browser = await startBrowser();
});
after(() => browser.close());

/** @param {number} index */
const linkTo = (index) => `#m=GUID-${2 * index}`;
/** Opens the album at a message, without the focus in it. @param {number} index @param {Parameters<typeof openAlbum>[2]} [options] */
async function openAt(index, options = {}) {
  const page = await openAlbum(browser, folder, { hash: linkTo(index), timezoneId: "UTC", width: 900, ...options });
  await rest(page);
  await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).blur());
  return page;
}

/** What makes sure that a page had nothing to report is the last thing a test does with it. @param {Page} page */
async function finish(page) {
  assert.deepEqual(page.problems(), []);
  await page.close();
}

/** Resolves when nothing has moved for a while. @param {Page} page */
async function rest(page) {
  let last = "";
  for (let still = 0; still < 15;) {
    const now = await page.evaluate(() => `${scrollY} ${document.documentElement.scrollHeight} ${JSON.stringify(history.state)}`);
    still = now === last ? still + 1 : 0;
    last = now;
    await frames(page, 1);
  }
}

/** Where a row's top edge is in the window; NaN where it does not stand in the page. @param {Page} page @param {number} index */
const topOf = (page, index) => page.evaluate((number) =>
  document.querySelector(`article[data-index="${number}"]`)?.getBoundingClientRect().top ?? NaN, index);
/** The page answers nothing for a while, in which the browser goes on gliding. */
const block = () => {
  for (const end = performance.now() + 250; performance.now() < end;);
};
/** @param {Page} page */
const focus = (page) => page.evaluate(() => {
  const { activeElement } = document;
  return `${activeElement?.tagName} ${activeElement?.closest("article")?.dataset.index ?? activeElement?.getAttribute("role")}`;
});

// A jump while the browser glides

/** @type {[string, string, number, (page: Page) => unknown, (page: Page) => Promise<number>, number][]} */
const jumps = [
  ["PageUp", "End", 890, (page) => page.keyboard.press("End"), async (page) => page.locator("article").last()
    .evaluate((row) => row.getBoundingClientRect().bottom - innerHeight), 0],
  ["PageDown", "Home", 30, (page) => page.keyboard.press("Home"), (page) => page.evaluate(() => scrollY), 0],
  ["PageDown", "the menu's first message", 30, (page) => page.locator(".menu-item", { hasText: "First message" })
    .evaluate((item) => /** @type {HTMLElement} */ (item).click()), (page) => page.evaluate(() => scrollY), 0],
  ["PageUp", "a link", 700, (page) => page.evaluate((hash) => { location.hash = hash; }, linkTo(100)), (page) => topOf(page, 100), 800 / 3],
];
for (const [key, name, start, jump, placeOf, wanted] of jumps) {
  for (const wait of ["0 frames", "4 frames", "a long block"]) {
    test(`${name} ends where it should, ${wait} behind ${key}`, async () => {
      const page = await openAt(start);
      await page.keyboard.press(key);
      if (wait.endsWith("frames")) await frames(page, Number.parseInt(wait, 10));
      else await page.evaluate(block);
      await jump(page);
      await rest(page);
      const place = await placeOf(page);
      assert.ok(Math.abs(place - wanted) < 1.5, `${place}`);
      await finish(page);
    });
  }
}

test("a glide goes on undisturbed where nobody jumps", async () => {
  const page = await openAt(tall - 5);
  const start = await topOf(page, tall - 5);
  await page.keyboard.press("PageUp");
  await rest(page);
  const moved = await topOf(page, tall - 5) - start;
  assert.ok(moved > 500 && moved < 800, `${moved}`);
  await finish(page);
});

// Within one tall message

/** The number of the word at a height of the window. @param {Page} page */
const wordUnderEye = (page) => page.evaluate(() => {
  const { startContainer, startOffset } = /** @type {any} */ (document).caretRangeFromPoint(innerWidth / 2, 140) ?? {};
  const words = startContainer?.textContent ?? "";
  const start = words.lastIndexOf("w", startOffset);
  return Number.parseInt(words.slice(start + 1), 10);
});

test("another width of the window leaves the eye on the same words of a tall message", async () => {
  const page = await openAt(tall, { width: 390, height: 844 });
  const height = await page.locator(`article[data-index="${tall}"]`).evaluate((row) => row.clientHeight);
  await page.evaluate((distance) => scrollBy(0, distance), height * 0.75);
  await rest(page);
  const start = await wordUnderEye(page);
  assert.ok(start > wordCount / 2 && start < wordCount, `${start}`);
  for (const [width, heightOfWindow] of [[844, 390], [390, 844], [1280, 800], [600, 800]]) {
    await page.setViewportSize({ width, height: heightOfWindow });
    await rest(page);
    const now = await wordUnderEye(page);
    assert.ok(Math.abs(now - start) < 45, `${start} ${now} at ${width}`);
  }
  await finish(page);
});

test("the next visit in another window leads to the same words of a tall message", async () => {
  const context = await browser.newContext({ viewport: { width: 390, height: 844 } });
  const first = await openAt(tall, { context });
  await first.evaluate(() => scrollBy(0, 4500));
  await rest(first);
  const start = await wordUnderEye(first);
  await finish(first);
  const second = await openAlbum(browser, folder, { context });
  await second.setViewportSize({ width: 1280, height: 800 });
  await second.reload();
  await second.locator("html[data-state=ready]").waitFor({ state: "attached" });
  await rest(second);
  const now = await wordUnderEye(second);
  assert.ok(start > 500 && Math.abs(now - start) < 45, `${start} ${now}`);
  await finish(second);
  await context.close();
});

test("pictures of one message that come above the eye push nothing", async () => {
  const page = await openAt(pictured + 2);
  const moves = await page.evaluate(async () => {
    const frame = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    const made = [];
    for (let step = 0; step < 25; step++) {
      const parts = Array.from(document.querySelectorAll("article .part"));
      const eye = /** @type {Element} */ (parts.find((one) => one.getBoundingClientRect().top >= 60));
      const { top } = eye.getBoundingClientRect();
      scrollBy(0, -150);
      for (let count = 0; count < 3; count++) await frame();
      made.push(eye.isConnected ? eye.getBoundingClientRect().top - top - 150 : NaN);
    }
    return made;
  });
  assert.ok(moves.every((move) => Math.abs(move) < 1.5), moves.join(" "));
  assert.ok(Number.isNaN(await topOf(page, pictured + 2)) || await topOf(page, pictured + 2) > 1200);
  await finish(page);
});

test("a page that is opened anew shows the same picture of many in a message", async () => {
  const page = await openAt(pictured);
  for (let step = 0; step < 40; step++) {
    await page.evaluate(() => scrollBy(0, 200));
    await frames(page, 3);
  }
  await rest(page);
  const inSight = () => page.locator(`article[data-index="${pictured}"] .part`).evaluateAll((parts) => {
    const found = parts.findIndex((one) => one.getBoundingClientRect().bottom > 120);
    return [found, parts[found]?.getBoundingClientRect().top ?? NaN];
  });
  const [picture, top] = await inSight();
  assert.ok(picture > 5 && picture < pictureCount, `${picture}`);
  await page.reload();
  await page.locator("html[data-state=ready]").waitFor({ state: "attached" });
  await until(page, () => Array.from(document.querySelectorAll(".part img")).every((one) =>
    one.getBoundingClientRect().bottom < 0 || one.getBoundingClientRect().top > innerHeight
      || (one instanceof HTMLImageElement && one.naturalWidth > 0)));
  await rest(page);
  const [again, topAgain] = await inSight();
  assert.equal(again, picture);
  assert.ok(Math.abs(topAgain - top) < 2, `${top} ${topAgain}`);
  await finish(page);
});

// What has the focus

for (const [name, leave] of /** @type {[string, (page: Page) => Promise<unknown>][]} */ ([
  ["from the bar", (page) => page.locator(".menu-corner > button").focus()],
  ["from the list, where what had the focus is gone", (page) => page.locator(".rows").evaluate((rows) =>
    /** @type {HTMLElement} */ (rows).focus({ preventScroll: true }))]])) {
  test(`Tab enters the messages under the eye, ${name}`, async () => {
    const page = await openAt(600);
    await page.evaluate(() => scrollBy(0, 900));
    await rest(page);
    const start = await page.evaluate(() => scrollY);
    await leave(page);
    await rest(page);
    assert.equal(await page.evaluate(() => scrollY), start);
    await page.keyboard.press("Tab");
    await rest(page);
    const { top, bottom } = await page.evaluate(() => {
      const box = /** @type {Element} */ (document.activeElement?.closest("article")).getBoundingClientRect();
      return { top: box.top, bottom: box.bottom };
    });
    assert.ok(top < 200 && bottom > 100, `${top} ${bottom}`);
    const moved = await page.evaluate(() => scrollY) - start;
    assert.ok(Math.abs(moved) < 250, `${moved}`);
    assert.equal(await page.locator("article[inert]").count(), 0);
    await page.keyboard.press("Tab");
    assert.match(await focus(page), /^BUTTON \d+$|^ARTICLE \d+$/);
    await finish(page);
  });
}

test("the way back leads to where the page was when it was left, also by a scroll that was not told yet", async () => {
  const page = await openAt(600);
  const [index, top] = await page.evaluate(() => {
    const replies = Array.from(document.querySelectorAll("button.reply"));
    const reply = /** @type {HTMLElement} */ (replies.find((one) => one.getBoundingClientRect().top > innerHeight + 100));
    reply.focus();
    const row = /** @type {HTMLElement} */ (reply.closest("article"));
    const place = [Number(row.dataset.index), row.getBoundingClientRect().top];
    reply.click();
    return place;
  });
  await until(page, () => document.querySelector('article[data-index="0"]') !== null);
  await page.goBack();
  await rest(page);
  const now = await topOf(page, index);
  assert.ok(Math.abs(now - top) < 1.5, `${top} ${now}`);
  await finish(page);
});

test("the focus stays in its message, and on the cover, when times are told in another zone", async () => {
  const page = await openAlbum(browser, folder, { hash: linkTo(600), timezoneId: "Asia/Kathmandu" });
  const choose = (/** @type {string} */ zone) => page.locator(`.menu-corner input[value=${zone}]`).evaluate((input) =>
    /** @type {HTMLElement} */ (input).click());
  assert.equal(await focus(page), "ARTICLE 600");
  const clock = () => page.locator('article[data-index="600"] time').textContent();
  const local = await clock();
  await page.evaluate(() => {
    const input = /** @type {HTMLInputElement} */ (document.querySelector(".menu-corner input[value=UTC]"));
    input.checked = true;
    input.dispatchEvent(new Event("change"));
  });
  await until(page, (words) => document.querySelector('article[data-index="600"] time')?.textContent !== words, local);
  assert.equal(await focus(page), "ARTICLE 600");
  await choose("local");
  await page.keyboard.press("Home");
  await page.locator(".cover-warnings").focus();
  await page.keyboard.press("Enter");
  await page.locator("dialog[open] input[value=UTC]").check();
  await until(page, (words) => document.querySelector("article time")?.textContent !== words, local);
  await rest(page);
  await page.keyboard.press("Escape");
  await until(page, () => document.activeElement?.className === "cover-warnings");
  await finish(page);
});

test("the offer to go back hands the focus on when it goes", async () => {
  const page = await openAt(600);
  await page.locator("button.reply").nth(5).evaluate((reply) => /** @type {HTMLElement} */ (reply).click());
  await page.locator(".way-back").focus();
  await page.evaluate(() => scrollBy(0, 5000));
  await page.locator(".way-back").waitFor({ state: "hidden" });
  assert.equal(await focus(page), "DIV feed");
  await finish(page);
});

test("Back, and a link that is typed, close what lies over the page and hand on the focus", async () => {
  const page = await openAt(600);
  await page.locator("button.reply").nth(5).evaluate((reply) => /** @type {HTMLElement} */ (reply).click());
  await until(page, () => document.querySelector('article[data-index="0"]') !== null);
  const openAbout = async () => {
    await page.getByRole("button", { name: "About this album" }).first().click();
    await page.locator("dialog[open]").waitFor();
  };
  await openAbout();
  await page.goBack();
  await until(page, () => document.querySelector("dialog[open]") === null && document.activeElement?.tagName === "ARTICLE");
  await openAbout();
  await page.evaluate((hash) => { location.hash = hash; }, linkTo(700));
  await until(page, () => /** @type {HTMLElement} */ (document.activeElement)?.dataset.index === "700");
  assert.equal(await page.locator("dialog[open]").count(), 0);
  await finish(page);
});

test("under a dialog the page neither scrolls nor becomes wider, and keys scroll what the dialog holds", async (context) => {
  const own = await startBrowser({ hasScrollBars: true });
  context.after(() => own.close());
  const page = await openAlbum(own, folder, { hash: linkTo(100), timezoneId: "UTC", width: 1000, height: 420 });
  await rest(page);
  const ground = () => page.evaluate(() => [scrollY, document.body.clientWidth, document.querySelector("#actions")?.getBoundingClientRect().right]);
  const bodyTop = () => page.evaluate(() => document.querySelector("dialog[open] .dialog-body")?.scrollTop ?? 0);
  const before = await ground();
  assert.ok(Number(before[1]) < 1000, "the scroll bar takes room");
  for (const name of ["About this album", "Check this album", "Print", "Photos and files", "Go to a date"]) {
    await page.evaluate((wanted) => {
      const all = Array.from(document.querySelectorAll("#actions .icon-button, .menu-item"));
      /** @type {HTMLElement} */ (all.find((one) => [one.getAttribute("aria-label"), one.textContent].some((words) => words?.trim() === wanted))).click();
    }, name);
    await page.locator("dialog[open]").waitFor();
    await page.evaluate(() => /** @type {HTMLElement} */ (document.querySelector("dialog[open] .dialog-head button")).focus());
    for (const key of ["PageDown", "ArrowDown", "End", "PageUp", "ArrowUp"]) await page.keyboard.press(key);
    if (name.startsWith("About")) assert.ok(await bodyTop() > 100, `${await bodyTop()}`);
    await page.keyboard.press("Home");
    assert.equal(await bodyTop(), 0);
    for (const [x, y] of [[5, 300], [500, 60]]) {
      await page.mouse.move(x, y);
      await page.mouse.wheel(0, 200);
    }
    await frames(page, 4);
    assert.deepEqual(await ground(), before, name);
    await page.keyboard.press("Escape");
    await until(page, () => getComputedStyle(document.documentElement).overflowY !== "hidden");
    assert.deepEqual(await ground(), before, `${name} closed`);
  }
  await page.mouse.wheel(0, 200);
  await until(page, (top) => scrollY > top, Number(before[0]));
  await finish(page);
});

test("where the browser takes up no more steps, there is no offer to go back", async () => {
  const page = await openAt(600);
  await page.evaluate(() => {
    history.pushState = () => { throw new DOMException("too many", "SecurityError"); };
  });
  await page.locator("button.reply").nth(5).evaluate((reply) => /** @type {HTMLElement} */ (reply).click());
  await until(page, () => /** @type {HTMLElement} */ (document.activeElement)?.dataset.index === "0");
  assert.equal(await page.locator(".way-back").isVisible(), false);
  await finish(page);
});

test("the present month is in sight on the rail of a low window", async () => {
  const record = /** @type {any} */ (manyMessages(900));
  record.messages.forEach((/** @type {any} */ one, /** @type {number} */ index) => {
    one.date = `${2000 + Math.floor(index / 36)}-${String(1 + (Math.floor(index / 3) % 12)).padStart(2, "0")}-05T10:00:00Z`;
  });
  const page = await openAlbum(browser, writeAlbum(makeFolder(), record), { hash: linkTo(850), height: 420 });
  await rest(page);
  const [month, rail] = await page.evaluate(() => [".rail [aria-current]", ".rail"].map((selector) =>
    /** @type {Element} */ (document.querySelector(selector)).getBoundingClientRect().toJSON()));
  assert.ok(month.top >= rail.top && month.bottom <= rail.bottom + 0.5, `${month.top} ${month.bottom} ${rail.bottom}`);
  await finish(page);
});
