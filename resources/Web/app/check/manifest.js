// The list of an album's files that was written when the album was made.
import { identifierOf, listOf, recordOf, textOf, timeOf } from "../records/fields.js";

/** @typedef {{ path: string, byteSize: number, sha256: string }} ListedFile */

/**
 * @typedef {object} Manifest
 * @property {string} title of the conversation
 * @property {string} conversationID
 * @property {number} generatedAt milliseconds since 1970
 * @property {number} messageCount
 * @property {number} availableMessageCount
 * @property {number} attachmentCount
 * @property {number} copiedCount
 * @property {number} missingCount
 * @property {ListedFile[]} files
 */

export const manifestName = "manifest.json";

/**
 * Hidden files and files of the manifest's own name belong to no list, nor does what lies in a hidden folder.
 * @param {string} path
 */
export function isListable(path) {
  return path !== manifestName && !path.endsWith(`/${manifestName}`) && !path.startsWith(".") && !path.includes("/.");
}

/**
 * Whether a path stays in the folder wherever that folder lies: some systems part names by a backslash.
 * @param {string} path
 */
function isInside(path) {
  if (path.includes("\0") || path.startsWith("\\") || /^[A-Za-z]:[\\/]/.test(path)) return false;
  return path.split("/").every((part) => part !== "" && part !== ".") && !path.split(/[\\/]/).includes("..");
}

/** @param {unknown} value @returns {number | undefined} */
function countOf(value) {
  return typeof value === "number" && Number.isSafeInteger(value) && value >= 0 ? value : undefined;
}

/**
 * Whether a text is a SHA-256, as it is written here.
 * @param {string | undefined} text
 * @returns {text is string}
 */
export function isDigest(text) {
  return text !== undefined && /^[0-9a-f]{64}$/.test(text);
}

/** @param {unknown} value @returns {ListedFile | undefined} */
function listedFileOf(value) {
  const raw = recordOf(value);
  const path = textOf(raw.path);
  const byteSize = countOf(raw.byteSize);
  const sha256 = textOf(raw.sha256);
  if (path === undefined || byteSize === undefined || sha256 === undefined) return undefined;
  return isInside(path) && isDigest(sha256) ? { path, byteSize, sha256 } : undefined;
}

/**
 * All files, or nothing where one of them is no right entry, where one is listed twice, or where there are none.
 * @param {unknown} value
 * @returns {ListedFile[] | undefined}
 */
function listedFilesOf(value) {
  /** @type {Map<string, ListedFile>} */
  const byPath = new Map();
  const entries = listOf(value);
  for (const entry of entries) {
    const file = listedFileOf(entry);
    if (!file) return undefined;
    byPath.set(file.path, file);
  }
  return entries.length > 0 && byPath.size === entries.length ? Array.from(byPath.values()) : undefined;
}

/**
 * What a manifest says, or nothing where the text is no whole manifest: then nothing can be checked against it.
 * @param {string} text
 * @returns {Manifest | undefined}
 */
export function readManifest(text) {
  let raw;
  try {
    raw = recordOf(JSON.parse(text));
  } catch {
    return undefined;
  }
  const title = textOf(raw.conversationTitle);
  const conversationID = identifierOf(raw.sourceChatID);
  const generatedAt = timeOf(raw.generatedAt);
  const [sourceMessageCount, messageCount, availableMessageCount, attachmentCount, copiedCount, missingCount] =
    [raw.sourceMessageCount, raw.messageCount, raw.availableMessageCount, raw.attachmentRecordCount,
      raw.copiedAttachmentCount, raw.missingAttachmentCount].map(countOf);
  const files = listedFilesOf(raw.files);
  if (raw.schemaVersion !== 1 || !Array.isArray(raw.warnings) || title === undefined || conversationID === undefined
    || Number.isNaN(generatedAt) || sourceMessageCount === undefined || messageCount === undefined
    || availableMessageCount === undefined || attachmentCount === undefined || copiedCount === undefined
    || missingCount === undefined || !files) return undefined;
  return { title, conversationID, generatedAt, messageCount, availableMessageCount, attachmentCount, copiedCount,
    missingCount, files };
}
