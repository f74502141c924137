import { button } from "./elements.js";
import { icon } from "./icons.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {import("./icons.js").IconName} IconName */

/**
 * A round button with a drawing, whose words show on pointing and are read out.
 * @param {Speech} speech
 * @param {IconName} name
 * @param {WordKey} word
 * @param {() => void} onPress
 */
export function iconButton(speech, name, word, onPress) {
  const made = button("icon-button", onPress);
  made.title = speech.say(word);
  made.setAttribute("aria-label", made.title);
  made.append(icon(name));
  return made;
}
