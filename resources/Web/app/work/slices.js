// Long work in slices, between which the page answers.

/** So many milliseconds a slice should take: a key press or a frame waits no longer. */
const sliceTime = 10;
const firstStep = 256;

/**
 * Resolves when the browser has had its turn.
 * @returns {Promise<void>}
 */
export function yieldTurn() {
  return new Promise((resolve) => {
    const { port1, port2 } = new MessageChannel();
    port1.onmessage = () => {
      port1.close();
      resolve();
    };
    port2.postMessage(undefined);
  });
}

/**
 * Calls `work` for consecutive ranges that together are 0 to `count`, and resolves whether it came to the end; an aborted
 * signal stops it between two ranges. What `work` throws rejects.
 * @param {number} count
 * @param {(first: number, end: number) => void} work
 * @param {AbortSignal} [signal]
 * @returns {Promise<boolean>}
 */
export async function inSlices(count, work, signal) {
  let step = firstStep;
  let sliceEnd = performance.now() + sliceTime;
  for (let first = 0; first < count;) {
    const end = Math.min(count, first + step);
    const start = performance.now();
    work(first, end);
    const now = performance.now();
    // Steps are a quarter of a slice, so that one that turns out slower than the last does not take several.
    step = Math.max(1, Math.min(65_536, Math.round((step * sliceTime) / 4 / Math.max(now - start, 0.05)), step * 4));
    first = end;
    if (now >= sliceEnd) {
      await yieldTurn();
      if (signal?.aborted) return false;
      sliceEnd = performance.now() + sliceTime;
    }
  }
  return !signal?.aborted;
}
