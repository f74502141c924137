import { recordOf, timeOf } from "../records/fields.js";
import { endsGroup, longestPause, startsDay, startsGroup } from "./marks.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("./Calendar.js").Calendar} Calendar */

/**
 * @typedef {object} Month
 * @property {number} time of its earliest message
 * @property {number} first index of its earliest message
 * @property {number} count of its messages
 */

/** When each message was sent, and what follows from it. Made in order, a range at a time; complete when all were added. */
export class TimelineIndex {
  /** @param {Conversation} conversation @param {Calendar} calendar */
  constructor(conversation, calendar) {
    const count = conversation.messageCount;
    this.conversation = conversation;
    this.calendar = calendar;
    /** Milliseconds since 1970; NaN where there is no date. */
    this.times = new Float64Array(count);
    /** The marks startsDay, startsGroup and endsGroup of each message. */
    this.marks = new Uint8Array(count);
    /** @type {Map<number, Month>} */
    this.monthByNumber = new Map();
    /** @type {Month[]} Ascending; complete when all messages were added. */
    this.months = [];
    /** The earliest and the latest time of all; NaN where no message has a date. */
    this.earliest = NaN;
    this.latest = NaN;
    this.day = { start: NaN, end: NaN };
    /** @type {Month | undefined} */
    this.month = undefined;
    this.lastTime = NaN;
    this.lastSender = "";
  }

  /** @param {number} first @param {number} end */
  add(first, end) {
    for (let index = first; index < end; index++) {
      const time = timeOf(recordOf(this.conversation.rawMessages[index]).date);
      this.times[index] = time;
      this.addMarks_(index, time);
      this.addToMonth_(index, time);
    }
    if (end === this.times.length) this.finish_();
  }

  /**
   * The message that a date leads to: the earliest at or behind a moment, else the latest of all; nothing where no message
   * has a date. Messages may stand out of order.
   * @param {number} time
   * @returns {number | undefined}
   */
  indexAtOrAfter(time) {
    let found = -1;
    let latest = -1;
    for (let index = 0; index < this.times.length; index++) {
      const own = this.times[index];
      if (own >= time && (found < 0 || own < this.times[found])) found = index;
      if (own === own && (latest < 0 || own > this.times[latest])) latest = index;
    }
    if (found >= 0) return found;
    return latest >= 0 ? latest : undefined;
  }

  /** @param {number} index @param {number} time */
  addMarks_(index, time) {
    const sender = this.conversation.senderKey(index);
    const isDated = time === time;
    const wasDated = this.lastTime === this.lastTime;
    const isNewDay = index === 0 || isDated !== wasDated || (isDated && !(time >= this.day.start && time < this.day.end));
    if (isNewDay && isDated) {
      this.day = this.calendar.dayOf(time);
      this.month = undefined;
    }
    // Two messages without dates have no pause between them.
    const isPause = Math.abs(time - this.lastTime) > longestPause;
    if (isNewDay || isPause || sender !== this.lastSender) {
      this.marks[index] |= startsGroup;
      if (index > 0) this.marks[index - 1] |= endsGroup;
    }
    if (isNewDay) this.marks[index] |= startsDay;
    this.lastTime = time;
    this.lastSender = sender;
  }

  /** @param {number} index @param {number} time */
  addToMonth_(index, time) {
    if (time !== time) return;
    if (!(time >= this.earliest)) this.earliest = time;
    if (!(time <= this.latest)) this.latest = time;
    // A day lies in one month, so the month is looked for once a day.
    let month = this.month;
    if (!month) {
      const number = this.calendar.monthNumber(time);
      month = this.monthByNumber.get(number);
      if (!month) {
        month = { time, first: index, count: 0 };
        this.monthByNumber.set(number, month);
      }
      this.month = month;
    }
    month.count += 1;
    if (time < month.time) {
      month.time = time;
      month.first = index;
    }
  }

  finish_() {
    if (this.marks.length > 0) this.marks[this.marks.length - 1] |= endsGroup;
    this.months = Array.from(this.monthByNumber.values()).sort((one, other) => one.time - other.time);
  }
}
