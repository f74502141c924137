// Albums with conversations of any length, the same each time: invented people, messages of the usual lengths, 8 % with
// attachments, 6 % with reactions, 4 % that answer another one.

import fs from "node:fs";
import path from "node:path";
import { files, mark, png, wav, writeAlbum } from "../../tests/web/support/album.js";

const words = ("lake weekend tomorrow coffee train photo thanks really maybe later dinner garden bicycle lighthouse harbour "
  + "morning evening Zürich café naïve mañana brother sister Wednesday ticket umbrella window letter kitchen blanket river "
  + "stairs mountain holiday birthday present doctor school exam piano concert theatre bakery bread butter orange lemon "
  + "sweater laundry keys wallet airport station platform delayed arrived leaving almost there waiting outside inside").split(" ");
const people = ["Alma Birkeland", "Jonas Lindqvist", "Mia Okafor"].map((displayName, number) => ({
  address: `+1555010${number}`, displayName, id: `participant-+1555010${number}`, isMe: false,
}));
const kinds = ["loved", "liked", "disliked", "laughed", "emphasized", "questioned"];
/** So many files of each kind lie in the album; the attachments share them. */
const pictureCount = 64;

/**
 * A generator of numbers of its own (xorshift), so that every run measures the same conversation.
 * @param {number} seed
 */
export function makeRandom(seed) {
  let state = seed >>> 0 || 1;
  return (/** @type {number} */ limit) => {
    state ^= state << 13;
    state >>>= 0;
    state ^= state >>> 17;
    state ^= state << 5;
    state >>>= 0;
    return state % limit;
  };
}

/** @typedef {{ count: number, idStep: number, seed?: number }} Shape idStep: ids are so far apart at most; 1 is consecutive */

/**
 * The messages one after another, with ascending keys as the exporter writes them.
 * @param {Shape} shape
 */
export function* messages({ count, idStep, seed = 20261121 }) {
  const random = makeRandom(seed);
  let id = 4_000_000;
  let time = Date.UTC(2012, 0, 3, 8);
  const pause = Math.max(1, Math.floor((13 * 365 * 86_400) / count));
  const hex = (/** @type {number} */ digits) => random(2 ** (4 * digits)).toString(16).toUpperCase().padStart(digits, "0");
  /** @type {string[]} */
  const recent = [];
  for (let index = 0; index < count; index++) {
    id += 1 + (idStep > 1 ? random(idStep) : 0);
    time += 1000 * (1 + random(2 * pause));
    const guid = `${hex(6)}${hex(2)}-${hex(4)}-4${hex(3)}-A${hex(3)}-${hex(6)}${hex(6)}`;
    const isFromMe = random(2) === 0;
    const text = Array.from({ length: 1 + random(random(12) === 0 ? 60 : 14) }, () => words[random(words.length)]).join(" ");
    const hasAttachment = random(100) < 8;
    const message = {
      attachments: hasAttachment ? [attachment(index, random)] : [],
      date: `${new Date(time).toISOString().slice(0, 19)}Z`,
      guid,
      id: String(id),
      isFromMe,
      payloadState: "decoded",
      reactions: random(100) < 6 ? [reaction(index, time, random)] : [],
      ...(recent.length > 40 && random(100) < 4 ? { replyToGUID: recent[random(recent.length)] } : {}),
      senderID: isFromMe ? "me" : people[random(people.length)].id,
      service: "iMessage",
      text: hasAttachment ? mark + (random(3) === 0 ? text : "") : text,
    };
    recent[index % 500] = guid;
    yield message;
  }
}

/** @param {number} index @param {(limit: number) => number} random */
function attachment(index, random) {
  const isPicture = random(10) < 8;
  const number = random(pictureCount);
  const name = isPicture ? `IMG_${4000 + number}.png` : `Memo ${number}.wav`;
  return {
    archivePath: `attachments/${name}`, availability: "available", byteSize: 40_000 + random(4_000_000), displayName: name,
    guid: `at_${index}`, id: String(900_000 + index), mimeType: isPicture ? "image/png" : "audio/wav",
    originalFilename: `~/Library/Messages/Attachments/0a/10/${index}/${name}`, sha256: "0".repeat(64),
  };
}

/** @param {number} index @param {number} time @param {(limit: number) => number} random */
function reaction(index, time, random) {
  return {
    date: `${new Date(time + 60_000).toISOString().slice(0, 19)}Z`, id: `reaction-${index}`, isRemoved: false,
    kind: kinds[random(kinds.length)], senderID: random(2) ? "me" : people[random(people.length)].id,
  };
}

/**
 * Writes data/messages.js bit by bit, in the form of the exporter.
 * @param {string} file
 * @param {Shape} shape
 */
function writeData(file, shape) {
  const out = fs.openSync(file, "w");
  fs.writeSync(out, `window.QUILLBOOK_DATA = {\n  "generatedAt": "2026-11-15T19:48:57Z",\n  "guid": "chat-bench-${shape.count}",\n`
    + `  "id": "7",\n  "messages": [\n`);
  let isFirst = true;
  let chunk = "";
  for (const message of messages(shape)) {
    chunk += `${isFirst ? "" : ",\n"}    ${JSON.stringify(message, null, 2).replace(/\n/g, "\n    ")}`;
    isFirst = false;
    if (chunk.length > 1_000_000) {
      fs.writeSync(out, chunk);
      chunk = "";
    }
  }
  fs.writeSync(out, `${chunk}\n  ],\n  "participants": ${JSON.stringify(people)},\n  "schemaVersion": 1,\n  "service": "iMessage",\n`
    + `  "sourceMessageCount": ${shape.count},\n  "sourceSystemVersion": "Version 15.2",\n  "title": "Bench",\n  "warnings": []\n};\n`);
  fs.closeSync(out);
}

/**
 * An album with such a conversation.
 * @param {string} folder made anew
 * @param {Shape} shape
 */
export function makeAlbum(folder, shape) {
  fs.rmSync(folder, { recursive: true, force: true });
  /** @type {{ [path: string]: Buffer | undefined }} */
  const own = Object.fromEntries(Object.keys(files).map((name) => [name, undefined]));
  for (let number = 0; number < pictureCount; number++) {
    const colour = /** @type {[number, number, number]} */ ([40 + 3 * number, 120, 220 - 2 * number]);
    own[`attachments/IMG_${4000 + number}.png`] = png(1600, 1200, colour);
    own[`attachments/Memo ${number}.wav`] = wav(2);
  }
  writeAlbum(folder, { title: "Bench" }, { files: own, data: "" });
  writeData(path.join(folder, "data/messages.js"), shape);
  return folder;
}
