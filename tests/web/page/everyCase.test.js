// An album with one message for each thing that a record can say: nothing of it is lost on the page.

import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { attachment, conversation, everyCase, hostile, jonas, longWord, makeFolder, mark, message, mia, writeAlbum } from "../support/album.js";
import { openAlbum, startBrowser, until } from "../support/browser.js";
import { layoutProblems } from "../support/layout.js";
import { plainBlanks } from "../support/measures.js";

const record = /** @type {any} */ (everyCase());
/** @type {import("playwright-core").Browser} */
let browser;
/** @type {Awaited<ReturnType<typeof openAlbum>>} */
let page;

before(async () => {
  browser = await startBrowser();
  // So tall a window that every picture and player comes near it.
  page = await openAlbum(browser, writeAlbum(makeFolder(), record), { height: 9000 });
  await until(page, () => document.querySelectorAll("article .tile").length === 6
    && document.querySelectorAll("article .picture:not(.is-pending)").length === 1);
});
after(async () => {
  await browser.close();
});

/** @param {number | string} number @param {string} [selector] */
const at = (number, selector = "") => page.locator(`article[data-id="${number}"] ${selector}`);
/** The texts of elements as they are in the page, seen or not. @param {import("playwright-core").Locator} locator */
const texts = (locator) => locator.allTextContents();
/** @param {import("playwright-core").Locator} locator @param {string} name */
const attributes = (locator, name) => locator.evaluateAll((found, wanted) => found.map((one) => one.getAttribute(wanted)), name);

/** Number of a message: its words, one text for each bubble. @type {[number, string[]][]} */
const words = [
  [1, ["Are we still on for the lake?"]],
  [3, ["I can borrow the big tent"]],
  [5, ["Yes, and see https://example.org/lake?a=1&b=2."]],
  [7, [hostile]],
  [9, ["Seven is perfect"]],
  [11, ["Taken back"]],
  [13, []],
  [15, ["Home safe"]],
  [17, []],
  [19, ["Before", "behind"]],
  [21, []],
  [23, []],
  [25, []],
  [27, ["Half of"]],
  [29, []],
  [31, []],
  [33, ["Is this the campsite?"]],
  [35, ["Who am I?"]],
  [37, ["🎉🎉"]],
  [39, ["one\u2028two\u2029three \u202Edesrever\u202C javascript:alert(1)"]],
  [41, [`${longWord.slice(0, 20_000)}…`]],
  [43, ["  two lines\n and blanks  "]],
  [45, ["Far ahead"]],
  [47, ["No such day"]],
  [49, ["Later field"]],
];

test("every message stands once and in order", async () => {
  assert.deepEqual(await attributes(page.locator("article"), "data-id"), words.map(([number]) => String(number)));
});

for (const [number, expected] of words) {
  test(`the words of message ${number} stand to the letter`, async () => {
    assert.deepEqual(await texts(at(number, "p.words")), expected);
  });
}

test("words take their own direction", async () => {
  const directions = await attributes(page.locator("article p.words"), "dir");
  assert.ok(directions.length > 0 && directions.every((direction) => direction === "auto"));
});

test("every message names its sender", async () => {
  const names = new Map([[mia, "Mia Okafor"], [jonas, "Jonas <i>Lindqvist</i>"], ["me", "Me"], [undefined, "Unknown sender"],
    ["participant-nobody", "Unknown sender (participant-nobody)"]]);
  const expected = record.messages.map((/** @type {any} */ one) => names.get(one.senderID));
  assert.deepEqual(await texts(page.locator("article bdi.sender-name")), expected);
});

test("the name stands before the eye where a run of another's messages begins, and for all others in the page alone", async () => {
  assert.equal(await at(1, ".sender").isVisible(), true);
  assert.equal(await at(3, ".sender").count(), 0);
  assert.equal(await at(5, ".sender").count(), 0);
});

test("own messages stand on their own side", async () => {
  const sides = await page.locator("article").evaluateAll((rows) => rows.map((row) => row.classList.contains("is-own")));
  assert.deepEqual(sides, record.messages.map((/** @type {any} */ one) => one.isFromMe));
  const own = await at(5, ".bubble").boundingBox();
  const other = await at(1, ".bubble").boundingBox();
  assert.ok(own && other && own.x + own.width > other.x + other.width && own.x > other.x);
});

test("text services have their own colour", async () => {
  const colour = (/** @type {number} */ number) => at(number, ".bubble").evaluate((bubble) => getComputedStyle(bubble).backgroundColor);
  assert.notEqual(await colour(9), await colour(5));
  assert.equal(await colour(5), await colour(49));
});

test("the title stands in the window's title and above the conversation", async () => {
  assert.equal(await page.title(), record.title);
  assert.equal(await page.locator("h1").textContent(), record.title);
});

test("the language is the page's", async () => {
  assert.equal(await page.locator("html").getAttribute("lang"), "en");
});

/** @param {string} moment @param {Intl.DateTimeFormatOptions} options */
const told = (moment, options) => plainBlanks(new Intl.DateTimeFormat("en", options).format(new Date(moment)));

test("days are told in the reader's calendar", async () => {
  const day = (/** @type {string} */ moment) => told(moment, { weekday: "long", year: "numeric", month: "long", day: "numeric" });
  assert.deepEqual(await texts(page.locator("h2.day")), [day("2026-04-30T09:00:00Z"), day("2026-05-01T08:00:00Z"),
    "Saturday, January 1, 10000", "Unknown date", day("2026-05-01T09:00:00Z")]);
});

test("every message tells its time", async () => {
  const dated = record.messages.slice(0, -3);
  const found = await page.locator("article .meta > time:first-child").evaluateAll((times) => times.map((time) =>
    [time.textContent ?? "", time.getAttribute("datetime")]));
  assert.deepEqual(found.slice(0, dated.length).map(([text, date]) => [plainBlanks(String(text)), date]),
    dated.map((/** @type {any} */ one) => [told(one.date, { hour: "numeric", minute: "2-digit" }), one.date]));
});

test("a date that cannot be read is shown as it stands", async () => {
  assert.equal(await at(47, ".meta time").textContent(), "yesterday");
});

test("reactions are settled and say who, also those taken back", async () => {
  assert.deepEqual(await attributes(at(5, "button.reaction"), "aria-label"), ["Loved by Mia Okafor and Jonas <i>Lindqvist</i>",
    "👍 Taken back by Jonas <i>Lindqvist</i>", "Reaction by Unknown sender", "Reaction by Me (\u2068constructor\u2069)"]);
  assert.deepEqual(await texts(at(5, ".reaction-count")), ["2"]);
});

test("names and times of reactions come and go at a press", async () => {
  const [badge, people] = [at(5, "button.reaction").first(), at(5, ".reaction-people")];
  assert.equal(await people.isVisible(), false);
  await badge.click();
  assert.equal(await people.isVisible(), true);
  assert.equal(await badge.getAttribute("aria-expanded"), "true");
  const moment = told("2026-05-01T10:01:00Z", { dateStyle: "long", timeStyle: "medium" });
  const lines = (await texts(people.locator("li"))).map(plainBlanks);
  assert.equal(lines[0], `❤️ Loved by Mia Okafor · ${moment}`);
  assert.equal(lines.length, 5);
  await badge.click();
  assert.equal(await people.isVisible(), false);
});

test("a reply quotes what it answers", async () => {
  assert.equal(await at(9, "button.reply .reply-sender").textContent(), "Reply to Jonas <i>Lindqvist</i>");
  assert.equal(await at(9, "button.reply .reply-words").textContent(), hostile);
});

test("a reply to nothing says so", async () => {
  assert.equal(await at(15, "p.reply").textContent(), "Reply to an earlier message");
});

test("an edited message says so with its time", async () => {
  assert.equal(plainBlanks(await at(9, ".mark-edited").textContent() ?? ""),
    `Edited ${told("2026-05-01T09:30:00Z", { hour: "numeric", minute: "2-digit" })}`);
  assert.equal(await at(9, ".mark-edited time").getAttribute("datetime"), "2026-05-01T09:30:00Z");
  assert.match(await at(9, ".mark-edited").getAttribute("title") ?? "", /^Edited on May 1, 2026/);
  assert.equal(await page.locator(".mark-edited").count(), 1);
});

test("an unsent message says so and keeps its words", async () => {
  for (const number of [11, 13]) {
    assert.match(plainBlanks(await at(number, ".mark-unsent").textContent() ?? ""), /^Unsent \d+:\d\d [AP]M$/);
  }
  assert.equal(await at(13, ".is-note").textContent(), "This message was unsent.");
  assert.equal(await page.locator(".mark-unsent").count(), 2);
});

test("a subject stands above its words", async () => {
  assert.equal(await at(7, "p.subject").textContent(), "Subject <b>of</b> it");
  assert.equal(await at(7, "p.subject + p.words").count(), 1);
  assert.equal(await at(49, "p.subject").count(), 0);
});

for (const [number, note] of /** @type {[number, string][]} */ ([[25, "This message could not be read."],
  [27, "Only part of this message could be read."], [29, "This message has no text."], [31, "This message has no text."]])) {
  test(`message ${number} says “${note}”`, async () => assert.equal(await at(number, ".is-note").textContent(), note));
}

test("no mark of an attachment is shown", async () => {
  assert.ok(!(await page.locator("main").textContent())?.includes(mark));
});

test("a picture stands in its place with its own shape", async () => {
  const image = at(17, "a.picture img");
  assert.equal(await image.getAttribute("src"), "attachments/Sunset%20%231%2050%25%3F.png");
  assert.equal(await at(17, "a.picture").getAttribute("href"), await image.getAttribute("src"));
  assert.equal(await image.getAttribute("alt"), "Sunset #1 50%?.png");
  const box = await image.boundingBox();
  assert.ok(box && box.width > 100 && Math.abs(box.width / box.height - 640 / 480) < 0.02, JSON.stringify(box));
});

test("words stand round their attachment", async () => {
  const stack = await at(19, ".stack").textContent() ?? "";
  const places = ["Before", "IMG_2042.heic", "behind"].map((part) => stack.indexOf(part));
  assert.deepEqual(places, places.slice().sort((one, other) => one - other));
  assert.equal(places[0], 0);
});

test("a picture that the browser cannot show becomes a tile", async () => {
  assert.equal(await at(19, "a.tile").getAttribute("href"), "attachments/IMG_2042.heic");
  assert.match(await at(19, "a.tile").textContent() ?? "", /Image · HEIC.*This browser cannot show this file\..*Open file/);
  assert.equal(await at(19, ".part img").count(), 0);
});

test("a sound that the browser cannot play becomes a tile", async () => {
  assert.equal(await at(23, "a.tile .tile-name").textContent(), "Voice.amr");
  assert.match(await at(23, "a.tile").textContent() ?? "", /This browser cannot show this file\./);
});

test("a sound has a player and a name", async () => {
  assert.equal(await at(23, "figure audio").getAttribute("src"), "attachments/Hum.wav");
  assert.equal(await at(23, "figure figcaption").textContent(), "Hum.wav");
  await until(page, () => document.querySelector("audio")?.duration === 1);
});

test("a document is a tile with name, kind and size", async () => {
  assert.equal(await at(21, "a.tile").getAttribute("href"), "attachments/Packing%20list.pdf");
  assert.equal(await at(21, "a.tile .tile-name").textContent(), "Packing list.pdf");
  assert.equal(plainBlanks(await at(21, "a.tile .tile-facts").textContent() ?? ""), "Document · PDF · 184 kB");
});

test("attachments that are not in the album are named, with what is known of them", async () => {
  assert.deepEqual(await texts(at(21, ".is-absent .tile-name")), ["IMG_0007.MOV", "IMG_0008.jpg"]);
  assert.deepEqual((await texts(at(21, ".is-absent .tile-facts"))).map(plainBlanks), ["Video · MOV · 41.2 MB", "Image · JPG"]);
  assert.deepEqual(await texts(at(21, ".is-absent .tile-trouble")),
    ["Missing: this file is not in the album.", "This file could not be read and is not in the album."]);
});

const oldPath = "~/Library/Messages/Attachments/0f/contract.zip";
/** What the record says of a file that is not in the album: its name, what stands below, the words behind a pointer that rests. */
const absent = [
  { fields: { displayName: "Attachment", originalFilename: oldPath, mimeType: "application/zip", uniformType: "public.zip-archive" },
    name: "contract.zip", facts: "Attachment · Document · ZIP · application/zip",
    title: `${oldPath}\napplication/zip\npublic.zip-archive` },
  { fields: { displayName: "", originalFilename: oldPath, byteSize: 41_200_331, availability: "unreadable" },
    name: "contract.zip", facts: "Document · ZIP · 41.2 MB", title: oldPath },
  { fields: { displayName: "Holiday.jpg", originalFilename: "~/x/IMG_7.HEIC", mimeType: "image/jpeg" },
    name: "Holiday.jpg", facts: "Image · JPG", title: "~/x/IMG_7.HEIC\nimage/jpeg" },
  { fields: { displayName: "FullSizeRender", originalFilename: "~/x/FullSizeRender.heic" },
    name: "FullSizeRender.heic", facts: "Image · HEIC", title: "~/x/FullSizeRender.heic" },
  { fields: { displayName: "Slides", uniformType: "com.apple.keynote.key" },
    name: "Slides", facts: "Document · com.apple.keynote.key", title: "com.apple.keynote.key" },
  { fields: { displayName: "Later" }, name: "Later", facts: "Document", title: null },
];

test("what the record tells of a file that is not in the album stands on its tile", async () => {
  const own = await openAlbum(browser, writeAlbum(makeFolder(), conversation([...absent.map(({ fields }, index) =>
    message(index, mia, undefined, undefined, { attachments: [attachment(index, "", "missing", fields)] })),
    message(absent.length, "me", "An answer", undefined, { replyToGUID: "GUID-0" })])));
  assert.deepEqual(await texts(own.locator(".is-absent .tile-name")), absent.map(({ name }) => name));
  assert.deepEqual((await texts(own.locator(".is-absent .tile-facts"))).map(plainBlanks), absent.map(({ facts }) => facts));
  assert.deepEqual(await attributes(own.locator(".is-absent"), "title"), absent.map(({ title }) => title));
  assert.equal(await own.locator(".reply-words").textContent(), "contract.zip");
  assert.deepEqual(own.problems(), []);
  await own.close();
});

test("long names and types of a file that is not in the album stay within their tile in a narrow window", async () => {
  const own = await openAlbum(browser, writeAlbum(makeFolder(), conversation([message(1, mia, undefined, undefined, { attachments: [
    attachment(1, "W".repeat(300), "missing", { originalFilename: `~/x/${"M".repeat(300)}.docx`,
      mimeType: "application/vnd.openxmlformats-officedocument.wordprocessingml.document" }),
    attachment(2, "\u202Exgnp\u2067", "missing", { originalFilename: "~/x/\u202Eabc.zip", mimeType: "application/zip" })] })])), { width: 320 });
  assert.deepEqual(await layoutProblems(own), []);
  assert.deepEqual(await own.locator(".is-absent .tile-facts").last().evaluate((line) =>
    Array.from(line.querySelectorAll("bdi"), (one) => one.textContent)), ["\u202Exgnp\u2067", "Document", "ZIP", "application/zip"]);
  await own.close();
});

test("words behind an attachment keep the indent of their first line, and what is looked for is marked there", async () => {
  const own = await openAlbum(browser, writeAlbum(makeFolder(), conversation([message(1, mia, `${mark}\n\n  a poem\n    indented\n${mark}\n\u3000\u8A69`,
    undefined, { attachments: [attachment(1, "a.zip", "missing"), attachment(2, "b.zip", "missing")] })])));
  await own.keyboard.press("Control+f");
  await own.keyboard.type("poem");
  await own.locator("article mark").waitFor();
  const [poem, verse] = await texts(own.locator("p.words"));
  assert.deepEqual([poem, verse], ["  a poem\n    indented", "\u3000\u8A69"]);
  assert.deepEqual(await texts(own.locator("article mark")), ["poem"]);
  await own.close();
});

test("a path that leaves the album is not followed", async () => {
  assert.equal(await at(23, ".is-absent .tile-name").textContent(), "Escape.txt");
  const addresses = await page.locator("[href], [src]").evaluateAll((found) => found.map((one) =>
    `${one.getAttribute("href")} ${one.getAttribute("src")}`));
  assert.ok(addresses.length > 3);
  assert.deepEqual(addresses.filter((address) => address.includes("..")), []);
});

test("only web addresses become links, and open apart", async () => {
  assert.deepEqual(await attributes(page.locator("p.words a"), "href"), ["https://example.org/lake?a=1&b=2"]);
  assert.deepEqual(await attributes(page.locator("p.words a"), "rel"), ["noopener noreferrer"]);
  assert.deepEqual(await attributes(page.locator("p.words a"), "target"), ["_blank"]);
});

test("emoji alone stand large and without a bubble", async () => {
  const look = (/** @type {number} */ number) => at(number, ".bubble").evaluate((bubble) => ({
    backgroundColor: getComputedStyle(bubble).backgroundColor,
    size: parseFloat(getComputedStyle(/** @type {Element} */ (bubble.querySelector(".words"))).fontSize),
  }));
  assert.ok((await look(37)).size > 1.5 * (await look(43)).size);
  assert.equal((await look(37)).backgroundColor, "rgba(0, 0, 0, 0)");
  assert.equal(await page.locator(".bubble.is-large").count(), 1);
});

test("people have pictures or initials", async () => {
  const avatars = page.locator(".cover-pictures .avatar");
  assert.equal(await avatars.nth(0).locator("img").getAttribute("src"), "assets/avatars/participant--15550142.png");
  assert.equal(await avatars.nth(1).textContent(), "J");
  assert.equal(await avatars.nth(2).locator("svg").count(), 1);
});

test("nothing leaves its frame or the window", async () => assert.deepEqual(await layoutProblems(page), []));

test("a megabyte without a blank stands as a whole when asked for", async () => {
  const more = at(41, "button");
  assert.equal(await more.first().textContent(), "Show the whole message");
  await more.first().click();
  assert.equal(await at(41, "p.words").textContent(), longWord);
});

test("no script ran from the words", async () => {
  assert.equal(await page.evaluate(() => String(/** @type {any} */ (window).hacked)), "undefined");
  assert.deepEqual(await attributes(page.locator("script"), "src"), ["data/messages.js", "assets/app.js"]);
});

test("nothing reached the console, and nothing was asked of the outside", () => assert.deepEqual(page.problems(), []));
