import assert from "node:assert/strict";
import { createHash, webcrypto } from "node:crypto";
import test from "node:test";
import { hashWorkerSource, makeFileHasher } from "../../../resources/Web/app/check/hashFiles.js";
import { makeSha256 } from "../../../resources/Web/app/check/sha256.js";
import { makeRandom } from "../support/measures.js";

/** @param {Uint8Array} bytes */
function digestOf(bytes) {
  const hash = makeSha256();
  hash.update(bytes);
  return hash.digest();
}

/** @param {Uint8Array} bytes */
function rightDigestOf(bytes) {
  return createHash("sha256").update(bytes).digest("hex");
}

/** @param {number} size */
function someBytes(size) {
  const random = makeRandom(size + 1);
  return Uint8Array.from({ length: size }, () => random(256));
}

// FIPS 180-4 and its published examples.
const examples = [
  ["", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"],
  ["abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"],
  ["abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
    "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"],
];
for (const [text, digest] of examples) {
  test(`the digest of "${text}" is the published one`, () => {
    assert.equal(digestOf(new TextEncoder().encode(text)), digest);
  });
}

test("a million letters a have the published digest", () => {
  assert.equal(digestOf(new Uint8Array(1_000_000).fill(0x61)), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
});

test("every length round the ends of a block has the right digest", () => {
  for (let size = 0; size < 260; size++) assert.equal(digestOf(someBytes(size)), rightDigestOf(someBytes(size)), `${size} bytes`);
});

test("how a content is cut into pieces changes nothing", () => {
  const bytes = someBytes(5000);
  const random = makeRandom(7);
  for (let round = 0; round < 50; round++) {
    const hash = makeSha256();
    for (let start = 0; start < bytes.length;) {
      const end = Math.min(bytes.length, start + random(200));
      hash.update(bytes.subarray(start, end));
      start = end;
    }
    assert.equal(hash.digest(), rightDigestOf(bytes));
  }
});

test("after a digest the reckoning begins anew", () => {
  const hash = makeSha256();
  hash.update(someBytes(100));
  hash.digest();
  hash.update(someBytes(70));
  assert.equal(hash.digest(), rightDigestOf(someBytes(70)));
});

test("more than 512 MB have a length of more than 32 bits", () => {
  const piece = new Uint8Array(8 * 1024 * 1024).fill(0x5a);
  const [own, right] = [makeSha256(), createHash("sha256")];
  for (let count = 0; count < 65; count++) {
    own.update(piece);
    right.update(piece);
  }
  assert.equal(own.digest(), right.digest("hex"));
});

test("the worker's text needs nothing of what stands around it", async () => {
  /** @type {unknown[]} */
  const told = [];
  const scope = { onmessage: (/** @type {unknown} */ event) => void event };
  const source = hashWorkerSource(makeSha256).replace("onmessage =", "scope.onmessage =");
  const finished = new Promise((resolve) => {
    const post = (/** @type {unknown} */ report) => (report === null ? resolve(undefined) : told.push(report));
    new Function("scope", "postMessage", source)(scope, post);
  });
  scope.onmessage({ data: [{ number: 3, size: 3, file: new Blob(["abc"]) }, { number: 4, size: 0, file: new Blob([]) }] });
  await finished;
  assert.deepEqual(told, [
    { number: 3, byteCount: 3 }, { number: 3, byteSize: 3, digest: examples[1][1] },
    { number: 4, byteCount: 0 }, { number: 4, byteSize: 0, digest: examples[0][1] },
  ]);
});

const MiB = 1024 * 1024;
/** The browser's own SHA-256; none, as in a worker that has none; and one that refuses. */
const subtles = /** @type {[string, any][]} */ ([
  ["with the browser's digest", webcrypto.subtle], ["without one", undefined],
  ["where the browser's digest refuses", { digest: () => Promise.reject(new Error("no")) }]]);

for (const [circumstance, subtle] of subtles) {
  /**
   * What is told of each file: its size and digest.
   * @param {readonly any[]} files
   * @param {(place: number) => number} [sizeOf] what the list says of its size
   */
  const toldOf = async (files, sizeOf = (place) => files[place].size) => {
    /** @type {[number, string | null][]} */
    const told = [];
    let byteCount = 0;
    const hashAll = makeFileHasher(makeSha256, (report) => {
      if ("digest" in report) told[report.number] = [report.byteSize, report.digest];
      else byteCount += report.byteCount;
    }, subtle);
    await hashAll(files.map((file, number) => ({ number, file, size: sizeOf(number) })));
    assert.equal(byteCount, told.reduce((sum, [size]) => sum + size, 0));
    return told;
  };
  const abc = [3, examples[1][1]];
  const sizes = [2 * MiB - 1, 2 * MiB, 2 * MiB + 1, 7_000_001, 0, 1, 16 * MiB - 1, 16 * MiB, 16 * MiB + 1, 0, 0,
    ...Array.from({ length: 100 }, (_, place) => place * 37), 262_143, 262_144, 262_145, 5, 262_144, 262_144, 3];
  const contents = sizes.map((size) => Buffer.alloc(size, size % 251));
  const blobs = contents.map((content) => new Blob([content]));
  const right = contents.map((content) => [content.length, rightDigestOf(content)]);

  test(`files of all sizes are hashed whole ${circumstance}`, async () => {
    assert.deepEqual(await toldOf(blobs), right);
  });

  test(`files are hashed whole whatever size they should have ${circumstance}`, async () => {
    assert.deepEqual(await toldOf(blobs, () => 0), right);
    assert.deepEqual(await toldOf(blobs, (place) => (place % 7) + 1), right);
    assert.deepEqual(await toldOf(blobs, (place) => sizes[(place * 13) % sizes.length]), right);
  });

  test(`a file that cannot be read has no digest, and the ones behind it have theirs ${circumstance}`, async () => {
    const refuse = () => Promise.reject(new Error("gone"));
    const broken = { size: 50_000_000, arrayBuffer: refuse, slice: () => ({ arrayBuffer: refuse }) };
    const small = { ...broken, size: 30 };
    assert.deepEqual(await toldOf([new Blob(["abc"]), broken, new Blob(["abc"]), small, new Blob(["abc"])]),
      [abc, [50_000_000, null], abc, [30, null], abc]);
  });

  test(`a file that became shorter while it was read has no digest ${circumstance}`, async () => {
    const shorter = { size: 10, arrayBuffer: () => new Blob(["abc"]).arrayBuffer() };
    const large = { size: 17 * MiB, slice: () => new Blob(["abc"]) };
    assert.deepEqual(await toldOf([shorter, new Blob(["abc"]), large, shorter]), [[10, null], abc, [17 * MiB, null], [10, null]]);
  });
}
