// Additions and removals are records of their own; what counts is how each sender's last word on a kind stands.
import { isOneOfMany } from "./reactionLooks.js";

/** @typedef {import("../records/records.js").Reaction} Reaction */
/** @typedef {{ standing: Reaction[], repeated: Reaction[], removed: Reaction[] }} Words */

/**
 * @typedef {object} SettledKind
 * @property {string} kind
 * @property {Reaction[]} standing the additions that nobody took back, one of each sender
 * @property {Reaction[]} repeated further additions of the same senders
 * @property {Reaction[]} removed the removals that were a sender's last word
 */

/**
 * The reactions of a message by kind, in the order in which each kind first appeared.
 * @param {readonly Reaction[]} reactions
 * @returns {SettledKind[]}
 */
export function settleReactions(reactions) {
  /** @type {Map<string, Map<string, Words>>} */
  const byKind = new Map();
  for (const reaction of inOrderOfTime(reactions)) {
    const bySender = byKind.get(reaction.kind) ?? new Map();
    byKind.set(reaction.kind, bySender);
    const key = reaction.senderID === undefined ? "" : `from ${reaction.senderID}`;
    const words = bySender.get(key) ?? { standing: [], repeated: [], removed: [] };
    bySender.set(key, words);
    addWord(words, reaction);
  }
  return Array.from(byKind, ([kind, bySender]) => {
    const all = Array.from(bySender.values());
    return {
      kind,
      standing: all.flatMap(({ standing }) => standing),
      repeated: all.flatMap(({ repeated }) => repeated),
      removed: all.flatMap(({ removed }) => removed),
    };
  });
}

/**
 * A sender can have one reaction of a kind, so only the last word counts. Senders without a name may be several people, and
 * kinds without a name of their own several reactions: each of those additions counts, and a removal takes one away.
 * @param {Words} words of one sender on one kind
 * @param {Reaction} reaction
 */
function addWord(words, reaction) {
  const isOne = reaction.senderID !== undefined && !isOneOfMany(reaction.kind);
  if (isOne) words.removed.length = 0;
  if (reaction.isRemoved) {
    words.standing.pop();
    words.repeated.length = 0;
    words.removed.push(reaction);
  } else if (isOne && words.standing.length > 0) words.repeated.push(reaction);
  else words.standing.push(reaction);
}

/**
 * By date, those without one first and equals in their own order, as the source keeps them.
 * @param {readonly Reaction[]} reactions
 */
function inOrderOfTime(reactions) {
  /** @param {Reaction} reaction */
  const rank = ({ time }) => (Number.isNaN(time) ? -Infinity : time);
  return Array.from(reactions).sort((one, other) => (rank(one) === rank(other) ? 0 : rank(one) - rank(other)));
}
