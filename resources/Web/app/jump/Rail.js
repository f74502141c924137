import { button, element } from "../page/elements.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../timeline/TimelineIndex.js").Month} Month */

/** So many years stand on the rail at most, those round the present one. */
const mostYears = 18;

/** Years, and the months of the year in sight, along the edge of a wide window. */
export class Rail {
  /** @param {Album} album @param {(index: number) => void} jump */
  constructor(album, jump) {
    this.album = album;
    this.jump_ = jump;
    this.element = element("nav", "rail");
    this.element.setAttribute("aria-label", album.speech.say("timelineRail"));
    /** What the rail shows now: a month's number; NaN for nothing. */
    this.shown_ = NaN;
    this.years_ = new Map();
    this.refresh();
  }

  /** Takes the months anew, as in another time zone. */
  refresh() {
    /** @type {Map<number, Month[]>} Months that have messages, by year. */
    this.years_ = new Map();
    for (const month of this.album.timeline.months) {
      const { year } = this.album.calendar.partsOf(month.time);
      const months = this.years_.get(year);
      if (months) months.push(month);
      else this.years_.set(year, [month]);
    }
    this.element.hidden = this.album.timeline.months.length < 2;
    this.shown_ = NaN;
  }

  /**
   * Shows where a moment lies.
   * @param {number} time
   */
  show(time) {
    const number = this.album.calendar.monthNumber(time);
    if (Number.isNaN(number) || number === this.shown_ || this.element.hidden) return;
    this.shown_ = number;
    const current = Math.floor(number / 12);
    const years = Array.from(this.years_.keys()).sort((one, other) => one - other);
    const place = Math.max(0, years.findIndex((year) => year >= current));
    const first = Math.max(0, Math.min(place - Math.floor(mostYears / 2), years.length - mostYears));
    const list = element("ol", "rail-years");
    for (const year of years.slice(first, first + mostYears)) list.append(this.year_(year, year === current, number));
    const hadFocus = this.element.contains(document.activeElement);
    this.element.replaceChildren(list);
    const now = this.element.querySelector("[aria-current]");
    if (!(now instanceof HTMLElement)) return;
    // Where the window is too low for the rail, the present month is what stays in it.
    const lower = now.getBoundingClientRect().bottom - list.getBoundingClientRect().bottom;
    if (lower > 0) list.scrollTop += lower;
    if (hadFocus) now.focus({ preventScroll: true });
  }

  /** @param {number} year @param {boolean} isCurrent @param {number} currentMonth */
  year_(year, isCurrent, currentMonth) {
    const { formats } = this.album;
    const months = this.years_.get(year) ?? [];
    const item = element("li", isCurrent ? "rail-year is-current" : "rail-year");
    item.append(this.button_("rail-button", formats.year(months[0].time), formats.year(months[0].time), months[0]));
    if (!isCurrent) return item;
    const list = element("ol", "rail-months");
    for (const month of months) {
      const made = this.button_("rail-button is-month", formats.monthName(month.time), formats.month(month.time), month);
      if (this.album.calendar.monthNumber(month.time) === currentMonth) made.setAttribute("aria-current", "date");
      const entry = element("li");
      entry.append(made);
      list.append(entry);
    }
    item.append(list);
    return item;
  }

  /** @param {string} className @param {string} text @param {string} label @param {Month} month */
  button_(className, text, label, month) {
    const made = button(className, () => this.jump_(month.first));
    made.textContent = text;
    made.setAttribute("aria-label", label);
    return made;
  }
}
