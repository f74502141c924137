import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { namesOf, originOf, typeToTell } from "../../../resources/Web/app/files/absence.js";
import { albumAddress, attachmentKind, extensionOf, fittedSize, lastPartOf, mimeTypeOf } from "../../../resources/Web/app/files/albumFiles.js";
import { attachmentOf } from "../../../resources/Web/app/records/records.js";
import { timeTaken } from "../support/measures.js";

describe("albumAddress", () => {
  const cases = [
    ["attachments/a/b.jpg", "attachments/a/b.jpg"],
    ["attachments/a b#1?%.jpg", "attachments/a%20b%231%3F%25.jpg"],
    ["attachments/ä\u2028.jpg", "attachments/%C3%A4%E2%80%A8.jpg"],
    ["attachments/javascript:x.jpg", "attachments/javascript%3Ax.jpg"],
    ["attachments/..\\x", "attachments/..%5Cx"],
    ["attachments/...", "attachments/..."],
    ["attachments/%2e%2e/a", "attachments/%252e%252e/a"],
    ["attachments/../manifest.json", undefined],
    ["attachments/a/../../b", undefined],
    ["attachments/..", undefined],
    ["attachments/./a", undefined],
    ["attachments//a", undefined],
    ["attachments/", undefined],
    ["attachments", undefined],
    ["attachmentsX/a", undefined],
    ["assets/avatars/a.png", undefined],
    ["/attachments/a", undefined],
    ["https://example.org/attachments/a", undefined],
    ["attachments/\uD800.jpg", undefined],
    ["attachments/a\0.jpg", undefined],
    ["", undefined],
    [undefined, undefined],
  ];
  for (const [text, address] of cases) {
    test(`of ${JSON.stringify(text)}`, () => assert.equal(albumAddress(text, "attachments"), address));
  }
});

describe("a file", () => {
  const kinds = [
    [{ mimeType: "image/heic", displayName: "a" }, "image"],
    [{ mimeType: "IMAGE/PNG", displayName: "a.mov" }, "image"],
    [{ displayName: "a.MOV" }, "video"],
    [{ displayName: "a", archivePath: "attachments/Audio.caf" }, "audio"],
    [{ displayName: "a.pdf" }, "document"],
    [{ displayName: "a" }, "document"],
    [{ displayName: "a", uniformType: "public.HEIC" }, "image"],
    [{ displayName: "a", uniformType: "com.apple.quicktime-movie", archivePath: "attachments/a" }, "video"],
    [{ displayName: "a", uniformType: "com.apple.coreaudio-format" }, "audio"],
    [{ displayName: "a", uniformType: "constructor" }, "document"],
    [{ mimeType: "text/plain", uniformType: "public.png", displayName: "a" }, "document"],
    [{ displayName: "" }, "document"],
    [{ displayName: "constructor.constructor" }, "document"],
    [{ mimeType: "text/html", displayName: "a.jpg" }, "document"],
    [{ mimeType: "application/octet-stream", displayName: "a.png" }, "image"],
    [{ mimeType: "Application/Octet-Stream; charset=binary", displayName: "a.mov" }, "video"],
    [{ mimeType: "binary/octet-stream", displayName: "a", uniformType: "public.png" }, "image"],
    [{ mimeType: " ", displayName: "a.wav" }, "audio"],
    [{ mimeType: "application/octet-stream", displayName: "a.bin" }, "document"],
    [{ mimeType: "application/octet-streams", displayName: "a.png" }, "document"],
    [{ displayName: "Attachment", originalFilename: "~/x/IMG_1.HEIC" }, "image"],
    [{ displayName: "a.pdf", originalFilename: "~/x/IMG_1.HEIC" }, "document"],
    [{}, "document"],
  ];
  for (const [raw, kind] of kinds) {
    test(`${JSON.stringify(raw)} is of the kind ${kind}`, () => assert.equal(attachmentKind(attachmentOf(raw)), kind));
  }

  test("of an unknown kind has no type", () => assert.equal(mimeTypeOf(attachmentOf({ displayName: "a.toString" })), ""));

  test("of a generic type alone keeps it", () => {
    assert.equal(mimeTypeOf(attachmentOf({ mimeType: "binary/octet-stream", displayName: "a" })), "binary/octet-stream");
  });

  test("without a display name is named by the source's path", () => {
    assert.equal(attachmentOf({ displayName: "", originalFilename: "~/x/IMG_1.jpg" }).name, "IMG_1.jpg");
  });

  const extensions = { "a.tar.gz": "gz", ".hidden": "", "folder.d/file": "", "A.JPG": "jpg", "a.": "", "": "", "a.thirteenletters": "",
    "..jpg": "", "a..jpg": "jpg", "a/.jpg": "", "Notes 1. final": "", "a.jpg/": "" };
  for (const [name, extension] of Object.entries(extensions)) {
    test(`${JSON.stringify(name)} has the extension ${JSON.stringify(extension)}`, () => assert.equal(extensionOf(name), extension));
  }
});

test("the extension of a megabyte without a full stop is soon told", () => {
  assert.ok(timeTaken(() => assert.equal(extensionOf("W".repeat(1e6)), "")) < 1000);
});

for (const [path, last] of [["~/a/b.zip", "b.zip"], ["b.zip", "b.zip"], ["~/a/Slides.key/", "Slides.key"], ["a//", "a"], ["/", ""], ["", ""]]) {
  test(`the last part of ${JSON.stringify(path)}`, () => assert.equal(lastPartOf(path), last));
}

describe("what the album does not hold", () => {
  const old = "~/Library/Messages/0f/contract.zip";
  const names = [
    [{ displayName: "IMG_1.jpg", originalFilename: old }, ["IMG_1.jpg"]],
    [{ displayName: "Attachment", originalFilename: old }, ["contract.zip", "Attachment"]],
    [{ displayName: "contract", originalFilename: old }, ["contract.zip"]],
    [{ displayName: "con", originalFilename: old }, ["contract.zip", "con"]],
    [{ displayName: " ", originalFilename: old }, ["contract.zip"]],
    [{ originalFilename: `${old}/` }, ["contract.zip"]],
    [{ displayName: "Attachment", originalFilename: "~/x/noending" }, ["Attachment"]],
    [{ displayName: "Attachment" }, ["Attachment"]],
    [{}, []],
  ];
  for (const [raw, expected] of names) {
    test(`${JSON.stringify(raw)} goes by ${JSON.stringify(expected)}`, () => assert.deepEqual(namesOf(attachmentOf(raw)), expected));
  }

  const types = [
    [{ displayName: "a.zip", mimeType: "application/zip" }, "application/zip"],
    [{ displayName: "a.txt", mimeType: "text/plain; charset=utf-8" }, "text/plain"],
    [{ displayName: "a", mimeType: "image/heic" }, "image/heic"],
    [{ displayName: "a.heic", mimeType: "image/heic" }, ""],
    [{ displayName: "a", uniformType: "com.apple.keynote.key" }, "com.apple.keynote.key"],
    [{ displayName: "a", mimeType: "application/octet-stream", uniformType: "public.zip-archive" }, "public.zip-archive"],
    [{ displayName: "a", mimeType: "application/octet-stream", uniformType: "public.data" }, ""],
    [{ displayName: "a", uniformType: "dyn.ah62d4rv4ge81e5pe" }, ""],
    [{ displayName: "a", mimeType: "a/\u202Eb", uniformType: "<b>.c" }, ""],
    [{ displayName: "a", mimeType: `a/${"b".repeat(5000)}`, uniformType: "a.".repeat(5000) }, ""],
    [{}, ""],
  ];
  for (const [raw, type] of types) {
    test(`${JSON.stringify(raw).slice(0, 90)} is told to be of type ${JSON.stringify(type)}`, () =>
      assert.equal(typeToTell(attachmentOf(raw)), type));
  }

  test("says where it lay and of what types it was", () => {
    const raw = { displayName: "a", originalFilename: old, mimeType: "application/zip", uniformType: "public.zip-archive" };
    assert.equal(originOf(attachmentOf(raw)), `${old}\napplication/zip\npublic.zip-archive`);
    assert.equal(originOf(attachmentOf({ displayName: "a" })), "");
  });
});

describe("fittedSize", () => {
  const cases = [
    [[640, 480], [352, 264]], [[100, 50], [100, 50]], [[352, 416], [352, 416]], [[416, 832], [208, 416]],
    [[1, 100_000], [1, 416]], [[100_000, 1], [352, 1]], [[0, 0], [1, 1]],
  ];
  for (const [[width, height], [fittedWidth, fittedHeight]] of cases) {
    test(`of ${width} × ${height}`, () =>
      assert.deepEqual(fittedSize(width, height), { width: fittedWidth, height: fittedHeight }));
  }
});
