/** @typedef {"valid" | "incomplete" | "damaged"} Verdict */

/**
 * What was found, by the paths of the files. `unexpected` ones change nothing.
 * @typedef {object} Findings
 * @property {number} checkedCount files that the manifest lists
 * @property {string[]} missing
 * @property {string[]} changed
 * @property {string[]} unreadable there, but not to be read to the end, or changed meanwhile
 * @property {string[]} unexpected
 * @property {string[]} unlisted that belong to the album although the manifest does not list them
 * @property {boolean} countsAgree of the manifest, with each other and with the conversation
 */

/**
 * A list that is not whole itself proves nothing, so an album with such a one is damaged however right its files are.
 * @param {Findings} findings
 * @returns {Verdict}
 */
export function verdictOf({ checkedCount, missing, changed, unreadable, unlisted, countsAgree }) {
  if (changed.length + unreadable.length + unlisted.length > 0 || !countsAgree || checkedCount === 0) return "damaged";
  return missing.length > 0 ? "incomplete" : "valid";
}
