import { albumAddress, attachmentKind, mimeTypeOf } from "./albumFiles.js";

/** @typedef {import("../records/records.js").Attachment} Attachment */

/** Kinds that few browsers play; others are tried even where a browser is not sure of them. */
const rarelyPlayed = /caf|amr|aiff|3gpp|qcelp|x-msvideo|mpeg4-generic/;

/** What this browser can show, as far as it is known. */
export class Showability {
  constructor() {
    /** @type {Set<string>} Addresses that this browser has failed to show. */
    this.failed = new Set();
  }

  /**
   * Where the file of an attachment lies, relative to the page; nothing where the album does not hold it.
   * @param {Attachment} attachment
   */
  addressOf(attachment) {
    return attachment.availability === "available" ? albumAddress(attachment.archivePath, "attachments") : undefined;
  }

  /**
   * How an attachment of the album is worth trying to show: as what it is, or as a document to open.
   * @param {Attachment} attachment
   * @param {string} address
   * @returns {"image" | "video" | "audio" | "document"}
   */
  lookOf(attachment, address) {
    const kind = attachmentKind(attachment);
    if (this.failed.has(address)) return "document";
    if (kind === "video" || kind === "audio") {
      const type = mimeTypeOf(attachment);
      if (document.createElement(kind).canPlayType(type) === "" && rarelyPlayed.test(type)) return "document";
    }
    return kind;
  }

  /**
   * The browser could not show what lies at an address; it is not tried again.
   * @param {string} address
   */
  giveUp(address) {
    this.failed.add(address);
  }
}
