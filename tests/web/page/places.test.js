// Where the reader is: links to messages, Back and Forward, a page loaded anew, and the next visit.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { conversation, makeFolder, manyMessages, message, mia, writeAlbum } from "../support/album.js";
import { addressOf, frames, openAlbum, startBrowser, until } from "../support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

const count = 1500;
/** Each third answers another one far away. */
const record = /** @type {any} */ (manyMessages(count));
record.messages.forEach((/** @type {any} */ one, /** @type {number} */ index) => {
  delete one.replyToGUID;
  if (index % 3 === 0) one.replyToGUID = `GUID-${2 * ((index * 7919) % count)}`;
});
const folder = makeFolder();
/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
  writeAlbum(folder, record);
  browser = await startBrowser();
});
after(() => browser.close());

/** The first message under the bar, and where it lies. @param {Page} page */
const eye = (page) => page.evaluate(() => {
  const row = Array.from(document.querySelectorAll("article")).find((one) => one.getBoundingClientRect().bottom > 120);
  return row ? `${row.dataset.id} at ${row.getBoundingClientRect().top}` : "nothing";
});

/** Resolves when scrolling has come to rest and the place has been kept. @param {Page} page */
const rest = async (page) => {
  await frames(page, 2);
  await until(page, () => history.state?.place !== undefined);
  for (let last = "", still = 0; still < 15; await frames(page, 1)) {
    const now = await page.evaluate(() => `${scrollY} ${JSON.stringify(history.state)}`);
    still = now === last ? still + 1 : 0;
    last = now;
  }
};

/** Follows the first reply in sight. @param {Page} page */
const followReply = async (page) => {
  await page.evaluate(() => Array.from(document.querySelectorAll("button.reply")).filter((one) =>
    one.getBoundingClientRect().top > 70)[0].dispatchEvent(new MouseEvent("click", { bubbles: true })));
  await rest(page);
};

/** A store that several visits share. */
const newContext = () => browser.newContext({ viewport: { width: 1280, height: 800 }, locale: "en-US" });

/** Follows a link in the page that is open, as one does that is typed by hand. @param {Page} page @param {string} hash */
const type = (page, hash) => page.goto(addressOf(folder, hash));

test("two jumps from the end, two steps back and two forward come to the pixel", async () => {
  const page = await openAlbum(browser, folder);
  await page.keyboard.press("End");
  await rest(page);
  const places = [await eye(page)];
  await followReply(page);
  await page.evaluate(() => scrollBy(0, 333));
  await rest(page);
  places.push(await eye(page));
  await followReply(page);
  places.push(await eye(page));
  assert.equal(new Set(places).size, 3);
  for (const [step, expected, hasWayBack] of /** @type {["goBack" | "goForward", string, boolean][]} */ ([["goBack", places[1], true],
    ["goBack", places[0], false], ["goForward", places[1], true], ["goForward", places[2], true]])) {
    await page[step]();
    await rest(page);
    assert.equal(await eye(page), expected);
    assert.equal(await page.locator(".way-back").isVisible(), hasWayBack);
  }
  await page.reload();
  await page.locator("html[data-state=ready]").waitFor({ state: "attached" });
  await rest(page);
  assert.equal(await eye(page), places[2], "loaded anew");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

for (const where of ["the middle", "the end"]) {
  test(`the next visit begins where the last one ended, at ${where}`, async () => {
    const context = await newContext();
    const first = await openAlbum(browser, folder, { context });
    await (where === "the end" ? first.keyboard.press("End") : first.evaluate(() => scrollTo(0, 60_000)));
    await rest(first);
    const left = await eye(first);
    assert.ok(!left.startsWith("0 "), left);
    await first.close();
    const next = await openAlbum(browser, folder, { context });
    await rest(next);
    assert.equal(await eye(next), left);
    await context.close();
  });
}

test("in an album that was made anew with more messages, the message decides, not its number", async () => {
  const context = await newContext();
  const first = await openAlbum(browser, folder, { context });
  await first.evaluate(() => scrollTo(0, 60_000));
  await rest(first);
  const left = await eye(first);
  await first.close();
  const earlier = Array.from({ length: 40 }, (_, index) => message(9001 + index, mia, "Found later", "2009-01-01T00:00:00Z"));
  const grown = writeAlbum(makeFolder(), { ...record, messages: [...earlier, ...record.messages] });
  const next = await openAlbum(browser, grown, { context });
  await rest(next);
  assert.equal(await eye(next), left);
  await context.close();
});

test("another conversation begins at its own beginning", async () => {
  const context = await newContext();
  const first = await openAlbum(browser, folder, { context });
  await first.evaluate(() => scrollTo(0, 60_000));
  await rest(first);
  await first.close();
  const other = await openAlbum(browser, writeAlbum(makeFolder(), { ...record, guid: "chat-8" }), { context });
  assert.equal(await other.evaluate(() => scrollY), 0);
  await context.close();
});

test("a link that is typed by hand leads to its message, encoded or not, and Back leads back", async () => {
  const page = await openAlbum(browser, folder);
  await page.evaluate(() => scrollTo(0, 60_000));
  await rest(page);
  const left = await eye(page);
  for (const hash of ["#m=GUID-200", "#m=GUID%2D300"]) {
    await type(page, hash);
    await rest(page);
    const id = hash.slice(-3);
    assert.equal(await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).dataset.id), id);
    const top = (await page.locator(`article[data-id="${id}"]`).boundingBox())?.y ?? NaN;
    assert.ok(Math.abs(top - 800 / 3) < 1, String(top));
  }
  await page.goBack();
  await page.goBack();
  await rest(page);
  assert.equal(await eye(page), left);
  await page.close();
});

test("a link that leads nowhere says so and moves nothing", async () => {
  const page = await openAlbum(browser, folder);
  await page.evaluate(() => scrollTo(0, 60_000));
  await rest(page);
  const left = await eye(page);
  for (const hash of ["#m=GUID-GONE", "#m=100%"]) {
    await type(page, hash);
    await page.getByText("The message that this link leads to is not in this album.").waitFor();
    assert.equal(await eye(page), left);
    await page.locator(".toast").evaluate((toast) => toast.replaceChildren());
  }
  await page.close();
});

test("behind a link the keyboard enters the messages where it led", async () => {
  const page = await openAlbum(browser, folder, { hash: "#m=GUID-1000" });
  await rest(page);
  const enterable = page.locator(".rows > [tabindex='0']");
  assert.equal(await enterable.count(), 1);
  assert.equal(await enterable.getAttribute("data-id"), "1000");
  await page.close();
});

test("the menu's ways to both ends leave a way back, except where the reader is there already", async () => {
  const page = await openAlbum(browser, folder);
  const wayBack = page.locator(".way-back");
  /** @param {string} name */
  const choose = async (name) => {
    await page.getByRole("button", { name: "More", exact: true }).click();
    await page.locator(".menu-item", { hasText: name }).click();
    await rest(page);
  };
  await page.evaluate(() => scrollTo(0, document.documentElement.scrollHeight / 2));
  await rest(page);
  const place = await eye(page);
  const steps = await page.evaluate(() => history.length);
  for (const [name, other] of [["First message", "Latest message"], ["Latest message", "First message"]]) {
    await choose(name);
    const end = await eye(page);
    assert.notEqual(end, place);
    await choose(name);
    assert.equal(await page.evaluate(() => history.length), steps + 1, `${name} again`);
    await page.reload();
    await page.locator("html[data-state=ready]").waitFor({ state: "attached" });
    await rest(page);
    assert.equal(await eye(page), end, `${name} loaded anew`);
    await choose(other);
    assert.equal(await page.evaluate(() => history.length), steps + 2);
    await wayBack.click();
    await rest(page);
    assert.equal(await eye(page), end, `back from ${other}`);
    await wayBack.click();
    await rest(page);
    assert.equal(await eye(page), place, `back from ${name}`);
    assert.equal(await wayBack.isVisible(), false);
  }
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("odd identifiers are led to and back from", async () => {
  const guids = ["p:0/AB CD", "100%", "a#m=b?c&d=e", "Ä\n🎉", "</script>", "\udc00\udc00"];
  const messages = Array.from({ length: 400 }, (_, index) => message(index, mia, "Words ".repeat(index % 40)));
  guids.forEach((guid, place) => {
    messages[100 + place].guid = guid;
    messages[390 + place].replyToGUID = guid;
  });
  const album = writeAlbum(makeFolder(), conversation(messages));
  const page = await openAlbum(browser, album);
  for (const place of guids.keys()) {
    await page.evaluate(() => scrollTo(0, document.documentElement.scrollHeight));
    await page.locator(`article[data-id="${390 + place}"] button.reply`).click();
    assert.equal(await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).dataset.id), String(100 + place));
    const { hash } = new URL(page.url());
    await page.locator(".way-back").click();
    await until(page, (id) => document.querySelector(`article[data-id="${id}"]`) !== null, 390 + place);
    if (guids[place].startsWith("\udc00")) continue;
    const linked = await openAlbum(browser, album, { hash });
    assert.equal(await linked.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).dataset.id), String(100 + place), hash);
    await linked.close();
  }
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("where the browser refuses a store, choices hold and nothing is reported", async () => {
  const context = await newContext();
  await context.addInitScript(() => Object.defineProperty(window, "localStorage", {
    get() {
      throw new DOMException("The operation is insecure.", "SecurityError");
    },
  }));
  const page = await openAlbum(browser, folder, { context });
  await page.evaluate(() => scrollTo(0, 60_000));
  await page.getByRole("button", { name: "More", exact: true }).click();
  await page.locator(".menu input[value=dark]").check();
  assert.equal(await page.evaluate(() => getComputedStyle(document.documentElement).colorScheme), "dark");
  await rest(page);
  const left = await eye(page);
  await page.reload();
  await page.locator("html[data-state=ready]").waitFor({ state: "attached" });
  assert.equal(await eye(page), left);
  assert.deepEqual(page.problems(), []);
  await context.close();
});
