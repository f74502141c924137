import { element, isolated } from "../page/elements.js";
import { marked } from "../message/marked.js";
import { ScrollScale } from "../timeline/ScrollScale.js";
import { HitList } from "./HitList.js";
import { searchedTexts } from "./SearchIndex.js";
import { snippetOf, textWithMost } from "./snippet.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Message} Message */

/** So many rows stand ready above and below those in sight. */
const spareRows = 4;
/** Until one was measured. */
const usualHeight = 80;

/** The messages that were found, however many: only those in sight are elements. All rows have one height. */
export class ResultList {
  /** @param {Album} album @param {(text: string) => readonly (readonly [number, number])[]} highlight */
  constructor(album, highlight) {
    this.album = album;
    this.highlight_ = highlight;
    /**
     * Called when the reader goes along the list.
     * @type {(place: number) => void}
     */
    this.onSelect = () => {};
    /**
     * Called when the reader has chosen.
     * @type {(place: number) => void}
     */
    this.onChoose = () => {};
    /** Called when the reader leaves the list upwards. */
    this.onLeave = () => {};
    this.hits_ = new HitList();
    /** @type {readonly string[]} */
    this.terms_ = [];
    this.selected_ = -1;
    this.rowHeight_ = usualHeight;
    /** @type {Map<number, HTMLElement>} */
    this.rows_ = new Map();
    this.track_ = element("div", "results-track");
    this.track_.setAttribute("role", "presentation");
    this.element = element("div", "results");
    this.element.id = "search-results";
    this.element.tabIndex = 0;
    this.element.setAttribute("role", "listbox");
    this.element.setAttribute("aria-label", album.speech.say("results"));
    this.element.append(this.track_);
    this.element.addEventListener("scroll", () => this.render_(), { passive: true });
    this.element.addEventListener("keydown", (event) => this.onKey_(event));
    this.element.addEventListener("focus", () => this.onFocus_());
    this.track_.addEventListener("click", (event) => this.onClick_(event));
    new ResizeObserver(() => this.refresh()).observe(this.element);
  }

  /**
   * Shows other hits from their first on.
   * @param {HitList} hits
   * @param {readonly string[]} terms
   */
  show(hits, terms) {
    this.hits_ = hits;
    this.terms_ = terms;
    this.selected_ = -1;
    this.element.removeAttribute("aria-activedescendant");
    this.element.scrollTop = 0;
    this.refresh();
  }

  /** There are more hits behind those that were there. */
  grow() {
    this.render_();
  }

  /** Makes the rows in sight anew. */
  refresh() {
    this.track_.replaceChildren();
    this.rows_.clear();
    this.render_();
  }

  /**
   * Marks a hit as the one where the reader is and brings it into sight.
   * @param {number} place
   */
  select(place) {
    this.selected_ = place;
    this.reveal_(place);
    for (const [index, row] of this.rows_) this.markRow_(row, index);
    this.element.setAttribute("aria-activedescendant", rowID(place));
  }

  get scale_() {
    return new ScrollScale(this.hits_.count * this.rowHeight_, this.element.clientHeight);
  }

  /** @param {number} place */
  reveal_(place) {
    const { clientHeight, scrollTop } = this.element;
    const scale = this.scale_;
    this.track_.style.height = `${scale.height}px`;
    const offset = scale.offsetAt(scrollTop);
    const top = place * this.rowHeight_;
    const bottom = top + this.rowHeight_;
    const isInSight = top >= offset && bottom <= offset + clientHeight;
    const above = Math.max(0, clientHeight - this.rowHeight_) / 2;
    if (!isInSight) this.element.scrollTop = scale.positionOf(Math.max(0, top - above));
    this.render_();
  }

  render_() {
    if (this.element.clientHeight === 0) return;
    const { clientHeight, scrollTop } = this.element;
    const scale = this.scale_;
    this.track_.style.height = `${scale.height}px`;
    const offset = scale.offsetAt(scrollTop);
    const first = Math.max(0, Math.floor(offset / this.rowHeight_) - spareRows);
    const end = Math.min(this.hits_.count, Math.ceil((offset + clientHeight) / this.rowHeight_) + spareRows);
    this.fill_(first, end);
    const shift = scrollTop - offset;
    for (const [place, row] of this.rows_) row.style.top = `${Math.round(place * this.rowHeight_ + shift)}px`;
    if (this.isOtherHeight_()) this.render_();
  }

  /** @param {number} first @param {number} end */
  fill_(first, end) {
    for (const [place, row] of Array.from(this.rows_)) {
      if (place >= first && place < end) continue;
      row.remove();
      this.rows_.delete(place);
    }
    for (let place = first; place < end; place++) {
      if (this.rows_.has(place)) continue;
      const row = this.buildRow_(place);
      this.rows_.set(place, row);
      this.track_.insertBefore(row, this.rows_.get(place + 1) ?? null);
    }
  }

  /** Zoom and text size decide how high a row is. */
  isOtherHeight_() {
    const [row] = this.rows_.values();
    const height = row ? row.offsetHeight : this.rowHeight_;
    if (height === this.rowHeight_ || height === 0) return false;
    this.rowHeight_ = height;
    return true;
  }

  /** @param {number} place */
  buildRow_(place) {
    const { conversation, formats, people, speech } = this.album;
    const index = this.hits_.at(place);
    const message = conversation.message(index);
    const row = element("div", "result");
    row.id = rowID(place);
    row.dataset.place = String(place);
    row.setAttribute("role", "option");
    row.setAttribute("aria-posinset", String(place + 1));
    this.markRow_(row, place);
    const head = element("p", "result-head");
    const name = people.senderName(message.senderID, message.isFromMe);
    const isDated = !Number.isNaN(message.time);
    const date = isDated ? formats.shortDay(message.time) : message.date || speech.say("unknownDate");
    head.append(isolated(name, "result-sender"), element("span", "result-date", date));
    const words = element("p", "result-words");
    words.dir = "auto";
    const snippet = this.snippet_(message, index);
    words.append(...marked(snippet, this.highlight_(snippet)));
    row.append(head, words);
    return row;
  }

  /**
   * What a message is known by in the list, and said by.
   * @param {Message} message
   * @param {number} index
   */
  snippet_(message, index) {
    const texts = searchedTexts(this.album.conversation.rawMessages[index]).filter((text) => /[^\s\uFFFC]/u.test(text));
    const snippet = snippetOf(textWithMost(texts, this.terms_), this.terms_);
    return snippet || this.album.speech.say(wordForNothing(message));
  }

  /**
   * A hit in words.
   * @param {number} place
   */
  wordsOf(place) {
    const { conversation, formats, people, speech } = this.album;
    const index = this.hits_.at(place);
    const message = conversation.message(index);
    const name = people.senderName(message.senderID, message.isFromMe);
    const date = Number.isNaN(message.time) ? message.date || speech.say("unknownDate") : formats.moment(message.time);
    return [speech.say("sentBy", { name, date }), this.snippet_(message, index)];
  }

  /** @param {HTMLElement} row @param {number} place */
  markRow_(row, place) {
    row.setAttribute("aria-setsize", String(this.hits_.count));
    row.setAttribute("aria-selected", String(place === this.selected_));
  }

  /** @param {MouseEvent} event */
  onClick_(event) {
    const row = event.target instanceof Element ? event.target.closest(".result") : null;
    if (row instanceof HTMLElement) this.onChoose(Number(row.dataset.place));
  }

  onFocus_() {
    if (this.hits_.count === 0 || this.selected_ >= 0) return;
    // The first that stands in sight whole: were the list moved now, a press of the pointer would meet another row.
    const first = Math.ceil(this.scale_.offsetAt(this.element.scrollTop) / this.rowHeight_);
    this.select(Math.min(first, this.hits_.count - 1));
  }

  /** @param {KeyboardEvent} event */
  onKey_(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || this.hits_.count === 0) return;
    const page = Math.max(1, Math.floor(this.element.clientHeight / this.rowHeight_) - 1);
    const steps = new Map([["ArrowDown", 1], ["ArrowUp", -1], ["PageDown", page], ["PageUp", -page],
      ["Home", -Infinity], ["End", Infinity]]);
    const step = steps.get(event.key);
    if (step !== undefined) {
      if (event.key === "ArrowUp" && this.selected_ <= 0) this.onLeave();
      else this.onSelect(Math.max(0, Math.min(this.hits_.count - 1, this.selected_ + step)));
    } else if (event.key === "Enter" || event.key === " ") this.onChoose(Math.max(0, this.selected_));
    else return;
    event.preventDefault();
  }
}

/** @param {number} place */
function rowID(place) {
  return `search-result-${place}`;
}

/**
 * @param {Message} message
 * @returns {import("../words/Speech.js").WordKey}
 */
function wordForNothing(message) {
  if (message.attachments.length > 0) return "attachment";
  if (message.payloadState === "partiallyDecoded") return "partialMessage";
  if (message.payloadState === "unsupported") return "unsupportedMessage";
  return message.retractedAt === undefined ? "emptyMessage" : "unsentMessage";
}
