// SHA-256 (FIPS 180-4), fed piece by piece.

/**
 * @typedef {object} Sha256
 * @property {(bytes: Uint8Array) => void} update
 * @property {() => string} digest 64 lower-case hexadecimal digits; the reckoning begins anew
 */

/**
 * A function that needs nothing outside itself: a worker is made of its source text.
 * @returns {Sha256}
 */
export function makeSha256() {
  // The first 32 bits of the fractions of the cube roots of the first 64 primes.
  const constants = new Int32Array([
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
  ]);
  const blockSize = 64;
  const schedule = new Int32Array(64);
  const state = new Int32Array(8);
  const pending = new Uint8Array(blockSize);
  let pendingSize = 0;
  let totalSize = 0;

  function begin() {
    state.set([0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19]);
    pendingSize = 0;
    totalSize = 0;
  }

  /** @param {Uint8Array} bytes @param {number} start */
  function fillSchedule(bytes, start) {
    const words = schedule;
    for (let word = 0, place = start; word < 16; word++, place += 4) {
      words[word] = (bytes[place] << 24) | (bytes[place + 1] << 16) | (bytes[place + 2] << 8) | bytes[place + 3];
    }
    for (let word = 16; word < 64; word++) {
      const early = words[word - 15];
      const late = words[word - 2];
      const earlySum = ((early >>> 7) | (early << 25)) ^ ((early >>> 18) | (early << 14)) ^ (early >>> 3);
      const lateSum = ((late >>> 17) | (late << 15)) ^ ((late >>> 19) | (late << 13)) ^ (late >>> 10);
      words[word] = (words[word - 16] + earlySum + words[word - 7] + lateSum) | 0;
    }
  }

  /**
   * The blocks of 64 bytes from `start` to `end`, in plain steps of 32 bits that compilers know how to make fast.
   * @param {Uint8Array} bytes
   * @param {number} start
   * @param {number} end
   */
  function compress(bytes, start, end) {
    const [words, addends, sums] = [schedule, constants, state];
    let a = sums[0], b = sums[1], c = sums[2], d = sums[3];
    let e = sums[4], f = sums[5], g = sums[6], h = sums[7];
    for (let block = start; block < end; block += blockSize) {
      fillSchedule(bytes, block);
      for (let round = 0; round < 64; round++) {
        const eSum = ((e >>> 6) | (e << 26)) ^ ((e >>> 11) | (e << 21)) ^ ((e >>> 25) | (e << 7));
        const first = (h + eSum + (g ^ (e & (f ^ g))) + addends[round] + words[round]) | 0;
        const aSum = ((a >>> 2) | (a << 30)) ^ ((a >>> 13) | (a << 19)) ^ ((a >>> 22) | (a << 10));
        const second = aSum + ((a & b) | (c & (a | b)));
        h = g;
        g = f;
        f = e;
        e = (d + first) | 0;
        d = c;
        c = b;
        b = a;
        a = (first + second) | 0;
      }
      a = sums[0] = (sums[0] + a) | 0;
      b = sums[1] = (sums[1] + b) | 0;
      c = sums[2] = (sums[2] + c) | 0;
      d = sums[3] = (sums[3] + d) | 0;
      e = sums[4] = (sums[4] + e) | 0;
      f = sums[5] = (sums[5] + f) | 0;
      g = sums[6] = (sums[6] + g) | 0;
      h = sums[7] = (sums[7] + h) | 0;
    }
  }

  /** @param {Uint8Array} bytes */
  function update(bytes) {
    totalSize += bytes.length;
    let start = 0;
    if (pendingSize > 0) {
      start = Math.min(blockSize - pendingSize, bytes.length);
      pending.set(bytes.subarray(0, start), pendingSize);
      pendingSize += start;
      if (pendingSize < blockSize) return;
      compress(pending, 0, blockSize);
    }
    const end = bytes.length - ((bytes.length - start) % blockSize);
    compress(bytes, start, end);
    pending.set(bytes.subarray(end));
    pendingSize = bytes.length - end;
  }

  function digest() {
    // A set bit, zeros, and the length in bits as 64 bits fill up the last one or two blocks.
    const last = new Uint8Array(pendingSize < 56 ? blockSize : 2 * blockSize);
    last.set(pending.subarray(0, pendingSize));
    last[pendingSize] = 0x80;
    const ends = new DataView(last.buffer, last.length - 8);
    ends.setUint32(0, Math.floor(totalSize / 0x20000000));
    ends.setUint32(4, (totalSize * 8) >>> 0);
    compress(last, 0, last.length);
    const text = Array.from(state, (word) => (word >>> 0).toString(16).padStart(8, "0")).join("");
    begin();
    return text;
  }

  begin();
  return { update, digest };
}
