import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import test, { after, before } from "node:test";
import { attachment, conversation, everyCase, longWord, makeFolder, manifestOf, message, mia, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser } from "../support/browser.js";

/** @typedef {import("playwright-core").Page} Page */

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
  // The browser finds files with letters beyond ASCII only under a locale that the system has, and not every system has all.
  process.env.LC_ALL = "C.UTF-8";
  browser = await startBrowser();
});
after(() => browser.close());

const record = everyCase();
// A megabyte without a blank has no part in this.
record.messages = /** @type {any[]} */ (record.messages).filter(({ text }) => text !== longWord);
const intact = writeAlbum(makeFolder(), record, { manifest: true, files: {
  "attachments/large.bin": Buffer.alloc(5_000_001, 7), "attachments/empty.txt": "", "attachments/K\u00e4se.txt": "cheese" } });

/** A copy of the album, changed. @param {(folder: string) => void} change */
function changed(change) {
  const folder = makeFolder();
  fs.cpSync(intact, folder, { recursive: true });
  change(folder);
  return folder;
}

/** @param {string} folder @param {(manifest: any) => unknown} change */
function changeManifest(folder, change) {
  const file = path.join(folder, "manifest.json");
  const manifest = JSON.parse(fs.readFileSync(file, "utf8"));
  change(manifest);
  fs.writeFileSync(file, JSON.stringify(manifest));
}

/** @param {Page} page */
async function openCheck(page) {
  await page.locator(".menu-corner > button").click();
  await page.locator(".menu-item", { hasText: "Check this album" }).click();
}

/** @type {Awaited<ReturnType<typeof openAlbum>> | undefined} */
let checkingPage;

/**
 * Checks a folder by the page of the album that is whole.
 * @param {string} folder
 */
async function check(folder) {
  checkingPage = checkingPage ?? await openAlbum(browser, intact);
  return checkBy(checkingPage, folder);
}

/**
 * @param {Awaited<ReturnType<typeof openAlbum>>} page
 * @param {string} folder
 */
async function checkBy(page, folder) {
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(folder);
  const report = page.locator(".check-report");
  await report.waitFor();
  const verdict = (await report.locator(".check-verdict").allTextContents()).join();
  const sections = await report.locator(".check-files").evaluateAll((all) => all.map((one) => [
    one.querySelector("h3")?.textContent ?? "", ...Array.from(one.querySelectorAll("li"), (item) => item.textContent ?? "")]));
  const details = await report.locator(".check-detail").allTextContents();
  assert.deepEqual(page.problems(), []);
  await page.keyboard.press("Escape");
  return { verdict, details, sections };
}

const count = JSON.parse(fs.readFileSync(path.join(intact, "manifest.json"), "utf8")).files.length;

test("an album as it was written is valid", async () => {
  assert.deepEqual(await check(intact), { verdict: "Valid", details: [`All ${count} files are as they were written.`], sections: [] });
});

test("hidden files, and manifests of other things, are none of the album's business", async () => {
  const found = await check(changed((folder) => {
    fs.writeFileSync(path.join(folder, ".DS_Store"), "x");
    fs.mkdirSync(path.join(folder, ".trash"));
    fs.writeFileSync(path.join(folder, ".trash", "old.txt"), "x");
    fs.writeFileSync(path.join(folder, "attachments", "manifest.json"), "x");
  }));
  assert.deepEqual([found.verdict, found.sections], ["Valid", []]);
});

test("an unexpected file is named and leaves the album valid", async () => {
  const found = await check(changed((folder) => fs.writeFileSync(path.join(folder, "attachments", "note <b>.txt"), "x")));
  assert.deepEqual([found.verdict, found.sections], ["Valid", [["1 unexpected file", "attachments/note <b>.txt"]]]);
});

test("an album without one of its files is incomplete", async () => {
  const found = await check(changed((folder) => fs.rmSync(path.join(folder, "attachments/Packing list.pdf"))));
  assert.deepEqual(found, { verdict: "Incomplete", details: ["1 file is missing. Every other file is as it was written."],
    sections: [["1 missing file", "attachments/Packing list.pdf"]] });
});

test("one bit in the last piece of a large file is found", async () => {
  const found = await check(changed((folder) => {
    const file = fs.openSync(path.join(folder, "attachments/large.bin"), "r+");
    fs.writeSync(file, Buffer.of(6), 0, 1, 5_000_000);
    fs.closeSync(file);
  }));
  assert.deepEqual([found.verdict, found.sections], ["Damaged", [["1 changed file", "attachments/large.bin"]]]);
});

test("files of another size are changed, and missing ones are named beside them", async () => {
  const found = await check(changed((folder) => {
    fs.appendFileSync(path.join(folder, "data/messages.js"), "\n");
    fs.writeFileSync(path.join(folder, "attachments/empty.txt"), "x");
    fs.rmSync(path.join(folder, "Open Album.html"));
  }));
  assert.deepEqual([found.verdict, found.sections], ["Damaged", [
    ["2 changed files", "attachments/empty.txt", "data/messages.js"], ["1 missing file", "Open Album.html"]]]);
});

test("a size in the manifest counts as well, where there is one", async () => {
  /** @param {(size: number) => number} change */
  const found = (change) => check(changed((folder) => changeManifest(folder, (manifest) => {
    for (const name of ["attachments/large.bin", "attachments/K\u00e4se.txt"]) {
      const file = manifest.files.find((/** @type {any} */ { path: listed }) => listed === name);
      file.byteSize = change(file.byteSize);
    }
  })));
  const others = await found((size) => size + 1);
  assert.deepEqual([others.verdict, others.sections],
    ["Damaged", [["2 changed files", "attachments/K\u00e4se.txt", "attachments/large.bin"]]]);
  assert.equal((await found(() => 0)).verdict, "Valid");
});

test("a name that the disk gives back with its accents taken apart is the same name", async () => {
  const found = await check(changed((folder) =>
    fs.renameSync(path.join(folder, "attachments/K\u00e4se.txt"), path.join(folder, "attachments/Ka\u0308se.txt"))));
  assert.deepEqual([found.verdict, found.sections], ["Valid", []]);
});

/** @type {[string, (folder: string) => void, string, string][]} */
const noManifests = [
  ["no manifest", (folder) => fs.rmSync(path.join(folder, "manifest.json")), "", "so it cannot be checked"],
  ["an empty manifest", (folder) => fs.writeFileSync(path.join(folder, "manifest.json"), ""), "Damaged", "nothing can be checked"],
  ["half a manifest", (folder) => fs.truncateSync(path.join(folder, "manifest.json"), 900), "Damaged", "nothing can be checked"],
  ["a manifest that is no UTF-8", (folder) => fs.writeFileSync(path.join(folder, "manifest.json"),
    fs.readFileSync(path.join(folder, "manifest.json"), "utf8").replace("Lake", "L\u00e4ke"), "latin1"), "Damaged", "nothing can be checked"],
  ["a manifest that lists nothing", (folder) => changeManifest(folder, (manifest) => {
    manifest.files = [];
  }), "Damaged", "nothing can be checked"],
  ["a manifest that lists a file twice", (folder) => changeManifest(folder, ({ files }) => files.push(files[0])), "Damaged",
    "nothing can be checked"],
  ["a manifest that leads out of the folder", (folder) => changeManifest(folder, ({ files }) => {
    files[0].path = "../index.html";
  }), "Damaged", "nothing can be checked"],
  ["the manifest of another conversation", (folder) => changeManifest(folder, (manifest) => {
    manifest.sourceChatID = "8";
    // Signs that turn the reading direction stay within the title.
    manifest.conversationTitle = "Book\u202e club\u2069";
  }), "", "This is the album of another conversation: “\u2068Book club\u2069”."],
  ["the manifest of another album of this conversation", (folder) => changeManifest(folder, (manifest) => {
    manifest.generatedAt = "2025-02-03T04:05:06Z";
  }), "", "This is another album of this conversation, made on February 3, 2025"],
];
for (const [name, change, verdict, words] of noManifests) {
  test(`${name} never passes`, async () => {
    const found = await check(changed(change));
    assert.equal(found.verdict, verdict);
    assert.ok(found.details.join().includes(words), found.details.join());
    assert.deepEqual(found.sections, []);
  });
}

test("the folder that holds the album's is not the album's", async () => {
  const outside = makeFolder();
  fs.cpSync(intact, path.join(outside, "Album"), { recursive: true });
  assert.deepEqual((await check(outside)).verdict, "");
});

test("a folder within the album's is not the album's", async () => {
  const found = await check(path.join(intact, "attachments"));
  assert.equal(found.verdict, "");
  assert.ok(found.details.join().includes("so it cannot be checked"));
});

test("a name in other letters' case is another file, and turned names are named within their own line", async () => {
  const turned = "attachments/\u202egpj.exe";
  const found = await check(changed((folder) => {
    fs.renameSync(path.join(folder, "attachments/Hum.wav"), path.join(folder, "attachments/HUM.wav"));
    fs.writeFileSync(path.join(folder, turned), "x");
  }));
  assert.deepEqual([found.verdict, found.sections], ["Incomplete", [["1 missing file", "attachments/Hum.wav"],
    ["2 unexpected files", "attachments/HUM.wav", turned]]]);
});

test("a manifest that no longer lists a file of the album does not pass", async () => {
  const found = await check(changed((folder) => changeManifest(folder, (manifest) => {
    manifest.files = manifest.files.filter((/** @type {any} */ file) => file.path !== "attachments/Hum.wav");
  })));
  assert.equal(found.verdict, "Damaged");
  assert.deepEqual(found.sections, [
    ["The file “manifest.json” does not list 1 file that belongs to this album.", "attachments/Hum.wav"],
    ["1 unexpected file", "attachments/Hum.wav"]]);
});

test("an attachment that has the manifest's own name, which no manifest lists, is checked by what the conversation tells of it", async () => {
  const named = { ...record, messages: [...record.messages, message(901, mia, "x", undefined, {
    attachments: [attachment(901, "manifest.json")] })] };
  const folder = writeAlbum(makeFolder(), named, { manifest: true, files: { "attachments/manifest.json": "{}" } });
  const file = path.join(folder, "attachments/manifest.json");
  const page = await openAlbum(browser, folder);
  const all = JSON.parse(fs.readFileSync(path.join(folder, "manifest.json"), "utf8")).files.length + 1;
  assert.deepEqual(await checkBy(page, folder), { verdict: "Valid", details: [`All ${all} files are as they were written.`], sections: [] });
  fs.writeFileSync(file, "[]");
  assert.deepEqual((await checkBy(page, folder)).sections, [["1 changed file", "attachments/manifest.json"]]);
  fs.rmSync(file);
  const { verdict, sections } = await checkBy(page, folder);
  assert.deepEqual([verdict, sections], ["Incomplete", [["1 missing file", "attachments/manifest.json"]]]);
  await page.close();
});

test("a manifest that was written anew for another attachment does not pass", async () => {
  const found = await check(changed((folder) => {
    fs.writeFileSync(path.join(folder, "attachments/Hum.wav"), "another hum");
    fs.writeFileSync(path.join(folder, "manifest.json"), manifestOf(folder, record));
  }));
  assert.deepEqual([found.verdict, found.sections], ["Damaged", [["1 changed file", "attachments/Hum.wav"]]]);
});

test("counts of a manifest that do not agree are told", async () => {
  const found = await check(changed((folder) => changeManifest(folder, (manifest) => {
    manifest.missingAttachmentCount += 1;
  })));
  assert.deepEqual(found, { verdict: "Damaged", sections: [],
    details: ["The counts in the file “manifest.json” do not agree with this conversation."] });
});

test("files that vanish while files are hashed are named, a large one and a small one among others", async () => {
  const folder = changed(() => {});
  const page = await openAlbum(browser, intact);
  await openCheck(page);
  await page.evaluate(() => {
    // The worker begins only when the test has taken a file away.
    const begin = Worker.prototype.postMessage;
    Worker.prototype.postMessage = function postLater(/** @type {any} */ tasks) {
      const go = () => begin.call(this, tasks);
      window.addEventListener("go", go, { once: true });
      document.documentElement.dataset.waits = "true";
    };
  });
  await page.locator(".check-field").setInputFiles(folder);
  await page.locator("html[data-waits]").waitFor();
  const gone = ["attachments/K\u00e4se.txt", "attachments/large.bin"];
  for (const name of gone) fs.rmSync(path.join(folder, name));
  await page.evaluate(() => {
    const next = Worker.prototype.postMessage;
    Worker.prototype.postMessage = function postNow(/** @type {any} */ tasks) {
      next.call(this, tasks);
      window.dispatchEvent(new Event("go"));
    };
    window.dispatchEvent(new Event("go"));
  });
  await page.locator(".check-verdict.is-damaged").waitFor();
  const told = await page.locator(".check-files li").allTextContents();
  assert.deepEqual(told.sort(), gone.map((name) => `${name} – could not be read`));
  await page.close();
});

test("files of which a worker tells nothing are not valid", async () => {
  const page = await openAlbum(browser, intact);
  await page.evaluate(() => {
    const begin = Worker.prototype.postMessage;
    Worker.prototype.postMessage = function postFew(/** @type {any} */ tasks) {
      begin.call(this, tasks.slice(1));
    };
  });
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(intact);
  await page.locator(".check-verdict.is-damaged").waitFor();
  assert.ok((await page.locator(".check-files li").allTextContents()).every((line) => line.endsWith(" – could not be read")));
  await page.close();
});

test("what a worker that fails has not told of is checked by the page", async () => {
  const page = await openAlbum(browser, intact);
  await page.evaluate(() => {
    // Each worker tells of three files and breaks.
    const begin = Worker.prototype.postMessage;
    Worker.prototype.postMessage = function postFew(/** @type {any} */ tasks) {
      begin.call(this, [...tasks.slice(0, 3), { number: 0 }]);
    };
  });
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(intact);
  await page.locator(".check-verdict.is-valid").waitFor();
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("where a browser makes no worker the page checks by itself", async () => {
  const page = await openAlbum(browser, intact);
  await page.evaluate(() => {
    window.Worker = /** @type {any} */ (function refuse() {
      throw new Error("no workers here");
    });
  });
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(intact);
  await page.locator(".check-verdict.is-valid").waitFor();
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("many files are named some at a time", async () => {
  const short = conversation([message(1, mia, "x")]);
  const folder = writeAlbum(makeFolder(), short);
  const manifest = JSON.parse(manifestOf(folder, short));
  for (let number = 0; number < 60; number++) {
    manifest.files.push({ path: `attachments/gone ${number}.bin`, byteSize: 1, sha256: "0".repeat(64) });
  }
  fs.writeFileSync(path.join(folder, "manifest.json"), JSON.stringify(manifest));
  const page = await openAlbum(browser, folder);
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(folder);
  await page.locator(".check-verdict.is-incomplete").waitFor();
  assert.equal(await page.locator(".check-files li").count(), 20);
  await page.getByRole("button", { name: "Show more" }).press("Enter");
  assert.equal(await page.locator(".check-files li").count(), 60);
  assert.equal(await page.evaluate(() => document.activeElement?.textContent), "attachments/gone 20.bin");
  await page.close();
});

test("a check can be cancelled, and says that nothing is known", async () => {
  const page = await openAlbum(browser, intact);
  await openCheck(page);
  await page.evaluate(() => {
    Worker.prototype.postMessage = () => {};
  });
  await page.locator(".check-field").setInputFiles(intact);
  await page.getByRole("button", { name: "Cancel" }).click();
  assert.equal(await page.locator(".check-report").textContent(),
    "The check was cancelled. Nothing is known about the files that were not reached.");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("the end of a check that was left is not told to whoever opens the dialog next", async () => {
  const page = await openAlbum(browser, intact);
  await openCheck(page);
  await page.evaluate(() => {
    Worker.prototype.postMessage = () => {
      const dialog = /** @type {HTMLDialogElement} */ (document.querySelector("dialog.check"));
      const item = Array.from(document.querySelectorAll(".menu-item")).find((one) => one.textContent === "Check this album");
      dialog.close();
      /** @type {HTMLElement} */ (item).click();
      document.documentElement.dataset.again = "true";
    };
  });
  await page.locator(".check-field").setInputFiles(intact);
  await page.locator("html[data-again]").waitFor();
  await frames(page, 10);
  assert.equal(await page.locator(".check-report").count(), 0);
  assert.equal(await page.locator(".check-intro").count(), 1);
  await page.close();
});

test("two checks after each other in one dialog tell of the second folder", async () => {
  const page = await openAlbum(browser, intact);
  await openCheck(page);
  await page.locator(".check-field").setInputFiles(intact);
  await page.locator(".check-verdict.is-valid").waitFor();
  await page.locator(".check-field").setInputFiles(changed((folder) => fs.rmSync(path.join(folder, "index.html"))));
  await page.locator(".check-verdict.is-incomplete").waitFor();
  assert.deepEqual(await page.locator(".check-files li").allTextContents(), ["index.html"]);
  await page.close();
});

test("the folder's field is named and in the keyboard's way", async () => {
  const page = await openAlbum(browser, intact);
  await openCheck(page);
  await page.keyboard.press("Tab");
  const chooser = page.waitForEvent("filechooser");
  assert.equal(await page.evaluate(() => document.activeElement?.getAttribute("aria-label")), "Choose folder…");
  await page.keyboard.press("Enter");
  assert.equal((await chooser).isMultiple(), true);
  await page.close();
});
