import { element, isolated } from "../page/elements.js";
import { icon } from "../page/icons.js";

/** @typedef {import("../page/Album.js").Album} Album */

/** So many characters fill more than a sheet: such a bubble is cut rather than a page left white before it. */
const longerThanPaper = 8000;

/** Rows of the conversation as they stand on paper, where nothing can be pressed, pointed at or played. */
export class PaperRows {
  /** @param {Album} album @param {(index: number) => HTMLElement} buildRow */
  constructor(album, buildRow) {
    this.album = album;
    this.buildRow_ = buildRow;
  }

  /**
   * @param {number} index
   * @param {boolean} isFirst of a stretch: then the day and the name stand above it wherever it stands in the conversation
   * @param {boolean} hasPictures
   */
  build(index, isFirst, hasPictures) {
    const row = this.buildRow_(index);
    for (const name of ["aria-posinset", "aria-setsize", "aria-label", "tabindex"]) row.removeAttribute(name);
    if (isFirst) this.addHeading_(row, index);
    if (isFirst || row.classList.contains("starts-group")) {
      row.classList.add("starts-group");
      row.querySelector(".message > .visually-hidden")?.classList.replace("visually-hidden", "sender");
    }
    row.querySelectorAll(".reaction-people").forEach((people) => people.removeAttribute("hidden"));
    row.querySelectorAll(".reactions, .avatar").forEach((one) => one.remove());
    row.querySelectorAll("figure.player").forEach((player) => this.settlePlayer_(player));
    row.querySelectorAll("a.picture").forEach((picture) => this.settlePicture_(picture, hasPictures));
    row.querySelectorAll(".bubble").forEach((bubble) => {
      bubble.classList.toggle("is-longer-than-paper", (bubble.textContent ?? "").length > longerThanPaper);
    });
    // The time stands under the message's own words, the reactions under the time.
    row.querySelector(".message > .stack")?.after(...row.querySelectorAll(".message > .meta"));
    row.querySelectorAll("button.reply").forEach((reply) => replaceTag(reply, "div"));
    return row;
  }

  /** @param {HTMLElement} row @param {number} index */
  addHeading_(row, index) {
    if (row.querySelector(".day")) return;
    const { formats, speech, timeline } = this.album;
    const time = timeline.times[index];
    row.prepend(element("h2", "day", Number.isNaN(time) ? speech.say("unknownDate") : formats.day(time)));
  }

  /**
   * A film or a recording leaves its name.
   * @param {Element} player
   */
  settlePlayer_(player) {
    const kind = player.querySelector("video") ? "video" : "audio";
    player.querySelector("video, audio")?.remove();
    const caption = player.querySelector("figcaption");
    caption?.prepend(icon(kind), element("span", "", `${this.album.speech.say(kind)} · `));
  }

  /** @param {Element} picture @param {boolean} isShown */
  settlePicture_(picture, isShown) {
    const image = picture.querySelector("img");
    if (!image) return;
    if (isShown) {
      image.loading = "eager";
      image.decoding = "sync";
      return;
    }
    const name = element("div", "player-name part");
    name.append(icon("image"), element("span", "", `${this.album.speech.say("image")} · `), isolated(image.title || image.alt));
    picture.replaceWith(name);
    image.removeAttribute("src");
  }
}

/** @param {Element} old @param {"div"} tag */
function replaceTag(old, tag) {
  const made = element(tag, old.className);
  made.append(...old.childNodes);
  old.replaceWith(made);
}
