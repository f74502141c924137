// Pictures that move, films and sounds in the conversation: they play in their places, and what this browser cannot show becomes a
// file to open.

import assert from "node:assert/strict";
import fs from "node:fs";
import { after, before, test } from "node:test";
import { fileURLToPath } from "node:url";
import { attachment, conversation, makeFolder, mark, message, mia, png, wav, writeAlbum } from "../support/album.js";
import { openAlbum, startBrowser, until } from "../support/browser.js";
import { plainBlanks } from "../support/measures.js";

/** Two seconds of one colour, 64 by 48 pixels, VP8. */
const film = Buffer.from([
  "GkXfo59ChoEBQveBAULygQRC84EIQoKEd2VibUKHgQJChYECGFOAZwEAAAAAAAKZEU2bdLpNu4tTq4QVSalmU6yBoU27i1OrhBZUrmtTrIHGTbuMU6uE",
  "ElTDZ1OsggEMTbuMU6uEHFO7a1OsggKD7AEAAAAAAABZAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA",
  "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAVSalmoCrXsYMPQkBNgIRMYXZmV0GETGF2ZkSJiECfQAAAAAAAFlSua8GuAQAAAAAAADjX",
  "gQFzxYgAAAAAAAAAAZyBACK1nIN1bmSIgQCGhVZfVlA4g4EBI+ODhAvrwgDgibCBQLqBMJqBAhJUw2fRc3POY8CLY8WIAAAAAAAAAAFnyJhFo4dFTkNP",
  "REVSRIeLTGF2YyBsaWJ2cHhnyKJFo4hEVVJBVElPTkSHlDAwOjAwOjAyLjAwMDAwMDAwMAAAH0O2dUEb54EAo7+BAACAUAMAnQEqQAAwAABHCIWFiIWE",
  "iAICAnWqA/gCBwjVZ5mPN9IA/vuwK/+BO/AnfgTv/Anf/PzO7cX85gCjloEAyADRAQABEBAAGAAYWC/0AAiMAACjloEBkADRAQABEBAAGAAYWC/0AAiM",
  "AACjloECWADRAQABEBAAGAAYWC/0AAiMAACjloEDIADRAQABEBAAGAAYWC/0AAiMAACjloED6ADRAQABEBAAGAAYWC/0AAiMAACjloEEsADRAQABEBAA",
  "GAAYWC/0AAiMAACjlYEFeACxAQABEBAUYABhYL/QACIwAKOWgQZAANEBAAEQEAAYABhYL/QACIwAAKOWgQcIANEBAAEQEAAYABhYL/QACIwAABxTu2uR",
  "u4+zgQC3iveBAfGCAWLwgQM=",
].join(""), "base64");

/** A tenth of a second of silence, Opus, and no picture. */
const soundOnly = Buffer.from([
  "GkXfo59ChoEBQveBAULygQRC84EIQoKEd2VibUKHgQRChYECGFOAZwEAAAAAAAH3EU2bdLpNu4tTq4QVSalmU6yBoU27i1OrhBZUrmtTrIHGTbuMU6uE",
  "ElTDZ1OsggEwTbuMU6uEHFO7a1OsggHh7AEAAAAAAABZAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA",
  "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAVSalmoCrXsYMPQkBNgIRMYXZmV0GETGF2ZkSJiEBbAAAAAAAAFlSua+WuAQAAAAAAAFzX",
  "gQFzxYgAAAAAAAAAAZyBACK1nIN1bmSIgQCGhkFfT1BVU1aqgxCHxVa7hATEtACDgQLhkZ+BAbWIQL9AAAAAAABiZIEQY6KTT3B1c0hlYWQBATgBQB8A",
  "AAAAABJUw2fSc3PPY8CLY8WIAAAAAAAAAAFnyJlFo4dFTkNPREVSRIeMTGF2YyBsaWJvcHVzZ8iiRaOIRFVSQVRJT05Eh5QwMDowMDowMC4xMDgwMDAw",
  "MDAAAB9DtnXV54EAo4uBAACACAvmOyOrYKOKgQAVgAgIrLMOxqOKgQApgAgIrLMOxqOKgQA9gAgIrLMOxqOKgQBRgAgIrLMOxqCToYqBAGUACAissw7G",
  "daKEAM3+YBxTu2uRu4+zgQC3iveBAfGCAYfwgQM=",
].join(""), "base64");

/** A second of one colour as MPEG-4 Part 2, which browsers do not decode, with silence as AAC, which they do. */
const oldFilm = Buffer.from([
  "AAAAHGZ0eXBpc29tAAACAGlzb21pc28ybXA0MQAABVRtb292AAAAbG12aGQAAAAAAAAAAAAAAAAAAAPoAAAD6AABAAABAAAAAAAAAAAAAAAAAQAAAAAA",
  "AAAAAAAAAAAAAAEAAAAAAAAAAAAAAAAAAEAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAADAAACWnRyYWsAAABcdGtoZAAAAAMAAAAAAAAAAAAA",
  "AAEAAAAAAAAD6AAAAAAAAAAAAAAAAAAAAAAAAQAAAAAAAAAAAAAAAAAAAAEAAAAAAAAAAAAAAAAAAEAAAAAAQAAAADAAAAAAACRlZHRzAAAAHGVsc3QA",
  "AAAAAAAAAQAAA+gAAAAAAAEAAAAAAdJtZGlhAAAAIG1kaGQAAAAAAAAAAAAAAAAAAEAAAABAAFXEAAAAAAAtaGRscgAAAAAAAAAAdmlkZQAAAAAAAAAA",
  "AAAAAFZpZGVvSGFuZGxlcgAAAAF9bWluZgAAABR2bWhkAAAAAQAAAAAAAAAAAAAAJGRpbmYAAAAcZHJlZgAAAAAAAAABAAAADHVybCAAAAABAAABPXN0",
  "YmwAAADZc3RzZAAAAAAAAAABAAAAyW1wNHYAAAAAAAAAAQAAAAAAAAAAAAAAAAAAAAAAQAAwAEgAAABIAAAAAAAAAAEKTGF2YyBtcGVnNAAAAAAAAAAA",
  "AAAAAAAAAAAAAAAAAAAY//8AAABPZXNkcwAAAAADgICAPgABAASAgIAwIBEAAAAAAw1AAAAB4AWAgIAeAAABsAEAAAG1iRMAAAEAAAABIADEjYgADQIE",
  "BhRDBoCAgAECAAAAEHBhc3AAAAABAAAAAQAAABRidHJ0AAAAAAADDUAAAAHgAAAAGHN0dHMAAAAAAAAAAQAAAAEAAEAAAAAAHHN0c2MAAAAAAAAAAQAA",
  "AAEAAAABAAAAAQAAABRzdHN6AAAAAAAAADwAAAABAAAAFHN0Y28AAAAAAAAAAQAABYQAAAJJdHJhawAAAFx0a2hkAAAAAwAAAAAAAAAAAAAAAgAAAAAA",
  "AAPoAAAAAAAAAAAAAAABAQAAAAABAAAAAAAAAAAAAAAAAAAAAQAAAAAAAAAAAAAAAAAAQAAAAAAAAAAAAAAAAAAAJGVkdHMAAAAcZWxzdAAAAAAAAAAB",
  "AAAD6AAABAAAAQAAAAABwW1kaWEAAAAgbWRoZAAAAAAAAAAAAAAAAAAAH0AAACNAVcQAAAAAAC1oZGxyAAAAAAAAAABzb3VuAAAAAAAAAAAAAAAAU291",
  "bmRIYW5kbGVyAAAAAWxtaW5mAAAAEHNtaGQAAAAAAAAAAAAAACRkaW5mAAAAHGRyZWYAAAAAAAAAAQAAAAx1cmwgAAAAAQAAATBzdGJsAAAAfnN0c2QA",
  "AAAAAAAAAQAAAG5tcDRhAAAAAAAAAAEAAAAAAAAAAAACABAAAAAAH0AAAAAAADZlc2RzAAAAAAOAgIAlAAIABICAgBdAFQAAAAAAH0AAAAD/BYCAgAUV",
  "iFblAAaAgIABAgAAABRidHJ0AAAAAAAAH0AAAAD/AAAAIHN0dHMAAAAAAAAAAgAAAAgAAAQAAAAAAQAAA0AAAAAoc3RzYwAAAAAAAAACAAAAAQAAAAEA",
  "AAABAAAAAgAAAAgAAAABAAAAFHN0c3oAAAAAAAAABAAAAAkAAAAYc3RjbwAAAAAAAAACAAAFgAAABcAAAAAac2dwZAEAAAByb2xsAAAAAgAAAAH//wAA",
  "ABxzYmdwAAAAAHJvbGwAAAABAAAACQAAAAEAAAA9dWR0YQAAADVtZXRhAAAAAAAAACFoZGxyAAAAAAAAAABtZGlyYXBwbAAAAAAAAAAAAAAAAAhpbHN0",
  "AAAACGZyZWUAAABobWRhdAEYIAcAAAGzABAHAAABthY/Gi2xsmNtv422/jbb9wAAp9Gi2xsmNtv422/jbb9/AADH0aLbGyY22/jbb+Ntv38BGCAHARgg",
  "BwEYIAcBGCAHARggBwEYIAcBGCAHARggBw==",
].join(""), "base64");

/** Red and blue by turns, a tenth of a second each, without end. */
const blinking = Buffer.from([
  "R0lGODlhKAAoAIAAANwoKCg83CH/C05FVFNDQVBFMi4wAwEAAAAh+QQECgAAACwAAAAAKAAoAAACJ4SPqcvtD6OctNqLs968+w+G4kiW5omm6sq27gvH",
  "8kzX9o3n+s4jBQAh+QQECgAAACwAAAAAKAAoAAACJ4yPqcvtD6OctNqLs968+w+G4kiW5omm6sq27gvH8kzX9o3n+s4jBQA7",
].join(""), "base64");

const files = {
  "attachments/film.webm": film, "attachments/far.webm": film, "attachments/sound only.webm": soundOnly,
  "attachments/old.mp4": oldFilm, "attachments/broken.mp4": Buffer.from("no film"), "attachments/broken.wav": Buffer.from("no sound"),
  "attachments/hum.wav": wav(2), "attachments/blink.gif": blinking, "attachments/still.png": png(40, 40),
};

const filler = Array.from({ length: 60 }, (_, index) => message(100 + index, "me", "Words between. ".repeat(12)));

/** A message that holds one file and nothing else. @param {number} number @param {string} name @param {object} [fields] */
const holding = (number, name, fields = {}) =>
  message(number, mia, mark, undefined, { attachments: [attachment(number, name, "available", fields)] });

/** @type {import("playwright-core").Browser} */
let browser;
/** @type {Awaited<ReturnType<typeof openAlbum>>} */
let page;
let folder = "";
before(async () => {
  browser = await startBrowser();
  folder = writeAlbum(makeFolder(), conversation([
    holding(1, "film.webm", { mimeType: "video/webm", byteSize: 48_211 }), holding(2, "hum.wav", { byteSize: 16044 }),
    holding(3, "blink.gif", { mimeType: "image/gif" }), holding(4, "still.png"), holding(5, "sound only.webm"), holding(6, "old.mp4"),
    holding(7, "broken.mp4", { mimeType: "video/mp4", byteSize: 7 }), holding(8, "broken.wav"), ...filler, holding(9, "far.webm"),
  ]), { files });
  page = await openAlbum(browser, folder);
});
after(() => browser.close());

/** @param {number} number @param {string} selector */
const at = (number, selector) => page.locator(`article[data-id="${number}"]`).locator(selector);

/** Number of the message, kind of player, what it is called, its length in seconds. @type {[number, string, string, string, number][]} */
const players = [
  [1, "video", "film.webm", "film.webm · 48 kB", 2],
  [2, "audio", "hum.wav", "hum.wav · 16 kB", 2],
];
for (const [number, kind, name, caption, length] of players) {
  test(`${kind === "video" ? "a film" : "a sound"} plays in its place by the keyboard`, async () => {
    const player = at(number, `figure ${kind}`);
    await player.scrollIntoViewIfNeeded();
    await until(page, ([tag, wanted]) => document.querySelector(`figure ${tag}`)?.duration === wanted,
      /** @type {["video" | "audio", number]} */ ([kind, length]));
    assert.equal(await player.getAttribute("aria-label"), name);
    assert.equal(await player.evaluate((media) => media.controls && media.paused && !media.autoplay), true);
    assert.equal(plainBlanks(await at(number, "figcaption").textContent() ?? ""), caption);
    if (kind === "video") assert.deepEqual(await player.evaluate((media) => [media.videoWidth, media.videoHeight]), [64, 48]);
    await player.focus();
    await page.keyboard.press("Space");
    await until(page, (tag) => document.querySelector(tag).currentTime > 0.1, kind);
    assert.equal(await at(number, "a.tile").count(), 0);
  });
}

test("a player is made ready when it comes near the window, not before", async () => {
  await page.evaluate(() => scrollTo(0, 0));
  const far = at(9, "video");
  await until(page, () => document.querySelector("figure video")?.readyState > 0);
  assert.deepEqual(await far.evaluate((media) => [media.preload, media.readyState]), ["none", 0]);
  await far.scrollIntoViewIfNeeded();
  await until(page, () => document.querySelector("article[data-id='9'] video").videoWidth === 64);
});

/** Number of the message, what it holds, by what it is. @type {{ [name: string]: [number, string] }} */
const unplayable = {
  "a film without pictures": [5, "sound only.webm"],
  "a film whose pictures this browser cannot decode": [6, "old.mp4"],
  "a broken film": [7, "broken.mp4"],
  "a broken sound": [8, "broken.wav"],
};
for (const [name, [number, file]] of Object.entries(unplayable)) {
  test(`${name} becomes a tile that opens the file`, async () => {
    await page.locator(`article[data-id="${number}"]`).scrollIntoViewIfNeeded();
    const tile = page.locator(`article[data-id="${number}"]`).getByRole("link", { name: "Open file" });
    await tile.waitFor();
    assert.equal(await at(number, "video, audio, figure").count(), 0);
    const words = await tile.innerText();
    assert.ok(words.includes(file) && words.includes("This browser cannot show this file."), words);
    assert.equal(await tile.getAttribute("target"), "_blank");
    const place = fileURLToPath(await tile.evaluate((link) => /** @type {HTMLAnchorElement} */ (link).href));
    assert.deepEqual(fs.readFileSync(place), /** @type {{ [path: string]: Buffer }} */ (files)[`attachments/${file}`]);
    assert.ok(await at(number, ".part").evaluate((part) => part.closest("article")?.getAttribute("aria-describedby") === part.id));
  });
}

test("an animated GIF moves, as a picture, and a still one does not", async () => {
  // The middle of each alone: what surrounds it may show that something points at it.
  const middleOf = async (/** @type {number} */ number) => {
    const { x, y } = /** @type {{ x: number, y: number }} */ (await at(number, "a.picture img").boundingBox());
    return (await page.screenshot({ clip: { x: x + 10, y: y + 10, width: 16, height: 16 } })).toString("base64");
  };
  await at(4, "img").scrollIntoViewIfNeeded();
  await until(page, () => document.querySelectorAll("article .picture:not(.is-pending)").length === 2);
  const [moving, still] = [new Set(), new Set()];
  for (let shot = 0; shot < 60 && (moving.size < 2 || shot < 3); shot++) {
    moving.add(await middleOf(3));
    still.add(await middleOf(4));
  }
  assert.deepEqual([moving.size, still.size], [2, 1]);
  assert.equal(await at(3, "video, .tile, .player").count(), 0);
  assert.equal(await at(3, "a.picture").getAttribute("href"), "attachments/blink.gif");
});

test("a type that says nothing does not make a file of a picture, nor of a film or a sound", async () => {
  const generic = ["application/octet-stream", "binary/octet-stream", ""];
  const own = await openAlbum(browser, writeAlbum(makeFolder(), conversation(generic.flatMap((mimeType, place) => [
    holding(3 * place + 1, "still.png", { mimeType }), holding(3 * place + 2, "film.webm", { mimeType }),
    holding(3 * place + 3, "hum.wav", { mimeType })])), { files }));
  assert.equal(await own.locator("a.picture img[alt='still.png']").count(), 3);
  assert.equal(await own.locator("figure video").count(), 3);
  assert.equal(await own.locator("figure audio").count(), 3);
  assert.equal(await own.locator(".tile").count(), 0);
  assert.deepEqual(own.problems(), []);
  await own.close();
});

test("nothing reached the console", () => assert.deepEqual(page.problems(), []));
