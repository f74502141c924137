// What a conversation consists of, each made from its raw record when it is wanted: a long conversation is never copied whole.
import { lastPartOf } from "../files/albumFiles.js";
import { identifierOf, listOf, recordOf, textOf, timeOf } from "./fields.js";

/**
 * @typedef {object} Participant
 * @property {string} id
 * @property {string} address
 * @property {string | undefined} displayName
 * @property {boolean} isMe
 * @property {string | undefined} avatarPath
 */

/**
 * @typedef {object} Reaction
 * @property {string | undefined} senderID
 * @property {string} kind
 * @property {boolean} isRemoved
 * @property {string} date as it stands in the file
 * @property {number} time milliseconds since 1970, NaN when it is absent or cannot be read
 */

/**
 * @typedef {object} Attachment
 * @property {string} id
 * @property {string} name
 * @property {string} originalPath where it lay on the old device, empty when unknown
 * @property {string} mimeType lower case, empty when unknown
 * @property {string} uniformType lower case, empty when unknown
 * @property {number | undefined} byteSize
 * @property {string | undefined} archivePath
 * @property {string | undefined} sha256 as it stands in the file
 * @property {string} availability
 */

/**
 * @typedef {object} Message
 * @property {string} id
 * @property {string} guid
 * @property {string} date as it stands in the file
 * @property {number} time milliseconds since 1970, NaN when it cannot be read
 * @property {string | undefined} senderID
 * @property {boolean} isFromMe
 * @property {string | undefined} service
 * @property {string} text
 * @property {string} subject
 * @property {string | undefined} replyToGUID
 * @property {string | undefined} editedAt
 * @property {string | undefined} retractedAt
 * @property {Reaction[]} reactions
 * @property {Attachment[]} attachments
 * @property {string} payloadState
 */

/**
 * @typedef {object} Warning
 * @property {string} code
 * @property {string} summary
 * @property {string | undefined} sourceID
 */

/** @param {unknown} value @returns {Participant} */
export function participantOf(value) {
  const raw = recordOf(value);
  const address = textOf(raw.address) ?? "";
  return {
    id: textOf(raw.id) ?? "",
    address,
    displayName: textOf(raw.displayName) || undefined,
    isMe: raw.isMe === true,
    avatarPath: textOf(raw.avatarPath),
  };
}

/** @param {unknown} value @returns {Reaction} */
export function reactionOf(value) {
  const raw = recordOf(value);
  return {
    senderID: textOf(raw.senderID),
    kind: textOf(raw.kind) ?? "unknown",
    isRemoved: raw.isRemoved === true,
    date: textOf(raw.date) ?? "",
    time: timeOf(raw.date),
  };
}

/** @param {unknown} value @returns {Attachment} */
export function attachmentOf(value) {
  const raw = recordOf(value);
  const original = textOf(raw.originalFilename) ?? "";
  const size = raw.byteSize;
  return {
    id: identifierOf(raw.id) ?? "",
    name: textOf(raw.displayName)?.trim() || lastPartOf(original),
    originalPath: original,
    mimeType: (textOf(raw.mimeType) ?? "").toLowerCase(),
    uniformType: (textOf(raw.uniformType) ?? "").toLowerCase(),
    byteSize: typeof size === "number" && size >= 0 ? size : undefined,
    archivePath: textOf(raw.archivePath),
    sha256: textOf(raw.sha256),
    availability: textOf(raw.availability) ?? "missing",
  };
}

/**
 * How well a message could be read. A record that is no object at all could be no better than one whose body is unknown.
 * @param {unknown} value
 */
export function payloadStateOf(value) {
  return typeof value === "object" && value !== null ? textOf(recordOf(value).payloadState) ?? "decoded" : "unsupported";
}

/** @param {unknown} value @returns {Message} */
export function messageOf(value) {
  const raw = recordOf(value);
  return {
    id: identifierOf(raw.id) ?? "",
    guid: textOf(raw.guid) ?? "",
    date: textOf(raw.date) ?? "",
    time: timeOf(raw.date),
    senderID: textOf(raw.senderID),
    isFromMe: raw.isFromMe === true,
    service: textOf(raw.service) || undefined,
    text: textOf(raw.text) ?? "",
    subject: textOf(raw.subject) ?? "",
    replyToGUID: textOf(raw.replyToGUID) || undefined,
    editedAt: textOf(raw.editedAt),
    retractedAt: textOf(raw.retractedAt),
    reactions: listOf(raw.reactions).map(reactionOf),
    attachments: listOf(raw.attachments).map(attachmentOf),
    payloadState: payloadStateOf(value),
  };
}

/** @param {unknown} value @returns {Warning} */
export function warningOf(value) {
  const raw = recordOf(value);
  return { code: textOf(raw.code) ?? "", summary: textOf(raw.summary) ?? "", sourceID: identifierOf(raw.sourceID) };
}
