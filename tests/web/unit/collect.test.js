import assert from "node:assert/strict";
import { test } from "node:test";
import { collect, linksOf } from "../../../resources/Web/app/gallery/collect.js";
import { Conversation } from "../../../resources/Web/app/records/Conversation.js";
import { attachment, longWord, message, mia } from "../support/album.js";

/** @param {unknown[]} messages @param {AbortSignal} [signal] */
function collected(messages, signal) {
  return collect(new Conversation({ messages }), signal);
}

/** @param {import("../../../resources/Web/app/gallery/PlaceList.js").PlaceList} places */
function placesOf(places) {
  return Array.from({ length: places.count }, (_, position) => [places.messages[position], places.parts[position]]);
}

const attachments = [
  attachment(1, "Sunset.JPG"), attachment(2, "Walk.mov"), attachment(3, "Song.m4a"), attachment(4, "List.pdf"),
  attachment(5, "Nameless"), attachment(6, "IMG_2042.heic"), attachment(7, "Gone.png", "missing"),
  attachment(8, "Odd.bin", "available", { mimeType: "image/png" }),
];

for (const { shelf, parts } of [
  { shelf: "photos", parts: [0, 1, 5, 6, 7] }, { shelf: "audio", parts: [2] }, { shelf: "files", parts: [3, 4] },
]) {
  test(`${shelf} hold what is of that kind, whether it is there or missing`, async () => {
    const collection = await collected([message(1, mia, "Nothing"), message(2, mia, "", undefined, { attachments })]);
    assert.deepEqual(placesOf(/** @type {any} */ (collection)[shelf]), parts.map((part) => [1, part]));
  });
}

for (const { name, raw, links } of [
  { name: "http and https in the text", raw: { text: "See https://example.org/a and http://example.org/b." },
    links: ["https://example.org/a", "http://example.org/b"] },
  { name: "the subject's before the text's", raw: { subject: "HTTPS://example.org/s", text: "https://example.org/t" },
    links: ["https://example.org/s", "https://example.org/t"] },
  { name: "no other scheme", raw: { text: "javascript:alert(1) ftp://example.org file:///etc data:text/html,x" }, links: [] },
  { name: "no scheme without a host", raw: { text: "https:// http://?x" }, links: [] },
  { name: "a link twice where it stands twice", raw: { text: "http://a.example http://a.example" },
    links: ["http://a.example/", "http://a.example/"] },
  { name: "a megabyte without a blank is none", raw: { text: `https://example.org/${longWord}` }, links: [] },
  { name: "a text that is none", raw: { text: 7, subject: null }, links: [] },
  { name: "a record that is none", raw: null, links: [] },
]) {
  test(`links of a message: ${name}`, () => assert.deepEqual(linksOf(raw), links));
}

test("damaged records keep nothing else from being found", async () => {
  const damaged = [null, 7, "text", [], { attachments: "none" }, { attachments: [null, 3, {}] }, { text: {} }];
  const collection = await collected([...damaged, message(1, mia, "https://example.org", undefined, { attachments })]);
  assert.equal(collection?.photos.count, 5);
  // An attachment of which nothing is known is still one.
  assert.deepEqual(placesOf(/** @type {any} */ (collection).files).slice(0, 3), [[5, 0], [5, 1], [5, 2]]);
  assert.deepEqual(placesOf(/** @type {any} */ (collection).links), [[7, 0]]);
});

test("a stopped collecting comes to nothing", async () => {
  const controller = new AbortController();
  controller.abort();
  assert.equal(await collected([message(1, mia, "Hello")], controller.signal), undefined);
});

test("places of many parts are found again, and others are not", async () => {
  const many = Array.from({ length: 3000 }, (_, index) => message(index, mia, "", undefined, {
    attachments: index % 3 === 0 ? [attachment(1, "a.jpg"), attachment(2, "b.pdf"), attachment(3, "c.png")] : [] }));
  const { photos } = /** @type {any} */ (await collected(many));
  assert.equal(photos.count, 2000);
  for (let position = 0; position < photos.count; position++) {
    assert.equal(photos.positionOf(photos.messages[position], photos.parts[position]), position);
  }
  for (const [index, part] of [[1, 0], [0, 1], [3, 3], [3000, 0]]) assert.equal(photos.positionOf(index, part), -1);
});
