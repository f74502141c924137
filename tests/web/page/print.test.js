import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import test, { after, before } from "node:test";
import {
  attachment, conversation, everyCase, hostile, jonas, longWord, makeFolder, manyMessages, mark, message, mia, reaction, writeAlbum,
} from "../support/album.js";
import { openAlbum, startBrowser, until } from "../support/browser.js";
import { makeRandom } from "../support/measures.js";

/** @typedef {import("playwright-core").Page} Page */

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
  browser = await startBrowser();
});
after(() => browser.close());

const words = ["lake", "Käse", "tent", "naïve", "boat", "привет", "water", "Łódź", "καλημέρα", "sun", "1,000", "e-mail", "office", "final"];
const minute = 60_000;
const began = Date.UTC(2024, 2, 1, 8);

/** The n-th of a long conversation: its time, its sender and its text. A line, or many of them. @param {number} number */
function sample(number) {
  const random = makeRandom(number);
  const length = number % 97 === 0 ? 300 : 1 + random(20);
  return {
    time: began + Math.floor(number / 100) * 86_400_000 + (number % 100) * 7 * minute,
    sender: [mia, "me", jonas][Math.floor(number / 3) % 3],
    text: `No. ${number}: ${Array.from({ length }, () => words[random(words.length)]).join(" ")}.`,
  };
}

/** @param {number} count @param {(number: number) => { [key: string]: unknown }} [fields] */
function longAlbum(count, fields = () => ({})) {
  return writeAlbum(makeFolder(), conversation(Array.from({ length: count }, (_, number) => {
    const { sender, text, time } = sample(number);
    return message(number, sender, text, new Date(time).toISOString().replace(".000Z", "Z"), fields(number));
  })));
}

/** @param {string} text */
function withoutBlanks(text) {
  return text.normalize("NFKC").replace(/[\s\u200b\u00ad]+/gu, "");
}

/** What stands on the paper if the page is printed now, and how many sheets there are. @param {Page} page */
async function print(page) {
  const folder = makeFolder();
  const file = path.join(folder, "paper.pdf");
  await page.pdf({ path: file, format: "A4" });
  const text = execFileSync("pdftotext", ["-raw", "-enc", "UTF-8", file, "-"], { encoding: "utf8", maxBuffer: 2 ** 28 });
  return { text, plain: withoutBlanks(text), sheets: text.split("\f").length - 1, size: fs.statSync(file).size };
}

/** In place of the dialog of the browser: the paper stays as it is until it is printed. @param {Page} page */
async function keepPaper(page) {
  await page.evaluate(() => {
    window.print = () => {
      document.documentElement.dataset.prints = "true";
      window.dispatchEvent(new Event("beforeprint"));
    };
  });
}

/** @param {Page} page */
async function start(page) {
  await page.getByRole("button", { name: "Print…" }).click();
  await page.locator("html[data-prints]").waitFor({ timeout: 60_000 });
}

/** Dates as the browser writes them. @param {Page} page @param {number[]} times @param {Intl.DateTimeFormatOptions} options */
function formatted(page, times, options) {
  return page.evaluate(([all, how]) => {
    const format = new Intl.DateTimeFormat("en", { ...how, timeZone: "UTC" });
    return all.map((time) => format.format(time));
  }, /** @type {const} */ ([times, options]));
}

/** All words of the long conversation from one message to another, in their order. @param {Page} page @param {number} first @param {number} end */
async function expectedText(page, first, end) {
  const all = Array.from({ length: end - first }, (_, place) => sample(first + place));
  const times = all.map(({ time }) => time);
  const days = await formatted(page, times, { weekday: "long", year: "numeric", month: "long", day: "numeric" });
  const clocks = await formatted(page, times, { hour: "numeric", minute: "2-digit" });
  const dates = await formatted(page, [times[0], times[times.length - 1]], { dateStyle: "long" });
  const names = { [mia]: "Mia Okafor", [jonas]: "Jonas <i>Lindqvist</i>", me: "Me" };
  const head = ["Lake weekend", "Mia Okafor, Jonas <i>Lindqvist</i>, and +15550199",
    dates[0] === dates[1] ? dates[0] : dates.join(" – "), `${(end - first).toLocaleString("en")} messages · UTC`];
  return withoutBlanks(head.concat(all.flatMap(({ sender, text }, place) => {
    const isNewDay = place === 0 || days[place] !== days[place - 1];
    const isNewSender = isNewDay || sender !== all[place - 1].sender;
    return [...(isNewDay ? [days[place]] : []), ...(isNewSender ? [names[sender]] : []), text, clocks[place]];
  })).join(" "));
}

/** Says where two long texts part. @param {string} found @param {string} expected */
function assertSameText(found, expected) {
  let place = 0;
  while (place < expected.length && found[place] === expected[place]) place += 1;
  const near = (/** @type {string} */ text) => text.slice(Math.max(0, place - 60), place + 60);
  assert.ok(found === expected, `At ${place} of ${expected.length}:\n${near(found)}\nshould be\n${near(expected)}`);
}

test("5,000 messages stand on paper whole and in their order, and nothing is left of it afterwards", async () => {
  const page = await openAlbum(browser, longAlbum(5000), { timezoneId: "UTC" });
  await keepPaper(page);
  await page.keyboard.press("Control+p");
  await page.getByText("5,000 messages will be printed.").waitFor();
  await start(page);
  const { plain, sheets } = await print(page);
  assertSameText(plain, await expectedText(page, 0, 5000));
  assert.ok(sheets > 100, `${sheets} sheets`);
  await until(page, () => !document.querySelector(".paper") && !document.documentElement.classList.contains("is-on-paper"));
  assert.equal(await page.locator(".rows").isVisible(), true);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("the browser's own menu prints the whole conversation too", async () => {
  const page = await openAlbum(browser, longAlbum(600), { timezoneId: "UTC" });
  assertSameText((await print(page)).plain, await expectedText(page, 0, 600));
  await until(page, () => !document.querySelector(".paper"));
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a range of days prints these days and no others", async () => {
  const page = await openAlbum(browser, longAlbum(600), { timezoneId: "UTC" });
  await keepPaper(page);
  await page.keyboard.press("Meta+p");
  await page.getByLabel("From one day to another").check();
  await page.getByLabel("From", { exact: true }).fill("2024-03-02");
  await page.getByLabel("To", { exact: true }).fill("2024-03-03");
  await page.getByText("200 messages will be printed.").waitFor();
  await start(page);
  assertSameText((await print(page)).plain, await expectedText(page, 100, 300));
  await page.close();
});

test("days without messages cannot be printed", async () => {
  const page = await openAlbum(browser, longAlbum(50), { timezoneId: "UTC" });
  await page.keyboard.press("Control+p");
  await page.getByLabel("From one day to another").check();
  await page.getByLabel("From", { exact: true }).fill("2031-01-01");
  await page.getByText("There are no messages in these days.").waitFor();
  assert.equal(await page.getByRole("button", { name: "Print…" }).isDisabled(), true);
  await page.close();
});

test("preparing can be cancelled, and leaves nothing behind", async () => {
  const page = await openAlbum(browser, longAlbum(3000), { timezoneId: "UTC" });
  await keepPaper(page);
  await page.keyboard.press("Control+p");
  await page.evaluate(() => {
    new MutationObserver((_, observer) => {
      const words = document.querySelector(".print-count")?.textContent ?? "";
      if (!words.startsWith("Preparing")) return;
      observer.disconnect();
      document.documentElement.dataset.prepared = words;
      /** @type {HTMLButtonElement | null} */ (document.querySelector(".print-actions button"))?.click();
    }).observe(document.body, { childList: true, subtree: true });
    /** @type {HTMLButtonElement | null} */ (document.querySelector(".print-actions button"))?.click();
  });
  await page.getByText("3,000 messages will be printed.").waitFor();
  assert.match(await page.locator("html").getAttribute("data-prepared") ?? "", /^Preparing [\d,]+ of 3,000 messages$/);
  assert.equal(await page.locator(".paper").count(), 0);
  assert.equal(await page.locator("html[data-prints]").count(), 0);
  await page.close();
});

test("replies, edits, reactions, marks and files are told in words, with names and times", async () => {
  const page = await openAlbum(browser, writeAlbum(makeFolder(), conversation([
    message(1, mia, "Are we going?", "2026-05-01T09:00:00Z", { subject: "Lake" }),
    message(3, "me", "Yes", "2026-05-01T09:01:00Z", { replyToGUID: "GUID-1", editedAt: "2026-05-01T09:30:00Z",
      reactions: [reaction(1, mia, "loved", false, 1), reaction(2, jonas, "liked", true, 2)] }),
    message(5, jonas, `${mark}${mark}`, "2026-05-01T09:02:00Z", { attachments: [
      attachment(1, "Hum.wav", "available", { mimeType: "audio/wav", byteSize: 8044 }), attachment(2, "Gone.mov", "missing")] }),
    message(7, jonas, "Never mind", "2026-05-01T09:03:00Z", { retractedAt: "2026-05-02T09:04:00Z", replyToGUID: "GUID-99" }),
  ])), { timezoneId: "UTC" });
  const { plain } = await print(page);
  const [moment] = await formatted(page, [Date.UTC(2026, 4, 1, 10, 1)], { dateStyle: "long", timeStyle: "medium" });
  const pieces = ["Friday, May 1, 2026", "Mia Okafor", "Lake", "Are we going?", "9:00 AM", "Me", "Reply to Mia Okafor", "Are we going?", "Yes",
    "9:01 AM", "Edited 9:30 AM", `Loved by Mia Okafor · ${moment}`, "Taken back by Jonas", "Jonas <i>Lindqvist</i>", "Audio", "Hum.wav",
    "Gone.mov", "Missing: this file is not in the album.", "9:02 AM", "Reply to an earlier message", "Never mind", "9:03 AM",
    "Unsent May 2, 2026, 9:04 AM"];
  let place = 0;
  for (const piece of pieces.map(withoutBlanks)) {
    const found = plain.indexOf(piece, place);
    assert.ok(found >= 0, `${piece} does not follow in ${plain.slice(place)}`);
    place = found + piece.length;
  }
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("everything that a record can say stands on paper", async () => {
  const record = everyCase();
  const word = longWord.slice(0, 30_000);
  const messages = /** @type {any[]} */ (record.messages);
  record.messages = messages.map((one) => (one.text === longWord ? { ...one, text: word } : one));
  const page = await openAlbum(browser, writeAlbum(makeFolder(), record), { timezoneId: "UTC" });
  const { plain } = await print(page);
  const times = [1, 2, 4, 5, 6].map((one) => Date.UTC(2026, 4, 1, 10, one));
  const [loved, lovedToo, takenBack, unknown, own] = await formatted(page, times, { dateStyle: "long", timeStyle: "medium" });
  const [none, mias, jonass] = ["This message has no text.", "Mia Okafor", "Jonas <i>Lindqvist</i>"];
  const expected = ["Lake & <weekend> \"it's\"", `${mias}, ${jonass}, and +15550199`,
    "April 30, 2026 – January 1, 10000", "25 messages · UTC", "Thursday, April 30, 2026", mias, "Are we still on for the lake?", "9:00 AM", "I can borrow the big tent", "9:01 AM",
    "Friday, May 1, 2026", "Me", "Yes, and see https://example.org/lake?a=1&b=2.", "8:00 AM",
    `❤️ Loved by ${mias} · ${loved}`, `❤️ Loved by ${jonass} · ${lovedToo}`, `👍 Taken back by ${jonass} · ${takenBack}`,
    `💬 Reaction by Unknown sender · ${unknown}`, `💬 Reaction by Me (\u2068constructor\u2069) · ${own}`,
    jonass, "Subject <b>of</b> it", hostile, "9:00 AM",
    "Me", `Reply to ${jonass}`, hostile, "Seven is perfect", "9:00 AM · SMS · Edited 9:30 AM", "Taken back", "9:00 AM · Unsent 9:31 AM",
    "This message was unsent.", "9:00 AM · Unsent 9:32 AM",
    mias, "Reply to an earlier message", "Home safe", "9:00 AM", "9:00 AM",
    "Before", "IMG_2042.heic", "Image · HEIC", "This browser cannot show this file.", "behind", "9:00 AM",
    jonass, "Packing list.pdf", "Document · PDF · 184 kB", "IMG_0007.MOV", "Video · MOV · 41.2 MB",
    "Missing: this file is not in the album.", "IMG_0008.jpg", "Image · JPG", "This file could not be read and is not in the album.", "9:00 AM",
    "Voice.amr", "Audio · AMR", "This browser cannot show this file.", "Audio · Hum.wav",
    "Escape.txt", "Document · TXT", "Missing: this file is not in the album.", "9:00 AM",
    "This message could not be read.", "9:00 AM", "Half of", "Only part of this message could be read.", "9:00 AM",
    none, "9:00 AM", none, "9:00 AM", "Unknown sender", "Is this the campsite?", "9:00 AM",
    "Unknown sender (participant-nobody)", "Who am I?", "9:00 AM", mias, "🎉🎉", "9:00 AM",
    "one two three reversed javascript:alert(1)", "9:00 AM", word, "9:00 AM", "two lines and blanks", "9:00 AM",
    "Saturday, January 1, 10000", mias, "Far ahead", "12:00 AM", "Unknown date", mias, "No such day", "yesterday",
    "Friday, May 1, 2026", "Me", "Later field", "9:00 AM"];
  assertSameText(plain.replace(/[\u202a-\u202e]/g, ""), withoutBlanks(expected.join(" ")));
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a conversation too long for the browser's menu says so on paper, and the reader's place is the same afterwards", async () => {
  const page = await openAlbum(browser, writeAlbum(makeFolder(), manyMessages(20_001)), { hash: "m=GUID-8000" });
  await until(page, () => document.querySelector("article[data-index='4000']") !== null);
  const place = () => page.locator("article[data-index='4000']").evaluate((row) => row.getBoundingClientRect().top);
  const top = await place();
  const { plain, sheets } = await print(page);
  assert.ok(plain.endsWith(withoutBlanks("This conversation is too long to be printed from the browser’s menu. "
    + "Close this, and choose “Print” in the page.")), plain);
  assert.equal(sheets, 1);
  assert.doesNotMatch(plain, /messages/);
  await until(page, () => !document.querySelector(".paper"));
  assert.equal(await place(), top);
  await page.close();
});

test("the days that are offered are those of the time zone in use", async () => {
  const folder = writeAlbum(makeFolder(), conversation([
    message(1, mia, "First", "2026-05-01T22:00:00Z"), message(3, mia, "Last", "2026-05-04T22:00:00Z")]));
  const page = await openAlbum(browser, folder, { timezoneId: "Asia/Kathmandu" });
  /** @param {string} days @param {number} count */
  const untilOffered = async (days, count) => {
    await page.keyboard.press("Control+p");
    const choice = page.getByLabel("From one day to another");
    await choice.check();
    assert.equal(await page.locator(".print-day input").evaluateAll((all) => all.map((one) =>
      /** @type {HTMLInputElement} */ (one).value).join()), days);
    await page.getByText(`${count} messages will be printed.`).waitFor();
    await page.getByLabel("The whole conversation").check();
    await page.keyboard.press("Escape");
  };
  await untilOffered("2026-05-02,2026-05-05", 2);
  await page.getByRole("button", { name: "More" }).click();
  await page.locator("input[value=UTC]").first().check();
  await page.keyboard.press("Escape");
  await untilOffered("2026-05-01,2026-05-04", 2);
  await page.close();
});

test("Ctrl+P over an open dialog asks above it, and paper shows neither dialogs nor the marks of a search", async () => {
  const page = await openAlbum(browser, longAlbum(40), { timezoneId: "UTC" });
  await keepPaper(page);
  await page.keyboard.press("Control+f");
  await page.keyboard.type("lake");
  await page.locator(".track mark").first().waitFor();
  await page.getByRole("button", { name: "Photos and files" }).click();
  await page.keyboard.press("Control+p");
  await start(page);
  await page.emulateMedia({ media: "print" });
  assert.equal(await page.locator("dialog[open]").count(), 1);
  assert.equal(await page.locator("dialog[open]").isVisible(), false);
  assert.deepEqual(await page.locator(".paper mark").first().evaluate((one) => {
    const { backgroundColor, color } = getComputedStyle(one);
    return [backgroundColor, color === getComputedStyle(/** @type {Element} */ (one.parentElement)).color];
  }), ["rgba(0, 0, 0, 0)", true]);
  await page.emulateMedia({ media: null });
  assertSameText((await print(page)).plain, await expectedText(page, 0, 40));
  await page.close();
});

test("what was being prepared is dropped where the dialog is opened again before the browser has told of its closing", async () => {
  const page = await openAlbum(browser, longAlbum(3000), { timezoneId: "UTC" });
  await keepPaper(page);
  await page.keyboard.press("Control+p");
  const button = page.getByRole("button", { name: "Print…" });
  await button.evaluate(async (pressed) => {
    const dialog = /** @type {HTMLDialogElement} */ (pressed.closest("dialog"));
    pressed.click();
    const told = new Promise((done) => dialog.addEventListener("close", done, { once: true }));
    dialog.close();
    document.dispatchEvent(new KeyboardEvent("keydown", { key: "p", ctrlKey: true, cancelable: true }));
    await told;
  });
  assert.equal(await page.locator(".paper").count(), 0);
  await page.getByText("3,000 messages will be printed.").waitFor();
  await start(page);
  assert.equal(await page.locator(".paper .row").count(), 3000);
  await page.close();
});

test("a text that the screen shortens stands on paper whole", async () => {
  const text = Array.from({ length: 6000 }, (_, number) => `word${number}`).join(" ");
  const page = await openAlbum(browser, writeAlbum(makeFolder(), conversation([message(1, mia, text)])));
  assert.ok((await print(page)).plain.includes(withoutBlanks(text)));
  await page.close();
});

test("pictures are decoded before they are printed, and are left out where they are not wanted", async () => {
  const picture = attachment(501, "Sunset #1 50%?.png", "available", { mimeType: "image/png" });
  const folder = writeAlbum(makeFolder(), conversation(Array.from({ length: 40 }, (_, number) =>
    message(number, mia, mark, undefined, { attachments: [{ ...picture, id: String(number) }] }))));
  const page = await openAlbum(browser, folder);
  await keepPaper(page);
  await page.keyboard.press("Control+p");
  await start(page);
  const states = await page.locator(".paper img").evaluateAll((all) => all.map((one) =>
    one instanceof HTMLImageElement && one.complete && one.naturalWidth === 640));
  assert.deepEqual(states, Array(40).fill(true));
  const withPictures = await print(page);
  await page.keyboard.press("Control+p");
  await page.getByLabel("With pictures").uncheck();
  await page.evaluate(() => {
    delete document.documentElement.dataset.prints;
  });
  await start(page);
  const without = await print(page);
  assert.ok(withPictures.sheets > 2 * without.sheets, `${withPictures.sheets} and ${without.sheets} sheets`);
  assert.ok(without.plain.includes(withoutBlanks("Image · Sunset #1 50%?.png")));
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("no bubble that fits a sheet is cut, and no day stands without its message", async () => {
  const page = await openAlbum(browser, longAlbum(400), { timezoneId: "UTC" });
  const { text } = await print(page);
  const sheets = text.split("\f").filter((sheet) => sheet.trim()).map(withoutBlanks);
  for (let number = 0; number < 400; number++) {
    const whole = withoutBlanks(sample(number).text);
    assert.ok(sheets.some((sheet) => sheet.includes(whole)), `No. ${number} is cut`);
  }
  assert.ok(sheets.length > 5);
  for (const sheet of sheets) assert.doesNotMatch(sheet, /day,March\d+,2024(?:Me|MiaOkafor|Jonas<i>Lindqvist<\/i>)?$/);
  await page.close();
});

test("the dark page is printed light", async () => {
  const page = await openAlbum(browser, longAlbum(3), { colorScheme: "dark" });
  await page.evaluate(() => {
    document.documentElement.dataset.appearance = "dark";
    window.dispatchEvent(new Event("beforeprint"));
  });
  await page.emulateMedia({ media: "print" });
  assert.equal(await page.locator(".paper .day").first().evaluate((day) => getComputedStyle(day).color), "rgb(99, 102, 109)");
  await page.close();
});
