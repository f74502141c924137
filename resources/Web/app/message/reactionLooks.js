/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {{ sign: string, word: WordKey }} ReactionLook */

/** @type {ReadonlyMap<string, ReactionLook>} */
const looks = new Map([
  ["loved", { sign: "❤️", word: "loved" }],
  ["liked", { sign: "👍", word: "liked" }],
  ["disliked", { sign: "👎", word: "disliked" }],
  ["laughed", { sign: "😂", word: "laughed" }],
  ["emphasized", { sign: "‼️", word: "emphasized" }],
  ["questioned", { sign: "❓", word: "questioned" }],
]);
/**
 * The record says that there was a reaction, but not which.
 * @type {ReactionLook}
 */
const otherLook = { sign: "💬", word: "otherReaction" };

/** @param {string} kind */
export function reactionLook(kind) {
  return looks.get(kind) ?? otherLook;
}
