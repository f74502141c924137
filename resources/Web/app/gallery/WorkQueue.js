/**
 * Works of which a few run at a time. Which of the waiting ones is next is asked anew each time: the eye may have moved on.
 * @template Key
 */
export class WorkQueue {
  /** @param {number} mostAtOnce @param {(key: Key) => number} farness the smallest is next; among equals the one added first */
  constructor(mostAtOnce, farness) {
    this.mostAtOnce = mostAtOnce;
    this.farness = farness;
    /** @type {Map<Key, (signal: AbortSignal) => Promise<void>>} */
    this.waiting_ = new Map();
    /** @type {Map<Key, AbortController>} */
    this.running_ = new Map();
    this.isPlanned_ = false;
  }

  /** @param {Key} key @param {(signal: AbortSignal) => Promise<void>} work may reject: its failure is its own affair */
  add(key, work) {
    this.drop(key);
    this.waiting_.set(key, work);
    this.startSoon_();
  }

  /**
   * Forgets a work that waits, and stops one that runs.
   * @param {Key} key
   */
  drop(key) {
    this.waiting_.delete(key);
    const running = this.running_.get(key);
    if (!running) return;
    this.running_.delete(key);
    running.abort();
    this.startSoon_();
  }

  clear() {
    this.waiting_.clear();
    for (const key of Array.from(this.running_.keys())) this.drop(key);
  }

  /** What is added in one go is there as a whole before the first is chosen. */
  startSoon_() {
    if (this.isPlanned_) return;
    this.isPlanned_ = true;
    void Promise.resolve().then(() => {
      this.isPlanned_ = false;
      while (this.running_.size < this.mostAtOnce && this.waiting_.size > 0) this.startNext_();
    });
  }

  startNext_() {
    const keys = Array.from(this.waiting_.keys());
    const nearest = keys.reduce((one, other) => (this.farness(other) < this.farness(one) ? other : one));
    const work = this.waiting_.get(nearest);
    this.waiting_.delete(nearest);
    if (work) void this.run_(nearest, work);
  }

  /** @param {Key} key @param {(signal: AbortSignal) => Promise<void>} work */
  async run_(key, work) {
    const controller = new AbortController();
    this.running_.set(key, controller);
    try {
      await work(controller.signal);
    } catch {
      // The next one is not held up.
    }
    if (this.running_.get(key) !== controller) return;
    this.running_.delete(key);
    this.startSoon_();
  }
}
