// How tall each row is, estimated until it has been measured, and where each row lies. Pixels without a page.

/** Sums of heights in a Fenwick tree: each question and each change takes steps in proportion to the logarithm of the count. */
export class HeightMap {
  /** @param {Float32Array} heights a first estimate of each row; the map keeps and changes it */
  constructor(heights) {
    const count = heights.length;
    this.count = count;
    this.heights = heights;
    this.sums = new Float64Array(count + 1);
    for (let index = 0; index < count; index++) this.sums[index + 1] = heights[index];
    for (let node = 1; node <= count; node++) {
      const parent = node + (node & -node);
      if (parent <= count) this.sums[parent] += this.sums[node];
    }
    this.firstStep = 2 ** Math.floor(Math.log2(Math.max(count, 1)));
  }

  get total() {
    return this.offsetOf(this.count);
  }

  /**
   * Returns whether that changed anything worth moving for.
   * @param {number} index
   * @param {number} height
   */
  setHeight(index, height) {
    const rounded = Math.fround(height);
    const change = rounded - this.heights[index];
    if (Math.abs(change) < 0.01) return false;
    this.heights[index] = rounded;
    for (let node = index + 1; node <= this.count; node += node & -node) this.sums[node] += change;
    return true;
  }

  /**
   * The height of all rows before `index`, which may be the count.
   * @param {number} index
   */
  offsetOf(index) {
    let offset = 0;
    for (let node = index; node > 0; node -= node & -node) offset += this.sums[node];
    return offset;
  }

  /**
   * The row at an offset; before the first row the first, behind the last the last.
   * @param {number} offset
   */
  indexAt(offset) {
    let node = 0;
    let rest = offset;
    for (let step = this.firstStep; step >= 1; step /= 2) {
      if (node + step <= this.count && this.sums[node + step] <= rest) {
        node += step;
        rest -= this.sums[node];
      }
    }
    return Math.max(0, Math.min(node, this.count - 1));
  }
}
