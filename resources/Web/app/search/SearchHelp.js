import { button, element } from "../page/elements.js";
import { conditionText } from "./query.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */

/** What can be asked for beside words, each with an example from this conversation that can be tried. */
export class SearchHelp {
  /** @param {Album} album @param {(text: string) => void} onTry */
  constructor(album, onTry) {
    this.album = album;
    this.onTry_ = onTry;
    this.element = element("div", "search-help");
  }

  fill() {
    const list = element("ul", "search-examples");
    for (const [word, example] of this.examples_()) list.append(this.item_(word, example));
    this.element.replaceChildren(element("h2", "search-help-title", this.album.speech.say("findHelp")), list);
  }

  /** @returns {[WordKey, string][]} */
  examples_() {
    const { calendar, conversation, people, timeline } = this.album;
    const other = conversation.participants.find(({ isMe }) => !isMe);
    const name = other ? people.nameOf(other) : people.senderName("me", true);
    const { months } = timeline;
    const first = months.length > 0 ? calendar.fieldText(months[0].time) : "2024-05-01";
    const last = months.length > 0 ? calendar.fieldText(months[months.length - 1].time) : first;
    return [
      ["findHelpFrom", conditionText("from", other?.displayName?.trim().split(/\s+/u)[0] || name)],
      ["findHelpHas", conditionText("has", "photo")],
      ["findHelpBefore", conditionText("before", last.replace(/-\d+-\d+$/, ""))],
      ["findHelpAfter", conditionText("after", first.replace(/-\d+$/, ""))],
      ["findHelpOn", conditionText("on", first)],
      ["findHelpQuotes", `"${/\s/u.test(name) ? name : "1, 2, 3"}"`],
    ];
  }

  /** @param {WordKey} word @param {string} example */
  item_(word, example) {
    const item = element("li", "search-example");
    const made = button("search-try", () => this.onTry_(example));
    made.textContent = example;
    made.dir = "auto";
    // The example stands where the words of the language have its place.
    const [start, end = ""] = this.album.speech.say(word, { example: "\u0000" }).split("\u0000");
    item.append(start, made, end);
    return item;
  }
}
