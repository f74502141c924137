import { identifierOf, listOf, recordOf, textOf } from "./fields.js";
import { messageOf, participantOf, warningOf } from "./records.js";

/** @typedef {import("./records.js").Participant} Participant */

/** What stands for the sender of the reader's own messages. No identifier of a participant begins with this sign. */
export const ownSender = "\u0000me";

/** The conversation as the data file holds it. Messages and warnings are known by their index, in the file's order. */
export class Conversation {
  /** @param {unknown} data */
  constructor(data) {
    const raw = recordOf(data);
    this.id = identifierOf(raw.id) ?? "";
    this.guid = textOf(raw.guid) ?? "";
    this.title = textOf(raw.title) ?? "";
    this.service = textOf(raw.service) || undefined;
    this.generatedAt = textOf(raw.generatedAt);
    this.sourceSystemVersion = textOf(raw.sourceSystemVersion);
    this.sourceMessageCount = typeof raw.sourceMessageCount === "number" ? raw.sourceMessageCount : undefined;
    this.participants = listOf(raw.participants).map(participantOf);
    this.rawWarnings = listOf(raw.warnings);
    this.rawMessages = listOf(raw.messages);
    /** @type {Map<string, Participant>} Of two participants with one id the first stays. */
    this.participantByID = new Map();
    for (const participant of this.participants) {
      if (!this.participantByID.has(participant.id)) this.participantByID.set(participant.id, participant);
    }
  }

  get messageCount() {
    return this.rawMessages.length;
  }

  /** @param {number} index */
  message(index) {
    return messageOf(this.rawMessages[index]);
  }

  get warningCount() {
    return this.rawWarnings.length;
  }

  /** @param {number} index */
  warning(index) {
    return warningOf(this.rawWarnings[index]);
  }

  /**
   * Who wrote a message, as one word to compare: all of the reader's own are one sender.
   * @param {number} index
   */
  senderKey(index) {
    const raw = recordOf(this.rawMessages[index]);
    return raw.isFromMe === true ? ownSender : textOf(raw.senderID) ?? "";
  }

  /** More than one person besides the reader speaks, or may have spoken. */
  get isGroup() {
    return this.participants.filter((participant) => !participant.isMe).length > 1;
  }

  /**
   * A later message with the same guid is the one that is meant. Looks at all of them, so it is for a single question.
   * @param {string} guid
   * @returns {number | undefined}
   */
  indexOfGUID(guid) {
    for (let index = this.messageCount - 1; index >= 0; index--) {
      if (recordOf(this.rawMessages[index]).guid === guid) return index;
    }
    return undefined;
  }
}
