import { button, element, isolated } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { linksOf } from "./collect.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../page/icons.js").IconName} IconName */
/** @typedef {import("./Entries.js").Entries} Entries */
/** @typedef {import("./Entries.js").Entry} Entry */

/** The contents of the rows of audio files, links and documents. */
export class EntryRows {
  /** @param {Album} album @param {Entries} entries @param {(messageIndex: number) => void} onShow leads to a message */
  constructor(album, entries, onShow) {
    this.album = album;
    this.entries = entries;
    this.onShow_ = onShow;
  }

  /** @param {number} messageIndex @param {number} part @param {() => void} changed @returns {Node[]} */
  audio(messageIndex, part, changed) {
    const entry = this.entries.entryAt(messageIndex, part);
    const nodes = this.file_(entry);
    if (entry.look === "audio") nodes.splice(2, 0, this.player_(entry, changed));
    return nodes;
  }

  /** @param {number} messageIndex @param {number} part @returns {Node[]} */
  file(messageIndex, part) {
    return this.file_(this.entries.entryAt(messageIndex, part));
  }

  /** @param {number} messageIndex @param {number} part @returns {Node[]} */
  link(messageIndex, part) {
    const href = linksOf(this.album.conversation.rawMessages[messageIndex])[part] ?? "";
    const link = opening("entry-link", href);
    const address = isolated(href.replace(/^https?:\/\//u, ""), "entry-address");
    address.dir = "ltr";
    link.append(element("span", "entry-name", new URL(href).hostname), address);
    const words = element("div", "entry-words");
    words.append(link, element("span", "entry-facts", this.entries.sentOn(messageIndex)));
    return [this.sign_("link"), words, this.actions_(href, messageIndex)];
  }

  /** @param {Entry} entry @returns {Node[]} */
  file_(entry) {
    const words = element("div", "entry-words");
    words.append(isolated(entry.name, "entry-name"), element("span", "entry-facts", this.entries.factsOf(entry)),
      element("span", "entry-facts", this.entries.sentOn(entry.messageIndex)));
    const trouble = this.entries.troubleOf(entry);
    if (trouble) words.append(element("span", "entry-trouble", trouble));
    const sign = this.sign_(this.entries.iconOf(entry));
    sign.classList.toggle("is-absent", entry.look === "absent");
    const actions = this.actions_(entry.name, entry.messageIndex);
    if (entry.address !== undefined) {
      const open = opening("text-button", entry.address);
      open.append(this.album.speech.say("openFile"));
      open.setAttribute("aria-label", `${open.textContent}: ${entry.name}`);
      actions.prepend(open);
    }
    return [sign, words, actions];
  }

  /** @param {Entry} entry @param {() => void} changed */
  player_({ address = "", name }, changed) {
    const player = element("audio", "entry-player");
    player.controls = true;
    player.preload = "metadata";
    player.setAttribute("aria-label", name);
    player.addEventListener("error", () => {
      this.album.showability.giveUp(address);
      changed();
    });
    player.src = address;
    return player;
  }

  /** @param {IconName} name */
  sign_(name) {
    const made = element("span", "entry-sign");
    made.append(icon(name));
    return made;
  }

  /** @param {string} name what they are about @param {number} messageIndex */
  actions_(name, messageIndex) {
    const show = button("text-button", () => this.onShow_(messageIndex));
    show.append(this.album.speech.say("showInConversation"));
    show.setAttribute("aria-label", `${show.textContent}: ${name}`);
    const actions = element("div", "entry-actions");
    actions.append(show);
    return actions;
  }
}

/**
 * A link that opens apart and tells nothing of where it was.
 * @param {string} className
 * @param {string} address
 */
export function opening(className, address) {
  const link = element("a", className);
  link.href = address;
  link.target = "_blank";
  link.rel = "noopener noreferrer";
  return link;
}
