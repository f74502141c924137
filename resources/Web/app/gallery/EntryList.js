import { element } from "../page/elements.js";
import { HeightMap } from "../timeline/HeightMap.js";
import { RowScroller } from "./RowScroller.js";

/** @typedef {import("./PlaceList.js").PlaceList} PlaceList */

/** What a row is taken for until it has been measured. */
const likelyHeight = 88;

/** A long list of rows, each made when it comes near the window. */
export class EntryList {
  /**
   * @param {string} label
   * @param {(message: number, part: number, changed: () => void) => Node[]} build the content of a row; it calls `changed` to
   *   be built anew
   */
  constructor(label, build) {
    this.build_ = build;
    this.element = element("div", "shelf");
    this.list_ = element("div", "entry-list");
    this.list_.setAttribute("role", "list");
    this.list_.setAttribute("aria-label", label);
    this.element.append(this.list_);
    /** @type {PlaceList | undefined} */
    this.places_ = undefined;
    /** @type {{ index: number, above: number } | "end"} */
    this.left_ = "end";
    this.scroller_ = new RowScroller(this.element, this.list_, {
      build: (index) => this.row_(index), forget: (_, row) => letGo(row) });
    new ResizeObserver(() => {
      if (this.places_ && this.element.clientHeight > 0) this.scroller_.refresh();
    }).observe(this.element);
  }

  /**
   * The panel stands in the page and is in sight.
   * @param {PlaceList} places
   */
  show(places) {
    this.places_ = places;
    this.scroller_.show(new HeightMap(new Float32Array(places.count).fill(likelyHeight)), this.left_);
  }

  /** Lets go of everything but the place. */
  hide() {
    if (!this.places_) return;
    this.left_ = this.scroller_.isAtEnd ? "end" : this.scroller_.place;
    this.scroller_.clear();
    this.places_ = undefined;
  }

  /** @param {number} index */
  row_(index) {
    const row = element("div", "entry");
    row.setAttribute("role", "listitem");
    row.setAttribute("aria-posinset", String(index + 1));
    row.setAttribute("aria-setsize", String(this.places_?.count ?? 0));
    this.fill_(row, index);
    return row;
  }

  /** @param {HTMLElement} row @param {number} index */
  fill_(row, index) {
    const places = this.places_;
    if (!places) return;
    row.replaceChildren(...this.build_(places.messages[index], places.parts[index], () => {
      if (!row.isConnected) return;
      letGo(row);
      this.fill_(row, index);
      this.scroller_.refresh();
    }));
  }
}

/**
 * A browser holds only so many players ready.
 * @param {HTMLElement} row
 */
function letGo(row) {
  for (const player of Array.from(row.querySelectorAll("audio"))) {
    player.removeAttribute("src");
    player.load();
  }
}
