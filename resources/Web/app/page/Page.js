import { AboutPanel } from "../about/AboutPanel.js";
import { CheckPanel } from "../check/CheckPanel.js";
import { Showability } from "../files/Showability.js";
import { Gallery } from "../gallery/Gallery.js";
import { DatePanel } from "../jump/DatePanel.js";
import { Rail } from "../jump/Rail.js";
import { MessageView } from "../message/MessageView.js";
import { People } from "../people/People.js";
import { PrintPanel } from "../print/PrintPanel.js";
import { Conversation } from "../records/Conversation.js";
import { ReplyTargets } from "../records/ReplyTargets.js";
import { SearchPanel } from "../search/SearchPanel.js";
import { Calendar } from "../timeline/Calendar.js";
import { HeightEstimate } from "../timeline/HeightEstimate.js";
import { Timeline } from "../timeline/Timeline.js";
import { TimelineIndex } from "../timeline/TimelineIndex.js";
import { inSlices } from "../work/slices.js";
import { Formats } from "../words/Formats.js";
import { Speech } from "../words/Speech.js";
import { Bar } from "./Bar.js";
import { copyText } from "./clipboard.js";
import { Cover } from "./Cover.js";
import { closeDialogs } from "./dialogs.js";
import { element } from "./elements.js";
import { linkTo, Places } from "./Places.js";
import { Settings } from "./Settings.js";
import { Toast } from "./Toast.js";
import { WayBack } from "./WayBack.js";

/** @typedef {import("./Album.js").Album} Album */
/** @typedef {import("./Bar.js").Choice} Choice */
/** @typedef {import("./Settings.js").Appearance} Appearance */
/** @typedef {import("../timeline/VirtualList.js").Place} Place */
/** @typedef {import("../words/Formats.js").Zone} Zone */

/**
 * The page as a whole: reads the conversation, makes the parts, and leads the reader from one to another.
 * @implements {Album}
 */
export class Page {
  /** @param {unknown} data */
  constructor(data) {
    this.conversation = new Conversation(data);
    this.settings_ = new Settings(this.conversation.guid || this.conversation.id);
    this.speech = new Speech(document.documentElement.lang);
    this.people = new People(this.conversation, this.speech);
    this.showability = new Showability();
    this.formats = new Formats(this.speech.tag, this.settings_.zone);
    this.calendar = new Calendar(this.settings_.zone);
    this.timeline = new TimelineIndex(this.conversation, this.calendar);
    this.replies_ = new ReplyTargets(this.conversation);
    this.main_ = /** @type {HTMLElement} */ (document.getElementById("conversation"));
    /** Ends a reckoning of heights that a newer one makes needless. */
    this.reckoning_ = new AbortController();
    /** The same for the division into days. */
    this.zoning_ = new AbortController();
    this.showAppearance_();
    this.track_ = new Timeline(this, new MessageView(this, this.replies_), (index) => this.copyLink_(index));
    this.places_ = new Places(this.conversation, this.settings_, () => this.track_.list?.place);
    this.wayBack_ = new WayBack(this.speech, () => this.places_.back(), () => this.track_.takeFocus());
    this.rail_ = new Rail(this, (index) => this.show(index));
    this.toast_ = new Toast();
    this.search_ = new SearchPanel(this);
    this.gallery_ = new Gallery(this);
    this.dates_ = new DatePanel(this, () => this.track_.timeInSight);
    this.check_ = new CheckPanel(this);
    this.about_ = new AboutPanel(this, this.zones_(), () => this.check_.open());
    this.cover_ = new Cover(this, () => this.about_.open());
    const whole = new MessageView(this, this.replies_, { isWhole: true });
    this.print_ = new PrintPanel(this, (index) => whole.buildRow(index));
    this.connect_();
    this.fillBar_();
  }

  /** Resolves when the conversation is on show. */
  async load() {
    const count = this.conversation.messageCount;
    const { timeline } = this;
    await inSlices(count, (first, end) => {
      timeline.add(first, end);
      this.replies_.collect(first, end);
    });
    this.cover_.fill();
    this.rail_.refresh();
    if (count === 0) this.showNothing_();
    else await this.showMessages_();
    this.main_.removeAttribute("aria-busy");
  }

  showNothing_() {
    this.main_.replaceChildren(this.cover_.element, element("p", "notice", this.speech.say("emptyConversation")));
    document.body.append(this.search_.element);
  }

  /** @param {string} text @returns {readonly (readonly [number, number])[]} */
  highlight(text) {
    return this.search_.highlight(text);
  }

  refresh() {
    this.track_.list?.rebuildRows();
  }

  /** @param {number} index */
  show(index) {
    this.leaveFor_(index, () => this.track_.reveal(index)?.focus({ preventScroll: true }));
  }

  /** The first message, with what stands above it. */
  showFirst_() {
    const { list } = this.track_;
    if (list && window.scrollY > 0) this.leaveFor_(0, () => list.toStart());
  }

  showLast_() {
    const { list } = this.track_;
    const below = document.documentElement.scrollHeight - window.innerHeight - window.scrollY;
    if (list && below >= 1) this.leaveFor_(list.count - 1, () => list.toEnd());
  }

  /** @param {number} index @param {() => void} jump */
  leaveFor_(index, jump) {
    const hasWayBack = this.places_.leaveFor(index);
    jump();
    if (!hasWayBack) return;
    this.places_.keep();
    this.wayBack_.show(true);
  }

  /** @param {number} index */
  peek(index) {
    this.track_.reveal(index);
  }

  /** @param {number} messageIndex @param {number} attachmentIndex */
  view(messageIndex, attachmentIndex) {
    this.gallery_.view(messageIndex, attachmentIndex);
  }

  connect_() {
    this.places_.onReturn = (place) => this.return_(place);
    this.places_.onLink = (index) => this.follow_(index);
    this.places_.onDepth = (hasWayBack) => this.wayBack_.show(hasWayBack);
    this.track_.onMove = () => this.rail_.show(this.track_.timeInSight);
    this.track_.onRest = () => this.places_.keep();
    this.track_.onWidthChange = () => this.reckonHeights_();
    this.search_.indexInSight = () => this.track_.list?.place.index ?? 0;
    this.print_.onPaper = (isOnPaper) => this.track_.list?.suspend(isOnPaper);
    this.search_.onToggle = (isOpen) => document.documentElement.classList.toggle("has-side", isOpen);
    document.addEventListener("keydown", (event) => this.onKey_(event));
  }

  fillBar_() {
    const bar = new Bar(this.speech);
    const summary = document.getElementById("summary");
    if (summary) summary.textContent = this.speech.sayCount("messageCount", this.conversation.messageCount);
    bar.addAction("find", "find", () => this.search_.open());
    bar.addAction("calendar", "goToDate", () => this.dates_.open());
    bar.addAction("gallery", "gallery", () => this.gallery_.open());
    bar.addAction("info", "about", () => this.about_.open());
    bar.addItem("first", "toFirst", () => this.showFirst_());
    bar.addItem("last", "toLast", () => this.showLast_());
    bar.addItem("check", "check", () => this.check_.open());
    bar.addItem("print", "print", () => this.print_.open());
    bar.addChoice(this.appearances_());
    bar.addChoice(this.zones_());
  }

  async showMessages_() {
    const count = this.conversation.messageCount;
    // The list has its width only once it stands in the page, and stands there unseen until its heights are known.
    this.track_.element.hidden = true;
    const { floatingDate, element: track } = this.track_;
    const wait = this.main_.querySelector(".waiting");
    this.main_.append(track);
    track.hidden = false;
    const estimate = new HeightEstimate(this.conversation, this.timeline.marks, this.track_.width);
    track.hidden = true;
    await inSlices(count, (first, end) => {
      this.replies_.locate(first, end);
      estimate.add(first, end);
    });
    wait?.remove();
    track.hidden = false;
    this.main_.prepend(this.cover_.element);
    document.body.append(this.rail_.element, this.search_.element, floatingDate.element, this.wayBack_.element,
      this.toast_.element);
    window.history.scrollRestoration = "manual";
    this.track_.fill(estimate.heights);
    this.places_.begin();
  }

  /**
   * The focus goes along with a reader who pressed the offer to go back, which hides itself, and with one whose dialog is closed.
   * @param {Place} place
   */
  return_({ index, above, sight }) {
    const takesFocus = closeDialogs() || document.activeElement === this.wayBack_.element;
    const row = this.track_.list?.reveal(index, above, sight);
    if (takesFocus) row?.focus({ preventScroll: true });
  }

  /**
   * A link leads to a message, or says that it leads nowhere.
   * @param {number | undefined} index
   */
  follow_(index) {
    closeDialogs();
    if (index === undefined) this.toast_.say(this.speech.say("messageNotFound"));
    else this.track_.reveal(index)?.focus({ preventScroll: true });
  }

  /** @param {number} index */
  async copyLink_(index) {
    const { href } = new URL(linkTo(this.conversation.message(index).guid), window.location.href);
    this.toast_.say(this.speech.say(await copyText(href) ? "linkCopied" : "linkNotCopied"));
  }

  /** Estimates all heights anew, as for another width or another division into days. */
  async reckonHeights_() {
    this.reckoning_.abort();
    this.reckoning_ = new AbortController();
    const { signal } = this.reckoning_;
    const estimate = new HeightEstimate(this.conversation, this.timeline.marks, this.track_.width);
    const isDone = await inSlices(this.conversation.messageCount, (first, end) => estimate.add(first, end), signal);
    if (isDone) this.track_.list?.replaceHeights(estimate.heights);
  }

  /**
   * Clocks and days change together, so the days are reckoned first.
   * @param {Zone} zone
   */
  async chooseZone_(zone) {
    this.zoning_.abort();
    this.zoning_ = new AbortController();
    const { signal } = this.zoning_;
    this.settings_.zone = zone;
    const calendar = new Calendar(zone);
    const timeline = new TimelineIndex(this.conversation, calendar);
    const isDone = await inSlices(this.conversation.messageCount, (first, end) => timeline.add(first, end), signal);
    if (!isDone) return;
    Object.assign(this, { calendar, timeline, formats: new Formats(this.speech.tag, zone) });
    this.cover_.fill();
    this.rail_.refresh();
    this.rail_.show(this.track_.timeInSight);
    this.refresh();
    this.search_.update();
    void this.reckonHeights_();
  }

  /** @returns {Choice} */
  zones_() {
    const own = new Intl.DateTimeFormat().resolvedOptions().timeZone;
    return {
      legend: "timeZone",
      options: [
        { value: "local", words: this.speech.say("timeZoneLocal", { zone: own }) },
        { value: "UTC", words: this.speech.say("timeZoneUTC") },
      ],
      current: () => this.settings_.zone,
      choose: (value) => this.chooseZone_(value === "UTC" ? "UTC" : "local"),
    };
  }

  /** @returns {Choice} */
  appearances_() {
    return {
      legend: "appearance",
      options: [
        { value: "system", words: this.speech.say("appearanceSystem") },
        { value: "light", words: this.speech.say("appearanceLight") },
        { value: "dark", words: this.speech.say("appearanceDark") },
      ],
      current: () => this.settings_.appearance,
      choose: (value) => {
        this.settings_.appearance = /** @type {Appearance} */ (value);
        this.showAppearance_();
      },
    };
  }

  showAppearance_() {
    document.documentElement.dataset.appearance = this.settings_.appearance;
  }

  /**
   * The browser's own search sees only the rows that stand in the page; a second press still opens it.
   * @param {KeyboardEvent} event
   */
  onKey_(event) {
    const isFind = event.key.toLowerCase() === "f" && (event.ctrlKey || event.metaKey) && !event.shiftKey && !event.altKey;
    const isTaken = this.search_.isOpen && this.search_.element.contains(document.activeElement);
    if (!isFind || isTaken || document.querySelector("dialog[open]")) return;
    event.preventDefault();
    this.search_.open();
  }
}
