import { element, isolated } from "../page/elements.js";
import { timeOf } from "../records/fields.js";
import { endsGroup } from "../timeline/marks.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Message} Message */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */

/** What stands beside or below a message: its time, an unusual service, and whether it was edited or unsent, and when. */
export class MetaLine {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
  }

  /**
   * Time and marks: below the last message of a run and wherever there is more to say than a time, else beside the message
   * on pointing.
   * @param {Message} message
   * @param {number} marks
   * @param {number} index
   */
  build(message, marks, index) {
    const service = this.serviceToTell_(message, marks, index);
    const meta = element("p", "meta");
    meta.append(this.time_(message));
    if (service !== undefined) meta.append(isolated(service));
    if (message.editedAt !== undefined) meta.append(this.mark_("edited", "editedOn", message.editedAt, message.time));
    if (message.retractedAt !== undefined) meta.append(this.mark_("unsent", "unsentOn", message.retractedAt, message.time));
    const isOddDate = Number.isNaN(message.time) && message.date !== "";
    meta.classList.toggle("is-quiet", meta.childElementCount === 1 && !isOddDate && !(marks & endsGroup));
    return meta;
  }

  /**
   * Another service than the conversation's, below the last message of a run that went by it.
   * @param {Message} message
   * @param {number} marks
   * @param {number} index
   */
  serviceToTell_({ service }, marks, index) {
    const { conversation } = this.album;
    if (service === undefined || service === conversation.service) return undefined;
    return marks & endsGroup || conversation.message(index + 1).service !== service ? service : undefined;
  }

  /** @param {Message} message */
  timeText(message) {
    if (Number.isNaN(message.time)) return message.date || this.album.speech.say("unknownDate");
    return this.album.formats.clock(message.time);
  }

  /** @param {Message} message */
  time_(message) {
    const time = element("time", "", this.timeText(message));
    if (Number.isNaN(message.time)) return time;
    time.dateTime = message.date;
    time.title = [this.album.formats.moment(message.time), ...(message.service ? [message.service] : [])].join(" · ");
    return time;
  }

  /**
   * "Edited 9:32 AM", with the day where it is another one than the message's.
   * @param {WordKey} word
   * @param {WordKey} titleWord
   * @param {string} date
   * @param {number} messageTime
   */
  mark_(word, titleWord, date, messageTime) {
    const { calendar, formats, speech } = this.album;
    const time = timeOf(date);
    const mark = element("span", `mark-${word}`, `${speech.say(word)} `);
    if (Number.isNaN(time)) {
      mark.append(element("time", "", date));
      return mark;
    }
    const day = calendar.dayOf(time);
    const isSameDay = messageTime >= day.start && messageTime < day.end;
    const clock = element("time", "", isSameDay ? formats.clock(time) : `${formats.shortDay(time)}, ${formats.clock(time)}`);
    clock.dateTime = date;
    mark.title = speech.say(titleWord, { date: formats.moment(time) });
    mark.append(clock);
    return mark;
  }
}
