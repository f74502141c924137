import { element } from "../page/elements.js";
import { filterOf, kindNames } from "./conditions.js";
import { rangesOf } from "./fold.js";
import { HitList } from "./HitList.js";
import { parseQuery } from "./query.js";
import { ResultList } from "./ResultList.js";
import { SearchHead } from "./SearchHead.js";
import { SearchHelp } from "./SearchHelp.js";
import { SearchIndex } from "./SearchIndex.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./conditions.js").Filter} Filter */

/** Screen readers hear the count when the reader has stopped typing for so long. */
const announceDelay = 700;
/** A search that takes longer says so. */
const patience = 150;

/** Finds messages by their words and by what else is known of them, and leads from one to the next. */
export class SearchPanel {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
    /** @type {(isOpen: boolean) => void} */
    this.onToggle = () => {};
    /**
     * The message from which the first step starts.
     * @type {() => number}
     */
    this.indexInSight = () => 0;
    this.isOpen = false;
    this.index_ = new SearchIndex(album.conversation);
    this.hits_ = new HitList();
    this.place_ = -1;
    /** @type {string[]} */
    this.terms_ = [];
    this.search_ = new AbortController();
    this.isSearching_ = false;
    /**
     * A step that was asked for before anything was found.
     * @type {0 | 1 | -1}
     */
    this.pendingStep_ = 0;
    /** @type {number | undefined} */
    this.announceTimer_ = undefined;
    /** @type {Element | null} */
    this.opener_ = null;
    this.head_ = new SearchHead(album.speech);
    this.list_ = new ResultList(album, (text) => this.highlight(text));
    this.help_ = new SearchHelp(album, (text) => this.head_.setText(text));
    this.note_ = element("p", "search-note");
    this.live_ = element("p", "visually-hidden");
    this.live_.setAttribute("role", "status");
    this.body_ = element("div", "search-body");
    this.body_.id = "search-body";
    this.body_.append(this.help_.element, this.note_, this.list_.element);
    this.element = element("aside", "search");
    this.element.hidden = true;
    this.element.setAttribute("aria-label", album.speech.say("find"));
    this.element.append(this.head_.element, this.body_, this.live_);
    this.connect_();
  }

  connect_() {
    this.head_.onInput = () => this.find_();
    this.head_.onClose = () => this.close();
    this.head_.onStep = (direction) => this.step(direction);
    this.head_.onToggleList = () => this.showList_(!this.element.classList.contains("is-list-shown"));
    this.head_.onDown = () => {
      this.showList_(true);
      if (this.hits_.count > 0) this.list_.element.focus();
    };
    this.list_.onLeave = () => this.head_.field.focus();
    this.list_.onSelect = (place) => this.goTo_(place);
    this.list_.onChoose = (place) => this.choose_(place);
    this.element.addEventListener("keydown", (event) => {
      if (event.key !== "Escape" || event.isComposing) return;
      event.preventDefault();
      this.close();
    });
    document.addEventListener("keydown", (event) => this.onKey_(event));
  }

  /** Shows the panel with the words of the last time, ready to be written over. */
  open() {
    if (!this.isOpen) {
      this.opener_ = document.activeElement;
      this.isOpen = true;
      this.element.hidden = false;
      this.onToggle(true);
      this.showList_(true);
      this.help_.fill();
      void this.index_.make();
      this.find_();
    }
    this.head_.field.focus();
    this.head_.field.select();
  }

  /** Hides the panel and its marks, and gives the focus back. */
  close() {
    if (!this.isOpen) return;
    this.search_.abort();
    window.clearTimeout(this.announceTimer_);
    const hadFocus = this.element.contains(document.activeElement);
    this.isOpen = false;
    this.element.hidden = true;
    this.live_.textContent = "";
    this.onToggle(false);
    if (this.terms_.length > 0) this.album.refresh();
    if (hadFocus) this.giveFocusBack_();
  }

  /** Where another row stands in the place of the one that had it, the list of messages takes it. */
  giveFocusBack_() {
    const feed = document.querySelector("[role=feed]");
    const target = this.opener_?.isConnected && this.opener_ !== document.body ? this.opener_ : feed;
    if (target instanceof HTMLElement) target.focus({ preventScroll: true });
  }

  /** @param {string} text @returns {[number, number][]} */
  highlight(text) {
    return this.isOpen ? rangesOf(text, this.terms_) : [];
  }

  /** Says dates anew and looks anew, as in another time zone. */
  update() {
    if (this.isOpen) this.find_();
  }

  /**
   * Goes to the next hit or the one before, from the last to the first as well.
   * @param {1 | -1} direction
   */
  step(direction) {
    const { count } = this.hits_;
    if (count === 0) {
      this.pendingStep_ = this.isSearching_ ? direction : 0;
      return;
    }
    this.showList_(false);
    if (this.place_ >= 0) this.goTo_((this.place_ + direction + count) % count);
    else {
      const place = this.hits_.placeAtOrAfter(this.indexInSight());
      this.goTo_((direction > 0 ? place : place - 1 + count) % count);
    }
  }

  /** @param {number} place */
  goTo_(place) {
    this.place_ = place;
    this.list_.select(place);
    this.showStatus_();
    this.album.peek(this.hits_.at(place));
    // In the list itself a screen reader says the row.
    if (document.activeElement === this.list_.element) return;
    this.say_([this.statusText_(), ...this.list_.wordsOf(place)].join(" "));
  }

  /** @param {number} place */
  choose_(place) {
    this.place_ = place;
    this.list_.select(place);
    this.showStatus_();
    this.showList_(false);
    this.album.show(this.hits_.at(place));
  }

  /**
   * In a narrow window the list lies over the conversation, until the reader goes to a hit.
   * @param {boolean} isShown
   */
  showList_(isShown) {
    this.element.classList.toggle("is-list-shown", isShown);
    this.head_.showList(isShown);
  }

  /** Begins to look for what stands in the field; an older search ends. */
  find_() {
    const query = parseQuery(this.head_.text);
    const filter = filterOf(query.conditions, this.album);
    this.begin_(query.terms);
    const isEmpty = query.terms.length + query.conditions.length === 0;
    this.help_.element.hidden = !isEmpty;
    if (filter.problem) {
      const kinds = this.album.speech.choices.format(kindNames);
      this.end_(this.album.speech.say(filter.problem.word, { value: filter.problem.value, kinds }));
    } else if (isEmpty) this.end_("");
    else void this.run_(filter);
  }

  /** @param {string[]} terms */
  begin_(terms) {
    this.search_.abort();
    this.search_ = new AbortController();
    window.clearTimeout(this.announceTimer_);
    const isOther = terms.join("\n") !== this.terms_.join("\n");
    this.hits_ = new HitList();
    this.place_ = -1;
    this.pendingStep_ = 0;
    this.isSearching_ = true;
    this.terms_ = terms;
    this.note_.textContent = "";
    this.showList_(true);
    this.list_.show(this.hits_, terms);
    this.showStatus_();
    if (isOther || terms.length > 0) this.album.refresh();
  }

  /** @param {Filter} filter */
  async run_({ accepts, stranger }) {
    const { signal } = this.search_;
    const { speech } = this.album;
    const wait = window.setTimeout(() => {
      if (!signal.aborted && this.hits_.count === 0) this.head_.show(speech.say("searching"), false);
    }, patience);
    const search = { terms: this.terms_, accepts };
    const isComplete = await this.index_.search(search, (indexes) => this.addHits_(indexes), signal);
    window.clearTimeout(wait);
    if (!isComplete) return;
    this.list_.refresh();
    if (this.place_ >= 0) this.list_.select(this.place_);
    if (this.hits_.count > 0) this.end_("");
    else this.end_(stranger === undefined ? speech.say("noHits") : speech.say("badPerson", { value: stranger }));
  }

  /** @param {readonly number[]} indexes */
  addHits_(indexes) {
    for (const index of indexes) this.hits_.add(index);
    this.list_.grow();
    this.showStatus_();
    if (this.pendingStep_ === 0) return;
    const direction = this.pendingStep_;
    this.pendingStep_ = 0;
    this.step(direction);
  }

  /**
   * Nothing more will be found.
   * @param {string} note in place of a list
   */
  end_(note) {
    this.isSearching_ = false;
    this.pendingStep_ = 0;
    this.note_.textContent = note;
    this.note_.hidden = note === "";
    this.list_.element.hidden = this.hits_.count === 0;
    this.showStatus_();
    const words = note || this.statusText_();
    this.announceTimer_ = window.setTimeout(() => this.say_(words), announceDelay);
  }

  statusText_() {
    const { speech } = this.album;
    const { count } = this.hits_;
    const { numbers } = speech;
    if (count === 0) return "";
    if (this.place_ < 0) return speech.sayCount("hitCount", count);
    return speech.say("hitPosition", { position: numbers.format(this.place_ + 1), count: numbers.format(count) });
  }

  showStatus_() {
    if (this.hits_.count > 0) {
      this.list_.element.hidden = false;
      this.note_.hidden = true;
    }
    this.head_.show(this.statusText_(), this.hits_.count > 0);
  }

  /** @param {string} words */
  say_(words) {
    window.clearTimeout(this.announceTimer_);
    this.live_.textContent = words;
  }

  /**
   * F3 and Ctrl+G, or the platform's like, step from anywhere on the page while the panel is open.
   * @param {KeyboardEvent} event
   */
  onKey_(event) {
    const isLetter = event.key.toLowerCase() === "g" && (event.ctrlKey || event.metaKey) && !event.altKey;
    if (!this.isOpen || (event.key !== "F3" && !isLetter) || document.querySelector("dialog[open]")) return;
    event.preventDefault();
    this.step(event.shiftKey ? -1 : 1);
  }
}
