import { albumAddress } from "../files/albumFiles.js";
import { identifierOf, listOf, recordOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {{ all: number, available: number, missing: number, unreadable: number }} AttachmentCounts */
/**
 * An attachment that the album does not hold.
 * @typedef {{ message: number, attachment: number }} Absence
 */

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
    /** @type {Map<string, number>} Messages that warnings speak of, by their own id. */
    this.indexByMessageID_ = new Map();
    /** @type {Map<string, number>} Messages that warnings speak of, by the id of an attachment. */
    this.indexByAttachmentID_ = new Map();
    /** @type {Set<string>} */
    this.sourceIDs_ = new Set();
    for (const raw of conversation.rawWarnings) {
      const id = identifierOf(recordOf(raw).sourceID);
      if (id !== undefined) this.sourceIDs_.add(id);
    }
  }

  /** @param {number} first @param {number} end */
  add(first, end) {
    for (let index = first; index < end; index++) {
      const raw = recordOf(this.conversation_.rawMessages[index]);
      const sender = this.conversation_.senderKey(index);
      this.countBySender.set(sender, (this.countBySender.get(sender) ?? 0) + 1);
      const id = identifierOf(raw.id);
      if (id !== undefined && this.sourceIDs_.has(id)) this.indexByMessageID_.set(id, index);
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
    const byAttachment = this.indexByAttachmentID_.get(sourceID);
    if (code.startsWith("attachment_")) return byAttachment;
    return this.indexByMessageID_.get(sourceID) ?? byAttachment;
  }

  /** @param {unknown} raw @param {number} message @param {number} place */
  addAttachment_(raw, message, place) {
    const { id, availability, archivePath } = attachmentOf(raw);
    this.attachments.all += 1;
    if (this.sourceIDs_.has(id)) this.indexByAttachmentID_.set(id, message);
    if (availability === "available" && albumAddress(archivePath, "attachments") !== undefined) {
      this.attachments.available += 1;
      return;
    }
    this.attachments[availability === "unreadable" ? "unreadable" : "missing"] += 1;
    this.absences.push({ message, attachment: place });
  }
}
