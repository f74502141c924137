import { makeDialog, openDialog } from "../page/dialogs.js";
import { button, element } from "../page/elements.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../timeline/TimelineIndex.js").Month} Month */

/** So many months stand in the panel at most; a date field reaches the others. */
const mostMonths = 360;

/** Leads to any date: by a date field, or by a month of the conversation. */
export class DatePanel {
  /** @param {Album} album @param {() => number} timeInSight */
  constructor(album, timeInSight) {
    this.album = album;
    this.timeInSight_ = timeInSight;
    const { dialog, body } = makeDialog(album.speech, "date-panel", album.speech.say("goToDate"));
    this.dialog = dialog;
    this.body_ = body;
  }

  open() {
    const { months } = this.album.timeline;
    if (months.length === 0) this.body_.replaceChildren(element("p", "dialog-note", this.album.speech.say("noDates")));
    else this.body_.replaceChildren(this.form_(months), this.months_(months));
    openDialog(this.dialog);
    this.dialog.querySelector("[aria-current]")?.scrollIntoView({ block: "center" });
  }

  /** @param {readonly Month[]} months @returns {HTMLElement} */
  form_(months) {
    const { calendar, speech, timeline } = this.album;
    const form = element("form", "date-form");
    const label = element("label", "date-label", speech.say("date"));
    const field = element("input", "field");
    field.type = "date";
    field.required = true;
    field.autofocus = true;
    field.min = calendar.fieldText(months[0].time);
    field.value = calendar.fieldText(Number.isNaN(this.timeInSight_()) ? months[0].time : this.timeInSight_());
    label.append(field);
    const go = element("button", "push-button is-primary", speech.say("go"));
    form.append(label, go);
    form.noValidate = true;
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      const range = calendar.rangeOf(field.value);
      const index = range && timeline.indexAtOrAfter(range.start);
      if (index !== undefined) this.jump_(index);
    });
    return form;
  }

  /** @param {readonly Month[]} months */
  months_(months) {
    const { calendar, formats, speech } = this.album;
    const now = calendar.monthNumber(this.timeInSight_());
    const place = Math.max(0, months.findIndex((month) => calendar.monthNumber(month.time) >= now));
    const first = Math.max(0, Math.min(place - mostMonths / 2, months.length - mostMonths));
    const made = element("div", "date-years");
    made.setAttribute("role", "group");
    made.setAttribute("aria-label", speech.say("months"));
    let lastYear = "";
    let grid = element("ul", "date-months");
    for (const month of months.slice(first, first + mostMonths)) {
      const year = formats.year(month.time);
      if (year !== lastYear) {
        grid = element("ul", "date-months");
        made.append(element("h3", "date-year", year), grid);
        lastYear = year;
      }
      grid.append(this.month_(month, calendar.monthNumber(month.time) === now));
    }
    return made;
  }

  /** @param {Month} month @param {boolean} isCurrent */
  month_(month, isCurrent) {
    const { formats, speech } = this.album;
    const item = element("li");
    const made = button("date-month", () => this.jump_(month.first));
    const count = speech.sayCount("messageCount", month.count);
    made.append(element("span", "date-month-name", formats.monthName(month.time)),
      element("span", "date-month-count", speech.numbers.format(month.count)));
    made.setAttribute("aria-label", `${formats.month(month.time)}, ${count}`);
    if (isCurrent) made.setAttribute("aria-current", "date");
    item.append(made);
    return item;
  }

  /** @param {number} index */
  jump_(index) {
    this.dialog.close();
    this.album.show(index);
  }
}
