// How fast an album is checked.

import { createHash, randomFillSync } from "node:crypto";
import fs from "node:fs";
import path from "node:path";
import { conversation, makeFolder, manifestOf, writeAlbum } from "../../tests/web/support/album.js";
import { openAlbum, startBrowser } from "../../tests/web/support/browser.js";
import { median, report } from "./report.js";

/** @typedef {import("./loading.js").Bench} Bench */

/**
 * An album whose attachments have so many bytes together.
 * @param {number} fileCount
 * @param {number} fileSize
 */
function makeLargeAlbum(fileCount, fileSize) {
  const folder = makeFolder();
  const content = Buffer.alloc(fileSize);
  const attachments = Array.from({ length: fileCount }, (_, number) => {
    randomFillSync(content);
    const name = `Film ${number}.mov`;
    fs.mkdirSync(path.join(folder, "attachments"), { recursive: true });
    fs.writeFileSync(path.join(folder, "attachments", name), content);
    return { archivePath: `attachments/${name}`, availability: "available", displayName: name, id: String(number),
      sha256: createHash("sha256").update(content).digest("hex") };
  });
  const record = conversation([{ attachments, date: "2026-05-01T09:00:00Z", guid: "GUID-1", id: "1", isFromMe: true,
    payloadState: "decoded", reactions: [] }]);
  writeAlbum(folder, record, { manifest: false });
  fs.writeFileSync(path.join(folder, "manifest.json"), manifestOf(folder, record));
  return folder;
}

/** Seconds from the choice of the folder to the verdict. @param {string} folder */
async function check(folder) {
  const browser = await startBrowser();
  const page = await openAlbum(browser, folder);
  await page.getByRole("button", { name: "More", exact: true }).click();
  await page.locator(".menu-item").filter({ hasText: "Check this album" }).click();
  await page.evaluate(() => {
    document.querySelector(".check-field")?.addEventListener("change", () => performance.mark("chosen"), { capture: true });
    new MutationObserver(() => {
      const isTold = /** @type {HTMLElement} */ (document.querySelector("dialog[open]")).innerText.includes("Valid");
      if (isTold && performance.getEntriesByName("told").length === 0) performance.mark("told");
    }).observe(document.body, { childList: true, subtree: true });
  });
  await page.locator(".check-field").setInputFiles(folder);
  await page.getByText("Valid", { exact: true }).waitFor({ timeout: 120_000 });
  const time = await page.evaluate(() => performance.measure("check", "chosen", "told").duration);
  await browser.close();
  return time / 1000;
}

/** @param {Bench} bench */
export async function checkRow(bench) {
  if (!bench.wants("check")) return;
  for (const [count, size] of [[1, 600_000_000], [60, 10_000_000], [4000, 100_000]]) {
    const folder = makeLargeAlbum(count, size);
    const times = [];
    for (let round = 0; round < bench.rounds; round++) times.push(await check(folder));
    const speed = (count * size) / 1e6 / median(times);
    const name = `checking ${count.toLocaleString("en")} file${count === 1 ? "" : "s"} of ${size / 1e6} MB`;
    report(name, speed, 150, "MB/s", `${median(times).toFixed(2)} s`, "at least");
    fs.rmSync(folder, { recursive: true, force: true });
  }
}
