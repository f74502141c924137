import { button, element } from "../page/elements.js";
import { isFewEmoji } from "../text/emoji.js";
import { splitLinks } from "../text/links.js";
import { cutText } from "../text/messageText.js";
import { marked } from "./marked.js";

/** @typedef {import("../page/Album.js").Album} Album */

/** A browser lays out no more of a text than this at once; the rest follows on demand. */
const longestText = 20_000;

/** What was written, as bubbles with links, and with what the reader looks for marked. */
export class WordsView {
  /** @param {Album} album @param {boolean} isWhole no text is shortened */
  constructor(album, isWhole) {
    this.album = album;
    this.isWhole_ = isWhole;
    /** @type {Set<string>} Texts that the reader has folded out, for when their row comes back. */
    this.foldedOut_ = new Set();
  }

  /** @param {string} text */
  build(text) {
    const bubble = element("div", isFewEmoji(text) ? "bubble part is-large" : "bubble part");
    const words = element("p", "words");
    bubble.append(words);
    const ranges = this.album.highlight(text);
    const isFoundBehind = ranges.length > 0 && ranges[ranges.length - 1][1] > longestText;
    if (text.length <= longestText || this.isWhole_ || isFoundBehind || this.foldedOut_.has(text)) {
      this.fillWords_(words, text, ranges);
      return bubble;
    }
    this.fillWords_(words, cutText(text, longestText), ranges);
    words.append("…");
    const more = button("text-button is-inherited", () => {
      this.foldedOut_.add(text);
      this.fillWords_(words, text, ranges);
      more.remove();
    });
    more.textContent = this.album.speech.say("showWholeMessage");
    bubble.append(more);
    return bubble;
  }

  /**
   * A text with its links, and with what the reader looks for marked.
   * @param {HTMLElement} words
   * @param {string} text
   * @param {readonly (readonly [number, number])[]} ranges
   */
  fillWords_(words, text, ranges) {
    const made = document.createDocumentFragment();
    let offset = 0;
    for (const { text: piece, href } of splitLinks(text)) {
      const nodes = marked(piece, ranges, offset);
      if (href === undefined) for (const node of nodes) made.append(node);
      else made.append(this.link_(nodes, href));
      offset += piece.length;
    }
    // Browsers work out the direction anew for each link that enters an element whose direction follows its text.
    words.removeAttribute("dir");
    words.replaceChildren(made);
    words.dir = "auto";
  }

  /** @param {(string | HTMLElement)[]} words @param {string} href */
  link_(words, href) {
    const link = element("a");
    link.append(...words);
    link.href = href;
    link.dir = "ltr";
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    return link;
  }
}
