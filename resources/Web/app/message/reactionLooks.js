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

/**
 * Whether a kind stands for any reaction that the record has no name for.
 * @param {string} kind
 */
export function isOneOfMany(kind) {
  return kind === "custom" || kind === "unknown" || kind === "";
}

/**
 * Whether a kind says something that its look does not: it is neither one of the six nor a word for not knowing.
 * @param {string} kind
 */
export function isNamedElsewhere(kind) {
  return !looks.has(kind) && !isOneOfMany(kind);
}
