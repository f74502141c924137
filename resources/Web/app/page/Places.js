/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("../timeline/VirtualList.js").Place} Place */
/** @typedef {import("./Settings.js").Settings} Settings */
/** @typedef {import("./Settings.js").StoredPlace} StoredPlace */

const linkPattern = /^#m=(.+)$/;

/**
 * The guid of the message that an address leads to; nothing where it names none. What was typed by hand may not be encoded.
 * @param {string} hash
 */
export function linkedGUID(hash) {
  const found = linkPattern.exec(hash);
  if (!found) return undefined;
  try {
    return decodeURIComponent(found[1]);
  } catch {
    return found[1];
  }
}

/**
 * The part of an address that leads to a message. It names nothing but the message, so that it holds wherever the album lies.
 * @param {string} guid
 */
export function linkTo(guid) {
  // Half a surrogate pair cannot stand in an address; such a guid gets a link that leads nowhere rather than an error.
  return `#m=${encodeURIComponent(guid.replace(/\p{Surrogate}/gu, "\ufffd"))}`;
}

/**
 * Where the reader is: in the browser's history, so that its Back leads back to the pixel, in the address, and in the store for
 * the next visit.
 */
export class Places {
  /**
   * @param {Conversation} conversation
   * @param {Settings} settings
   * @param {() => Place | undefined} current
   */
  constructor(conversation, settings, current) {
    this.conversation_ = conversation;
    this.settings_ = settings;
    this.current_ = current;
    this.hasBegun_ = false;
    /**
     * Leads to a place that was kept.
     * @type {(place: Place) => void}
     */
    this.onReturn = () => {};
    /**
     * Leads to a message that an address names, or tells that there is none.
     * @type {(index: number | undefined) => void}
     */
    this.onLink = () => {};
    /**
     * Called when there is, or is no longer, a way back.
     * @type {(hasWayBack: boolean) => void}
     */
    this.onDepth = () => {};
    window.addEventListener("popstate", (event) => this.onHistory_(event.state));
    window.addEventListener("pagehide", () => this.keep());
    document.addEventListener("visibilitychange", () => this.keep());
  }

  /** Where a visit begins: at a linked message, or where the last one ended; nowhere in particular the first time. */
  begin() {
    const guid = linkedGUID(window.location.hash);
    const state = this.stateOf_(window.history.state);
    this.hasBegun_ = true;
    if (state) this.return_(state.place);
    else if (guid !== undefined) this.onLink(this.conversation_.indexOfGUID(guid));
    else if (this.settings_.place) this.return_(this.settings_.place);
    this.onDepth((state?.depth ?? 0) > 0);
  }

  /**
   * Keeps the way back before a jump, and puts the address of the message that it leads to into the address bar. Returns whether
   * the browser took it up.
   * @param {number} index
   */
  leaveFor(index) {
    const depth = (this.stateOf_(window.history.state)?.depth ?? 0);
    const here = this.stored_();
    const { guid } = this.conversation_.message(index);
    this.write_("replaceState", { place: here, depth }, undefined);
    return this.write_("pushState", { place: { guid, index, above: -window.innerHeight / 3 }, depth: depth + 1 }, linkTo(guid));
  }

  back() {
    window.history.back();
  }

  /** Remembers the present place; the one of the last visit is not lost before this one has begun. */
  keep() {
    const place = this.hasBegun_ ? this.stored_() : undefined;
    if (!place) return;
    this.settings_.place = place;
    const depth = this.stateOf_(window.history.state)?.depth ?? 0;
    this.write_("replaceState", { place, depth }, undefined);
  }

  /** @returns {StoredPlace | undefined} */
  stored_() {
    const place = this.current_();
    return place && { ...place, guid: this.conversation_.message(place.index).guid };
  }

  /**
   * Browsers refuse too many changes in a short time; then this step alone is not remembered.
   * @param {"pushState" | "replaceState"} how @param {unknown} state @param {string | undefined} address
   */
  write_(how, state, address) {
    try {
      window.history[how](state, "", address);
      return true;
    } catch {
      return false;
    }
  }

  /** @param {unknown} state */
  onHistory_(state) {
    const kept = this.stateOf_(state);
    const guid = linkedGUID(window.location.hash);
    if (kept) this.return_(kept.place);
    else if (guid !== undefined) this.onLink(this.conversation_.indexOfGUID(guid));
    this.onDepth((kept?.depth ?? 0) > 0);
  }

  /** @param {unknown} state @returns {{ place: StoredPlace, depth: number } | undefined} */
  stateOf_(state) {
    const { place, depth } = /** @type {{ place?: StoredPlace, depth?: number }} */ (state ?? {});
    return place && typeof place.guid === "string" ? { place, depth: depth ?? 0 } : undefined;
  }

  /**
   * An album that was made anew may hold more messages: the guid decides.
   * @param {StoredPlace} stored
   */
  return_({ guid, index, above, sight }) {
    const isThere = index < this.conversation_.messageCount && this.conversation_.message(index).guid === guid;
    const found = isThere ? index : this.conversation_.indexOfGUID(guid);
    if (found !== undefined) this.onReturn({ index: found, above, sight });
  }
}
