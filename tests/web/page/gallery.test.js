import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { attachment, conversation, hostile, longWord, makeFolder, message, mia, jonas, png, writeAlbum } from "../support/album.js";
import { frames, openAlbum, startBrowser, until } from "../support/browser.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} AlbumPage */

/** Two seconds of one colour, 32 by 24 pixels, VP8. */
const film = Buffer.from([
  "GkXfo59ChoEBQveBAULygQRC84EIQoKEd2VibUKHgQJChYECGFOAZwEAAAAAAALOEU2bdLpNu4tTq4QVSalmU6yBoU27i1OrhBZUrmtTrIHYTbuM",
  "U6uEElTDZ1OsggEeTbuMU6uEHFO7a1OsggK47AEAAAAAAABZAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA",
  "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAVSalmsirXsYMPQkBNgI1MYXZmNTkuMjcuMTAwV0GNTGF2ZjU5LjI3LjEw",
  "MESJiECfQAAAAAAAFlSua8GuAQAAAAAAADjXgQFzxYgr0YS2gr51vJyBACK1nIN1bmSIgQCGhVZfVlA4g4EBI+ODhAvrwgDgibCBILqBGJqBAhJU",
  "w2f9c3OgY8CAZ8iaRaOHRU5DT0RFUkSHjUxhdmY1OS4yNy4xMDBzc9djwItjxYgr0YS2gr51vGfIoUWjh0VOQ09ERVJEh5RMYXZjNTkuMzcuMTAw",
  "IGxpYnZweGfIokWjiERVUkFUSU9ORIeUMDA6MDA6MDIuMDAwMDAwMDAwAAAfQ7Z1QRLngQCjvoEAAIAQAwCdASogABgAAEcIhYWIhYSIAgICdaoD",
  "+AP6AghZDL0A/vvo///p99mDOOf/T8H/62A2QBTf9aAAo5WBAMgAsQEAARAQABgAGFgv9AAIcACjlYEBkACxAQABEBAAGAAYWC/0AAhwAKOVgQJY",
  "ALEBAAEQEAAYABhYL/QACHAAo5WBAyAAsQEAARAQABgAGFgv9AAIcACjlYED6ACxAQABEBAAGAAYWC/0AAhwAKOVgQSwALEBAAEQEAAYABhYL/QA",
  "CHAAo5WBBXgAsQEAARAQFGAAYWC/0AAhwACjlYEGQACxAQABEBAAGAAYWC/0AAhwAKOVgQcIALEBAAEQEAAYABhYL/QACHAAHFO7a5G7j7OBALeK",
  "94EB8YIBoPCBAw==",
].join(""), "base64");

const attachmentFiles = {
  "attachments/first.png": png(60, 40, [200, 40, 40]), "attachments/wide.png": png(1600, 400, [40, 160, 60]),
  "attachments/last.png": png(40, 60, [40, 60, 200]), "attachments/film.webm": film,
  "attachments/broken.png": Buffer.from("no picture"), "attachments/broken.mp4": Buffer.from("no film"),
  "attachments/broken.wav": Buffer.from("no sound"), "attachments/many.png": png(8, 8),
};

/** Nine pictures and films in three months, sound, links and files. */
function fewThings() {
  const day = (/** @type {string} */ date) => `${date}T09:00:00Z`;
  return conversation([
    message(1, mia, "Look", day("2024-03-03"), { attachments: [attachment(1, "first.png")] }),
    message(2, "me", "https://example.org/a and http://example.net/b?c=1", day("2024-04-04"), { attachments: [
      attachment(2, "wide.png"), attachment(3, "film.webm"), attachment(4, "broken.png"), attachment(5, "broken.mp4")] }),
    message(3, jonas, "javascript:alert(1)", day("2024-04-05"), { attachments: [
      attachment(6, "IMG_2042.heic"), attachment(7, "gone.jpg", "missing"), attachment(8, "bad.jpg", "unreadable"),
      attachment(9, "Packing list.pdf", "available", { byteSize: 184320 }), attachment(10, hostile, "missing")] }),
    message(4, mia, `https://example.org/${longWord.slice(0, 1500)}`, day("2024-05-06"), { attachments: [
      attachment(11, "Hum.wav"), attachment(12, "broken.wav"), attachment(13, "last.png")] }),
    message(5, mia, "Good night", day("2024-05-07")),
  ]);
}

/** @type {import("playwright-core").Browser} */
let browser;
let few = "";
let many = "";
let bare = "";

before(async () => {
  browser = await startBrowser();
  few = writeAlbum(makeFolder(), fewThings(), { files: attachmentFiles });
  bare = writeAlbum(makeFolder(), conversation([message(1, mia, "Words alone")]));
  many = writeAlbum(makeFolder(), conversation(Array.from({ length: 20_000 }, (_, index) => {
    const date = new Date(Date.UTC(2010, 0, 1) + index * 6 * 3_600_000).toISOString().replace(".000", "");
    return message(index, mia, `Number ${index}`, date, { attachments: [attachment(2 * index, "many.png"), attachment(2 * index + 1, "many.png")] });
  })), { files: attachmentFiles });
});
after(() => browser.close());

/** @param {string} folder @param {Parameters<typeof openAlbum>[2]} [options] */
async function openGallery(folder, options = {}) {
  const page = await openAlbum(browser, folder, { timezoneId: "UTC", ...options });
  // A narrow window has it in the menu.
  const button = page.getByRole("button", { name: "Photos and files" });
  if (!await button.isVisible()) await page.getByRole("button", { name: "More" }).click();
  await button.click();
  await until(page, () => document.querySelector(".gallery[open] .tab-count") !== null);
  return page;
}

/** @param {AlbumPage} page @param {string} name */
const photo = (page, name) => page.locator(`.photo[aria-label*="${name}"]`);
/** @param {AlbumPage} page @param {string} name */
const tab = (page, name) => page.getByRole("tab", { name });
/** @param {AlbumPage} page */
const viewed = (page) => page.locator(".lightbox-name").textContent();
/** @param {AlbumPage} page */
const focusLabel = (page) => page.evaluate(() => document.activeElement?.getAttribute("aria-label") ?? "");

test("the tabs say how many of each there are, and the arrow keys go round them", async () => {
  const page = await openGallery(few);
  const words = await page.locator("[role=tab]").allTextContents();
  assert.deepEqual(words, ["Photos and videos 9", "Audio 2", "Links 3", "Files 2"]);
  const chosen = () => page.locator("[role=tab][aria-selected=true]").textContent();
  /** @type {(string | null)[]} */
  const visited = [];
  for (const key of ["ArrowLeft", "ArrowRight", "End", "Home", "ArrowRight"]) {
    await page.keyboard.press(key);
    visited.push((await chosen() ?? "").replace(/ \d+$/, ""));
    assert.equal(await page.locator("[role=tabpanel]:visible").count(), 1);
  }
  assert.deepEqual(visited, ["Files", "Photos and videos", "Files", "Photos and videos", "Audio"]);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("pictures stand under their months, and what cannot be shown says its name and why", async () => {
  const page = await openGallery(few);
  assert.deepEqual(await page.locator(".grid-heading").allTextContents(), ["March 2024", "April 2024", "May 2024"]);
  await until(page, () => document.querySelectorAll(".photo canvas").length === 4 && document.querySelectorAll(".photo.is-tile").length === 5);
  for (const [name, words] of [["broken.png", "This browser cannot show this file."], ["IMG_2042.heic", "This browser cannot show this file."],
    ["broken.mp4", "This browser cannot show this file."], ["gone.jpg", "Missing: this file is not in the album."],
    ["bad.jpg", "This file could not be read and is not in the album."]]) {
    const label = await photo(page, name).getAttribute("aria-label");
    assert.ok(label?.includes(words), `${name}: ${label}`);
    assert.equal(await photo(page, name).locator(".photo-name").textContent(), name);
  }
  assert.equal(await photo(page, "film.webm").locator(".photo-badge").textContent(), "0:02");
  assert.equal(await page.locator(".gallery img").count(), 0);
  await page.close();
});

test("a thumbnail shows the picture itself", async () => {
  const page = await openGallery(few);
  await photo(page, "first.png").locator("canvas").waitFor();
  const shot = await photo(page, "first.png").screenshot();
  const middle = await page.evaluate(async (bytes) => {
    const image = await createImageBitmap(new Blob([new Uint8Array(bytes)], { type: "image/png" }));
    const canvas = document.createElement("canvas");
    canvas.width = image.width;
    canvas.height = image.height;
    const context = canvas.getContext("2d");
    context?.drawImage(image, 0, 0);
    return Array.from(context?.getImageData(image.width >> 1, image.height >> 1, 1, 1).data ?? []);
  }, Array.from(shot));
  assert.deepEqual(middle, [200, 40, 40, 255]);
  await page.close();
});

test("the arrow keys go from picture to picture, and one of them is in the way of the Tab key", async () => {
  const page = await openGallery(few);
  await photo(page, "first.png").focus();
  for (const [key, name] of [["ArrowRight", "wide.png"], ["ArrowLeft", "first.png"], ["ArrowDown", "wide.png"], ["End", "bad.jpg"],
    ["ArrowDown", "last.png"], ["Control+Home", "first.png"], ["Control+End", "last.png"], ["ArrowRight", "last.png"]]) {
    await page.keyboard.press(key);
    assert.ok((await focusLabel(page)).includes(name), `${key} leads to ${await focusLabel(page)}`);
    assert.equal(await page.locator(".photo[tabindex='0']").count(), 1);
  }
  await page.close();
});

test("links are those of the web alone, and open apart without telling where they were", async () => {
  const page = await openGallery(few);
  await tab(page, "Links").click();
  const links = await page.locator("#panel-links a").evaluateAll((found) => found.map((one) => {
    const link = /** @type {HTMLAnchorElement} */ (one);
    return { href: link.href.slice(0, 30), target: link.target, rel: link.rel };
  }));
  const apart = { target: "_blank", rel: "noopener noreferrer" };
  assert.deepEqual(links, [{ href: "https://example.org/a", ...apart }, { href: "http://example.net/b?c=1", ...apart },
    { href: "https://example.org/0123456789", ...apart }]);
  assert.equal(await page.locator("#panel-links").evaluate((panel) => panel.scrollWidth > panel.clientWidth), false);
  await page.close();
});

test("sound plays in its row, and what does not becomes a file to open", async () => {
  const page = await openGallery(few);
  await tab(page, "Audio").click();
  await until(page, () => document.querySelectorAll("#panel-audio audio").length === 1);
  assert.equal(await page.locator("#panel-audio audio").getAttribute("aria-label"), "Hum.wav");
  const broken = page.locator(".entry", { hasText: "broken.wav" });
  assert.equal(await broken.locator(".entry-trouble").textContent(), "This browser cannot show this file.");
  assert.equal(await broken.getByRole("link").getAttribute("href"), "attachments/broken.wav");
  await page.close();
});

test("files say what they are, and hostile names are words", async () => {
  const page = await openGallery(few);
  await tab(page, "Files").click();
  const rows = await page.locator("#panel-files .entry-words").allInnerTexts();
  assert.match(rows[0], /^Packing list\.pdf\nDocument · PDF · 184 kB\n\u2068Jonas <i>Lindqvist<\/i>\u2069, Apr 5, 2024$/);
  assert.ok(rows[1].startsWith(hostile.slice(hostile.lastIndexOf("/") + 1)) || rows[1].startsWith(hostile), rows[1]);
  assert.match(rows[1], /Missing: this file is not in the album\.$/);
  assert.equal(await page.evaluate(() => /** @type {any} */ (window).hacked), undefined);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("show in conversation closes the gallery and leads to the message", async () => {
  const page = await openGallery(few);
  await tab(page, "Files").click();
  await page.getByRole("button", { name: "Show in conversation: Packing list.pdf" }).click();
  await page.locator(".row.is-found, .is-found").first().waitFor();
  assert.equal(await page.locator("dialog[open]").count(), 0);
  assert.match(await page.locator(".is-found").first().innerText(), /Packing list\.pdf/);
  await page.close();
});

test("an album of words alone has nothing in any tab, and says so", async () => {
  const page = await openGallery(bare);
  for (const [name, words] of [["Photos", "No photos or videos"], ["Audio", "No audio"], ["Links", "No links"], ["Files", "No files"]]) {
    await tab(page, name).click();
    assert.equal(await page.locator("[role=tabpanel]:visible").innerText(), words);
  }
  await page.close();
});

test("the viewer goes through all pictures by keys, stops at the ends and gives the focus back", async () => {
  const page = await openGallery(few);
  await photo(page, "wide.png").click();
  await page.locator(".lightbox[open]").waitFor();
  assert.equal(await page.locator(".lightbox-counter").textContent(), "2 of 9");
  assert.match(await page.locator(".lightbox-sent").textContent() ?? "", /April 4, 2024/);
  for (const [key, name] of [["ArrowRight", "film.webm"], ["ArrowLeft", "wide.png"], ["Home", "first.png"], ["ArrowLeft", "first.png"],
    ["End", "last.png"], ["ArrowRight", "last.png"], ["ArrowLeft", "bad.jpg"]]) {
    await page.keyboard.press(key);
    assert.equal(await viewed(page), name, key);
  }
  assert.match(await page.locator(".stage-notice").innerText(), /This file could not be read/);
  assert.equal(await page.locator(".lightbox").getByRole("link", { name: "Open file" }).count(), 0);
  await page.keyboard.press("Escape");
  assert.equal(await page.locator(".lightbox[open]").count(), 0);
  assert.equal(await page.locator(".gallery[open]").count(), 1);
  await until(page, () => document.activeElement?.getAttribute("aria-label")?.includes("bad.jpg"));
  await page.keyboard.press("Escape");
  await until(page, () => document.activeElement?.getAttribute("aria-label") === "Photos and files");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("what is opened again before the browser has told of its closing keeps its content", async () => {
  const page = await openGallery(few);
  for (const [name, thing] of [["Photos", ".photo"], ["Audio", ".entry"], ["Links", ".entry"], ["Files", ".entry"]]) {
    await tab(page, name).click();
    await page.evaluate(async () => {
      const dialog = /** @type {HTMLDialogElement} */ (document.querySelector(".gallery"));
      const told = new Promise((done) => dialog.addEventListener("close", done, { once: true }));
      dialog.close();
      /** @type {HTMLElement} */ (document.querySelector("[aria-label='Photos and files']")).click();
      await told;
    });
    assert.notEqual(await page.locator(thing).filter({ visible: true }).count(), 0, name);
  }
  await tab(page, "Photos").click();
  await photo(page, "wide.png").click();
  await page.evaluate(async () => {
    const dialog = /** @type {HTMLDialogElement} */ (document.querySelector(".lightbox"));
    const told = new Promise((done) => dialog.addEventListener("close", done, { once: true }));
    dialog.close();
    /** @type {HTMLElement} */ (document.querySelector(".photo[aria-label*='first.png']")).click();
    await told;
  });
  assert.equal(await viewed(page), "first.png");
  assert.equal(await page.locator(".stage img").count(), 1);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("the focus stays in the viewer", async () => {
  const page = await openGallery(few);
  await photo(page, "wide.png").click();
  for (let press = 0; press < 16; press++) {
    await page.keyboard.press("Tab");
    assert.equal(await page.evaluate(() => {
      const focused = document.activeElement;
      return focused === document.body || focused?.closest("dialog") === document.querySelector(".lightbox");
    }), true);
  }
  await page.close();
});

test("a broken picture or film in the viewer becomes a word about it, not a broken sign", async () => {
  const page = await openAlbum(browser, few);
  await page.locator(".picture img[alt='first.png']").click();
  await until(page, () => document.querySelector(".lightbox-counter")?.textContent === "1 of 9");
  for (const name of ["broken.png", "broken.mp4", "IMG_2042.heic"]) {
    while (await viewed(page) !== name) await page.keyboard.press("ArrowRight");
    await page.locator(".stage-notice").waitFor();
    assert.match(await page.locator(".stage-notice").innerText(), /This browser cannot show this file\.$/);
    assert.equal(await page.locator(".stage img, .stage video").count(), 0);
  }
  await page.close();
});

test("a press on a picture of the conversation opens it with its neighbours, and closing leads back to it", async () => {
  const page = await openAlbum(browser, few);
  const link = page.locator("a.picture", { has: page.locator("img[alt='wide.png']") });
  await link.focus();
  await page.keyboard.press("Enter");
  await until(page, () => document.querySelector(".lightbox-counter")?.textContent === "2 of 9");
  assert.equal(await viewed(page), "wide.png");
  await page.getByRole("button", { name: "Next" }).click();
  assert.equal(await viewed(page), "film.webm");
  await page.keyboard.press("Escape");
  await until(page, () => document.activeElement?.closest(".row") !== null);
  assert.equal(await link.evaluate((one) => one === document.activeElement), true);
  await page.close();
});

test("show in conversation leads from the viewer to the message of what it shows", async () => {
  const page = await openGallery(few);
  await photo(page, "wide.png").click();
  await page.keyboard.press("End");
  await page.locator(".lightbox").getByRole("button", { name: "Show in conversation" }).click();
  await page.locator(".is-found").first().waitFor();
  assert.equal(await page.locator("dialog[open]").count(), 0);
  assert.match(await page.locator(".is-found").first().innerText(), /Hum\.wav/);
  await page.close();
});

test("a picture is brought nearer by keys, wheel and double click, moved, and is whole again for the next", async () => {
  const page = await openGallery(few);
  await photo(page, "wide.png").click();
  await page.locator(".stage img").evaluate((image) => /** @type {HTMLImageElement} */ (image).decode());
  const scale = () => page.locator(".stage img").evaluate((image) => new DOMMatrix(getComputedStyle(image).transform).a);
  const shift = () => page.locator(".stage img").evaluate((image) => new DOMMatrix(getComputedStyle(image).transform).e);
  await page.keyboard.press("+");
  assert.equal(await scale(), 1.5);
  await page.keyboard.press("ArrowRight");
  assert.ok(await shift() < 0);
  assert.equal(await viewed(page), "wide.png", "the arrow keys move what is near");
  await page.keyboard.press("-");
  assert.equal(await scale(), 1);
  await page.locator(".stage").hover();
  await page.mouse.wheel(0, -100);
  await until(page, () => document.querySelector(".stage.is-zoomed") !== null);
  await page.keyboard.press("0");
  assert.equal(await scale(), 1);
  await page.locator(".stage").dblclick();
  assert.equal(await scale(), 2.5);
  await page.getByRole("button", { name: "Next" }).click();
  await page.getByRole("button", { name: "Previous" }).click();
  assert.equal(await scale(), 1);
  await page.close();
});

test("a picture that is brought nearer before the viewer has been drawn stays so", async () => {
  const page = await openGallery(few);
  await photo(page, "wide.png").evaluate((one) => {
    one.click();
    document.activeElement?.dispatchEvent(new KeyboardEvent("keydown", { key: "+", bubbles: true }));
  });
  await frames(page, 3);
  assert.equal(await page.locator(".stage img").evaluate((image) => new DOMMatrix(getComputedStyle(image).transform).a), 1.5);
  await page.setViewportSize({ width: 900, height: 700 });
  await until(page, () => document.querySelector(".stage.is-zoomed") === null);
  await page.close();
});

test("a swipe leads to the neighbour, a short one does not, and the mouse does not swipe", async () => {
  const page = await openGallery(few, { hasTouch: true, width: 390, height: 844 });
  await photo(page, "wide.png").click();
  const swipe = (/** @type {number} */ way, pointerType = "touch") => page.locator(".stage").evaluate((stage, { way, pointerType }) => {
    const send = (/** @type {string} */ type, /** @type {number} */ x) => stage.dispatchEvent(new PointerEvent(type, {
      bubbles: true, pointerId: 1, pointerType, button: 0, clientX: x, clientY: 300 }));
    stage.setPointerCapture = () => {};
    send("pointerdown", 200);
    for (let step = 1; step <= 4; step++) send("pointermove", 200 + (way * step) / 4);
    send("pointerup", 200 + way);
  }, { way, pointerType });
  for (const [way, pointerType, name] of /** @type {[number, string, string][]} */ ([
    [-30, "touch", "wide.png"], [-120, "mouse", "wide.png"], [-120, "touch", "film.webm"], [120, "touch", "wide.png"]])) {
    await swipe(way, pointerType);
    assert.equal(await viewed(page), name, `${way} by ${pointerType}`);
  }
  await page.close();
});

test("two fingers bring a picture nearer, and lifting them is no swipe", async () => {
  const page = await openGallery(few, { hasTouch: true, width: 390, height: 844 });
  await photo(page, "wide.png").click();
  await page.locator(".stage img").evaluate((image) => /** @type {HTMLImageElement} */ (image).decode());
  await page.locator(".stage").evaluate((stage) => {
    stage.setPointerCapture = () => {};
    const send = (/** @type {string} */ type, /** @type {number} */ pointerId, /** @type {number} */ clientX) =>
      stage.dispatchEvent(new PointerEvent(type, { bubbles: true, pointerId, pointerType: "touch", button: 0, clientX, clientY: 300 }));
    send("pointerdown", 1, 150);
    send("pointerdown", 2, 250);
    send("pointermove", 1, 100);
    send("pointermove", 2, 300);
    send("pointerup", 2, 300);
    send("pointerup", 1, 100);
  });
  const scale = await page.locator(".stage img").evaluate((image) => new DOMMatrix(getComputedStyle(image).transform).a);
  assert.ok(Math.abs(scale - 2) < 0.01, `${scale}`);
  assert.equal(await viewed(page), "wide.png");
  await page.close();
});

test("a date that cannot be read is told as it stands, and its absence by words", async () => {
  const page = await openGallery(writeAlbum(makeFolder(), conversation([
    message(1, mia, "Look", "yesterday", { attachments: [attachment(1, "first.png"), attachment(2, "a.pdf")] }),
    message(2, mia, "See https://example.org/", "", { attachments: [attachment(3, "last.png")] }),
  ]), { files: attachmentFiles }));
  const told = ["\u2068Mia Okafor\u2069, \u2068yesterday\u2069", "\u2068Mia Okafor\u2069, Unknown date"];
  const labels = await page.locator(".photo").evaluateAll((found) => found.map((one) => one.getAttribute("aria-label") ?? ""));
  assert.deepEqual(labels.map((label, place) => label.endsWith(told[place])), [true, true], JSON.stringify(labels));
  await photo(page, "first.png").click();
  assert.equal(await page.locator(".lightbox-sent").textContent(), told[0]);
  await page.keyboard.press("ArrowRight");
  assert.equal(await page.locator(".lightbox-sent").textContent(), told[1]);
  await page.keyboard.press("Escape");
  await tab(page, "Files").click();
  assert.equal(await page.locator("#panel-files .entry-facts").last().textContent(), told[0]);
  await tab(page, "Links").click();
  assert.equal(await page.locator("#panel-links .entry-facts").last().textContent(), told[1]);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("what is not in the album is named and told of by all that is known", async () => {
  const page = await openGallery(writeAlbum(makeFolder(), conversation([message(1, mia, "Look", undefined, { attachments: [
    attachment(1, "Attachment", "missing", { originalFilename: "~/x/contract.zip", mimeType: "application/zip" }),
    attachment(2, "Attachment", "missing", { originalFilename: "~/x/IMG_7.HEIC" })] })])));
  assert.equal(await page.locator(".photo-name").textContent(), "IMG_7.HEIC");
  await page.locator(".photo").click();
  assert.equal(await page.locator(".stage-notice p").first().textContent(), "\u2068Attachment\u2069 · Image · HEIC");
  await page.keyboard.press("Escape");
  await tab(page, "Files").click();
  assert.equal(await page.locator("#panel-files .entry-name").textContent(), "contract.zip");
  assert.equal(await page.locator("#panel-files .entry-facts").first().textContent(),
    "\u2068Attachment\u2069 · Document · ZIP · \u2068application/zip\u2069");
  await page.close();
});

test("40,000 pictures take up few elements, wherever the grid is scrolled to", async () => {
  const page = await openGallery(many);
  assert.match(await tab(page, "Photos").textContent() ?? "", /40,000$/);
  const measure = () => page.evaluate(() => document.querySelectorAll("*").length);
  const first = async () => Number(await page.locator(".photo[tabindex='0']").getAttribute("data-position"));
  assert.ok(await measure() <= 1500, `${await measure()} elements`);
  assert.ok(await first() > 39_900, "it opens at the latest");
  for (const share of [0, 0.5, 0.123, 0.9, 1, 0]) {
    await page.locator("#panel-photos").evaluate((panel, where) => {
      panel.scrollTop = where * (panel.scrollHeight - panel.clientHeight);
    }, share);
    await until(page, (where) => {
      const panel = document.querySelector("#panel-photos");
      const cells = Array.from(document.querySelectorAll(".photo")).map((cell) => cell.getBoundingClientRect());
      const box = panel?.getBoundingClientRect();
      return box !== undefined && cells.some(({ top, bottom }) => top <= box.top + 200 && bottom > box.top) && where >= 0;
    }, share);
    const position = await first();
    assert.ok(Math.abs(position / 40_000 - share) < 0.02, `${share} leads to ${position}`);
    assert.ok(await measure() <= 1500, `${await measure()} elements at ${share}`);
  }
  await until(page, () => Array.from(document.querySelectorAll(".photo")).every((cell) => cell.querySelector("canvas")));
  await page.close();
});

test("a leap in the grid is not lost where it comes to rest before it has heard of the leap", async () => {
  const page = await openGallery(many);
  const places = await page.locator("#panel-photos").evaluate(async (panel) => {
    // The timers that scrolling sets are rung by hand, between the leap and the browser's word of it.
    const plain = window.setTimeout;
    /** @type {Function[]} */
    let timers = [];
    Object.assign(window, { setTimeout: (/** @type {Function} */ ring) => timers.push(ring) });
    const found = [];
    for (const share of [0.2, 0.7, 0.3]) {
      panel.scrollTop = share * (panel.scrollHeight - panel.clientHeight);
      timers.splice(0).forEach((ring) => ring());
      await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
      found.push(Number(panel.querySelector(".photo[tabindex='0']")?.getAttribute("data-position")) / 40_000 - share);
    }
    const isTimed = timers.length > 0;
    Object.assign(window, { setTimeout: plain });
    return isTimed ? found : [];
  });
  assert.equal(places.length, 3);
  assert.ok(places.every((distance) => Math.abs(distance) < 0.02), places.join());
  await page.close();
});

test("the viewer's last picture of many is brought into sight in the grid", async () => {
  const page = await openGallery(many);
  await page.locator(".photo").last().click();
  await page.keyboard.press("Home");
  assert.equal(await page.locator(".lightbox-counter").textContent(), "1 of 40,000");
  await page.keyboard.press("Escape");
  await until(page, () => document.activeElement?.getAttribute("data-position") === "0");
  const box = await page.locator(".photo[data-position='0']").boundingBox();
  assert.ok(box && box.y > 60 && box.y < 400, JSON.stringify(box));
  await page.close();
});

test("another width keeps the pictures in sight, and so does another tab", async () => {
  const page = await openGallery(many);
  await page.locator("#panel-photos").evaluate((panel) => {
    panel.scrollTop = panel.scrollHeight / 2;
  });
  const first = async () => Number(await page.locator(".photo[tabindex='0']").getAttribute("data-position"));
  await until(page, () => Number(document.querySelector(".photo[tabindex='0']")?.getAttribute("data-position")) < 30_000);
  const position = await first();
  await page.setViewportSize({ width: 700, height: 700 });
  await until(page, () => document.querySelector(".photo-grid")?.getAttribute("aria-colcount") === "4");
  assert.ok(Math.abs(await first() - position) <= 8, `${position}, then ${await first()}`);
  await tab(page, "Files").click();
  await tab(page, "Photos").click();
  assert.ok(Math.abs(await first() - position) <= 12, `${position}, then ${await first()}`);
  await page.close();
});

for (const { width, height } of [{ width: 320, height: 568 }, { width: 1280, height: 800 }]) {
  test(`nothing lies beside the window of ${width} pixels, and every target is large enough`, async () => {
    const page = await openGallery(few, { width, height });
    for (const view of ["photos", "audio", "links", "files"]) {
      await page.locator(`#tab-${view}`).click();
      const bad = await page.evaluate(() => Array.from(document.querySelectorAll(".gallery button, .gallery a")).flatMap((control) => {
        const { left, right, width: wide, height: high } = control.getBoundingClientRect();
        const isBad = wide > 0 && (left < 0 || right > window.innerWidth || wide < 24 || high < 24);
        return isBad ? [`${control.textContent} ${left} ${right} ${wide} × ${high}`] : [];
      }));
      assert.deepEqual(bad, [], view);
    }
    await page.close();
  });
}
