import { makeDialog, openDialog, whenClosed } from "../page/dialogs.js";
import { button, element } from "../page/elements.js";
import { isolatedText } from "../text/isolatedText.js";
import { AlbumCheck } from "./AlbumCheck.js";
import { CheckReport } from "./CheckReport.js";
import { pickedFiles } from "./pickedFiles.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("./AlbumCheck.js").Progress} Progress */

/** Compares the files of the folder that the reader chooses with the list that was written when the album was made. */
export class CheckPanel {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
    const { dialog, body } = makeDialog(album.speech, "check", album.speech.say("check"));
    this.dialog = dialog;
    this.body_ = body;
    this.report_ = new CheckReport(album);
    /** @type {AbortController | undefined} */
    this.running_ = undefined;
    whenClosed(dialog, () => this.drop_());
  }

  open() {
    this.drop_();
    this.body_.replaceChildren(element("p", "check-intro", this.album.speech.say("checkIntro")), this.chooser_("chooseFolder"));
    openDialog(this.dialog);
  }

  /** Ends a check, and tells nothing of it. */
  drop_() {
    this.running_?.abort();
    this.running_ = undefined;
  }

  /**
   * A field for a folder. It fills its whole place, so that a folder can also be dropped there.
   * @param {"chooseFolder" | "checkAgain"} word
   */
  chooser_(word) {
    const place = element("div", "check-chooser");
    const field = element("input", "check-field");
    field.type = "file";
    field.webkitdirectory = true;
    field.multiple = true;
    field.setAttribute("aria-label", this.album.speech.say(word));
    field.addEventListener("change", () => {
      if (field.files) this.check_(field.files);
    });
    const looks = element("span", "push-button is-primary", this.album.speech.say(word));
    looks.setAttribute("aria-hidden", "true");
    place.append(field, looks);
    return place;
  }

  /** @param {FileList} list */
  async check_(list) {
    this.running_?.abort();
    const running = new AbortController();
    this.running_ = running;
    const showProgress = this.showWork_(running);
    const check = new AlbumCheck(this.album.conversation, showProgress);
    const outcome = await check.run(pickedFiles(list), running.signal);
    if (this.running_ !== running) return;
    this.running_ = undefined;
    const status = element("div");
    status.setAttribute("role", "status");
    const chooser = this.chooser_("checkAgain");
    this.body_.replaceChildren(status, chooser);
    // Screen readers say what enters a status that stands already.
    status.append(this.report_.build(outcome));
    if (this.dialog.open) chooser.querySelector("input")?.focus({ preventScroll: true });
  }

  /**
   * The work while it goes on; gives what is to be called with each step of it.
   * @param {AbortController} running
   * @returns {(progress: Progress) => void}
   */
  showWork_(running) {
    const { speech } = this.album;
    const bar = element("progress", "progress");
    bar.setAttribute("aria-label", speech.say("check"));
    const count = element("p", "check-count");
    const name = element("p", "check-name");
    const cancel = button("push-button", () => running.abort());
    cancel.textContent = speech.say("cancel");
    this.body_.replaceChildren(bar, count, name, cancel);
    cancel.focus();
    let isDrawn = true;
    return (progress) => {
      if (!isDrawn) return;
      isDrawn = false;
      requestAnimationFrame(() => {
        isDrawn = true;
        this.fillWork_(bar, count, name, progress);
      });
    };
  }

  /** @param {HTMLProgressElement} bar @param {HTMLElement} count @param {HTMLElement} name @param {Progress} progress */
  fillWork_(bar, count, name, { done, all, path }) {
    const { formats, speech } = this.album;
    bar.max = Math.max(all, 1);
    bar.value = Math.min(done, all);
    count.textContent = speech.say("checkProgress", { done: formats.size(Math.min(done, all)), all: formats.size(all) });
    name.textContent = speech.say("checkingFile", { name: isolatedText(path) });
  }
}
