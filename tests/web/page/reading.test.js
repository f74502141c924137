// Reading with eyes, fingers, keys and ears: what stays still, what has the focus, what is said aloud.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { attachment, conversation, everyCase, jonas, makeFolder, manyMessages, mark, message, mia, reaction, wav,
  writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

/** @param {unknown} record @param {Parameters<typeof writeAlbum>[2] & Parameters<typeof openAlbum>[2]} [options] */
const open = (record, options = {}) => openAlbum(browser, writeAlbum(makeFolder(), record, options), options);

/** @param {Page} page @param {string} selector */
const topOf = (page, selector) => page.locator(selector).first().evaluate((found) => found.getBoundingClientRect().top);

/** A long conversation that ends with a message of so many reactions, or of so many words. @param {object} fields */
const endingWith = (fields) => {
  const record = /** @type {any} */ (manyMessages(400));
  record.messages.push({ ...message(9999, mia, "The last one", "2010-03-05T09:00:00Z"), ...fields });
  return record;
};
const manyReactions = Array.from({ length: 9 }, (_, index) =>
  reaction(index, index % 2 ? mia : jonas, ["loved", "liked", "laughed", "disliked", "questioned"][index % 5], false, index));

for (const hash of ["", "#m=GUID-9999"]) {
  test(`a badge that is pressed at the ${hash ? "end, behind a link," : "very end"} stays under the finger`, async () => {
    const page = await open(endingWith({ reactions: manyReactions }), { hash });
    if (!hash) await page.keyboard.press("End");
    await frames(page, 10);
    const before = await topOf(page, ".reaction");
    await page.locator(".reaction").first().click();
    await until(page, () => (document.querySelector(".reaction-people")?.clientHeight ?? 0) > 100);
    await frames(page, 5);
    assert.equal(await topOf(page, ".reaction"), before);
    await page.close();
  });
}

test("a long text that is folded out at the end goes on where it broke off", async () => {
  const page = await open(endingWith({ text: "word ".repeat(8000) }));
  await page.keyboard.press("End");
  await frames(page, 10);
  const before = await topOf(page, "article[data-id='9999']");
  await page.getByRole("button", { name: "Show the whole message" }).click();
  await frames(page, 10);
  assert.equal(await topOf(page, "article[data-id='9999']"), before);
  await page.close();
});

test("what was folded out is still so when its row comes back, and Back leads into it to the pixel", async () => {
  const record = /** @type {any} */ (manyMessages(900));
  const attachments = Array.from({ length: 250 }, (_, number) => attachment(number, `List ${number}.pdf`, "missing"));
  record.messages[450] = { ...message(9999, mia, "word ".repeat(8000), record.messages[450].date), attachments, reactions: manyReactions };
  const page = await open(record, { hash: "#m=GUID-9999" });
  const row = page.locator("article[data-id='9999']");
  const counts = () => row.evaluate((one) => [one.querySelector(".words")?.textContent?.length ?? 0,
    one.querySelectorAll(".tile").length, one.querySelectorAll(".reaction-people:not([hidden]) li").length]);
  await row.getByRole("button", { name: "Show the whole message" }).click();
  await row.getByRole("button", { name: "Show more" }).click();
  await row.locator(".reaction").first().click();
  const foldedOut = [40_000, 199, 9];
  assert.deepEqual(await counts(), foldedOut);
  const middle = row.locator(".tile").nth(100);
  await middle.evaluate((one) => one.scrollIntoView({ block: "center" }));
  await frames(page, 30);
  const before = (await middle.boundingBox())?.y ?? NaN;
  assert.ok(before > 100 && before < 700, String(before));
  await page.evaluate(() => { location.hash = "#m=GUID-20"; });
  await until(page, () => document.querySelector("article[data-id='9999']") === null);
  await page.goBack();
  await row.waitFor({ state: "attached" });
  await frames(page, 10);
  assert.deepEqual(await counts(), foldedOut);
  assert.ok(Math.abs(((await middle.boundingBox())?.y ?? NaN) - before) < 1, `${before} ${(await middle.boundingBox())?.y}`);
  await row.locator(".reaction").first().click();
  await page.evaluate(() => { location.hash = "#m=GUID-20"; });
  await until(page, () => document.querySelector("article[data-id='9999']") === null);
  await page.goBack();
  await row.waitFor({ state: "attached" });
  assert.deepEqual(await counts(), [...foldedOut.slice(0, 2), 0]);
  await page.close();
});

test("a sound goes on while its message is out of sight, and stands in it again", async () => {
  const record = /** @type {any} */ (manyMessages(900));
  record.messages[2].attachments = [attachment(1, "Hum.wav", "available", { mimeType: "audio/wav" })];
  const page = await open(record, { files: { "attachments/Hum.wav": wav(60) } });
  const isPlaying = () => page.evaluate(() => {
    const players = Array.from(document.querySelectorAll("audio"));
    return players.length === 1 && !players[0].paused;
  });
  await page.evaluate(() => document.querySelector("audio")?.play());
  await page.evaluate(() => scrollTo(0, 30_000));
  await until(page, () => document.querySelector("article audio") === null);
  await frames(page, 5);
  assert.equal(await isPlaying(), true);
  await page.evaluate(() => scrollTo(0, 0));
  await until(page, () => document.querySelector("article audio") !== null);
  await frames(page, 5);
  assert.equal(await isPlaying(), true);
  assert.equal(await page.locator("article[data-id='4'] figure audio").count(), 1);
  await page.evaluate(() => scrollTo(0, 30_000));
  await until(page, () => document.querySelector("article audio") === null);
  await page.evaluate(() => document.querySelector("audio")?.pause());
  await until(page, () => document.querySelector("audio") === null);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a message that has the focus says who, when and what, each once", async () => {
  const page = await open(everyCase());
  const session = await page.context().newCDPSession(page);
  const { nodes } = await session.send("Accessibility.getFullAXTree");
  const articles = nodes.filter(({ role }) => role?.value === "article").map(({ name, description }) =>
    [name?.value, description?.value].map((text) => String(text).replace(/\s/gu, " ")));
  assert.match(articles[0][0], /^Mia Okafor, Thursday, April 30, 2026, \d+:\d\d [AP]M$/);
  assert.equal(articles[0][1], "Are we still on for the lake?");
  assert.match(articles[1][0], /^Mia Okafor, \d+:\d\d [AP]M$/);
  assert.match(articles[4][1], /^Reply to Jonas <i>Lindqvist<\/i> .* Seven is perfect$/);
  assert.match(articles[8][1], /Sunset #1 50%\?\.png/);
  assert.match(articles[10][1], /Packing list\.pdf.*IMG_0007\.MOV.*Missing.*IMG_0008\.jpg/);
  assert.equal(articles[12][1], "This message could not be read.");
  assert.equal(await page.evaluate(() => new Set(Array.from(document.querySelectorAll("[id]"), ({ id }) => id)).size
    === document.querySelectorAll("[id]").length), true, "no identifier stands twice");
  await page.close();
});

test("the feed tells how many messages there are and which one this is", async () => {
  const page = await open(manyMessages(500), { hash: "#m=GUID-800" });
  const row = page.locator("article[data-id='800']");
  assert.deepEqual([await row.getAttribute("aria-setsize"), await row.getAttribute("aria-posinset")], ["500", "401"]);
  await page.keyboard.press("PageDown");
  assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("aria-posinset")), "402");
  await page.close();
});

test("with forced colours, too, the focus is seen on every message", async () => {
  const page = await open(everyCase(), { forcedColors: "active" });
  for (let press = 0; press < 12; press++) {
    await page.keyboard.press("Tab");
    if (await page.evaluate(() => document.activeElement?.matches("article"))) break;
  }
  assert.deepEqual(await page.evaluate(() => {
    const { outlineStyle, outlineWidth } = getComputedStyle(/** @type {Element} */ (document.activeElement));
    return [document.activeElement?.tagName, outlineStyle, outlineWidth];
  }), ["ARTICLE", "solid", "2px"]);
  await page.close();
});

test("with type of twice the size the bar hides no message that has the focus", async () => {
  const page = await open(manyMessages(600), { hash: "#m=GUID-600" });
  await page.evaluate(() => {
    document.documentElement.style.fontSize = "200%";
  });
  await frames(page, 10);
  for (let press = 0; press < 8; press++) {
    await page.keyboard.press("PageUp");
    await frames(page, 2);
    assert.ok(await topOf(page, "article:focus") >= await page.locator("#bar").evaluate((bar) => bar.getBoundingClientRect().bottom));
  }
  await page.close();
});

test("the focus of a message that scrolls away stays among the messages", async () => {
  const page = await open(manyMessages(900), { hash: "#m=GUID-800" });
  await page.evaluate(() => scrollBy(0, 5000));
  await until(page, () => document.querySelector("article[data-id='800']") === null);
  assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("role")), "feed");
  await until(page, () => document.querySelector("article[tabindex='0']") !== null);
  await page.keyboard.press("Tab");
  const { top, isRow } = await page.evaluate(() => ({ top: document.activeElement?.getBoundingClientRect().top ?? NaN,
    isRow: document.activeElement?.closest("article") !== null }));
  assert.ok(isRow && top > -200 && top < 800, `${isRow} ${top}`);
  await page.close();
});

test("a finger reaches the time of a message and the link to it", async () => {
  const page = await open(manyMessages(40), { width: 390, hasTouch: true });
  const row = page.locator("article[data-id='8']");
  assert.equal(await row.locator(".meta").evaluate((meta) => getComputedStyle(meta).opacity), "0");
  await row.locator("p.words").tap();
  await until(page, () => getComputedStyle(/** @type {Element} */ (document.querySelector("article[data-id='8'] .meta"))).opacity === "1");
  await row.getByRole("button", { name: "Copy link to this message" }).tap();
  await page.getByText("Link copied").waitFor();
  await page.close();
});

test("where no clipboard takes it, copying a link says so and moves nothing", async () => {
  const page = await open(manyMessages(600), { hash: "#m=GUID-800" });
  await page.evaluate(() => {
    Object.defineProperty(navigator, "clipboard", { value: { writeText: () => Promise.reject(new Error("refused")) } });
    document.execCommand = () => false;
  });
  await page.locator("article[data-id='800'] p.words").hover();
  const scrolled = await page.evaluate(() => scrollY);
  await page.locator("article[data-id='800']").getByRole("button", { name: "Copy link to this message" }).click();
  await page.getByText("The link could not be copied.").waitFor();
  assert.equal(await page.evaluate(() => scrollY), scrolled);
  assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("aria-label")), "Copy link to this message");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

for (const width of [320, 390, 1280]) {
  test(`another service is told before the eye, within ${width} pixels, once for all messages that went by it together`, async () => {
    const long = "Words that fill the bubble to its full width and then some more. ";
    const page = await open(conversation([message(1, "me", long), message(2, "me", long, undefined, { service: "SMS" }),
      message(3, "me", long, undefined, { service: "SMS" }), message(4, "me", long), message(5, mia, long, undefined, { service: "SMS" })]), { width });
    const metas = await page.locator(".meta").evaluateAll((found) => found.map((meta) => {
      const range = document.createRange();
      range.selectNodeContents(meta);
      const { left, right } = range.getBoundingClientRect();
      return { service: meta.querySelector("bdi")?.textContent, isQuiet: meta.classList.contains("is-quiet"),
        isWithin: left >= 0 && right <= innerWidth };
    }));
    assert.deepEqual(metas.map(({ service }) => service), [undefined, undefined, "SMS", undefined, "SMS"]);
    assert.deepEqual(metas.map(({ isQuiet }) => isQuiet), [true, true, false, false, false]);
    assert.ok(metas.every(({ isWithin }) => isWithin), JSON.stringify(metas));
    await page.close();
  });
}

test("states, kinds and dates of a later form of the record are told, not dropped", async () => {
  const page = await open(conversation([
    message(1, mia, undefined, undefined, { payloadState: "encrypted" }),
    message(2, mia, "Half of it", undefined, { payloadState: "truncated" }),
    message(3, mia, "Well", undefined, { reactions: [{ id: "r1", kind: "custom", senderID: mia, isRemoved: false, date: "some day" },
      { id: "r2", kind: "sparkled", senderID: jonas, isRemoved: false }] }),
    message(4, mia, mark, undefined, { attachments: [attachment(1, "later", "postponed")] }),
  ]));
  assert.deepEqual(await page.locator(".is-note").allTextContents(),
    ["This message could not be read.", "Only part of this message could be read."]);
  assert.equal(await page.locator("article[data-id='2'] p.words").textContent(), "Half of it");
  await page.locator(".reaction").first().click();
  assert.deepEqual(await page.locator(".reaction-people li").allTextContents(),
    ["💬 Reaction by Mia Okafor · some day", "💬 Reaction by Jonas <i>Lindqvist</i> (\u2068sparkled\u2069)"]);
  assert.equal(await page.locator(".is-absent .tile-name").textContent(), "later");
  await page.close();
});

test("“About this album” counts the messages of everybody, the reader and strangers too", async () => {
  const page = await open(everyCase());
  await page.locator("#actions > button[title='About this album']").click();
  const people = page.locator(".people > li .person-words");
  await until(page, () => document.querySelectorAll(".people > li").length === 6);
  assert.deepEqual(await people.evaluateAll((found) => found.map((one) =>
    [one.querySelector(".person-name")?.textContent, one.querySelector(".person-facts")?.textContent])), [
    ["Mia Okafor", "+15550142 · 11 messages"], ["Jonas <i>Lindqvist</i>", "jonas@example.org · 7 messages"],
    ["+15550199", "0 messages"], ["Me", "5 messages"], ["Unknown sender", "1 message"],
    ["Unknown sender (participant-nobody)", "1 message"]]);
  await page.close();
});

test("the menu opens and closes by keys, and gives the focus back, also behind a dialog", async () => {
  const page = await open(manyMessages(400));
  const focused = () => page.evaluate(() => document.activeElement?.getAttribute("aria-label") ?? document.activeElement?.textContent);
  await page.getByRole("button", { name: "More", exact: true }).focus();
  await page.keyboard.press("Enter");
  await page.keyboard.press("Tab");
  assert.equal(await focused(), "First message");
  await page.keyboard.press("Escape");
  assert.equal(await focused(), "More");
  assert.equal(await page.locator("#menu").isVisible(), false);
  await page.keyboard.press("Enter");
  await page.locator(".menu-item").filter({ hasText: "Check this album" }).focus();
  await page.keyboard.press("Enter");
  await page.locator("dialog[open]").waitFor();
  await page.keyboard.press("Escape");
  assert.equal(await focused(), "More");
  await page.close();
});

test("in an album without messages finding opens as everywhere", async () => {
  const page = await open(conversation([]));
  await page.keyboard.press("Control+f");
  assert.equal(await page.evaluate(() => document.activeElement?.tagName), "INPUT");
  assert.deepEqual(page.problems(), []);
  await page.close();
});
