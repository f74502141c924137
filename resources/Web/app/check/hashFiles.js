// The part of the check that runs beside the page, in a worker.

/** @typedef {import("./sha256.js").Sha256} Sha256 */
/**
 * A file to hash, and the number it is known by.
 * @typedef {{ number: number, file: Blob }} HashTask
 */
/**
 * What is told of a file: so many bytes more were read, or its digest, which is null where it could not be read to its end.
 * @typedef {{ number: number, byteCount: number } | { number: number, digest: string | null }} HashReport
 */

/**
 * Hashes files one after another, with a few pieces read ahead. It needs nothing outside itself: a worker is made of its source
 * text.
 * @param {() => Sha256} makeSha256
 * @param {(report: HashReport) => void} report
 * @returns {(tasks: readonly HashTask[]) => Promise<void>}
 */
export function makeFileHasher(makeSha256, report) {
  const pieceSize = 2 * 1024 * 1024;
  const mostPiecesAhead = 8;
  const mostBytesAhead = 3 * pieceSize;
  const hash = makeSha256();

  /**
   * The pieces of all files in their order; an empty file has one as well.
   * @param {readonly HashTask[]} tasks
   */
  function* piecesOf(tasks) {
    for (const { number, file } of tasks) {
      // Browsers ask the disk anew each time that they are asked for a size.
      const whole = file.size;
      for (let start = 0; start === 0 || start < whole; start += pieceSize) {
        const size = Math.min(pieceSize, whole - start);
        const piece = size === whole ? file : file.slice(start, start + size);
        yield { number, size, isLast: start + size === whole, bytes: read(piece, size) };
      }
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

  return async function hashAll(tasks) {
    const pieces = piecesOf(tasks);
    const ahead = [];
    let bytesAhead = 0;
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
      bytesAhead -= piece.size;
      const bytes = await piece.bytes;
      isReadable = isReadable && bytes !== null;
      if (bytes && isReadable) hash.update(bytes);
      report({ number: piece.number, byteCount: piece.size });
      if (!piece.isLast) continue;
      const digest = hash.digest();
      report({ number: piece.number, digest: isReadable ? digest : null });
      isReadable = true;
    }
  };
}

/** The source text of a worker that takes lists of tasks, tells what becomes of each, and asks for more by `null`. */
export function hashWorkerSource(/** @type {() => Sha256} */ makeSha256) {
  return `"use strict";
const hashAll = (${makeFileHasher})(${makeSha256}, (report) => postMessage(report));
onmessage = (event) => hashAll(event.data).then(() => postMessage(null));
`;
}
