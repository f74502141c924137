// Albums that are not as usual: empty, of one message, in another language, without its data, with a policy to be tried.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { after, before, test } from "node:test";
import { conversation, everyCase, jonas, makeFolder, message, mia, writeAlbum } from "../support/album.js";
import { openAlbum, startBrowser, until } from "../support/browser.js";
import { layoutProblems } from "../support/layout.js";

/** @type {import("playwright-core").Browser} */
let browser;
before(async () => {
  browser = await startBrowser();
});
after(async () => {
  await browser.close();
});

/** @param {unknown} record @param {Parameters<typeof writeAlbum>[2] & Parameters<typeof openAlbum>[2]} [options] */
const open = (record, options = {}) => openAlbum(browser, writeAlbum(makeFolder(), record, options), options);

test("an empty conversation says so", async () => {
  const page = await open(conversation([], { participants: [], sourceMessageCount: 0 }));
  assert.equal(await page.locator("p.notice").textContent(), "This conversation has no messages.");
  assert.equal(await page.locator("h1").textContent(), "Lake weekend");
  assert.equal(await page.locator("[aria-busy]").count(), 0);
  assert.equal(await page.locator(".waiting").count(), 0);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("a conversation of one message shows it", async () => {
  const page = await open(conversation([message(1, mia, "Only this")]));
  assert.deepEqual(await page.locator("article p.words").allTextContents(), ["Only this"]);
  assert.equal(await page.locator("#summary").textContent(), "1 message");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("participants without messages and messages without participants are shown", async () => {
  const page = await open(conversation([message(1, mia, "Who am I?"), message(2, undefined, "And who am I?"), message(3, "me", "Me")],
    { participants: [{ id: jonas, address: "jonas@example.org", isMe: false }] }));
  assert.equal(await page.locator(".cover-names").textContent(), "jonas@example.org");
  assert.deepEqual(await page.locator(".sender-name").allTextContents(), [`Unknown sender (${mia})`, "Unknown sender", "Me"]);
  assert.deepEqual(page.problems(), []);
  await page.close();
});

test("dates are German where the page is, whatever the browser's language", async () => {
  const page = await open(conversation([message(9, mia, "Hallo", "2026-04-30T09:00:00Z")]), { language: "de" });
  assert.equal(await page.locator("html").getAttribute("lang"), "de");
  assert.equal(await page.locator("h2.day").textContent(), "Donnerstag, 30. April 2026");
  assert.deepEqual(page.problems(), []);
  await page.close();
});

/** What stands in place of the data, by what became of it. @type {{ [name: string]: boolean | string }} */
const damaged = {
  "is missing": false,
  "is empty": "",
  "holds nothing": "window.QUILLBOOK_DATA = null;\n",
  "holds a text": "window.QUILLBOOK_DATA = \"gone\";\n",
};
for (const [name, data] of Object.entries(damaged)) {
  test(`a data file that ${name} is told`, async () => {
    const page = await open(conversation([]), { data, state: "failed" });
    assert.match(await page.locator("p.notice[role=alert]").textContent() ?? "", /data\/messages\.js/);
    assert.equal(await page.locator("h1").textContent(), "Lake weekend");
    // The browser itself says that a file is not there.
    assert.deepEqual(page.problems().filter((problem) => data !== false || !problem.includes("data/messages.js")
      && !problem.includes("ERR_FILE_NOT_FOUND")), []);
    await page.close();
  });
}

test("a data file that was cut is told", async () => {
  const page = await open(conversation([]), { data: "window.QUILLBOOK_DATA = {\"messages\": [{\"text\": \"Are", state: "failed" });
  assert.match(await page.locator("p.notice[role=alert]").textContent() ?? "", /data\/messages\.js/);
  assert.deepEqual(page.problems().filter((problem) => !/SyntaxError|Unexpected|Invalid/i.test(problem)), []);
  await page.close();
});

test("before the data is there, the title and a moving sign stand in the page, and no words", async () => {
  const folder = writeAlbum(makeFolder(), conversation([message(1, mia, "Hello")]));
  fs.writeFileSync(path.join(folder, "assets", "app.js"), "");
  const page = await browser.newPage();
  await page.goto(`file://${folder}/index.html`);
  assert.equal(await page.locator("html").getAttribute("data-state"), "loading");
  assert.equal(await page.locator("h1").textContent(), "Lake weekend");
  assert.equal(await page.locator(".waiting").isVisible(), true);
  assert.equal((await page.locator("main").innerText()).trim(), "");
  const isMoving = await page.locator(".waiting").evaluate((wait) => wait.getAnimations({ subtree: true }).length > 0);
  assert.equal(isMoving, true);
  await page.close();
});

/** Every way out that a script of the page could try, and the directive that stops it. */
const waysOut = {
  "script-src-elem": "make('script', { textContent: 'window.hacked = 1' }); make('script', { src: 'https://example.invalid/a.js' });",
  "script-src-attr": "document.body.insertAdjacentHTML('beforeend', '<img src=x onerror=\"window.hacked = 2\">');",
  "script-src": "try { new Function('window.hacked = 3')(); } catch {} try { eval('window.hacked = 4'); } catch {}",
  "img-src": "new Image().src = 'https://example.invalid/a.png';",
  "media-src": "new Audio().src = 'https://example.invalid/a.mp3';",
  "connect-src": "fetch('https://example.invalid/').catch(() => {}); try { new WebSocket('wss://example.invalid/'); } catch {}",
  "frame-src": "make('iframe', { src: 'https://example.invalid/' });",
  "style-src-elem": "make('link', { rel: 'stylesheet', href: 'https://example.invalid/a.css' });",
  "style-src-attr": "document.body.insertAdjacentHTML('beforeend', '<p style=\"color: red\">');",
  "font-src": "new FontFace('a', 'url(https://example.invalid/a.woff)').load().catch(() => {});",
  "form-action": "make('form', { action: 'https://example.invalid/' }).submit();",
};

test("the policy stops inline scripts and the network", async () => {
  // Runs as a script of the album does: what a test runs in the page is exempt from the policy.
  const probe = `
    const stopped = [];
    addEventListener("securitypolicyviolation", ({ effectiveDirective }) => {
      stopped.push(effectiveDirective);
      document.documentElement.dataset.stopped = stopped.join(" ");
    });
    const make = (name, fields) => {
      const made = Object.assign(document.createElement(name), fields);
      document.body.append(made);
      return made;
    };
    addEventListener("try", () => setTimeout(() => { ${Object.values(waysOut).join("\n")} }));`;
  const page = await open(conversation([message(1, mia, "Hello")]), { probe });
  await page.evaluate(() => dispatchEvent(new Event("try")));
  await until(page, (wanted) => wanted.every((one) => document.documentElement.dataset.stopped?.split(" ").includes(one)),
    Object.keys(waysOut));
  assert.equal(await page.evaluate(() => String(/** @type {any} */ (window).hacked)), "undefined");
  // The same log that the other tests find empty.
  assert.ok(page.problems().some((problem) => problem.includes("Content Security Policy")));
  await page.close();
});

test("the console and the errors of scripts are really read", async () => {
  const page = await open(conversation([]), { probe: "console.log('A line of the test');addEventListener('load', () => { gone(); });" });
  await until(page, () => document.readyState === "complete");
  assert.ok(page.problems().some((problem) => problem === "console: A line of the test"));
  assert.ok(page.problems().some((problem) => problem.includes("gone is not defined")));
  await page.close();
});

for (const width of [320, 390, 1280]) {
  test(`an album of every case stands within ${width} pixels, light and dark`, async () => {
    const folder = writeAlbum(makeFolder(), everyCase());
    for (const colorScheme of /** @type {("light" | "dark")[]} */ (["light", "dark"])) {
      const page = await openAlbum(browser, folder, { width, colorScheme });
      assert.deepEqual(await layoutProblems(page), []);
      assert.deepEqual(page.problems(), []);
      await page.close();
    }
  });
}
