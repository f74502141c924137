// Which messages are printed.

/**
 * The messages of a stretch of time in their order, by index. Those without a date belong to the whole conversation alone.
 * @param {Float64Array} times
 * @param {number} start
 * @param {number} end the first moment behind the stretch
 */
export function indicesWithin(times, start, end) {
  const indices = new Int32Array(countWithin(times, start, end));
  let place = 0;
  for (let index = 0; index < times.length; index++) {
    if (times[index] >= start && times[index] < end) indices[place++] = index;
  }
  return indices;
}

/**
 * How many these are.
 * @param {Float64Array} times
 * @param {number} start
 * @param {number} end
 */
export function countWithin(times, start, end) {
  let count = 0;
  for (const time of times) {
    if (time >= start && time < end) count += 1;
  }
  return count;
}

/** @param {number} count */
export function allIndices(count) {
  return Int32Array.from({ length: count }, (_, index) => index);
}

/**
 * The earliest and the latest of some moments; NaN where there is none.
 * @param {Float64Array} times
 * @param {Int32Array} indices
 */
export function extentOf(times, indices) {
  let first = NaN;
  let last = NaN;
  for (const index of indices) {
    const time = times[index];
    if (!(first <= time) && time === time) first = time;
    if (!(last >= time) && time === time) last = time;
  }
  return { first, last };
}
