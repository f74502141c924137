import { drawFilm, drawPicture, UnshowableError } from "./drawThumbnail.js";
import { RecentMap } from "./RecentMap.js";
import { WorkQueue } from "./WorkQueue.js";

/** @typedef {import("../files/Showability.js").Showability} Showability */
/** @typedef {import("./drawThumbnail.js").Thumbnail} Thumbnail */
/** @typedef {import("./Entries.js").Entry} Entry */
/** @typedef {(thumbnail: Thumbnail | undefined) => void} Receiver */

const mostAtOnce = 3;
/** All thumbnails that are kept together take up no more memory than this. */
const mostBytes = 48 * 1024 * 1024;
const largestSide = 320;

/**
 * The number of pixels that a cell is drawn with.
 * @param {number} cell its width as laid out
 */
export function thumbnailSide(cell) {
  return Math.max(1, Math.min(largestSide, Math.round(cell * Math.min(window.devicePixelRatio || 1, 2))));
}

/** Makes the thumbnails of the cells in sight, a few at a time, and keeps those seen last. Known by their position. */
export class Thumbnails {
  /** @param {Showability} showability @param {(position: number) => number} farness how far from the eye a position is */
  constructor(showability, farness) {
    this.showability = showability;
    this.side = largestSide;
    /** @type {WorkQueue<number>} */
    this.queue_ = new WorkQueue(mostAtOnce, farness);
    /** @type {RecentMap<number, Thumbnail>} */
    this.kept_ = new RecentMap(mostBytes, ({ canvas }) => canvas.width * canvas.height * 4);
  }

  /** @param {number} side */
  setSide(side) {
    if (side !== this.side) this.clear();
    this.side = side;
  }

  clear() {
    this.queue_.clear();
    this.kept_.clear();
  }

  /**
   * Calls back once the thumbnail is there: at once if it was kept, with nothing if the browser cannot show the file, and not
   * at all if it was dropped before or takes too long.
   * @param {number} position
   * @param {Entry} entry
   * @param {Receiver} onDone
   */
  ask(position, entry, onDone) {
    const kept = this.kept_.get(position);
    if (kept) onDone(kept);
    else this.queue_.add(position, (signal) => this.draw_(position, entry, signal, onDone));
  }

  /** @param {number} position */
  drop(position) {
    this.queue_.drop(position);
  }

  /** @param {number} position @param {Entry} entry @param {AbortSignal} signal @param {Receiver} onDone */
  async draw_(position, { address, look }, signal, onDone) {
    if (address === undefined) return;
    try {
      const thumbnail = await (look === "video" ? drawFilm : drawPicture)(address, this.side, signal);
      if (signal.aborted || !thumbnail) return;
      this.kept_.set(position, thumbnail);
      onDone(thumbnail);
    } catch (error) {
      if (!(error instanceof UnshowableError)) throw error;
      this.showability.giveUp(address);
      if (!signal.aborted) onDone(undefined);
    }
  }
}
