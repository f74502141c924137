import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { albumAddress, attachmentKind, extensionOf, fittedSize, mimeTypeOf } from "../../../resources/Web/app/files/albumFiles.js";
import { attachmentOf } from "../../../resources/Web/app/records/records.js";

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
    [{}, "document"],
  ];
  for (const [raw, kind] of kinds) {
    test(`${JSON.stringify(raw)} is of the kind ${kind}`, () => assert.equal(attachmentKind(attachmentOf(raw)), kind));
  }

  test("of an unknown kind has no type", () => assert.equal(mimeTypeOf(attachmentOf({ displayName: "a.toString" })), ""));

  test("without a display name is named by the source's path", () => {
    assert.equal(attachmentOf({ displayName: "", originalFilename: "~/x/IMG_1.jpg" }).name, "IMG_1.jpg");
  });

  const extensions = { "a.tar.gz": "gz", ".hidden": "", "folder.d/file": "", "A.JPG": "jpg", "a.": "", "": "", "a.thirteenletters": "" };
  for (const [name, extension] of Object.entries(extensions)) {
    test(`${JSON.stringify(name)} has the extension ${JSON.stringify(extension)}`, () => assert.equal(extensionOf(name), extension));
  }
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
