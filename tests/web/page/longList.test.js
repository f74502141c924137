// A conversation too long to stand in the page as a whole.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { conversation, makeFolder, manyMessages, message, mia, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";
import { layoutProblems } from "../support/layout.js";

const count = 2600;
/** @type {import("playwright-core").Browser} */
let browser;
/** @type {Awaited<ReturnType<typeof openAlbum>>} */
let page;

before(async () => {
  browser = await startBrowser();
  page = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(count)));
});
after(async () => {
  await browser.close();
});

const indexes = () => page.locator("article").evaluateAll((rows) => rows.map((row) => Number(/** @type {HTMLElement} */ (row).dataset.index)));

/** @param {number} index */
const isInSight = (index) => {
  const box = document.querySelector(`article[data-index="${index}"]`)?.getBoundingClientRect();
  return box !== undefined && box.top < innerHeight && box.bottom > 60;
};

/** Resolves when nothing has moved for a while. */
const rest = async () => {
  let before = NaN;
  let still = 0;
  while (still < 15) {
    const now = await page.evaluate(() => scrollY + document.documentElement.scrollHeight);
    still = now === before ? still + 1 : 0;
    before = now;
    await frames(page, 1);
  }
};

/** @param {"Home" | "End"} key */
const goTo = async (key) => {
  await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement)?.blur());
  await page.keyboard.press(key);
  await until(page, isInSight, key === "Home" ? 0 : count - 1);
  await rest();
};

test("only rows near the window stand in the page", async () => {
  const found = await indexes();
  assert.deepEqual(found, found.map((_, place) => place));
  assert.ok(found.length > 2 && found.length < 100, String(found.length));
  assert.ok(await page.evaluate(() => document.querySelectorAll("*").length) <= 1500);
});

test("both ends are reached", async () => {
  await goTo("End");
  const below = await page.locator(`article[data-index="${count - 1}"]`).evaluate((row) => row.getBoundingClientRect().bottom - innerHeight);
  assert.ok(below <= 0.5 && below > -200, String(below));
  // At once: a glide would be stopped on its way, by the scroll bar that follows the rows.
  await page.keyboard.press("Home");
  await frames(page, 2);
  assert.equal(await page.evaluate(() => scrollY), 0);
  await goTo("Home");
  assert.equal((await indexes())[0], 0);
  assert.equal(await page.evaluate(() => scrollY), 0);
});

test("a reply leads to a message far away, and back again to the pixel", async () => {
  await goTo("End");
  const reply = page.locator("button.reply").last();
  await reply.scrollIntoViewIfNeeded();
  await rest();
  const from = Number(await reply.evaluate((button) => /** @type {HTMLElement} */ (button.closest(".row")).dataset.index));
  const topOf = () => page.locator(`article[data-index="${from}"]`).evaluate((row) => row.getBoundingClientRect().top);
  const before = await topOf();
  // A press by the mouse would first be brought into view, which may scroll by a fraction of a pixel.
  await reply.evaluate((button) => /** @type {HTMLElement} */ (button).click());
  await until(page, isInSight, from - 1200);
  assert.equal(await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).dataset.index), String(from - 1200));
  assert.ok(await page.locator(`article[data-index="${from - 1200}"]`).evaluate((row) => row.classList.contains("is-found")));
  assert.match(page.url(), new RegExp(`#m=GUID-${2 * (from - 1200)}$`));
  await page.locator(".way-back").click();
  await until(page, isInSight, from);
  await rest();
  assert.ok(Math.abs(await topOf() - before) < 1, `${before} ${await topOf()}`);
});

test("the row under the eye moves only as the hand does", async () => {
  await goTo("End");
  const worst = await page.evaluate(async () => {
    const frame = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    const top = (/** @type {Element} */ row) => row.getBoundingClientRect().top;
    let worstMove = 0;
    for (let step = 0; step < 40; step++) {
      const eye = Array.from(document.querySelectorAll("article")).filter((row) =>
        top(row) < innerHeight && row.getBoundingClientRect().bottom > 60)[1];
      const before = top(eye);
      scrollBy(0, -150);
      await frame();
      worstMove = Math.max(worstMove, Math.abs(top(eye) - before - 150));
    }
    return worstMove;
  });
  assert.ok(worst < 1.5, String(worst));
});

test("a leap is not lost where the list comes to rest before it has heard of the leap", async () => {
  await goTo("Home");
  const [far, near] = await page.evaluate(async () => {
    const frame = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
    const middle = () => Number(/** @type {HTMLElement} */ (document.elementFromPoint(innerWidth / 2, innerHeight / 2)?.closest("article"))
      .dataset.index);
    // The timers that scrolling sets are rung by hand, between the leap and the browser's word of it.
    const plain = window.setTimeout;
    /** @type {Function[]} */
    let timers = [];
    Object.assign(window, { setTimeout: (/** @type {Function} */ ring) => timers.push(ring) });
    const leap = async (/** @type {number} */ part) => {
      scrollTo(0, document.documentElement.scrollHeight * part);
      timers.splice(0).forEach((ring) => ring());
      await frame();
      return middle();
    };
    await leap(0.2);
    if (timers.length === 0) throw new Error("Scrolling sets no timer.");
    const places = [await leap(0.7), await leap(0.3)];
    timers.forEach((ring) => ring());
    Object.assign(window, { setTimeout: plain });
    return places;
  });
  assert.ok(far > count * 0.6 && far < count * 0.8, String(far));
  assert.ok(near > count * 0.2 && near < count * 0.4, String(near));
  await rest();
});

test("a row above that grows moves nothing in sight", async () => {
  await rest();
  const moved = await page.evaluate(async () => {
    const rows = Array.from(document.querySelectorAll("article"));
    const eye = rows.filter((row) => row.getBoundingClientRect().top > 100)[1];
    const before = eye.getBoundingClientRect().top;
    rows[0].style.paddingTop = "500px";
    for (let frame = 0; frame < 30; frame++) await new Promise((done) => requestAnimationFrame(done));
    return Math.abs(eye.getBoundingClientRect().top - before);
  });
  assert.ok(moved < 1.5, String(moved));
  const found = await indexes();
  assert.deepEqual(found, found.map((_, place) => found[0] + place));
});

test("a link leads to its message, wherever it lies", async () => {
  const linked = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(count)), { hash: "#m=GUID-4000" });
  await until(linked, isInSight, 2000);
  assert.deepEqual(linked.problems(), []);
  await linked.close();
});

test("a link to nothing says so and shows the conversation", async () => {
  const linked = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(400)), { hash: "#m=%E0%A4%A" });
  assert.ok(await linked.locator("article").count() > 0);
  const gone = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(400)), { hash: "#m=GUID-GONE" });
  await gone.getByText("The message that this link leads to is not in this album.").waitFor({ timeout: 5000 });
  assert.deepEqual([...linked.problems(), ...gone.problems()], []);
  await Promise.all([linked.close(), gone.close()]);
});

test("100,000 messages are one list, and its end is reached", async () => {
  const messages = Array.from({ length: 100_000 }, (_, index) => message(7 * index, index % 3 ? "me" : mia, `Message ${index}`,
    new Date(Date.UTC(2010, 0, 1) + index * 1_200_000).toISOString().replace(".000", "")));
  const long = await openAlbum(browser, writeAlbum(makeFolder(), conversation(messages)), { width: 390, height: 800 });
  await long.keyboard.press("End");
  await until(long, isInSight, 99_999);
  assert.ok(await long.evaluate(() => document.documentElement.scrollHeight) <= 7_100_000);
  assert.ok(await long.evaluate(() => document.querySelectorAll("*").length) <= 1500);
  assert.deepEqual(await layoutProblems(long), []);
  assert.deepEqual(long.problems(), []);
  await long.close();
});

test("nothing reached the console", () => assert.deepEqual(page.problems(), []));
