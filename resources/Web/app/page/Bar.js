import { button, element } from "./elements.js";
import { iconButton } from "./iconButton.js";
import { icon } from "./icons.js";

/** @typedef {import("../words/Speech.js").Speech} Speech */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {import("./icons.js").IconName} IconName */

/**
 * @typedef {object} Choice one of several, of which one holds
 * @property {WordKey} legend
 * @property {{ value: string, words: string }[]} options
 * @property {() => string} current
 * @property {(value: string) => void | Promise<void>} choose resolves when the choice is on show
 */

/** The bar at the top: what stands in the page already, its actions, and a menu with the rest. */
export class Bar {
  /** @param {Speech} speech */
  constructor(speech) {
    this.speech = speech;
    this.actions_ = /** @type {HTMLElement} */ (document.getElementById("actions"));
    this.menu_ = element("div", "menu");
    this.menu_.id = "menu";
    this.menu_.hidden = true;
    /** @type {(() => void)[]} Each sets a choice to what holds now, which may have been chosen elsewhere. */
    this.choices_ = [];
    this.more_ = iconButton(this.speech, "more", "more", () => this.toggleMenu_(this.menu_.hidden));
    this.more_.setAttribute("aria-expanded", "false");
    this.more_.setAttribute("aria-controls", "menu");
    const corner = element("div", "menu-corner");
    corner.append(this.more_, this.menu_);
    this.actions_.append(corner);
    document.addEventListener("pointerdown", (event) => {
      if (event.target instanceof Node && !corner.contains(event.target)) this.toggleMenu_(false);
    });
    corner.addEventListener("keydown", (event) => {
      if (event.key !== "Escape" || this.menu_.hidden) return;
      event.preventDefault();
      this.toggleMenu_(false);
      this.more_.focus();
    });
    corner.addEventListener("focusout", (event) => {
      if (event.relatedTarget instanceof Node && !corner.contains(event.relatedTarget)) this.toggleMenu_(false);
    });
  }

  /**
   * An action with a sign of its own; in a narrow window it stands in the menu.
   * @param {IconName} name
   * @param {WordKey} word
   * @param {() => void} onPress
   */
  addAction(name, word, onPress) {
    const action = iconButton(this.speech, name, word, onPress);
    if (name !== "find") action.classList.add("is-wide-only");
    this.actions_.insertBefore(action, this.actions_.lastElementChild);
    if (name !== "find") this.addItem(name, word, onPress).classList.add("is-narrow-only");
  }

  /** @param {IconName} name @param {WordKey} word @param {() => void} onPress */
  addItem(name, word, onPress) {
    const item = button("menu-item", () => {
      this.toggleMenu_(false);
      this.more_.focus();
      onPress();
    });
    item.append(icon(name), this.speech.say(word));
    this.menu_.append(item);
    return item;
  }

  /** @param {Choice} choice */
  addChoice({ legend, options, current, choose }) {
    const group = element("fieldset", "menu-choice");
    group.append(element("legend", "", this.speech.say(legend)));
    for (const { value, words } of options) {
      const label = element("label", "menu-option");
      const input = element("input");
      input.type = "radio";
      input.name = legend;
      input.value = value;
      this.choices_.push(() => {
        input.checked = value === current();
      });
      input.addEventListener("change", () => void choose(value));
      label.append(input, element("span", "", words));
      group.append(label);
    }
    this.menu_.append(group);
  }

  /** @param {boolean} isOpen */
  toggleMenu_(isOpen) {
    if (isOpen) for (const choice of this.choices_) choice();
    this.menu_.hidden = !isOpen;
    this.more_.setAttribute("aria-expanded", String(isOpen));
  }
}
