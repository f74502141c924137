/**
 * Up to two initials of a name, none of a telephone number.
 * @param {string} name
 */
export function initialsOf(name) {
  const words = name.split(/\s+/u).filter((word) => /^\p{L}/u.test(word));
  const chosen = words.length > 1 ? [words[0], words[words.length - 1]] : words;
  return chosen.map((word) => Array.from(word)[0].toLocaleUpperCase()).join("");
}
