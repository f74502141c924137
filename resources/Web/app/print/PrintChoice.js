import { element } from "../page/elements.js";
import { allIndices, countWithin, extentOf, indicesWithin } from "./printRange.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {{ isRange: boolean, from: string, to: string, hasPictures: boolean }} PrintSettings days as in 2024-05-01 */

/** More messages than this take their time. */
const many = 20_000;

/** The choice of what is printed. */
export class PrintChoice {
  /** @param {Album} album @param {PrintSettings} [settings] */
  constructor(album, settings) {
    this.album = album;
    /** @type {(count: number) => void} Called with the number of messages that are chosen. */
    this.onChange = () => {};
    const { calendar, conversation, timeline } = album;
    const { first, last } = extentOf(timeline.times, allIndices(conversation.messageCount));
    this.hasDates_ = !Number.isNaN(first);
    /** @type {PrintSettings} */
    this.settings = { isRange: false, from: calendar.fieldText(first), to: calendar.fieldText(last), hasPictures: true };
    // Days that were not chosen are those of the present time zone.
    if (settings) Object.assign(this.settings, settings.isRange ? settings : { hasPictures: settings.hasPictures });
    this.status_ = element("p", "print-count");
    this.status_.setAttribute("role", "status");
    this.days_ = element("div", "print-days");
    this.days_.append(this.day_("printFrom", "from"), this.day_("printTo", "to"));
    this.element = element("div");
    this.element.append(this.stretch_(), this.pictures_(), this.status_);
  }

  update() {
    const { speech } = this.album;
    const count = this.count_();
    const words = count === 0 ? speech.say("printNothing") : speech.sayCount("printSelected", count);
    this.status_.textContent = count > many ? `${words} ${speech.say("printMany")}` : words;
    this.days_.hidden = !this.settings.isRange;
    this.onChange(count);
  }

  indices() {
    const { conversation, timeline } = this.album;
    if (!this.settings.isRange) return allIndices(conversation.messageCount);
    const { start, end } = this.range_();
    return indicesWithin(timeline.times, start, end);
  }

  count_() {
    const { conversation, timeline } = this.album;
    if (!this.settings.isRange) return conversation.messageCount;
    const { start, end } = this.range_();
    return countWithin(timeline.times, start, end);
  }

  /** Both days belong to it; an empty field sets no bound. */
  range_() {
    const { calendar } = this.album;
    const { from, to } = this.settings;
    return { start: calendar.rangeOf(from)?.start ?? -Infinity, end: calendar.rangeOf(to)?.end ?? Infinity };
  }

  stretch_() {
    const group = element("fieldset", "print-choice");
    group.append(element("legend", "", this.album.speech.say("printWhat")));
    group.append(this.option_("printAll", false));
    if (this.hasDates_) group.append(this.option_("printRange", true), this.days_);
    return group;
  }

  /** @param {WordKey} word @param {boolean} isRange */
  option_(word, isRange) {
    const input = element("input");
    input.type = "radio";
    input.name = "print-what";
    input.checked = this.settings.isRange === isRange;
    input.addEventListener("change", () => {
      this.settings.isRange = isRange;
      this.update();
    });
    return this.labelled_("print-option", input, word);
  }

  pictures_() {
    const input = element("input");
    input.type = "checkbox";
    input.checked = this.settings.hasPictures;
    input.addEventListener("change", () => {
      this.settings.hasPictures = input.checked;
    });
    return this.labelled_("print-option", input, "printPictures");
  }

  /** @param {WordKey} word @param {"from" | "to"} bound */
  day_(word, bound) {
    const field = element("input", "field");
    field.type = "date";
    field.value = this.settings[bound];
    field.addEventListener("input", () => {
      this.settings[bound] = field.value;
      this.update();
    });
    const label = element("label", "print-day");
    label.append(element("span", "", this.album.speech.say(word)), field);
    return label;
  }

  /** @param {string} className @param {HTMLInputElement} input @param {WordKey} word */
  labelled_(className, input, word) {
    const label = element("label", className);
    label.append(input, element("span", "", this.album.speech.say(word)));
    return label;
  }
}
