import { hashWorkerSource, makeFileHasher } from "./hashFiles.js";
import { makeSha256 } from "./sha256.js";

/** @typedef {import("./hashFiles.js").HashReport} HashReport */
/** @typedef {import("./hashFiles.js").HashTask} HashTask */

/** More workers than this would only wait for the disk. */
const mostWorkers = 4;
/** What a worker is given at once, so that it need not wait after each of many small files. */
const mostTasks = 64;
const mostBytes = 32 * 1024 * 1024;

/**
 * Lines of work, each in a worker of its own. A worker of a page on a disk can only be made of a text, and where a browser
 * refuses even that the page does the work itself, more slowly.
 */
export class HashPool {
  /** @param {readonly HashTask[]} tasks @param {(report: HashReport) => void} onReport */
  constructor(tasks, onReport) {
    this.tasks_ = tasks;
    this.onReport_ = onReport;
    this.next_ = 0;
    /** @type {Set<number>} The files whose digest is known, or known not to be. */
    this.told_ = new Set();
    /** @type {Set<Worker>} */
    this.workers_ = new Set();
    this.isStopped_ = false;
    this.address_ = "";
  }

  /**
   * Resolves when all are hashed, or when it was stopped.
   * @param {AbortSignal} signal
   */
  async run(signal) {
    const count = Math.max(1, Math.min(mostWorkers, navigator.hardwareConcurrency || 2, this.tasks_.length));
    this.address_ = URL.createObjectURL(new Blob([hashWorkerSource(makeSha256)], { type: "text/javascript" }));
    const stopped = new Promise((resolve) => signal.addEventListener("abort", () => {
      this.isStopped_ = true;
      resolve(undefined);
    }));
    try {
      await Promise.race([stopped, Promise.all(Array.from({ length: count }, () => this.line_()))]);
    } finally {
      this.workers_.forEach((worker) => worker.terminate());
      URL.revokeObjectURL(this.address_);
    }
  }

  async line_() {
    let hashAll = this.workerHasher_();
    const ownHasher = makeFileHasher(makeSha256, (report) => this.report_(report), window.crypto?.subtle);
    for (let tasks = this.take_(); tasks.length > 0 && !this.isStopped_; tasks = this.take_()) {
      if (await hashAll(tasks)) continue;
      hashAll = (again) => ownHasher(again).then(() => true);
      await hashAll(tasks.filter(({ number }) => !this.told_.has(number)));
    }
  }

  /**
   * Hashes in a worker, and resolves whether that could be done.
   * @returns {(tasks: readonly HashTask[]) => Promise<boolean>}
   */
  workerHasher_() {
    const worker = this.makeWorker_();
    if (!worker) return () => Promise.resolve(false);
    return (tasks) => new Promise((resolve) => {
      worker.onmessage = ({ data }) => (data === null ? resolve(true) : this.report_(data));
      const giveUp = (/** @type {Event} */ event) => {
        event.preventDefault();
        worker.terminate();
        resolve(false);
      };
      worker.onerror = giveUp;
      worker.onmessageerror = giveUp;
      worker.postMessage(tasks);
    });
  }

  makeWorker_() {
    try {
      const worker = new Worker(this.address_);
      this.workers_.add(worker);
      return worker;
    } catch {
      return undefined;
    }
  }

  /** @param {HashReport} report */
  report_(report) {
    if ("digest" in report) this.told_.add(report.number);
    if (!this.isStopped_) this.onReport_(report);
  }

  take_() {
    const first = this.next_;
    let bytes = 0;
    while (this.next_ < this.tasks_.length && this.next_ - first < mostTasks && bytes < mostBytes) {
      bytes += this.tasks_[this.next_].size;
      this.next_ += 1;
    }
    return this.tasks_.slice(first, this.next_);
  }
}
