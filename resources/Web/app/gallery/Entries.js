import { namesOf, typeToTell } from "../files/absence.js";
import { attachmentExtension, attachmentKind } from "../files/albumFiles.js";
import { listOf, recordOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";
import { isolatedText } from "../text/isolatedText.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../page/icons.js").IconName} IconName */
/** @typedef {import("../records/records.js").Attachment} Attachment */

/**
 * An attachment with what is said about it.
 * @typedef {object} Entry
 * @property {number} messageIndex
 * @property {Attachment} attachment
 * @property {string} name
 * @property {"image" | "video" | "audio" | "document"} kind what it is
 * @property {"image" | "video" | "audio" | "document" | "absent"} look how it can be shown here
 * @property {string | undefined} address
 */

/** Tells what stands at the places of a collection. Nothing is kept: the time zone may be another one the next time. */
export class Entries {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
  }

  /** @param {number} messageIndex @param {number} part @returns {Entry} */
  entryAt(messageIndex, part) {
    const { conversation, showability, speech } = this.album;
    const attachment = attachmentOf(listOf(recordOf(conversation.rawMessages[messageIndex]).attachments)[part]);
    const address = showability.addressOf(attachment);
    const look = address === undefined ? "absent" : showability.lookOf(attachment, address);
    return { messageIndex, attachment, address, look, kind: attachmentKind(attachment),
      name: (look === "absent" ? namesOf(attachment)[0] : attachment.name) || speech.say("attachment") };
  }

  /**
   * Kind, ending and size, as in "Image · JPEG · 2.1 MB"; of what is not in the album also another name and the type.
   * @param {Entry} entry
   */
  factsOf({ attachment, kind, look }) {
    const { formats, speech } = this.album;
    const ending = attachmentExtension(attachment).toUpperCase();
    const size = attachment.byteSize === undefined ? "" : formats.size(attachment.byteSize);
    const facts = [speech.say(kind), ending, size].filter(Boolean);
    if (look !== "absent") return facts.join(" · ");
    const type = typeToTell(attachment);
    const names = namesOf(attachment).slice(1).map(isolatedText);
    return [...names, ...facts, ...(type ? [isolatedText(type)] : [])].join(" · ");
  }

  /**
   * Why an entry is not shown as what it is; empty for one that is.
   * @param {Entry} entry
   */
  troubleOf({ attachment, kind, look }) {
    const { speech } = this.album;
    const absence = attachment.availability === "unreadable" ? "unreadableAttachment" : "missingAttachment";
    if (look === "absent") return speech.say(absence);
    return look === "document" && kind !== "document" ? speech.say("cannotShow") : "";
  }

  /**
   * All that is said about an entry, in one line.
   * @param {Entry} entry
   */
  labelOf(entry) {
    const words = [this.album.speech.say(entry.kind), isolatedText(entry.name), this.sentOn(entry.messageIndex), this.troubleOf(entry)];
    return words.filter(Boolean).join(" · ");
  }

  /** @param {Entry} entry @returns {IconName} */
  iconOf({ kind, look }) {
    return look === "absent" ? "warning" : kind;
  }

  /**
   * Who sent a message and on which day.
   * @param {number} messageIndex
   */
  sentOn(messageIndex) {
    return this.sentBy_(messageIndex, (time) => this.album.formats.shortDay(time));
  }

  /**
   * Who sent a message and when exactly.
   * @param {number} messageIndex
   */
  sentAt(messageIndex) {
    return this.sentBy_(messageIndex, (time) => this.album.formats.moment(time));
  }

  /** @param {number} messageIndex @param {(time: number) => string} tell */
  sentBy_(messageIndex, tell) {
    const { conversation, people, speech } = this.album;
    const { senderID, isFromMe, date, time } = conversation.message(messageIndex);
    const name = isolatedText(people.senderName(senderID, isFromMe));
    if (!Number.isNaN(time)) return speech.say("sentBy", { name, date: tell(time) });
    return speech.say("sentBy", { name, date: date ? isolatedText(date) : speech.say("unknownDate") });
  }
}
