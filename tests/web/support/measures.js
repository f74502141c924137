// What tests of reckoning share.

/**
 * A small generator of its own, so that each run tries the same numbers: whole ones below a limit.
 * @param {number} seed
 */
export function makeRandom(seed) {
  let state = seed;
  return (/** @type {number} */ limit) => {
    state = (state * 1103515245 + 12345) % 2147483648;
    return state % limit;
  };
}

/** How many milliseconds `work` takes. @param {() => void} work */
export function timeTaken(work) {
  const start = process.hrtime.bigint();
  work();
  return Number(process.hrtime.bigint() - start) / 1e6;
}

/** All blanks alike: which one stands before "AM" is the affair of the locale data's version. @param {string} text */
export function plainBlanks(text) {
  return text.replace(/\s/gu, " ");
}

/** A long array, its items written short in a message about a failure. @param {unknown} value */
export function shown(value) {
  const text = JSON.stringify(value) ?? String(value);
  return text.length > 60 ? `${text.slice(0, 60)}…` : text;
}
