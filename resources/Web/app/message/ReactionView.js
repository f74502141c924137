import { button, element, isolated } from "../page/elements.js";
import { reactionLook } from "./reactionLooks.js";
import { settleReactions } from "./settleReactions.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Reaction} Reaction */
/** @typedef {import("./settleReactions.js").SettledKind} SettledKind */

/** The reactions to a message: a badge for each kind, and below them, on demand, who reacted and when. */
export class ReactionView {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
  }

  /** @param {readonly Reaction[]} reactions @returns {HTMLElement[]} */
  build(reactions) {
    if (reactions.length === 0) return [];
    const badges = element("div", "reactions");
    const people = element("ul", "reaction-people");
    people.hidden = true;
    for (const settled of settleReactions(reactions)) {
      badges.append(this.badge_(settled, people));
      people.append(...this.lines_(settled));
    }
    return [badges, people];
  }

  /** @param {SettledKind} settled @param {HTMLElement} people */
  badge_({ kind, standing, removed }, people) {
    const { sign, word } = reactionLook(kind);
    const words = standing.length > 0 ? this.words_(word, standing) : this.words_("reactionRemoved", removed);
    const badge = button(standing.length > 0 ? "reaction" : "reaction is-removed", () => {
      people.hidden = !people.hidden;
      for (const one of badge.parentElement?.children ?? []) one.setAttribute("aria-expanded", String(!people.hidden));
    });
    badge.title = words;
    badge.setAttribute("aria-label", standing.length > 0 ? words : `${sign} ${words}`);
    badge.setAttribute("aria-expanded", "false");
    badge.append(element("span", "", sign));
    if (standing.length > 1) badge.append(element("span", "reaction-count", this.album.speech.numbers.format(standing.length)));
    return badge;
  }

  /** @param {import("../words/Speech.js").WordKey} word @param {readonly Reaction[]} reactions */
  words_(word, reactions) {
    const names = reactions.map(({ senderID }) => this.album.people.senderName(senderID, false));
    return this.album.speech.say(word, { names: this.album.speech.list(names) });
  }

  /** @param {SettledKind} settled */
  lines_({ kind, standing, removed }) {
    const { sign, word } = reactionLook(kind);
    return [
      ...standing.map((reaction) => this.line_(sign, this.words_(word, [reaction]), reaction)),
      ...removed.map((reaction) => this.line_(sign, this.words_("reactionRemoved", [reaction]), reaction)),
    ];
  }

  /** @param {string} sign @param {string} words @param {Reaction} reaction */
  line_(sign, words, { time, isRemoved }) {
    const line = element("li", isRemoved ? "is-removed" : "");
    line.append(element("span", "reaction-sign", sign), " ", isolated(words, "reaction-words"));
    if (!Number.isNaN(time)) line.append(" · ", element("time", "", this.album.formats.moment(time)));
    return line;
  }
}
