// The part of the check that runs beside the page, in a worker.

/** @typedef {import("./sha256.js").Sha256} Sha256 */
/**
 * A file to hash, the number it is known by, and the size it should have; 0 where nothing tells.
 * @typedef {{ number: number, file: Blob, size: number }} HashTask
 */
/**
 * What is told of a file: so many bytes more were read, or its size and digest. The digest is null where the file could not be
 * read to its end.
 * @typedef {{ number: number, byteCount: number } | { number: number, byteSize: number, digest: string | null }} HashReport
 */
/**
 * What is read at once: a file, or a part of a large one.
 * @typedef {{ number: number, size: number, isFirst: boolean, isLast: boolean, bytes: Promise<Uint8Array | null> }} Piece
 */

/**
 * Hashes files one after another, with a few pieces read ahead. It needs nothing outside itself: a worker is made of its source
 * text.
 * @param {() => Sha256} makeSha256
 * @param {(report: HashReport) => void} report
 * @param {SubtleCrypto | undefined} subtle the browser's own SHA-256, which is several times faster but takes only whole files
 * @returns {(tasks: readonly HashTask[]) => Promise<void>}
 */
export function makeFileHasher(makeSha256, report, subtle) {
  const pieceSize = 2 * 1024 * 1024;
  const largestWhole = subtle ? 16 * 1024 * 1024 : pieceSize;
  const largestSmall = 256 * 1024;
  const mostTogether = 32;
  const mostPiecesAhead = 2 * mostTogether;
  const mostBytesAhead = 3 * pieceSize;
  const hash = makeSha256();

  /**
   * The files in their order, those that should be small in groups.
   * @param {readonly HashTask[]} tasks
   */
  function* groupsOf(tasks) {
    /** @type {HashTask[]} */
    let group = [];
    let groupSize = 0;
    for (const task of tasks) {
      const isSmall = task.size > 0 && task.size <= largestSmall;
      if (group.length > 0 && (!isSmall || group.length === mostTogether || groupSize + task.size > pieceSize)) {
        yield group;
        group = [];
        groupSize = 0;
      }
      group.push(task);
      groupSize += isSmall ? task.size : pieceSize;
    }
    if (group.length > 0) yield group;
  }

  /**
   * The pieces of all files in their order; an empty file has one as well.
   * @param {readonly HashTask[]} tasks
   */
  function* piecesOf(tasks) {
    for (const group of groupsOf(tasks)) {
      const together = group.length > 1 ? new Blob(group.map(({ file }) => file)) : null;
      // A browser asks the disk for the size of a file; it has done so at once for all in a group. A file that is gone has none.
      const files = group.map(({ number, file }) => ({ number, file, size: file.size }));
      if (together && files.every(({ size }, place) => size === group[place].size)) yield* piecesOfSmall(together, files);
      else for (const file of files) yield* piecesOfOne(file);
    }
  }

  /**
   * One read for many small files saves most of what a browser spends on each. Where it fails, each file is read by itself, so
   * that only those which cannot be read are lost.
   * @param {Blob} together
   * @param {readonly { number: number, file: Blob, size: number }[]} files
   * @returns {Generator<Piece>}
   */
  function* piecesOfSmall(together, files) {
    const whole = read(together, files.reduce((sum, { size }) => sum + size, 0));
    let end = 0;
    for (const { number, file, size } of files) {
      const start = end;
      end += size;
      const bytes = whole.then((all) => (all ? all.subarray(start, start + size) : read(file, size)));
      yield { number, size, isFirst: true, isLast: true, bytes };
    }
  }

  /** @param {{ number: number, file: Blob, size: number }} file @returns {Generator<Piece>} */
  function* piecesOfOne({ number, file, size: whole }) {
    const most = whole > largestWhole ? pieceSize : whole;
    for (let start = 0; ; start += pieceSize) {
      const size = Math.min(most, whole - start);
      const piece = size === whole ? file : file.slice(start, start + size);
      const isLast = start + size === whole;
      yield { number, size, isFirst: start === 0, isLast, bytes: read(piece, size) };
      if (isLast) return;
    }
  }

  /**
   * The bytes; null where they cannot be read, or are fewer than there were.
   * @param {Blob} blob
   * @param {number} size
   */
  async function read(blob, size) {
    try {
      const buffer = await blob.arrayBuffer();
      return buffer.byteLength === size ? new Uint8Array(buffer) : null;
    } catch (_) {
      return null;
    }
  }

  /** @param {Uint8Array} bytes of a whole file */
  async function digestOf(bytes) {
    try {
      if (subtle) {
        const digest = new Uint8Array(await subtle.digest("SHA-256", bytes));
        return Array.from(digest, (byte) => byte.toString(16).padStart(2, "0")).join("");
      }
    } catch (_) {
      // What the browser refuses is reckoned here.
    }
    hash.update(bytes);
    return hash.digest();
  }

  return async function hashAll(tasks) {
    const pieces = piecesOf(tasks);
    /** @type {Piece[]} */
    const ahead = [];
    let bytesAhead = 0;
    let byteSize = 0;
    let isReadable = true;
    for (;;) {
      while (ahead.length < mostPiecesAhead && bytesAhead < mostBytesAhead) {
        const { value, done } = pieces.next();
        if (done || !value) break;
        ahead.push(value);
        bytesAhead += value.size;
      }
      const piece = ahead.shift();
      if (!piece) return;
      const { number, size, isFirst, isLast } = piece;
      bytesAhead -= size;
      const bytes = await piece.bytes;
      if (isFirst) [byteSize, isReadable] = [0, true];
      byteSize += size;
      isReadable = isReadable && bytes !== null;
      const isWhole = isFirst && isLast;
      if (bytes && isReadable && !isWhole) hash.update(bytes);
      report({ number, byteCount: size });
      if (!isLast) continue;
      const digest = isWhole && bytes ? await digestOf(bytes) : hash.digest();
      report({ number, byteSize, digest: isReadable ? digest : null });
    }
  };
}

/**
 * The source text of a worker that takes lists of tasks, tells what becomes of each, and asks for more by `null`. What fails there
 * is an error of the worker.
 */
export function hashWorkerSource(/** @type {() => Sha256} */ makeSha256) {
  return `"use strict";
const subtle = typeof crypto === "undefined" ? undefined : crypto.subtle;
const hashAll = (${makeFileHasher})(${makeSha256}, (report) => postMessage(report), subtle);
const fail = (error) => setTimeout(() => {
  throw error;
});
onmessage = (event) => hashAll(event.data).then(() => postMessage(null), fail);
`;
}
