import { button, element, isolated } from "./elements.js";
import { icon } from "./icons.js";

/** @typedef {import("./Album.js").Album} Album */

/** A cover shows no more faces than this. */
const mostFaces = 5;
/** And no more names. */
const mostNames = 40;

/** What stands above the first message: faces, names, dates and counts. */
export class Cover {
  /** @param {Album} album @param {() => void} openAbout */
  constructor(album, openAbout) {
    this.album = album;
    this.element = element("section", "cover");
    /** It stays when the rest is said anew, since a dialog may give the focus back to it. */
    this.warnings_ = button("cover-warnings", openAbout);
    this.warnings_.hidden = album.conversation.warningCount === 0;
    this.warnings_.append(icon("warning"), album.speech.sayCount("warningCount", album.conversation.warningCount));
    this.element.append(this.warnings_);
  }

  /** Says everything, or says it anew, as in another time zone. */
  fill() {
    const { conversation, people, speech } = this.album;
    const others = conversation.participants.filter((participant) => !participant.isMe);
    const pictures = element("div", "cover-pictures");
    pictures.append(...others.slice(0, mostFaces).map((participant) => people.avatar(participant.id)));
    const names = element("p", "cover-names");
    const shown = others.slice(0, mostNames);
    // Lines are broken between names sooner than within one.
    const parts = speech.lists.formatToParts(shown.map((participant) => people.nameOf(participant).replace(/ /g, "\u00A0")));
    names.append(...parts.map(({ type, value }) => (type === "element" ? isolated(value) : value)));
    if (others.length > mostNames) names.append(" …");
    while (this.element.firstChild !== this.warnings_) this.element.firstChild?.remove();
    this.element.prepend(pictures, names, ...this.facts_().map((line) => element("p", "cover-facts", line)));
  }

  /** @returns {string[]} */
  facts_() {
    const { conversation, speech } = this.album;
    return [...this.dates_(), speech.sayCount("messageCount", conversation.messageCount)];
  }

  /** @returns {string[]} */
  dates_() {
    const { formats, speech, timeline } = this.album;
    if (timeline.months.length === 0) return [];
    const [one, other] = [formats.date(timeline.earliest), formats.date(timeline.latest)];
    return [one === other ? one : speech.say("dateRange", { first: one, last: other })];
  }
}
