import { attachmentKind } from "../files/albumFiles.js";
import { listOf, recordOf, textOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";
import { estimateHeight } from "./estimateHeight.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */

/** Messages whose text is longer than this are shortened until they are asked for. */
const longestCounted = 20_000;
/** And so are longer lists of attachments. */
const mostCounted = 100;

/**
 * First estimates of the heights of all rows for one width of the list, made a range at a time.
 */
export class HeightEstimate {
  /** @param {Conversation} conversation @param {Uint8Array} marks @param {number} width of the list in pixels */
  constructor(conversation, marks, width) {
    this.conversation_ = conversation;
    this.marks_ = marks;
    this.heights = new Float32Array(conversation.messageCount);
    this.charactersPerLine_ = Math.max(12, (Math.min(width * 0.78, 512) - 26) / 7.6);
  }

  /** @param {number} first @param {number} end */
  add(first, end) {
    for (let index = first; index < end; index++) {
      const raw = recordOf(this.conversation_.rawMessages[index]);
      const attachments = listOf(raw.attachments).slice(0, mostCounted);
      let pictures = 0;
      for (const one of attachments) if (attachmentKind(attachmentOf(one)) === "image") pictures += 1;
      this.heights[index] = estimateHeight({
        textLength: Math.min((textOf(raw.text) ?? "").length, longestCounted),
        hasReply: raw.replyToGUID !== undefined,
        hasReactions: listOf(raw.reactions).length > 0,
        hasChange: raw.editedAt !== undefined || raw.retractedAt !== undefined,
        pictures,
        files: attachments.length - pictures,
        marks: this.marks_[index],
      }, this.charactersPerLine_);
    }
  }
}
