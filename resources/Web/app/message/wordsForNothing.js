/** @typedef {import("../records/records.js").Message} Message */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */

/**
 * Why a message shows no words, or not all of them.
 * @param {Message} message
 * @returns {WordKey}
 */
export function wordsForNothing({ payloadState, text, retractedAt }) {
  if (payloadState === "unsupported") return "unsupportedMessage";
  // A state that is not known yet speaks of a body that was not simply read.
  if (payloadState !== "decoded") return text || payloadState === "partiallyDecoded" ? "partialMessage" : "unsupportedMessage";
  return retractedAt === undefined ? "emptyMessage" : "unsentMessage";
}
