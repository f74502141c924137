import { button, element, isolated } from "../page/elements.js";
import { isNamedElsewhere, reactionLook } from "./reactionLooks.js";
import { settleReactions } from "./settleReactions.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../records/records.js").Reaction} Reaction */
/** @typedef {import("./settleReactions.js").SettledKind} SettledKind */

/** So many names a badge tells; the lines below it tell all. */
const mostNames = 40;

/** The reactions to a message: a badge for each kind, and below them, on demand, who reacted and when. */
export class ReactionView {
  /** @param {Album} album @param {boolean} isUnfolded the lines stand there from the beginning, as for paper */
  constructor(album, isUnfolded) {
    this.album = album;
    this.isUnfolded_ = isUnfolded;
    /** @type {Set<number>} Messages whose lines the reader has folded out, for when their row comes back. */
    this.foldedOut_ = new Set();
  }

  /**
   * @param {readonly Reaction[]} reactions
   * @param {number} index of the message
   * @returns {HTMLElement[]}
   */
  build(reactions, index) {
    if (reactions.length === 0) return [];
    const badges = element("div", "reactions");
    const people = element("ul", "reaction-people");
    const kinds = settleReactions(reactions);
    const onPress = () => {
      this.toggle_(badges, people, kinds);
      if (people.hidden) this.foldedOut_.delete(index);
      else this.foldedOut_.add(index);
    };
    for (const settled of kinds) badges.append(this.badge_(settled, onPress));
    people.hidden = true;
    if (this.isUnfolded_ || this.foldedOut_.has(index)) this.toggle_(badges, people, kinds);
    return [badges, people];
  }

  /**
   * The lines are made when they are first asked for: a message can have thousands.
   * @param {HTMLElement} badges
   * @param {HTMLElement} people
   * @param {readonly SettledKind[]} kinds
   */
  toggle_(badges, people, kinds) {
    if (!people.firstChild) for (const settled of kinds) for (const line of this.lines_(settled)) people.append(line);
    people.hidden = !people.hidden;
    for (const badge of badges.children) badge.setAttribute("aria-expanded", String(!people.hidden));
  }

  /** @param {SettledKind} settled @param {() => void} onPress */
  badge_({ kind, standing, removed }, onPress) {
    const { sign } = reactionLook(kind);
    const words = standing.length > 0 ? this.words_(kind, standing) : this.removalWords_(removed);
    const badge = button(standing.length > 0 ? "reaction" : "reaction is-removed", onPress);
    badge.title = words;
    badge.setAttribute("aria-label", standing.length > 0 ? words : `${sign} ${words}`);
    badge.setAttribute("aria-expanded", "false");
    badge.append(element("span", "", sign));
    if (standing.length > 1) badge.append(element("span", "reaction-count", this.album.speech.numbers.format(standing.length)));
    return badge;
  }

  /**
   * A kind that the page has no words for is told by its name in the record.
   * @param {string} kind
   * @param {readonly Reaction[]} reactions
   */
  words_(kind, reactions) {
    const words = this.album.speech.say(reactionLook(kind).word, { names: this.names_(reactions) });
    return isNamedElsewhere(kind) ? `${words} (\u2068${kind}\u2069)` : words;
  }

  /** @param {readonly Reaction[]} reactions */
  removalWords_(reactions) {
    return this.album.speech.say("reactionRemoved", { names: this.names_(reactions) });
  }

  /**
   * Whose reactions they are, each person once.
   * @param {readonly Reaction[]} reactions
   */
  names_(reactions) {
    const { people, speech } = this.album;
    const known = new Set();
    const senders = reactions.filter(({ senderID }) => senderID === undefined || (!known.has(senderID) && known.add(senderID)));
    const names = senders.slice(0, mostNames).map(({ senderID }) => people.senderName(senderID, false));
    return senders.length > mostNames ? `${names.join(", ")} …` : speech.list(names);
  }

  /** @param {SettledKind} settled */
  lines_({ kind, standing, repeated, removed }) {
    const { sign } = reactionLook(kind);
    return [
      ...standing.concat(repeated).map((reaction) => this.line_(sign, this.words_(kind, [reaction]), reaction)),
      ...removed.map((reaction) => this.line_(sign, this.removalWords_([reaction]), reaction)),
    ];
  }

  /** @param {string} sign @param {string} words @param {Reaction} reaction */
  line_(sign, words, { date, time, isRemoved }) {
    const line = element("li", isRemoved ? "is-removed" : "");
    line.append(element("span", "reaction-sign", sign), " ", isolated(words, "reaction-words"));
    const moment = Number.isNaN(time) ? date : this.album.formats.moment(time);
    if (moment) line.append(" · ", isolated(moment));
    return line;
  }
}
