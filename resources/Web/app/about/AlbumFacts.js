import { albumAddress } from "../files/albumFiles.js";
import { identifierOf, listOf, recordOf } from "../records/fields.js";
import { attachmentOf, payloadStateOf, warningOf } from "../records/records.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {{ all: number, available: number, missing: number, unreadable: number }} AttachmentCounts */
/**
 * An attachment that the album does not hold.
 * @typedef {{ message: number, attachment: number }} Absence
 */

/** @param {string} code of a warning */
const isOfAttachment = (code) => code.startsWith("attachment_");

/** What is counted over the whole conversation, a range of messages at a time. */
export class AlbumFacts {
  /** @param {Conversation} conversation */
  constructor(conversation) {
    this.conversation_ = conversation;
    /** @type {Map<string, number>} Messages of each sender, by Conversation.senderKey. */
    this.countBySender = new Map();
    /** @type {AttachmentCounts} */
    this.attachments = { all: 0, available: 0, missing: 0, unreadable: 0 };
    /** @type {Absence[]} */
    this.absences = [];
    /** @type {number[]} Messages that could not be read, or only in part, and that no warning speaks of. */
    this.partlyRead = [];
    /** @type {Map<string, number>} Messages that warnings speak of, by their own id. */
    this.indexByMessageID_ = new Map();
    /** @type {Map<string, number>} Messages that warnings speak of, by the id of an attachment. */
    this.indexByAttachmentID_ = new Map();
    /** @type {Set<string>} */
    this.messageSourceIDs_ = new Set();
    /** @type {Set<string>} */
    this.attachmentSourceIDs_ = new Set();
    for (const { code, sourceID } of conversation.rawWarnings.map(warningOf)) {
      if (sourceID !== undefined) (isOfAttachment(code) ? this.attachmentSourceIDs_ : this.messageSourceIDs_).add(sourceID);
    }
  }

  /** @param {number} first @param {number} end */
  add(first, end) {
    for (let index = first; index < end; index++) {
      const raw = recordOf(this.conversation_.rawMessages[index]);
      const sender = this.conversation_.senderKey(index);
      this.countBySender.set(sender, (this.countBySender.get(sender) ?? 0) + 1);
      const id = identifierOf(raw.id);
      const isWarnedOf = id !== undefined && this.messageSourceIDs_.has(id);
      if (isWarnedOf) this.indexByMessageID_.set(id, index);
      else if (payloadStateOf(this.conversation_.rawMessages[index]) !== "decoded") this.partlyRead.push(index);
      listOf(raw.attachments).forEach((attachment, place) => this.addAttachment_(attachment, index, place));
    }
  }

  /**
   * The message that a warning speaks of.
   * @param {{ code: string, sourceID: string | undefined }} warning
   * @returns {number | undefined}
   */
  indexOfSource({ code, sourceID }) {
    if (sourceID === undefined) return undefined;
    // Both are numbers, each of a table of its own.
    return (isOfAttachment(code) ? this.indexByAttachmentID_ : this.indexByMessageID_).get(sourceID);
  }

  /** @param {unknown} raw @param {number} message @param {number} place */
  addAttachment_(raw, message, place) {
    const { id, availability, archivePath } = attachmentOf(raw);
    this.attachments.all += 1;
    if (this.attachmentSourceIDs_.has(id)) this.indexByAttachmentID_.set(id, message);
    if (availability === "available" && albumAddress(archivePath, "attachments") !== undefined) {
      this.attachments.available += 1;
      return;
    }
    this.attachments[availability === "unreadable" ? "unreadable" : "missing"] += 1;
    this.absences.push({ message, attachment: place });
  }
}
