// What the page does for whoever reads in it: the ways through time, links that are handed on, colours and motion as they are
// wanted, and what it tells of the album and of each message.

import assert from "node:assert/strict";
import fs from "node:fs";
import path from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath } from "node:url";
import { wordsByTag } from "../../../resources/Web/app/words/languages.js";
import { attachment, conversation, everyCase, jonas, makeFolder, message, mia, reaction, writeAlbum } from "../support/album.js";
import { addressOf, frames, openAlbum, startBrowser, until } from "../support/browser.js";
import { plainBlanks } from "../support/measures.js";

/** @typedef {Awaited<ReturnType<typeof openAlbum>>} Page */

const months = ["2021-11", "2021-12", "2022-02", "2022-07", "2024-01", "2024-03"];
const days = months.flatMap((month) => [`${month}-03`, `${month}-17`]);
const perDay = 60;
const perMonth = 2 * perDay;
/** No address holds it as it stands. */
const oddGUID = "p:0/Äb 100%25#m=&";

/** Two days of sixty messages in each of six months; the numbers count from 0, and every row has its own height. */
function sixMonths() {
  return /** @type {any} */ (conversation(days.flatMap((day, place) => Array.from({ length: perDay }, (_, index) => {
    const number = place * perDay + index;
    const text = `Message number ${number}. ${"And some more words. ".repeat((number * 7) % 23)}`;
    const clock = `${String(8 + Math.floor(index / 6)).padStart(2, "0")}:${index % 6}0:00`;
    return message(number, number % 3 ? "me" : mia, text, `${day}T${clock}Z`,
      number === 333 ? { guid: oddGUID } : number === 700 ? { replyToGUID: "GUID-40" } : {});
  }))));
}

/** @param {string} date @param {Intl.DateTimeFormatOptions} options */
const told = (date, options) =>
  plainBlanks(new Intl.DateTimeFormat("en-US", { timeZone: "UTC", ...options }).format(new Date(date)));
/** The heading of a message's day. @param {number} number */
const dayOf = (number) => told(`${days[Math.floor(number / perDay)]}T12:00:00Z`,
  { weekday: "long", year: "numeric", month: "long", day: "numeric" });
/** The name of the month of a message. @param {number} number */
const monthOf = (number) => told(`${months[Math.floor(number / perMonth)]}-03T12:00:00Z`, { year: "numeric", month: "long" });
/** @param {string} date */
const momentOf = (date) => told(date, { dateStyle: "long", timeStyle: "medium" });

/** @type {import("playwright-core").Browser} */
let browser;
const folder = makeFolder();
before(async () => {
  writeAlbum(folder, sixMonths());
  browser = await startBrowser();
});
after(() => browser.close());

/** @param {Parameters<typeof openAlbum>[2]} [options] @param {string} [where] */
const open = (options = {}, where = folder) => openAlbum(browser, where, { timezoneId: "UTC", ...options });
/** @param {unknown} record @param {Parameters<typeof writeAlbum>[2] & Parameters<typeof openAlbum>[2]} [options] */
const openRecord = (record, options = {}) => open(options, writeAlbum(makeFolder(), record, options));

/** What makes sure that a page had nothing to report is the last thing a test does with it. @param {Page} page */
async function finish(page) {
  assert.deepEqual(page.problems(), []);
  await page.close();
}

/** The number of the message that has the focus. @param {import("playwright-core").Page} page */
const focused = (page) =>
  page.evaluate(() => Number(/** @type {HTMLElement | null} */ (document.activeElement)?.dataset.id ?? NaN));
/** Whether a message stands between the bar and the window's foot, at least in part. @param {number} number */
const isInSight = (number) => {
  const box = document.querySelector(`article[data-id="${number}"]`)?.getBoundingClientRect();
  return box !== undefined && box.bottom > 100 && box.top < innerHeight - 20;
};
/** @param {Page} page @param {string} name */
async function chooseInMenu(page, name) {
  await page.getByRole("button", { name: "More", exact: true }).click();
  await page.locator("#menu").getByRole("button", { name, exact: true }).click();
}
/** @param {Page} page */
const reload = async (page) => {
  await page.reload();
  await page.locator("html[data-state=ready]").waitFor({ state: "attached" });
};

// The rail of years and months

/** @param {Page} page */
const railOf = (page) => page.getByRole("navigation", { name: "Years and months" });
/** The names of the rail's buttons, and which of them is here. @param {Page} page */
const railWords = (page) => page.locator("nav.rail").evaluate((rail) => ({
  names: Array.from(rail.querySelectorAll("button"), (one) => one.getAttribute("aria-label")),
  here: Array.from(rail.querySelectorAll("[aria-current]"), (one) => one.getAttribute("aria-label")),
}));
/** @param {string} month */
const isHere = (month) => document.querySelector(".rail [aria-current]")?.getAttribute("aria-label") === month;

test("the rail shows the years at once, and the months of the year in sight", async () => {
  const page = await open();
  assert.equal(await railOf(page).isVisible(), true);
  assert.deepEqual(await railWords(page),
    { names: ["2021", "November 2021", "December 2021", "2022", "2024"], here: ["November 2021"] });
  await finish(page);
  const linked = await open({ hash: "#m=GUID-500" });
  assert.deepEqual((await railWords(linked)).here, ["January 2024"]);
  await finish(linked);
});

test("the rail follows scrolling, up and down", async () => {
  const page = await open();
  for (const month of [2, 5, 3, 1, 0]) {
    await page.evaluate((part) => scrollTo(0, document.documentElement.scrollHeight * part), (month + 0.5) / months.length);
    await until(page, isHere, monthOf(month * perMonth));
    const inSight = await page.evaluate(() => Array.from(document.querySelectorAll("article")).filter((row) => {
      const { top, bottom } = row.getBoundingClientRect();
      return bottom > 0 && top < innerHeight;
    }).map((row) => Number(row.dataset.id)));
    assert.ok(inSight.length > 3 && inSight.every((number) => Math.floor(number / perMonth) === month), inSight.join());
    const year = months[month].slice(0, 4);
    const ofYear = months.flatMap((one, place) => (one.startsWith(year) ? [monthOf(place * perMonth)] : []));
    assert.deepEqual((await railWords(page)).names,
      ["2021", "2022", "2024"].flatMap((one) => (one === year ? [one, ...ofYear] : [one])));
  }
  await finish(page);
});

test("a press on the rail leads to the first message of a year or month, and there is a way back", async () => {
  const page = await open();
  for (const [name, number] of /** @type {[string, number][]} */ ([["2024", 480], ["March 2024", 600], ["2021", 0]])) {
    await railOf(page).getByRole("button", { name, exact: true }).click();
    assert.equal(await focused(page), number);
    assert.equal(await page.evaluate(isInSight, number), true);
    await until(page, isHere, monthOf(number));
  }
  assert.equal(await page.getByRole("button", { name: "Back to where you were" }).isVisible(), true);
  await finish(page);
});

test("the rail is absent where it would lie on the conversation: in narrow windows, and beside the open panel", async () => {
  const page = await open({ width: 1023 });
  const isApart = () => page.evaluate(() => {
    const rail = /** @type {Element} */ (document.querySelector("nav.rail")).getBoundingClientRect();
    return rail.width > 0 && Array.from(document.querySelectorAll(".bubble, .cover-names, .search"))
      .every((one) => one.getBoundingClientRect().width === 0 || one.getBoundingClientRect().left >= rail.right);
  });
  /** @param {number} width @param {boolean} isThere */
  const see = async (width, isThere) => {
    await page.setViewportSize({ width, height: 800 });
    await frames(page);
    assert.equal(await railOf(page).count(), isThere ? 1 : 0, `${width}`);
    if (isThere) assert.equal(await isApart(), true, `${width}`);
  };
  for (const width of [1023, 390, 320]) await see(width, false);
  for (const width of [1024, 1280, 1920]) await see(width, true);
  await page.keyboard.press("Control+f");
  for (const width of [1400, 1920]) await see(width, true);
  for (const width of [1280, 1024, 800]) await see(width, false);
  await page.setViewportSize({ width: 1280, height: 800 });
  await page.keyboard.press("Escape");
  await see(1280, true);
  await finish(page);
});

// The date over the conversation

/**
 * Scrolls in steps, and tells for each what the floating date says, what stands under it, and whether a day's heading does.
 * @param {Page} page @param {number} step @param {number} count
 */
const scrolled = (page, step, count) => page.evaluate(async ([by, times]) => {
  const date = /** @type {HTMLElement} */ (document.querySelector(".floating-date"));
  const seen = [];
  for (let time = 0; time < times; time++) {
    scrollBy(0, by);
    await new Promise((done) => addEventListener("scroll", done, { once: true }));
    const { top, bottom } = date.getBoundingClientRect();
    const meets = (/** @type {Element} */ one) => {
      const box = one.getBoundingClientRect();
      return box.bottom > top && box.top < bottom;
    };
    seen.push({ isShown: date.classList.contains("is-shown"), text: date.textContent,
      under: Array.from(document.querySelectorAll("article")).filter(meets).map((row) => Number(row.dataset.id)),
      hasHeading: Array.from(document.querySelectorAll("h2.day")).some(meets) });
  }
  return seen;
}, [step, count]);

test("while one scrolls the floating date tells the day under it, and never over a day's heading", async () => {
  const page = await open({ hash: "#m=GUID-57" });
  for (const [step, expected] of /** @type {[number, string[]][]} */ ([[11, [dayOf(59), dayOf(60)]], [-11, [dayOf(60), dayOf(59)]]])) {
    const seen = await scrolled(page, step, 85);
    for (const { isShown, text, under, hasHeading } of seen) {
      if (hasHeading) assert.equal(isShown, false, `${text} over ${under}`);
      if (isShown && under.length > 0) assert.ok(under.some((number) => dayOf(number) === text), `${text} over ${under}`);
    }
    const shown = seen.filter(({ isShown }) => isShown).map(({ text }) => text);
    assert.deepEqual(Array.from(new Set(shown)), expected);
    assert.ok(shown.length > 60 && shown.length < seen.length, String(shown.length));
  }
  await finish(page);
});

test("the floating date appears to the eye while one scrolls, and goes by itself", async () => {
  const page = await open();
  const opacity = () => page.locator(".floating-date").evaluate((date) => Number(getComputedStyle(date).opacity));
  assert.equal(await opacity(), 0);
  await page.evaluate(() => scrollTo(0, 3000));
  // As long as the hand moves, however slowly this machine draws, it must come.
  const place = await page.evaluate(async () => {
    const date = /** @type {HTMLElement} */ (document.querySelector(".floating-date"));
    for (let frame = 0; frame < 300 && getComputedStyle(date).opacity !== "1"; frame++) {
      scrollBy(0, 2);
      await new Promise((done) => requestAnimationFrame(done));
    }
    const box = date.getBoundingClientRect();
    return { opacity: getComputedStyle(date).opacity, text: date.textContent,
      isClear: box.top >= /** @type {Element} */ (document.querySelector("#bar")).getBoundingClientRect().bottom
        && box.left >= 0 && box.right <= innerWidth };
  });
  assert.deepEqual([place.opacity, place.text, place.isClear], ["1", dayOf(0), true]);
  const eye = () => page.evaluate(() => Array.from(document.querySelectorAll("article"), (row) =>
    [Number(row.dataset.id), row.getBoundingClientRect().top]).find(([, top]) => top > 100));
  const left = await eye();
  await until(page, () => getComputedStyle(/** @type {Element} */ (document.querySelector(".floating-date"))).opacity === "0");
  assert.deepEqual(await eye(), left, "without another scroll");
  await finish(page);
});

// Keys and the menu

test("Page Down and Page Up go from message to message and bring each wholly into sight", async () => {
  const page = await open({ hash: "#m=GUID-300" });
  const press = async (/** @type {string} */ key, /** @type {number} */ expected) => {
    await page.keyboard.press(key);
    assert.equal(await focused(page), expected);
    const { top, bottom, bar } = await page.evaluate(() => {
      const box = /** @type {Element} */ (document.activeElement).getBoundingClientRect();
      return { top: box.top, bottom: box.bottom, bar: /** @type {HTMLElement} */ (document.getElementById("bar")).offsetHeight };
    });
    assert.ok(top >= bar && bottom <= 800, `${expected}: ${top} to ${bottom}`);
  };
  for (let number = 301; number <= 315; number++) await press("PageDown", number);
  for (let number = 314; number >= 290; number--) await press("PageUp", number);
  await page.locator("article[data-id='290']").getByRole("button", { name: "Copy link to this message" }).focus();
  await press("PageDown", 291);
  const isTaken = (/** @type {KeyboardEventInit} */ fields) => page.evaluate((init) =>
    !document.activeElement?.dispatchEvent(new KeyboardEvent("keydown", { bubbles: true, cancelable: true, ...init })), fields);
  assert.equal(await isTaken({ key: "PageDown", ctrlKey: true }), false, "the browser's own way to the next tab");
  assert.equal(await focused(page), 291);
  for (const [menuItem, last, key] of [["Latest message", 719, "PageDown"], ["First message", 0, "PageUp"]]) {
    await chooseInMenu(page, String(menuItem));
    await until(page, isInSight, Number(last));
    await page.locator(`article[data-id="${last}"]`).focus();
    assert.equal(await isTaken({ key: String(key) }), false, `there is nothing behind message ${last}`);
    assert.equal(await focused(page), last);
  }
  await finish(page);
});

test("the menu leads to the first and to the latest message", async () => {
  const page = await open({ hash: "#m=GUID-300" });
  for (let round = 0; round < 2; round++) {
    await chooseInMenu(page, "Latest message");
    await until(page, isInSight, 719);
    await frames(page, 10);
    const bottom = await page.locator("article[data-id='719']").evaluate((row) => row.getBoundingClientRect().bottom);
    const below = 800 - bottom;
    assert.ok(below >= -0.5 && below < 200, String(below));
    await chooseInMenu(page, "First message");
    await until(page, isInSight, 0);
    assert.equal(await page.evaluate(() => scrollY), 0);
    assert.equal(await page.locator(".cover-names").isVisible(), true);
    assert.equal(await page.locator("#menu").isVisible(), false);
  }
  await finish(page);
});

test("the first Ctrl+F is the page's, a second one the browser's", async () => {
  const page = await open();
  await page.evaluate(() => {
    const kept = Object.assign(window, { presses: /** @type {boolean[]} */ ([]) });
    addEventListener("keydown", (event) => {
      if (event.key.toLowerCase() === "f") kept.presses.push(event.defaultPrevented);
    });
  });
  /** Presses a key and tells whether the browser was kept from doing its own. @param {string} key */
  const isTaken = async (key) => {
    await page.keyboard.press(key);
    return page.evaluate(() => /** @type {any} */ (window).presses.pop());
  };
  const field = page.locator(".search input");
  for (const key of ["Control+f", "Meta+f"]) {
    assert.equal(await isTaken(key), true, key);
    assert.equal(await field.evaluate((input) => input === document.activeElement), true);
    assert.equal(await isTaken(key), false, `${key} again`);
    assert.equal(await isTaken(key), false, `${key} once more`);
    await page.keyboard.press("Escape");
    assert.equal(await page.locator(".search").isVisible(), false);
  }
  for (const key of ["Control+Shift+F", "Control+Alt+f", "f"]) assert.equal(await isTaken(key), false, key);
  assert.equal(await isTaken("Control+f"), true);
  await page.locator("article[data-id='1'] p.words").click();
  assert.equal(await isTaken("Control+f"), true, "from the conversation it leads to the field");
  assert.equal(await field.evaluate((input) => input === document.activeElement), true);
  await finish(page);
});

// Links to messages

/** Presses the copying tool of a message and returns what the clipboard holds. @param {Page} page @param {number} number */
async function copiedLink(page, number) {
  const row = page.locator(`article[data-id="${number}"]`);
  await row.locator("p.words").hover();
  await row.getByRole("button", { name: "Copy link to this message" }).click();
  await page.getByText("Link copied").waitFor();
  return page.evaluate(() => navigator.clipboard.readText());
}
const clipboard = ["clipboard-read", "clipboard-write"];

test("a link that was copied opens the album at its message, also after the album was moved and renamed", async () => {
  const [number, guid] = [333, oddGUID];
  const home = writeAlbum(path.join(makeFolder(), "Lake weekend"), sixMonths());
  const page = await open({ permissions: clipboard, hash: "#m=GUID-330" }, home);
  const link = await copiedLink(page, number);
  assert.equal(fileURLToPath(link.split("#")[0]), path.join(home, "index.html"));
  assert.equal(new URL(link).hash, `#m=${encodeURIComponent(guid)}`);
  assert.equal(await page.evaluate(() => location.hash), "#m=GUID-330", "copying leads nowhere");
  await finish(page);
  const fresh = await browser.newPage();
  await fresh.goto(link);
  await fresh.locator("html[data-state=ready]").waitFor({ state: "attached" });
  assert.equal(await focused(fresh), number);
  assert.equal(await fresh.evaluate(isInSight, number), true);
  await fresh.close();

  const moved = path.join(makeFolder(), "Übers Land", "Lake — “2026” #1 50% & more");
  fs.mkdirSync(path.dirname(moved));
  fs.renameSync(home, moved);
  const later = await open({ permissions: clipboard, hash: new URL(link).hash }, moved);
  assert.equal(await focused(later), number);
  assert.equal(await later.evaluate(isInSight, number), true);
  const again = await copiedLink(later, number);
  assert.equal(fileURLToPath(again.split("#")[0]), path.join(moved, "index.html"));
  assert.equal(new URL(again).hash, new URL(link).hash);
  await finish(later);
});

// Colours and motion

/** How light each colour is, from 0 to 1, and the contrast of the words to what they stand on (WCAG 2.2). @param {Page} page */
const colours = (page) => page.evaluate(() => {
  const lightOf = (/** @type {string} */ colour) => {
    const [red, green, blue] = (colour.match(/[\d.]+/g) ?? []).map((part) => Number(part) / 255)
      .map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  const paper = lightOf(getComputedStyle(document.body).backgroundColor === "rgba(0, 0, 0, 0)"
    ? getComputedStyle(document.documentElement).backgroundColor : getComputedStyle(document.body).backgroundColor);
  const against = (/** @type {number} */ light) => (Math.max(light, paper) + 0.05) / (Math.min(light, paper) + 0.05);
  const of = (/** @type {string} */ selector) =>
    lightOf(getComputedStyle(/** @type {Element} */ (document.querySelector(selector))).color);
  const soft = ["#summary", ".cover-facts", "h2.day", ".meta time"].map(of);
  return { paper, ink: of("h1"), soft, contrasts: soft.map(against) };
});
/** @param {Page} page @param {boolean} isDark */
const see = async (page, isDark) => {
  const { paper, ink } = await colours(page);
  assert.ok(isDark ? paper < 0.05 && ink > 0.7 : paper > 0.9 && ink < 0.05, `${paper} ${ink}`);
};

test("the switch between light and dark works at once, is kept over a reload, and follows the system again", async () => {
  const page = await open({ colorScheme: "light" });
  await see(page, false);
  /** Chooses, and tells how light the paper is before the choice has returned to the browser. @param {string} name */
  const choose = async (name) => {
    await page.getByRole("button", { name: "More", exact: true }).click();
    const light = await page.getByRole("radio", { name, exact: true }).evaluate((input) => {
      /** @type {HTMLElement} */ (input).click();
      return getComputedStyle(document.querySelector("h1")).color;
    });
    await page.keyboard.press("Escape");
    return light;
  };
  const before = await page.locator("h1").evaluate((title) => getComputedStyle(title).color);
  assert.notEqual(await choose("Dark"), before, "at once");
  await see(page, true);
  await reload(page);
  await see(page, true);
  await page.getByRole("button", { name: "More", exact: true }).click();
  assert.equal(await page.getByRole("radio", { name: "Dark", exact: true }).isChecked(), true);
  await page.keyboard.press("Escape");
  await page.emulateMedia({ colorScheme: "dark" });
  await choose("Light");
  await see(page, false);
  await reload(page);
  await see(page, false);
  await choose("Like the system");
  await see(page, true);
  await page.emulateMedia({ colorScheme: "light" });
  await see(page, false);
  await reload(page);
  await page.emulateMedia({ colorScheme: "dark" });
  await see(page, true);
  await finish(page);
});

test("where more contrast is wanted soft words stand out more, in light and in dark", async () => {
  const page = await open();
  for (const colorScheme of /** @type {("light" | "dark")[]} */ (["light", "dark"])) {
    await page.emulateMedia({ colorScheme, contrast: "no-preference" });
    const usual = await colours(page);
    await page.emulateMedia({ colorScheme, contrast: "more" });
    const more = await colours(page);
    for (const [place, light] of more.soft.entries()) {
      assert.ok(colorScheme === "light" ? light < usual.soft[place] : light > usual.soft[place], `${colorScheme} ${place}`);
      assert.ok(more.contrasts[place] >= 7, `${colorScheme} ${place}: ${more.contrasts[place]}`);
    }
  }
  await finish(page);
});

/**
 * Goes through everything that moves where motion is welcome, and returns what began to move.
 * @param {"reduce" | "no-preference"} reducedMotion
 */
async function motions(reducedMotion) {
  const viewport = { width: 1280, height: 800 };
  const context = await browser.newContext({ viewport, locale: "en-US", reducedMotion, permissions: clipboard });
  await context.addInitScript(() => {
    const kept = Object.assign(window, { motions: /** @type {string[]} */ ([]) });
    for (const kind of ["transitionrun", "animationstart"]) {
      addEventListener(kind, ({ target }) => void kept.motions.push(`${kind} ${/** @type {Element} */ (target).className}`), true);
    }
  });
  const page = await openAlbum(browser, writeAlbum(makeFolder(), everyCase()), { context });
  const running = () => page.evaluate(() => document.getAnimations().length);
  let most = 0;
  /** @param {() => Promise<unknown>} act */
  const step = async (act) => {
    await act();
    most = Math.max(most, await running());
    await frames(page);
  };
  await step(() => page.evaluate(() => scrollTo(0, 900)));
  await step(() => page.evaluate(() => scrollBy(0, -80)));
  await step(() => page.locator("button.reply").first().click());
  await step(() => page.locator(".way-back").click());
  await step(() => copiedLink(page, 9));
  await step(() => page.locator("button.reaction").first().click());
  await step(() => page.getByRole("button", { name: "More", exact: true }).click());
  await step(() => page.keyboard.press("Escape"));
  for (const name of ["Go to a date", "Photos and files", "About this album"]) {
    await step(() => page.locator("#actions").getByRole("button", { name, exact: true }).click());
    await step(() => page.keyboard.press("Escape"));
  }
  await step(() => page.locator("a.picture").first().click());
  await step(() => page.keyboard.press("Escape"));
  await step(() => page.keyboard.press("Control+f"));
  await step(() => page.keyboard.type("lake"));
  await step(() => page.locator(".search [role=option]").first().waitFor());
  const begun = await page.evaluate(() => /** @type {any} */ (window).motions);
  assert.deepEqual(page.problems(), []);
  await context.close();
  return { begun, most };
}

test("where motion is unwelcome nothing moves by itself, not even while the page loads", async () => {
  assert.deepEqual(await motions("reduce"), { begun: [], most: 0 });
  const waiting = writeAlbum(makeFolder(), conversation([message(1, mia, "Hello")]));
  fs.writeFileSync(path.join(waiting, "assets", "app.js"), "");
  const page = await browser.newPage({ reducedMotion: "reduce" });
  await page.goto(addressOf(waiting));
  assert.equal(await page.locator(".waiting").isVisible(), true);
  assert.equal(await page.evaluate(() => document.getAnimations().length), 0);
  await page.close();
});

test("where motion is welcome, the same ways show some", async () => {
  const { begun } = await motions("no-preference");
  for (const name of ["floating-date", "toast", "meta"]) {
    assert.ok(begun.some((/** @type {string} */ one) => one.includes(name)), name);
  }
});

// What the page tells of the album

/** Six months with everything that an album can lack. */
function lackingAlbum() {
  const record = sixMonths();
  record.sourceMessageCount = 1234;
  Object.assign(record.messages[100], { attachments: [
    attachment(501, "Hum.wav", "available", { mimeType: "audio/wav" }), attachment(502, "Packing list.pdf"),
    attachment(503, "IMG_0007.MOV", "missing", { mimeType: "video/quicktime", byteSize: 41_200_331 })] });
  Object.assign(record.messages[400], { attachments: [attachment(504, "IMG_0008.jpg", "unreadable"), attachment(505, "", "missing")] });
  record.messages[560].payloadState = "partiallyDecoded";
  record.warnings = [
    { id: "w1", code: "attachment_missing", summary: "Attachment IMG_0007.MOV was missing.", sourceID: "503" },
    { id: "w2", code: "unsupported_payload", summary: "A message payload could not be fully decoded.", sourceID: "560" },
    { id: "w3", code: "unresolved_reaction", summary: "Nothing is known of row 99999.", sourceID: "99999" },
    { id: "w4", code: "attachment_unreadable", summary: "Attachment IMG_0008.jpg was unreadable.", sourceID: "504" },
    { id: "w5", code: "later_code", summary: "A word of <tomorrow>." },
  ];
  return record;
}

const lacking = makeFolder();
before(() => void writeAlbum(lacking, lackingAlbum()));

/** @param {Page} page */
async function openAbout(page) {
  await page.locator("#actions > button").nth(3).click();
  await until(page, () => document.querySelector("dialog[open] [aria-busy=false]") !== null);
  return page.locator("dialog[open]");
}
/**
 * What stands in the lists below a heading: for each entry its paragraphs, and whether it leads to a message.
 * @param {Page} page @param {string} heading
 */
const entriesBelow = (page, heading) => page.evaluate((wanted) => {
  const title = Array.from(document.querySelectorAll("dialog[open] h3")).find(({ textContent }) => textContent === wanted);
  const items = [];
  for (let next = title?.nextElementSibling; next && next.tagName !== "H3"; next = next.nextElementSibling) {
    items.push(...next.querySelectorAll("li"));
  }
  return items.map((item) => ({
    words: Array.from(item.querySelectorAll("p"), ({ textContent }) => (textContent ?? "").replace(/\s/gu, " ")),
    hasJump: item.querySelector("button") !== null,
  }));
}, heading);

test("“About this album” tells counts and dates", async () => {
  const page = await open({}, lacking);
  const dialog = await openAbout(page);
  assert.equal(await dialog.getByRole("heading", { level: 2 }).textContent(), "About this album");
  const facts = await dialog.locator("dl").evaluate((list) => Object.fromEntries(Array.from(list.querySelectorAll("dt"), (term) =>
    [term.textContent, (term.nextElementSibling?.textContent ?? "").replace(/[^\S\n]/gu, " ")])));
  assert.deepEqual(facts, {
    "Title": "Lake weekend", "Service": "iMessage", "First message": momentOf("2021-11-03T08:00:00Z"),
    "Latest message": momentOf("2024-03-17T17:50:00Z"), "Messages": "720", "Records in the source": "1,234",
    "Attachments": "5\n2 in the album\n2 missing\n1 unreadable", "Album made on": momentOf("2026-11-15T19:48:57Z"),
    "Made on system": "Version 15.2 (Build 24C101)",
  });
  await finish(page);
});

test("“About this album” tells warnings in its own words with their detail, and names what is absent", async () => {
  const page = await open({}, lacking);
  const dialog = await openAbout(page);
  assert.deepEqual(await entriesBelow(page, "What could not be kept"), [
    { words: ["An attachment was missing and could not be included.", "Attachment IMG_0007.MOV was missing."], hasJump: true },
    { words: ["A message payload could not be fully decoded."], hasJump: true },
    { words: ["A reaction could not be matched to its message.", "Nothing is known of row 99999."], hasJump: false },
    { words: ["An attachment could not be read and was skipped.", "Attachment IMG_0008.jpg was unreadable."], hasJump: true },
    { words: ["A word of <tomorrow>."], hasJump: false },
  ]);
  const absences = (await entriesBelow(page, "Attachments that are not in the album")).map(({ words }) => words.join(" | "));
  const [missing, unreadable] = ["Missing: this file is not in the album.", "This file could not be read and is not in the album."];
  const [first, second] = [momentOf("2021-11-17T14:40:00Z"), momentOf("2022-07-03T14:40:00Z")];
  assert.deepEqual(absences, [`IMG_0007.MOV | ${missing} · 41.2 MB | Me, ${first}`, `IMG_0008.jpg | ${unreadable} | Me, ${second}`,
    `Attachment | ${missing} | Me, ${second}`]);
  assert.equal(await dialog.getByText("Everything could be kept.").count(), 0);
  await finish(page);
});

test("warnings are told in the page's language, and their stored detail as it stands", async () => {
  const page = await openRecord(lackingAlbum(), { language: "de" });
  const german = /** @type {any} */ (wordsByTag.de);
  await openAbout(page);
  const told = await entriesBelow(page, german.warnings);
  assert.deepEqual(told.map(({ words }) => words), [[german.attachment_missing, "Attachment IMG_0007.MOV was missing."],
    [german.unsupported_payload, "A message payload could not be fully decoded."],
    [german.unresolved_reaction, "Nothing is known of row 99999."],
    [german.attachment_unreadable, "Attachment IMG_0008.jpg was unreadable."], ["A word of <tomorrow>."]]);
  assert.notEqual(german.attachment_missing, "An attachment was missing and could not be included.");
  await finish(page);
});

test("messages that were not read as a whole are told where no warning speaks of them", async () => {
  const page = await openRecord(conversation([message(1, mia, "x"),
    message(2, mia, "half", undefined, { payloadState: "partiallyDecoded" }),
    message(3, "me", undefined, "2026-05-02T09:00:00Z", { payloadState: "unsupported" })]));
  const dialog = await openAbout(page);
  assert.deepEqual(await entriesBelow(page, "What could not be kept"), [
    { words: ["Only part of this message could be read.", `Mia Okafor, ${momentOf("2026-05-01T09:00:00Z")}`], hasJump: true },
    { words: ["This message could not be read.", `Me, ${momentOf("2026-05-02T09:00:00Z")}`], hasJump: true }]);
  assert.equal(await dialog.getByText("Everything could be kept.").count(), 0);
  await dialog.getByRole("button", { name: "Show message" }).last().click();
  await until(page, isInSight, 3);
  await finish(page);
});

test("an album that lacks nothing says so", async () => {
  const page = await open();
  const dialog = await openAbout(page);
  assert.equal(await dialog.getByText("Everything could be kept.").isVisible(), true);
  assert.deepEqual(await entriesBelow(page, "What could not be kept"), []);
  await finish(page);
});

test("“Show message” leads from a warning and from an absence to the message, with a way back", async () => {
  const page = await open({}, lacking);
  for (const [entry, number] of /** @type {[string, number][]} */ ([["A message payload could not be fully decoded.", 560],
    ["Attachment IMG_0007.MOV was missing.", 100], ["An attachment could not be read and was skipped.", 400], ["41.2 MB", 100]])) {
    const dialog = await openAbout(page);
    await dialog.getByRole("listitem").filter({ hasText: entry }).getByRole("button", { name: "Show message" }).click();
    await dialog.waitFor({ state: "hidden" });
    await until(page, isInSight, number);
    assert.equal(await focused(page), number);
  }
  await page.getByRole("button", { name: "Back to where you were" }).click();
  await until(page, isInSight, 400);
  await finish(page);
});

test("the time zone that is chosen under “About this album” holds there, on the cover and in the conversation", async () => {
  const page = await open({ timezoneId: "Pacific/Kiritimati" }, lacking);
  const dialog = await openAbout(page);
  const cover = () => page.locator(".cover-facts").first().textContent();
  const absence = async () => (await entriesBelow(page, "Attachments that are not in the album"))[0].words[2];
  const zone = { timeZone: "Pacific/Kiritimati" };
  assert.equal(await absence(), `Me, ${told("2021-11-17T14:40:00Z", { dateStyle: "long", timeStyle: "medium", ...zone })}`);
  assert.equal(await dialog.getByRole("radio", { name: "Your time zone (Pacific/Kiritimati)" }).isChecked(), true);
  assert.equal(await cover(), "November 3, 2021 – March 18, 2024");
  await dialog.getByRole("radio", { name: "Universal time (UTC)" }).check();
  await until(page, () => document.querySelector(".cover-facts")?.textContent === "November 3, 2021 – March 17, 2024");
  await until(page, () => document.querySelector("article .meta time")?.textContent?.startsWith("8:00"));
  await until(page, () => document.querySelector("dialog[open] dl dd:nth-of-type(3)")?.textContent?.includes("8:00:00"));
  assert.equal(await absence(), `Me, ${momentOf("2021-11-17T14:40:00Z")}`);
  assert.equal(await dialog.getByRole("radio", { name: "Universal time (UTC)" }).isChecked(), true);
  await finish(page);
});

// What the page tells of a message

test("reactions are settled by sender and kind by their dates, whatever their order in the record", async () => {
  const page = await openRecord(conversation([message(1, "me", "Shall we?", undefined, { reactions: [
    // Taken back, in the record before it was given.
    reaction(1, jonas, "liked", true, 9), reaction(2, jonas, "liked", false, 8),
    // Given again, in the record before it was taken back.
    reaction(3, mia, "loved", false, 7), reaction(4, mia, "loved", true, 6), reaction(5, mia, "loved", false, 1),
    // Another kind of the same sender, and the same kind of another: neither is touched.
    reaction(6, jonas, "loved", false, 5), reaction(7, mia, "liked", false, 4), reaction(8, mia, "laughed", false, 2),
    reaction(9, mia, "laughed", true, 3), reaction(10, "me", "questioned", false, 10)] })]));
  const badges = page.locator("button.reaction");
  const names = async () => (await badges.evaluateAll((found) => found.map((one) => one.getAttribute("aria-label")))).sort();
  assert.deepEqual(await names(), ["Liked by Mia Okafor", "Loved by Mia Okafor and Jonas <i>Lindqvist</i>", "Questioned by Me",
    "😂 Taken back by Mia Okafor"]);
  assert.deepEqual(await page.locator(".reaction-count").allTextContents(), ["2"]);
  const lines = page.locator(".reaction-people li");
  assert.equal(await lines.filter({ visible: true }).count(), 0);
  const badge = page.getByRole("button", { name: "Liked by Mia Okafor" });
  await badge.focus();
  await page.keyboard.press("Enter");
  assert.equal(await badge.getAttribute("aria-expanded"), "true");
  const at = (/** @type {number} */ minute) => momentOf(`2026-05-01T10:${String(minute).padStart(2, "0")}:00Z`);
  assert.deepEqual((await lines.filter({ visible: true }).allTextContents()).map(plainBlanks).sort(), [
    `❓ Questioned by Me · ${at(10)}`, `❤️ Loved by Jonas <i>Lindqvist</i> · ${at(5)}`, `❤️ Loved by Mia Okafor · ${at(7)}`,
    `👍 Liked by Mia Okafor · ${at(4)}`, `👍 Taken back by Jonas <i>Lindqvist</i> · ${at(9)}`,
    `😂 Taken back by Mia Okafor · ${at(3)}`].sort());
  await page.keyboard.press("Enter");
  assert.equal(await lines.filter({ visible: true }).count(), 0);
  await finish(page);
});

test("reactions that the record has no name for are told one by one, and repeated ones with each of their times", async () => {
  const page = await openRecord(conversation([message(1, "me", "Shall we?", undefined, { reactions: [
    reaction(1, mia, "unknown", false, 1), reaction(2, mia, "unknown", false, 9), reaction(3, mia, "loved", false, 2),
    reaction(4, mia, "loved", false, 3)] })]));
  const badges = page.locator("button.reaction");
  assert.deepEqual(await page.locator(".reaction-count").allTextContents(), ["2"]);
  assert.equal((await badges.first().getAttribute("aria-label"))?.split("Mia Okafor").length, 2);
  await badges.first().click();
  const times = (await page.locator(".reaction-people li").allTextContents()).map((line) => Number(/10:0(\d):00/.exec(line)?.[1]));
  assert.deepEqual(times, [1, 9, 2, 3]);
  await finish(page);
});

test("edited and unsent messages say when, with the day where it is another one in the reader's zone", async () => {
  const record = conversation([
    message(1, mia, "Same day", "2026-05-01T09:00:00Z", { editedAt: "2026-05-01T09:30:00Z" }),
    message(2, mia, "Over midnight", "2026-05-01T23:50:00Z", { editedAt: "2026-05-02T00:10:00Z" }),
    message(3, "me", "Both", "2026-05-03T09:00:00Z", { editedAt: "2026-05-03T09:01:00Z", retractedAt: "2026-05-05T09:02:00Z" }),
    message(4, "me", "Neither", "2026-05-03T10:00:00Z"),
  ]);
  const album = writeAlbum(makeFolder(), record);
  const marksIn = (/** @type {Page} */ page) => page.locator("article").evaluateAll((rows) => rows.map((row) =>
    Array.from(row.querySelectorAll(".mark-edited, .mark-unsent"), ({ textContent }) => textContent?.replace(/\s/gu, " "))));
  const page = await open({}, album);
  assert.deepEqual(await marksIn(page), [["Edited 9:30 AM"], ["Edited May 2, 2026, 12:10 AM"],
    ["Edited 9:01 AM", "Unsent May 5, 2026, 9:02 AM"], []]);
  assert.deepEqual(await page.locator("article[data-id='3'] [class^='mark-']").evaluateAll((found) =>
    found.map((one) => [one.getAttribute("title")?.replace(/\s/gu, " "), one.querySelector("time")?.dateTime])), [
    [`Edited on ${momentOf("2026-05-03T09:01:00Z")}`, "2026-05-03T09:01:00Z"],
    [`Unsent on ${momentOf("2026-05-05T09:02:00Z")}`, "2026-05-05T09:02:00Z"]]);
  assert.equal(await page.locator(".mark-edited").first().isVisible(), true);
  await finish(page);
  const elsewhere = await open({ timezoneId: "Asia/Kathmandu" }, album);
  assert.deepEqual((await marksIn(elsewhere))[1], ["Edited 5:55 AM"]);
  await finish(elsewhere);
});

test("a reply leads by the keyboard to what it answers, and “Back to where you were” back to the pixel", async () => {
  const page = await open({ hash: "#m=GUID-700" });
  const back = page.getByRole("button", { name: "Back to where you were" });
  assert.equal(await back.count(), 0);
  await page.evaluate(() => scrollBy(0, 23));
  await frames(page, 5);
  const place = () => page.locator("article[data-id='700']").evaluate((row) => row.getBoundingClientRect().top);
  const left = await place();
  await page.getByRole("button", { name: /^Reply to / }).focus();
  await page.keyboard.press("Enter");
  assert.equal(await focused(page), 40);
  assert.equal(await page.evaluate(isInSight, 40), true);
  assert.equal(await page.evaluate(() => location.hash), "#m=GUID-40");
  assert.equal(await page.locator("article[data-id='40']").evaluate((row) => row.classList.contains("is-found")), true);
  await back.waitFor();
  await page.evaluate(() => scrollBy(0, 400));
  await back.focus();
  await page.keyboard.press("Enter");
  await until(page, isInSight, 700);
  await until(page, () => document.querySelector(".way-back")?.clientHeight === 0);
  assert.ok(Math.abs(await place() - left) < 1, `${left} ${await place()}`);
  assert.equal(await page.evaluate(() => document.activeElement?.matches("article.row")), true);
  await finish(page);
});

test("the offer to go back goes when one has scrolled far away, and the browser's own Back remains", async () => {
  const page = await open({ hash: "#m=GUID-700" });
  await page.getByRole("button", { name: /^Reply to / }).click();
  const back = page.getByRole("button", { name: "Back to where you were" });
  await back.waitFor();
  await page.evaluate(() => scrollBy(0, 6 * innerHeight));
  await back.waitFor({ state: "hidden" });
  await page.goBack();
  await until(page, isInSight, 700);
  await finish(page);
});
