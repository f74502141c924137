import { makeDialog, openDialog, whenClosed } from "../page/dialogs.js";
import { button, element } from "../page/elements.js";
import { Paper } from "./Paper.js";
import { PrintChoice } from "./PrintChoice.js";
import { allIndices } from "./printRange.js";

/** @typedef {import("../page/Album.js").Album} Album */

/** The browser's own menu waits for the page, and no longer than this many messages take. */
const mostAtOnce = 20_000;

/** Prints the conversation or some days of it, whole, which the list on the screen never is. */
export class PrintPanel {
  /** @param {Album} album @param {(index: number) => HTMLElement} buildRow a message as it stands in the conversation, unshortened */
  constructor(album, buildRow) {
    this.album = album;
    const { dialog, body } = makeDialog(album.speech, "print-panel", album.speech.say("print"));
    this.dialog = dialog;
    this.body_ = body;
    /**
     * Called before the page is laid out for paper, and when it stands on the screen again.
     * @type {(isOnPaper: boolean) => void}
     */
    this.onPaper = () => {};
    this.paper_ = new Paper(album, buildRow);
    /** @type {PrintChoice | undefined} */
    this.choice_ = undefined;
    /** @type {AbortController | undefined} */
    this.preparing_ = undefined;
    /** The browser has begun to take the paper, and will say when it is done. */
    this.isTaken_ = false;
    whenClosed(dialog, () => this.drop_());
    document.addEventListener("keydown", (event) => this.onKey_(event));
    window.addEventListener("beforeprint", () => this.onBeforePrint_());
    window.addEventListener("afterprint", () => this.onAfterPrint_());
  }

  open() {
    this.drop_();
    this.showChoice_();
    openDialog(this.dialog);
  }

  /** Ends what is being prepared, and leaves nothing of it. */
  drop_() {
    if (!this.preparing_) return;
    this.preparing_.abort();
    this.preparing_ = undefined;
    this.paper_.clear();
  }

  /** @param {KeyboardEvent} event */
  onKey_(event) {
    if (event.key.toLowerCase() !== "p" || event.altKey || event.shiftKey || event.ctrlKey === event.metaKey) return;
    event.preventDefault();
    if (!this.dialog.open) this.open();
  }

  showChoice_() {
    this.choice_ = new PrintChoice(this.album, this.choice_?.settings);
    const start = button("push-button is-primary", () => this.prepare_());
    start.textContent = this.album.speech.say("printStart");
    start.autofocus = true;
    const actions = element("div", "print-actions");
    actions.append(start);
    this.choice_.onChange = (count) => {
      start.disabled = count === 0;
    };
    this.choice_.update();
    this.body_.replaceChildren(this.choice_.element, actions);
  }

  async prepare_() {
    if (!this.choice_) return;
    const preparing = new AbortController();
    this.preparing_ = preparing;
    const indices = this.choice_.indices();
    const showProgress = this.showWork_(indices.length, preparing);
    const isPrepared = await this.paper_.prepare(indices, this.choice_.settings.hasPictures, showProgress, preparing.signal);
    if (this.preparing_ !== preparing) return;
    this.preparing_ = undefined;
    if (isPrepared) this.print_();
    else if (this.dialog.open) this.showChoice_();
  }

  print_() {
    this.dialog.close();
    this.isTaken_ = false;
    window.print();
    // Where nothing can be printed the browser says nothing either.
    if (!this.isTaken_) this.paper_.clear();
  }

  /**
   * The work while it goes on; gives what is to be called with each step of it.
   * @param {number} all
   * @param {AbortController} preparing
   * @returns {(done: number) => void}
   */
  showWork_(all, preparing) {
    const { speech } = this.album;
    const bar = element("progress", "progress");
    bar.max = all;
    bar.setAttribute("aria-label", speech.say("print"));
    const words = element("p", "print-count");
    const cancel = button("push-button", () => preparing.abort());
    cancel.textContent = speech.say("cancel");
    const actions = element("div", "print-actions");
    actions.append(cancel);
    this.body_.replaceChildren(bar, words, actions);
    cancel.focus();
    return (done) => {
      bar.value = done;
      const [one, other] = [done, all].map((count) => speech.numbers.format(count));
      words.textContent = speech.say("printPreparing", { done: one, all: other });
    };
  }

  /** The browser's own menu asks for paper without having asked here. */
  onBeforePrint_() {
    this.isTaken_ = true;
    this.onPaper(true);
    if (this.paper_.isPrepared && !this.preparing_) return;
    this.preparing_?.abort();
    const { messageCount } = this.album.conversation;
    if (messageCount <= mostAtOnce) this.paper_.prepareAtOnce(allIndices(messageCount));
    else this.paper_.prepareNotice(this.album.speech.say("printTooLong"));
  }

  onAfterPrint_() {
    this.paper_.clear();
    this.onPaper(false);
  }
}
