import { button, element } from "../page/elements.js";

/** @typedef {{ name: string, words: string, panel: HTMLElement }} Tab */

/** The tabs of several panels, of which one is shown. The arrow keys go from tab to tab and show its panel. */
export class Tabs {
  /** @param {string} label @param {readonly Tab[]} tabs @param {(name: string) => void} onChoose */
  constructor(label, tabs, onChoose) {
    this.tabs_ = tabs;
    this.onChoose_ = onChoose;
    this.chosen = tabs[0].name;
    this.element = element("div", "tabs");
    this.element.setAttribute("role", "tablist");
    this.element.setAttribute("aria-label", label);
    this.buttons_ = tabs.map((tab) => this.tab_(tab));
    this.element.append(...this.buttons_);
    this.element.addEventListener("keydown", (event) => this.onKey_(event));
    this.mark_();
  }

  /** @param {string} name @param {string} count as written */
  setCount(name, count) {
    const made = this.buttons_[this.tabs_.findIndex((tab) => tab.name === name)];
    made.querySelector(".tab-count")?.remove();
    made.append(" ", element("span", "tab-count", count));
  }

  focus() {
    this.buttons_[this.tabs_.findIndex(({ name }) => name === this.chosen)].focus();
  }

  /** @param {string} name */
  choose(name) {
    if (name === this.chosen) return;
    this.chosen = name;
    this.mark_();
    this.onChoose_(name);
  }

  /** @param {Tab} tab */
  tab_({ name, words, panel }) {
    const made = button("tab", () => this.choose(name));
    made.id = `tab-${name}`;
    panel.id = `panel-${name}`;
    made.setAttribute("role", "tab");
    made.setAttribute("aria-controls", panel.id);
    panel.setAttribute("role", "tabpanel");
    panel.setAttribute("aria-labelledby", made.id);
    made.append(words);
    return made;
  }

  mark_() {
    this.tabs_.forEach(({ name, panel }, index) => {
      const isChosen = name === this.chosen;
      panel.hidden = !isChosen;
      this.buttons_[index].tabIndex = isChosen ? 0 : -1;
      this.buttons_[index].setAttribute("aria-selected", String(isChosen));
    });
  }

  /** @param {KeyboardEvent} event */
  onKey_(event) {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const last = this.tabs_.length - 1;
    const chosen = this.tabs_.findIndex(({ name }) => name === this.chosen);
    /** @type {{ readonly [key: string]: number }} */
    const targets = {
      ArrowLeft: chosen === 0 ? last : chosen - 1, ArrowRight: chosen === last ? 0 : chosen + 1, Home: 0, End: last };
    const target = targets[event.key];
    if (target === undefined) return;
    event.preventDefault();
    this.choose(this.tabs_[target].name);
    this.buttons_[target].focus();
  }
}
