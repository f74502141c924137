/** The rows that stand in the page: a run of all there are, each built when it enters and dropped when it leaves. */
export class ShownRows {
  /**
   * @param {HTMLElement} element that holds them
   * @param {(index: number) => HTMLElement} buildRow
   * @param {(rows: readonly Element[]) => void} onResize
   */
  constructor(element, buildRow, onResize) {
    this.element = element;
    this.buildRow_ = buildRow;
    /**
     * Called before a row leaves the page.
     * @type {(row: HTMLElement) => void}
     */
    this.onLeave = () => {};
    /** @type {HTMLElement[]} */
    this.rows_ = [];
    this.first_ = 0;
    this.resizes_ = new ResizeObserver((entries) => onResize(entries.map(({ target }) => target)));
  }

  /** The index of the first. */
  get first() {
    return this.first_;
  }

  /**
   * In their order.
   * @returns {readonly HTMLElement[]}
   */
  get all() {
    return this.rows_;
  }

  /**
   * The row of an index, where it stands in the page.
   * @param {number} index
   * @returns {HTMLElement | undefined}
   */
  at(index) {
    return this.rows_[index - this.first_];
  }

  /**
   * Shows the rows from `first` to `end`; those of them that are there already stay.
   * @param {number} first
   * @param {number} end
   */
  show(first, end) {
    const shownEnd = this.first_ + this.rows_.length;
    if (first >= shownEnd || end <= this.first_) {
      this.forget_(this.rows_);
      this.rows_ = this.build_(first, end);
      this.element.replaceChildren(...this.rows_);
    } else {
      this.forget_(this.rows_.splice(Math.max(0, end - this.first_)));
      this.forget_(this.rows_.splice(0, Math.max(0, first - this.first_)));
      const before = this.build_(first, this.first_);
      const behind = this.build_(shownEnd, end);
      this.element.prepend(...before);
      this.element.append(...behind);
      this.rows_ = [...before, ...this.rows_, ...behind];
    }
    this.first_ = first;
  }

  /** Drops all of them. */
  clear() {
    this.forget_(this.rows_.splice(0));
  }

  /** @param {number} first @param {number} end @returns {HTMLElement[]} */
  build_(first, end) {
    const made = [];
    for (let index = first; index < end; index++) {
      const row = this.buildRow_(index);
      this.resizes_.observe(row, { box: "border-box" });
      made.push(row);
    }
    return made;
  }

  /** @param {readonly HTMLElement[]} rows */
  forget_(rows) {
    for (const row of rows) {
      // The list itself takes the focus of a row that leaves, so that the keyboard goes on from here.
      if (row.contains(document.activeElement)) this.element.focus({ preventScroll: true });
      this.resizes_.unobserve(row);
      this.onLeave(row);
      row.remove();
    }
  }
}
