import assert from "node:assert/strict";
import test from "node:test";
import { BelongingFiles } from "../../../resources/Web/app/check/BelongingFiles.js";
import { isListable, readManifest } from "../../../resources/Web/app/check/manifest.js";
import { matchFiles } from "../../../resources/Web/app/check/matchFiles.js";
import { verdictOf } from "../../../resources/Web/app/check/verdict.js";
import { Conversation } from "../../../resources/Web/app/records/Conversation.js";
import { attachment, conversation, mark, message, mia } from "../support/album.js";
import { shown } from "../support/measures.js";

const digest = "0123456789abcdef".repeat(4);
const listed = { path: "index.html", byteSize: 5, sha256: digest };

/** @param {{ [key: string]: unknown }} [fields] */
function manifestText(fields = {}) {
  return JSON.stringify({
    schemaVersion: 1, conversationTitle: "Lake", sourceChatID: "7", generatedAt: "2026-11-15T19:48:57Z", sourceMessageCount: 9,
    availableMessageCount: 3, messageCount: 3, attachmentRecordCount: 5, copiedAttachmentCount: 3, missingAttachmentCount: 2,
    warnings: [], files: [listed], ...fields,
  });
}

test("a right manifest is read with its counts and files", () => {
  assert.deepEqual(readManifest(manifestText()), {
    title: "Lake", conversationID: "7", generatedAt: Date.UTC(2026, 10, 15, 19, 48, 57), messageCount: 3, availableMessageCount: 3,
    attachmentCount: 5, copiedCount: 3, missingCount: 2, files: [listed],
  });
});

test("an unknown key and a null for no value do no harm", () => {
  assert.ok(readManifest(manifestText({ future: null, files: [{ ...listed, more: [1] }] })));
});

for (const text of ["", "   ", "null", "[]", "{}", "7", "\"text\"", "{", manifestText().slice(0, -1), "[".repeat(200_000)]) {
  test(`a file that holds ${shown(text)} is no manifest`, () => assert.equal(readManifest(text), undefined));
}

for (const field of Object.keys(JSON.parse(manifestText()))) {
  for (const value of [undefined, null, {}, "x"]) {
    if (typeof value === "string" && /^(conversationTitle|sourceChatID)$/.test(field)) continue;
    test(`a manifest whose ${field} is ${shown(value)} is none`, () => {
      assert.equal(readManifest(manifestText({ [field]: value })), undefined);
    });
  }
}

const wrongFields = [{ schemaVersion: 2 }, { messageCount: -1 }, { messageCount: 1.5 }, { copiedAttachmentCount: 1e300 },
  { generatedAt: "yesterday" }];
for (const fields of wrongFields) {
  test(`a manifest with ${shown(fields)} is none`, () => assert.equal(readManifest(manifestText(fields)), undefined));
}

const wrongFiles = [
  ["no files", []],
  ["a file twice", [listed, { ...listed }]],
  ["an entry that is no object", [listed, null]],
  ["a path that is no text", [{ ...listed, path: 7 }]],
  ["no size", [{ path: "index.html", sha256: digest }]],
  ["a size below zero", [{ ...listed, byteSize: -1 }]],
  ["a digest in upper case", [{ ...listed, sha256: digest.toUpperCase() }]],
  ["a short digest", [{ ...listed, sha256: digest.slice(1) }]],
  ["a digest with a line feed behind it", [{ ...listed, sha256: `${digest}\n` }]],
];
for (const [name, files] of wrongFiles) {
  test(`a manifest with ${name} is none`, () => assert.equal(readManifest(manifestText({ files })), undefined));
}

const outside = ["", "/etc/passwd", "../index.html", "a/../../b", "..", ".", "./a", "a//b", "a/", "\\\\server\\share", "C:\\a", "c:/a",
  "a\\..\\..\\b", "a\0b"];
for (const path of outside) {
  test(`a manifest that lists the path ${shown(path)} is none`, () => {
    assert.equal(readManifest(manifestText({ files: [listed, { ...listed, path }] })), undefined);
  });
}

for (const path of ["attachments/a..b.png", "attachments/ä 50% #1?.png", "attachments/a\\b.png", "attachments/...png", "__proto__"]) {
  test(`the name ${shown(path)} is one like others`, () => {
    assert.equal(readManifest(manifestText({ files: [{ ...listed, path }] }))?.files[0].path, path);
  });
}

for (const path of [".DS_Store", "attachments/.hidden", ".folder/file", "manifest.json", "attachments/manifest.json"]) {
  test(`${path} belongs to no list`, () => assert.equal(isListable(path), false));
}
for (const path of ["index.html", "attachments/a.b", "my-manifest.json", "manifest.json.txt"]) {
  test(`${path} belongs to the list`, () => assert.equal(isListable(path), true));
}

/** @param {string[]} paths */
const files = (...paths) => paths.map((path) => ({ path }));
const composed = "attachments/\u00e9.png";
const apart = "attachments/e\u0301.png";

test("files are paired by their names, whatever their order", () => {
  const { pairs, missing, unexpected } = matchFiles(files("a", "b", "c"), files("d", "c", "a"));
  assert.deepEqual(pairs.map((pair) => [pair.listed.path, pair.present.path]), [["a", "a"], ["c", "c"]]);
  assert.deepEqual([missing, unexpected], [files("b"), files("d")]);
});

for (const [one, other] of [[composed, apart], [apart, composed]]) {
  test(`a name comes back with its accents ${other === apart ? "taken apart" : "put together"}`, () => {
    assert.deepEqual(matchFiles(files(one), files(other)), {
      pairs: [{ listed: { path: one }, present: { path: other } }], missing: [], unexpected: [],
    });
  });
}

test("names that differ in their accents' form alone are two files", () => {
  assert.deepEqual(matchFiles(files(composed, apart), files(apart, composed)).pairs.length, 2);
  assert.deepEqual(matchFiles(files(composed, apart), files(apart)).missing, files(composed));
});

test("names that differ in case are not the same", () => {
  const { missing, unexpected } = matchFiles(files("a.png"), files("A.png"));
  assert.deepEqual([missing, unexpected], [files("a.png"), files("A.png")]);
});

const nothing = { checkedCount: 3, missing: [], changed: [], unreadable: [], unexpected: [], unlisted: [], countsAgree: true };
const verdicts = [
  ["all files as they were", {}, "valid"],
  ["an unexpected file", { unexpected: ["a"] }, "valid"],
  ["a missing file", { missing: ["a"] }, "incomplete"],
  ["a changed file", { changed: ["a"] }, "damaged"],
  ["an unreadable file", { unreadable: ["a"] }, "damaged"],
  ["a missing and a changed file", { missing: ["a"], changed: ["b"] }, "damaged"],
  ["a file that should be listed", { unlisted: ["a"] }, "damaged"],
  ["counts that do not agree", { countsAgree: false }, "damaged"],
  ["no file at all", { checkedCount: 0 }, "damaged"],
];
for (const [name, fields, verdict] of verdicts) {
  test(`${name}: ${verdict}`, () => assert.equal(verdictOf({ ...nothing, .../** @type {object} */ (fields) }), verdict));
}

const record = conversation([
  message(1, mia, mark, undefined, { attachments: [attachment(1, "a.png"), attachment(2, "b.mov", "missing")] }),
  message(3, mia, mark, undefined, { attachments: [attachment(3, "c.txt", "available", { archivePath: "attachments/../../c.txt" }),
    attachment(4, "manifest.json"), attachment(5, "d.jpg", "unreadable")] }),
  message(5, mia, "x"),
]);

/** @param {{ [key: string]: unknown }} [fields] */
function belonging(fields = {}) {
  const made = new BelongingFiles(new Conversation(record));
  made.add(0, 1);
  made.add(1, 3);
  const manifest = readManifest(manifestText(fields));
  assert.ok(manifest);
  return { unlisted: made.unlisted(manifest).sort(), agrees: made.agreesWith(manifest) };
}

test("files that the page knows and the manifest does not list are named, and no other", () => {
  assert.deepEqual(belonging().unlisted, ["Open Album.html", "assets/app.js", "assets/avatars/broken.jpg",
    "assets/avatars/participant--15550142.png", "assets/styles.css", "attachments/a.png", "data/messages.js"]);
});

test("attachments of the manifest's own name are vouched for by the conversation, and so are the digests of all", () => {
  const made = new BelongingFiles(new Conversation(record));
  made.add(0, 3);
  const digest = "0".repeat(64);
  assert.deepEqual(made.unlistable(), [{ path: "attachments/manifest.json", byteSize: 0, sha256: digest }]);
  const vouched = [["attachments/a.png", digest], ["attachments/a.png", "1".repeat(64)], ["data/messages.js", "1".repeat(64)]];
  assert.deepEqual(vouched.map(([path, sha256]) => made.vouchesFor({ path, byteSize: 1, sha256 })), [true, false, true]);
});

test("counts that agree with the conversation are told from others", () => {
  assert.equal(belonging().agrees, true);
  for (const name of ["messageCount", "availableMessageCount", "attachmentRecordCount", "copiedAttachmentCount",
    "missingAttachmentCount"]) assert.equal(belonging({ [name]: 8 }).agrees, false, name);
});
