// Album folders for the tests of the page: invented people, ordinary and hostile words, written as the exporter writes them.
//
//   const folder = makeFolder();                       a temporary folder, gone when the test file ends
//   writeAlbum(folder, everyCase());                    index.html, assets/, data/messages.js, the attachments' files
//   writeAlbum(folder, conversation([message(1, mia, "Hello")], { title: "Lake" }), { language: "de", manifest: true });
//
// A record is a plain object in the form of data/messages.js; make one with conversation(messages, fields), and its parts with
// message(number, sender, text, date, fields), attachment(number, name, availability, fields) and
// reaction(number, sender, kind, isRemoved, minute). `fields` add to the record or replace what stands in it.
// Ready-made: everyCase() has one message for each thing that a record can say, manyMessages(count) is a long conversation.

import { spawnSync } from "node:child_process";
import { createHash } from "node:crypto";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";
import { fileURLToPath } from "node:url";
import zlib from "node:zlib";

export const mia = "participant-+15550142";
export const jonas = "participant-jonas@example.org";
/** Takes part and never says a word. */
export const silent = "participant-+15550199";
/** Stands in a text where an attachment stood. */
export const mark = "\uFFFC";
export const hostile = "</script><script>window.hacked=1</script><img src=x onerror=window.hacked=2>&lt;b&gt;";
/** A megabyte without a blank. */
export const longWord = "0123456789".repeat(100_000);

/** @typedef {{ [key: string]: unknown }} RawRecord */

/**
 * @param {number} number @param {string} name @param {string} [availability] @param {RawRecord} [fields]
 * @returns {RawRecord}
 */
export function attachment(number, name, availability = "available", fields = {}) {
  const isThere = availability === "available";
  const place = isThere ? { archivePath: `attachments/${name}`, sha256: "0".repeat(64) } : {};
  return { id: String(number), displayName: name, availability, ...place, ...fields };
}

/** @param {number} number @param {string | undefined} sender @param {string} kind @param {boolean} [isRemoved] @param {number} [minute] */
export function reaction(number, sender, kind, isRemoved = false, minute = 0) {
  const date = `2026-05-01T10:${twoDigits(minute)}:00Z`;
  return { id: `reaction-${number}`, kind, isRemoved, date, ...(sender === undefined ? {} : { senderID: sender }) };
}

/**
 * Its guid is `GUID-` and the number. The sender "me" makes it the user's own; none leaves the sender unnamed.
 * @param {number} number @param {string | undefined} sender @param {string} [text] @param {string} [date] @param {RawRecord} [fields]
 * @returns {RawRecord}
 */
export function message(number, sender, text, date = "2026-05-01T09:00:00Z", fields = {}) {
  return {
    id: String(number), guid: `GUID-${number}`, date, isFromMe: sender === "me", service: "iMessage",
    reactions: [], attachments: [], payloadState: "decoded",
    ...(sender === undefined ? {} : { senderID: sender }),
    ...(text === undefined ? {} : { text }),
    ...fields,
  };
}

/** @param {RawRecord[]} messages @param {RawRecord} [fields] @returns {RawRecord} */
export function conversation(messages, fields = {}) {
  return {
    schemaVersion: 1, id: "7", guid: "chat-7", title: "Lake weekend", service: "iMessage",
    participants: [
      { id: mia, address: "+15550142", displayName: "Mia Okafor", isMe: false,
        avatarMimeType: "image/png", avatarPath: "assets/avatars/participant--15550142.png" },
      { id: jonas, address: "jonas@example.org", displayName: "Jonas <i>Lindqvist</i>", isMe: false,
        avatarMimeType: "image/jpeg", avatarPath: "assets/avatars/broken.jpg" },
      { id: silent, address: "+15550199", isMe: false },
    ],
    sourceMessageCount: messages.length + 5, messages, warnings: [],
    generatedAt: "2026-11-15T19:48:57Z", sourceSystemVersion: "Version 15.2 (Build 24C101)",
    ...fields,
  };
}

/** One message for each thing that a record can say. */
export function everyCase() {
  return conversation([
    message(1, mia, "Are we still on for the lake?", "2026-04-30T09:00:00Z"),
    message(3, mia, "I can borrow the big tent", "2026-04-30T09:01:00Z"),
    message(5, "me", "Yes, and see https://example.org/lake?a=1&b=2.", "2026-05-01T08:00:00Z", { reactions: [
      reaction(1, mia, "loved", false, 1), reaction(2, jonas, "loved", false, 2), reaction(3, jonas, "liked", false, 3),
      reaction(4, jonas, "liked", true, 4), reaction(5, undefined, "unknown", false, 5),
      reaction(6, "me", "constructor", false, 6)] }),
    message(7, jonas, hostile, undefined, { subject: "Subject <b>of</b> it" }),
    message(9, "me", "Seven is perfect", undefined, { replyToGUID: "GUID-7", editedAt: "2026-05-01T09:30:00Z", service: "SMS" }),
    message(11, "me", "Taken back", undefined, { retractedAt: "2026-05-01T09:31:00Z" }),
    message(13, "me", undefined, undefined, { retractedAt: "2026-05-01T09:32:00Z" }),
    message(15, mia, "Home safe", undefined, { replyToGUID: "GUID-GONE" }),
    message(17, mia, mark, undefined, {
      attachments: [attachment(501, "Sunset #1 50%?.png", "available", { mimeType: "image/png", byteSize: 48211 })] }),
    message(19, mia, `Before${mark}behind`, undefined, {
      attachments: [attachment(502, "IMG_2042.heic", "available", { mimeType: "image/heic" })] }),
    message(21, jonas, mark.repeat(3), undefined, { attachments: [
      attachment(503, "Packing list.pdf", "available", { mimeType: "application/pdf", byteSize: 184320 }),
      attachment(504, "IMG_0007.MOV", "missing", { mimeType: "video/quicktime", byteSize: 41200331 }),
      attachment(505, "IMG_0008.jpg", "unreadable")] }),
    message(23, jonas, undefined, undefined, { attachments: [
      attachment(506, "Voice.amr", "available", { mimeType: "audio/amr" }),
      attachment(507, "Hum.wav", "available", { mimeType: "audio/wav" }),
      attachment(508, "Escape.txt", "available", { archivePath: "attachments/../../Escape.txt" })] }),
    message(25, jonas, undefined, undefined, { payloadState: "unsupported" }),
    message(27, jonas, "Half of", undefined, { payloadState: "partiallyDecoded" }),
    message(29, jonas),
    message(31, jonas, mark),
    message(33, undefined, "Is this the campsite?"),
    message(35, "participant-nobody", "Who am I?"),
    message(37, mia, "🎉🎉"),
    message(39, mia, "one\u2028two\u2029three \u202Edesrever\u202C javascript:alert(1)"),
    message(41, mia, longWord),
    message(43, mia, "  two lines\n and blanks  "),
    message(45, mia, "Far ahead", "10000-01-01T00:00:00Z"),
    message(47, mia, "No such day", "yesterday"),
    message(49, "me", "Later field", undefined, { future: { unknown: [1, null] }, subject: "" }),
  ], {
    title: "Lake & <weekend> \"it's\"",
    warnings: [
      { id: "w1", code: "attachment_missing", summary: "Attachment IMG_0007.MOV was missing.", sourceID: "504" },
      { id: "w2", code: "unsupported_payload", summary: "A message payload could not be fully decoded.", sourceID: "25" },
      { id: "w3", code: "unresolved_reaction", summary: "A reaction could not be matched to its message.", sourceID: "99" },
      { id: "w4", code: "attachment_unreadable", summary: "Attachment IMG_0008.jpg was unreadable.", sourceID: "505" },
      { id: "w5", code: "toString", summary: "A word of <tomorrow>." },
    ],
  });
}

/**
 * A conversation too long to stand in the page as a whole; every row has its own height. From the 1,200th on, each fifth
 * answers the message 1,200 before it. One message a minute from 1 March 2010 on, 28 days of March a year.
 * @param {number} count
 */
export function manyMessages(count) {
  return conversation(Array.from({ length: count }, (_, index) => {
    const text = `Message number ${index}. ${"And some more words. ".repeat((index * 7) % 23)}`;
    const day = Math.floor(index / 1440);
    const minute = index % 1440;
    const date = `20${twoDigits(10 + Math.floor(day / 28))}-03-${twoDigits(1 + (day % 28))}`
      + `T${twoDigits(Math.floor(minute / 60))}:${twoDigits(minute % 60)}:00Z`;
    const answered = index >= 1200 && index % 5 === 0 ? { replyToGUID: `GUID-${2 * (index - 1200)}` } : {};
    return message(2 * index, index % 3 ? "me" : mia, text, date, answered);
  }));
}

/** @param {number} number */
function twoDigits(number) {
  return String(number).padStart(2, "0");
}

const crcTable = Array.from({ length: 256 }, (_, byte) => {
  let value = byte;
  for (let bit = 0; bit < 8; bit++) value = value & 1 ? 0xedb88320 ^ (value >>> 1) : value >>> 1;
  return value >>> 0;
});

/** @param {Buffer} bytes */
function crc32(bytes) {
  let value = 0xffffffff;
  for (const byte of bytes) value = crcTable[(value ^ byte) & 255] ^ (value >>> 8);
  return (value ^ 0xffffffff) >>> 0;
}

/** @param {string} kind @param {Buffer} body */
function pngChunk(kind, body) {
  const named = Buffer.concat([Buffer.from(kind, "latin1"), body]);
  const ends = Buffer.alloc(8);
  ends.writeUInt32BE(body.length, 0);
  ends.writeUInt32BE(crc32(named), 4);
  return Buffer.concat([ends.subarray(0, 4), named, ends.subarray(4)]);
}

/**
 * A picture of one colour, as a PNG file.
 * @param {number} width @param {number} height @param {[number, number, number]} [colour]
 */
export function png(width, height, colour = [90, 120, 160]) {
  const row = Buffer.concat([Buffer.alloc(1), Buffer.alloc(width * 3, Buffer.from(colour))]);
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, 2, 0, 0, 0], 8);
  const pixels = zlib.deflateSync(Buffer.concat(Array(height).fill(row)));
  return Buffer.concat([Buffer.from("\x89PNG\r\n\x1a\n", "latin1"), pngChunk("IHDR", header), pngChunk("IDAT", pixels),
    pngChunk("IEND", Buffer.alloc(0))]);
}

/**
 * Silence, as a WAV file: one channel of 8 bits at 8 kHz.
 * @param {number} [seconds]
 */
export function wav(seconds = 1) {
  const samples = Buffer.alloc(Math.round(8000 * seconds), 0x80);
  const head = Buffer.alloc(44);
  head.write("RIFF", 0, "latin1");
  head.writeUInt32LE(36 + samples.length, 4);
  head.write("WAVEfmt ", 8, "latin1");
  head.writeUInt32LE(16, 16);
  [1, 1].forEach((value, place) => head.writeUInt16LE(value, 20 + 2 * place));
  [8000, 8000].forEach((value, place) => head.writeUInt32LE(value, 24 + 4 * place));
  [1, 8].forEach((value, place) => head.writeUInt16LE(value, 32 + 2 * place));
  head.write("data", 36, "latin1");
  head.writeUInt32LE(samples.length, 40);
  return Buffer.concat([head, samples]);
}

/** The files that conversation() and everyCase() name: path in the album and content. @type {{ readonly [path: string]: Buffer }} */
export const files = {
  "assets/avatars/participant--15550142.png": png(64, 64),
  "assets/avatars/broken.jpg": Buffer.from("no picture"),
  "attachments/Sunset #1 50%?.png": png(640, 480),
  "attachments/IMG_2042.heic": Buffer.concat([Buffer.from("\0\0\0\x18ftypheic", "latin1"), Buffer.alloc(200)]),
  "attachments/Packing list.pdf": Buffer.from("%PDF-1.4\n%%EOF\n"),
  "attachments/Voice.amr": Buffer.concat([Buffer.from("#!AMR\n"), Buffer.alloc(64)]),
  "attachments/Hum.wav": wav(),
};

/** @param {string} text */
function escapedForHTML(text) {
  return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;").replace(/"/g, "&quot;");
}

/** @param {unknown} value @returns {unknown} the same with ascending keys */
function withSortedKeys(value) {
  if (Array.isArray(value)) return value.map(withSortedKeys);
  if (typeof value !== "object" || value === null) return value;
  const ascending = Object.entries(value).sort(([one], [other]) => (one < other ? -1 : 1));
  return Object.fromEntries(ascending.map(([key, one]) => [key, withSortedKeys(one)]));
}

/** The content of data/messages.js. @param {unknown} record */
export function dataScript(record) {
  const text = JSON.stringify(withSortedKeys(record), null, 2).replace(/[&<>\u2028\u2029]/g, (character) =>
    `\\u${character.charCodeAt(0).toString(16).toUpperCase().padStart(4, "0")}`);
  return `window.QUILLBOOK_DATA = ${text};\n`;
}

/** The content of a right manifest.json for the files that stand in `folder`. @param {string} folder @param {any} record */
export function manifestOf(folder, record) {
  const messages = Array.isArray(record.messages) ? record.messages : [];
  const attachments = messages.flatMap((/** @type {any} */ one) => one?.attachments ?? []);
  const copied = attachments.filter((/** @type {any} */ one) => one?.availability === "available").length;
  const manifest = {
    schemaVersion: 1, conversationTitle: record.title, sourceChatID: record.id, generatedAt: record.generatedAt,
    sourceMessageCount: record.sourceMessageCount, availableMessageCount: messages.length, messageCount: messages.length,
    attachmentRecordCount: attachments.length, copiedAttachmentCount: copied,
    missingAttachmentCount: attachments.length - copied, warnings: record.warnings ?? [],
    files: pathsIn(folder).sort((one, other) => Buffer.compare(Buffer.from(one), Buffer.from(other))).map((name) => {
      const content = fs.readFileSync(path.join(folder, name));
      return { path: name, byteSize: content.length, sha256: createHash("sha256").update(content).digest("hex") };
    }),
  };
  return JSON.stringify(withSortedKeys(manifest), null, 2);
}

/** What a manifest lists. @param {string} folder @param {string} [below] @returns {string[]} */
function pathsIn(folder, below = "") {
  return fs.readdirSync(path.join(folder, below), { withFileTypes: true }).flatMap((entry) => {
    const name = below ? `${below}/${entry.name}` : entry.name;
    if (entry.name.startsWith(".") || entry.name === "manifest.json") return [];
    return entry.isDirectory() ? pathsIn(folder, name) : entry.isFile() ? [name] : [];
  });
}

/** @type {string[]} */
const madeFolders = [];
process.once("exit", () => madeFolders.forEach((folder) => fs.rmSync(folder, { recursive: true, force: true })));

/** A temporary folder that is gone when the process of the test file ends. */
export function makeFolder() {
  const folder = fs.mkdtempSync(path.join(os.tmpdir(), "quillbook-album-"));
  madeFolders.push(folder);
  return folder;
}

let bundled = "";

/** The folder with index.html, app.js and styles.css: QUILLBOOK_WEB, or else made of the sources on the spot. */
export function webFolder() {
  if (process.env.QUILLBOOK_WEB) return process.env.QUILLBOOK_WEB;
  if (bundled) return bundled;
  const sources = fileURLToPath(new URL("../../../resources/Web/", import.meta.url));
  const folder = makeFolder();
  const script = ["app/main.js", "--format=iife", "--target=es2019", `--outfile=${path.join(folder, "app.js")}`];
  const styles = ["styles/main.css", `--outfile=${path.join(folder, "styles.css")}`];
  for (const own of [script, styles]) {
    const run = spawnSync("esbuild", [...own, "--bundle", "--charset=utf8", "--log-level=warning"], { cwd: sources, encoding: "utf8" });
    if (run.status !== 0) throw new Error(`esbuild could not bundle ${own[0]}: ${run.stderr || run.error}`);
  }
  fs.copyFileSync(path.join(sources, "index.html"), path.join(folder, "index.html"));
  bundled = folder;
  return folder;
}

const openAlbumPage = `<!doctype html><meta charset="utf-8">
<meta http-equiv="refresh" content="0; url=index.html">
<title>Open Album</title>
<p><a href="index.html">Open the album</a></p>`;

/** @param {string} folder @param {string} name @param {string | Uint8Array} content */
function writeFile(folder, name, content) {
  fs.mkdirSync(path.dirname(path.join(folder, name)), { recursive: true });
  fs.writeFileSync(path.join(folder, name), content);
}

/**
 * Gives the attachments of a record the digests of their files, where those are there.
 * @param {string} folder @param {any} record
 */
function setDigests(folder, record) {
  const messages = Array.isArray(record?.messages) ? record.messages : [];
  for (const one of messages.flatMap((/** @type {any} */ message) => (Array.isArray(message?.attachments) ? message.attachments : []))) {
    const file = typeof one?.archivePath === "string" ? path.join(folder, one.archivePath) : folder;
    if (!one?.sha256 || !file.startsWith(path.join(folder, "attachments/")) || !fs.existsSync(file)) continue;
    one.sha256 = createHash("sha256").update(fs.readFileSync(file)).digest("hex");
  }
}

/**
 * Writes an album into a folder, which may exist. Options:
 *   language  the page's lang, "en" unless told
 *   files     more files, or others: path in the album and content (undefined leaves a file of `files` out)
 *   manifest  true writes a right manifest.json, last; a text or bytes are written as they are; else there is none
 *   data      false leaves data/messages.js out; a text is written in its place
 *   probe     a script of the test's own that stands behind the data in data/messages.js
 * @param {string} folder
 * @param {any} record
 * @param {{ language?: string, files?: { [path: string]: string | Uint8Array | undefined }, manifest?: boolean | string | Uint8Array,
 *   data?: boolean | string, probe?: string }} [options]
 * @returns {string} the folder
 */
export function writeAlbum(folder, record, options = {}) {
  const { language = "en", manifest = false, data = true, probe = "" } = options;
  const web = webFolder();
  for (const [name, content] of Object.entries({ ...files, ...options.files })) {
    if (content !== undefined) writeFile(folder, name, content);
  }
  setDigests(folder, record);
  const title = escapedForHTML(typeof record?.title === "string" ? record.title : "");
  const page = fs.readFileSync(path.join(web, "index.html"), "utf8").replace(/\{\{(TITLE|LANG)\}\}/g, (_, place) =>
    (place === "TITLE" ? title : language));
  writeFile(folder, "index.html", page);
  writeFile(folder, "Open Album.html", openAlbumPage);
  for (const name of ["styles.css", "app.js"]) writeFile(folder, `assets/${name}`, fs.readFileSync(path.join(web, name)));
  if (data !== false) writeFile(folder, "data/messages.js", (typeof data === "string" ? data : dataScript(record)) + probe);
  else if (probe) writeFile(folder, "data/messages.js", probe);
  if (manifest === true) writeFile(folder, "manifest.json", manifestOf(folder, record));
  else if (manifest !== false) writeFile(folder, "manifest.json", manifest);
  return folder;
}
