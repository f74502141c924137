import assert from "node:assert/strict";
import { createHash } from "node:crypto";
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
  scope.onmessage({ data: [{ number: 3, file: new Blob(["abc"]) }, { number: 4, file: new Blob([]) }] });
  await finished;
  assert.deepEqual(told, [
    { number: 3, byteCount: 3 }, { number: 3, digest: examples[1][1] },
    { number: 4, byteCount: 0 }, { number: 4, digest: examples[0][1] },
  ]);
});

/** @param {readonly any[]} files */
async function digestsOf(files) {
  /** @type {Map<number, string | null>} */
  const digests = new Map();
  const hashAll = makeFileHasher(makeSha256, (report) => {
    if ("digest" in report) digests.set(report.number, report.digest);
  });
  await hashAll(files.map((file, number) => ({ number, file })));
  return Array.from(digests.values());
}

test("files larger than a piece are hashed whole", async () => {
  const sizes = [2 * 1024 * 1024 - 1, 2 * 1024 * 1024, 2 * 1024 * 1024 + 1, 7_000_001, 0, 1];
  const contents = sizes.map((size) => Buffer.alloc(size, size % 251));
  assert.deepEqual(await digestsOf(contents.map((content) => new Blob([content]))), contents.map(rightDigestOf));
});

test("a file that cannot be read has no digest, and the ones behind it have theirs", async () => {
  const broken = { size: 5_000_000, slice: () => ({ arrayBuffer: () => Promise.reject(new Error("gone")) }) };
  assert.deepEqual(await digestsOf([new Blob(["abc"]), broken, new Blob(["abc"])]), [examples[1][1], null, examples[1][1]]);
});

test("a file that became shorter while it was read has no digest", async () => {
  const shorter = { size: 10, slice: () => new Blob(["abc"]) };
  assert.deepEqual(await digestsOf([shorter]), [null]);
});
