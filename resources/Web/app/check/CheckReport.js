import { button, element, isolated } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { isolatedText } from "../text/isolatedText.js";
import { verdictOf } from "./verdict.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../words/Speech.js").WordKey} WordKey */
/** @typedef {import("./AlbumCheck.js").Outcome} Outcome */
/** @typedef {import("./verdict.js").Findings} Findings */

/** So many files of a list are named at once. */
const fewFiles = 20;
/** And so many more each time that more are wanted. */
const manyFiles = 2000;

/** @type {{ readonly [verdict: string]: WordKey }} */
const verdictWords = { valid: "verdictValid", incomplete: "verdictIncomplete", damaged: "verdictDamaged" };

/** What came of a check, in words. */
export class CheckReport {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
  }

  /** @param {Outcome} outcome @returns {HTMLElement} */
  build(outcome) {
    if (outcome.kind === "findings") return this.findings_(outcome.findings);
    const made = element("div", "check-report");
    if (outcome.kind === "badManifest") made.append(this.verdict_("damaged"));
    made.append(element("p", "check-detail", this.reason_(outcome)));
    return made;
  }

  /**
   * Why there are no findings.
   * @param {Exclude<Outcome, { kind: "findings" }>} outcome
   */
  reason_(outcome) {
    const { formats, speech } = this.album;
    if (outcome.kind === "otherConversation") return speech.say("otherAlbum", { title: isolatedText(outcome.title) });
    if (outcome.kind === "otherAlbum") return speech.say("otherExport", { date: formats.moment(outcome.madeAt) });
    if (outcome.kind === "cancelled") return speech.say("checkCancelled");
    return speech.say(outcome.kind);
  }

  /** @param {Findings} findings */
  findings_(findings) {
    const { speech } = this.album;
    const { checkedCount, missing, changed, unreadable, unexpected, unlisted, countsAgree } = findings;
    const verdict = verdictOf(findings);
    const made = element("div", "check-report");
    made.append(this.verdict_(verdict));
    const changedCount = changed.length + unreadable.length;
    if (verdict === "valid") made.append(this.detail_("validDetail", checkedCount));
    if (verdict === "incomplete") made.append(this.detail_("incompleteDetail", missing.length));
    if (changedCount > 0) made.append(this.detail_("damagedDetail", changedCount));
    if (!countsAgree) made.append(element("p", "check-detail", speech.say("manifestCounts")));
    const unreadableDetail = speech.say("fileUnreadable");
    made.append(
      ...this.list_(speech.sayCount("manifestGaps", unlisted.length), unlisted.length, (place) => [unlisted[place]]),
      ...this.list_(speech.sayCount("changedFiles", changedCount), changedCount, (place) => (place < unreadable.length
        ? [unreadable[place], unreadableDetail] : [changed[place - unreadable.length]])),
      ...this.list_(speech.sayCount("missingFiles", missing.length), missing.length, (place) => [missing[place]]),
      ...this.list_(speech.sayCount("unexpectedFiles", unexpected.length), unexpected.length, (place) => [unexpected[place]],
        speech.say("unexpectedDetail")),
    );
    return made;
  }

  /** @param {import("./verdict.js").Verdict} verdict */
  verdict_(verdict) {
    const made = element("p", `check-verdict is-${verdict}`);
    made.append(icon(verdict === "valid" ? "check" : "warning"), this.album.speech.say(verdictWords[verdict]));
    return made;
  }

  /** @param {WordKey} word @param {number} count */
  detail_(word, count) {
    return element("p", "check-detail", this.album.speech.sayCount(word, count));
  }

  /**
   * Files by name, the first of them at once and the others a press away; nothing where there are none.
   * @param {string} heading
   * @param {number} count
   * @param {(place: number) => string[]} wordsOf a file's path, and what more is to be said of it
   * @param {string} [note]
   * @returns {HTMLElement[]}
   */
  list_(heading, count, wordsOf, note = "") {
    if (count === 0) return [];
    const section = element("section", "check-files");
    const list = element("ul");
    let shown = 0;
    const more = button("text-button", () => grow(manyFiles));
    const grow = (/** @type {number} */ step) => {
      const first = list.children.length;
      for (const end = Math.min(count, shown + step); shown < end; shown++) list.append(this.file_(wordsOf(shown)));
      more.textContent = this.album.speech.say("showMore");
      more.hidden = shown === count;
      // The focus would be lost with the button.
      const next = list.children[first];
      if (first > 0 && next instanceof HTMLElement) {
        next.tabIndex = -1;
        next.focus();
      }
    };
    grow(fewFiles);
    section.append(element("h3", "", heading));
    if (note) section.append(element("p", "check-note", note));
    section.append(list, more);
    return [section];
  }

  /** @param {string[]} words */
  file_([path, detail]) {
    const item = element("li");
    item.append(isolated(path));
    if (detail) item.append(" – ", element("span", "check-note", detail));
    return item;
  }
}
