// Measures the website of an album in Chromium, opened from the disk, and prints each figure beside its goal.
//
//   node bench/web/run.js FOLDER [--rounds N] [--only load,read,check] [--keep yes]
//
// FOLDER holds the albums it makes (about 1 GB); those of an earlier run are used again with --keep. Checking takes 600 MB of the
// temporary folder. Medians; the machine should be quiet.

import fs from "node:fs";
import path from "node:path";
import { makeAlbum } from "./conversations.js";
import { checkRow } from "./checking.js";
import { loadRows } from "./loading.js";
import { readRows } from "./reading.js";

const [folder, ...options] = process.argv.slice(2);
if (!folder) throw new Error("usage: run.js FOLDER [--rounds N] [--only NAME,…] [--keep yes]");
/** @param {string} name */
const optionOf = (name) => (options.includes(name) ? options[options.indexOf(name) + 1] : undefined);
const rounds = Number(optionOf("--rounds") ?? 5);
const only = optionOf("--only")?.split(",");

fs.mkdirSync(folder, { recursive: true });
/** @param {number} count @param {number} idStep */
const album = (count, idStep) => {
  const place = path.join(folder, `${count}-${idStep}`);
  return fs.existsSync(path.join(place, "index.html")) && optionOf("--keep") ? place : makeAlbum(place, { count, idStep });
};
const bench = { rounds, album, folder, wants: (/** @type {string} */ name) => !only || only.includes(name) };
await loadRows(bench);
await readRows(bench);
await checkRow(bench);
