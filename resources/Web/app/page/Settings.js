/** @typedef {import("../words/Formats.js").Zone} Zone */
/** @typedef {"system" | "light" | "dark"} Appearance */
/** @typedef {import("../timeline/VirtualList.js").Place} Place */
/** @typedef {import("../timeline/Eye.js").Sight} Sight */
/** @typedef {Place & { guid: string }} StoredPlace */

/**
 * What was under the eye, where it was stored as such.
 * @param {unknown} stored
 * @returns {Sight | undefined}
 */
function sightOf(stored) {
  const { part, pixels, share, width } = /** @type {{ [key: string]: unknown }} */ (stored ?? {});
  if (![part, pixels, share, width].every((value) => Number.isFinite(value))) return undefined;
  return { part: Number(part), pixels: Number(pixels), share: Number(share), width: Number(width) };
}

/**
 * What the reader has chosen, and where they were. All albums that are opened from a disk share one store, so each keeps to the
 * keys of its own conversation. Where a browser has no store, or refuses it, choices hold until the page is closed.
 */
export class Settings {
  /** @param {string} guid of the conversation */
  constructor(guid) {
    this.prefix_ = `quillbook ${guid} `;
    /** @type {Map<string, unknown>} What was chosen since the page was opened. */
    this.chosen_ = new Map();
  }

  /** @returns {Appearance} */
  get appearance() {
    const stored = this.read_("appearance");
    return stored === "light" || stored === "dark" ? stored : "system";
  }

  set appearance(appearance) {
    this.write_("appearance", appearance);
  }

  /** @returns {Zone} */
  get zone() {
    return this.read_("zone") === "UTC" ? "UTC" : "local";
  }

  set zone(zone) {
    this.write_("zone", zone);
  }

  /** @returns {StoredPlace | undefined} */
  get place() {
    const stored = this.read_("place");
    if (typeof stored !== "object" || stored === null) return undefined;
    const { guid, index, above, sight } = /** @type {{ [key: string]: unknown }} */ (stored);
    if (typeof guid !== "string" || !Number.isSafeInteger(index) || !Number.isFinite(above)) return undefined;
    return { guid, index: Number(index), above: Number(above), sight: sightOf(sight) };
  }

  set place(place) {
    this.write_("place", place);
  }

  /** @param {string} key @returns {unknown} */
  read_(key) {
    if (this.chosen_.has(key)) return this.chosen_.get(key);
    try {
      return JSON.parse(window.localStorage.getItem(this.prefix_ + key) ?? "null");
    } catch {
      return undefined;
    }
  }

  /** @param {string} key @param {unknown} value */
  write_(key, value) {
    this.chosen_.set(key, value);
    try {
      window.localStorage.setItem(this.prefix_ + key, JSON.stringify(value ?? null));
    } catch {
      // Private windows and full stores refuse: then the next visit begins anew.
    }
  }
}
