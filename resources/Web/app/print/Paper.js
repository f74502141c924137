import { element, isolated } from "../page/elements.js";
import { inSlices } from "../work/slices.js";
import { PaperRows } from "./PaperRows.js";
import { extentOf } from "./printRange.js";
import { waitForPictures } from "./waitForPictures.js";

/** @typedef {import("../page/Album.js").Album} Album */

/** The part of the page that stands on paper and never on the screen. */
export class Paper {
  /** @param {Album} album @param {(index: number) => HTMLElement} buildRow */
  constructor(album, buildRow) {
    this.album = album;
    this.paperRows_ = new PaperRows(album, buildRow);
    /** @type {HTMLElement | undefined} */
    this.element_ = undefined;
  }

  get isPrepared() {
    return this.element_ !== undefined;
  }

  /**
   * Writes the messages, a slice at a time, and resolves whether it came to the end, with its pictures; else nothing of them is
   * left.
   * @param {Int32Array} indices
   * @param {boolean} hasPictures
   * @param {(done: number) => void} onProgress
   * @param {AbortSignal} signal
   */
  async prepare(indices, hasPictures, onProgress, signal) {
    const rows = this.begin_(indices);
    const paper = this.element_;
    const isWhole = await inSlices(indices.length, (first, end) => {
      this.addRows_(rows, indices, first, end, hasPictures);
      onProgress(end);
    }, signal);
    if (isWhole) await waitForPictures(rows, signal);
    if (signal.aborted && this.element_ === paper) this.clear();
    return !signal.aborted;
  }

  /**
   * Writes all the messages at once, as the browser asks for paper without asking the page first.
   * @param {Int32Array} indices
   */
  prepareAtOnce(indices) {
    this.addRows_(this.begin_(indices), indices, 0, indices.length, true);
  }

  /**
   * Says why there is nothing else on the paper.
   * @param {string} text
   */
  prepareNotice(text) {
    this.begin_(new Int32Array(0)).append(element("p", "paper-facts", text));
  }

  clear() {
    document.documentElement.classList.remove("is-on-paper");
    // Pictures that still wait to be read would otherwise be read for nothing.
    this.element_?.querySelectorAll("img").forEach((image) => image.removeAttribute("src"));
    this.element_?.remove();
    this.element_ = undefined;
  }

  /** @param {Int32Array} indices @returns {HTMLElement} where the rows belong */
  begin_(indices) {
    this.clear();
    const paper = element("section", "paper");
    const rows = element("div", this.album.conversation.isGroup ? "paper-rows is-group" : "paper-rows");
    paper.append(this.head_(indices), rows);
    this.element_ = paper;
    document.body.append(paper);
    document.documentElement.classList.add("is-on-paper");
    return rows;
  }

  /** @param {HTMLElement} rows @param {Int32Array} indices @param {number} first @param {number} end @param {boolean} hasPictures */
  addRows_(rows, indices, first, end, hasPictures) {
    for (let place = first; place < end; place++) {
      const isFirst = place === 0 || indices[place - 1] !== indices[place] - 1;
      rows.append(this.paperRows_.build(indices[place], isFirst, hasPictures));
    }
  }

  /**
   * Title, people, dates and count.
   * @param {Int32Array} indices
   */
  head_(indices) {
    const { conversation, formats, people, speech, timeline } = this.album;
    const head = element("header", "paper-head");
    const title = element("h1", "paper-title");
    title.append(isolated(conversation.title));
    head.append(title);
    const others = conversation.participants.filter((participant) => !participant.isMe);
    const names = element("p", "paper-facts");
    const parts = speech.lists.formatToParts(others.map((participant) => people.nameOf(participant)));
    // One by one: a call takes only so many arguments, and there may be more people than that.
    for (const { type, value } of parts) names.append(type === "element" ? isolated(value) : value);
    head.append(names);
    if (indices.length === 0) return head;
    const { first, last } = extentOf(timeline.times, indices);
    if (!Number.isNaN(first)) {
      const [one, other] = [formats.date(first), formats.date(last)];
      head.append(element("p", "paper-facts", one === other ? one : speech.say("dateRange", { first: one, last: other })));
    }
    head.append(element("p", "paper-facts", [speech.sayCount("messageCount", indices.length), formats.zoneName].join(" · ")));
    return head;
  }
}
