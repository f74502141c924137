import { recordOf, textOf } from "./fields.js";

/** @typedef {import("./Conversation.js").Conversation} Conversation */

/**
 * Where the messages stand that others answer. Only these are held, for most messages are never answered. First all messages
 * are collected, then all located, each a range at a time; until then a question goes through all messages.
 */
export class ReplyTargets {
  /** @param {Conversation} conversation */
  constructor(conversation) {
    this.conversation = conversation;
    /** @type {Map<string, number>} -1 while it is not known. */
    this.indexByGUID_ = new Map();
    this.isComplete_ = false;
  }

  /** @param {number} first @param {number} end */
  collect(first, end) {
    const { rawMessages } = this.conversation;
    for (let index = first; index < end; index++) {
      const guid = textOf(recordOf(rawMessages[index]).replyToGUID);
      if (guid) this.indexByGUID_.set(guid, -1);
    }
  }

  /** @param {number} first @param {number} end */
  locate(first, end) {
    const { rawMessages } = this.conversation;
    if (this.indexByGUID_.size > 0) {
      for (let index = first; index < end; index++) {
        const guid = textOf(recordOf(rawMessages[index]).guid);
        // A later message with the same guid is the one that a reply means.
        if (guid !== undefined && this.indexByGUID_.has(guid)) this.indexByGUID_.set(guid, index);
      }
    }
    if (end === rawMessages.length) this.isComplete_ = true;
  }

  /**
   * The message with a guid that a reply names; nothing where there is none.
   * @param {string} guid
   * @returns {number | undefined}
   */
  indexOf(guid) {
    if (!this.isComplete_) return this.conversation.indexOfGUID(guid);
    const index = this.indexByGUID_.get(guid);
    return index === undefined || index < 0 ? undefined : index;
  }
}
