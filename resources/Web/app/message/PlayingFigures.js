import { element } from "../page/elements.js";

/**
 * Players that go on while their messages are out of sight. A browser stops a player that leaves the page, so these wait in an
 * unseen corner of it until their message is shown again, or until they come to rest.
 */
export class PlayingFigures {
  constructor() {
    this.corner_ = element("div");
    this.corner_.hidden = true;
    /** @type {Map<string, HTMLElement>} By the address of what they play. */
    this.figures_ = new Map();
  }

  /**
   * Takes over what plays in a row that is about to leave.
   * @param {HTMLElement} row
   */
  keep(row) {
    for (const player of row.querySelectorAll("audio, video")) {
      const figure = player.closest("figure");
      if (player instanceof HTMLMediaElement && !player.paused && figure) this.keepOne_(player, figure);
    }
  }

  /** @param {HTMLMediaElement} player @param {HTMLElement} figure */
  keepOne_(player, figure) {
    const address = player.getAttribute("src") ?? "";
    if (!this.corner_.isConnected) document.body.append(this.corner_);
    this.figures_.get(address)?.remove();
    this.figures_.set(address, figure);
    this.corner_.append(figure);
    player.addEventListener("pause", () => {
      if (this.figures_.get(address) === figure) this.take(address)?.remove();
    }, { once: true });
  }

  /**
   * Gives back what plays an address, where something does.
   * @param {string} address
   */
  take(address) {
    const figure = this.figures_.get(address);
    this.figures_.delete(address);
    figure?.classList.remove("first-of-run", "last-of-run");
    return figure;
  }
}
