// What is told of an attachment whose file the album does not hold: there is nothing else left of it.
import { attachmentExtension, attachmentKind, extensionOf, isGenericType, lastPartOf } from "./albumFiles.js";

/** @typedef {import("../records/records.js").Attachment} Attachment */

// RFC 6838 §4.2 names the characters of a type; Apple's identifiers are made of fewer.
const mimeTypeForm = /^[a-z0-9][a-z0-9!#$&^_.+-]{0,126}\/[a-z0-9][a-z0-9!#$&^_.+-]{0,126}$/;
const longestType = 127;
const identifierForm = /^[a-z0-9-]+(?:\.[a-z0-9-]+)+$/;
/** Identifiers that say only that there are bytes, or were made up for an unknown type. */
const genericIdentifier = /^(?:public\.(?:data|item|content)|dyn\..*)$/;

/**
 * The names of an attachment, the more telling first: without an extension its own may be any file's, and then the one
 * it had on the old device says more. Empty where it has none.
 * @param {Attachment} attachment
 * @returns {string[]}
 */
export function namesOf({ name, originalPath }) {
  const original = lastPartOf(originalPath);
  if (extensionOf(name) !== "" || extensionOf(original) === "") return name ? [name] : [];
  const isSame = name === "" || original.slice(0, original.lastIndexOf(".")) === name;
  return isSame ? [original] : [original, name];
}

/**
 * The type of an attachment where it says more than kind and extension do; empty where it does not.
 * @param {Attachment} attachment
 */
export function typeToTell(attachment) {
  const { mimeType, uniformType } = attachment;
  if (attachmentKind(attachment) !== "document" && attachmentExtension(attachment) !== "") return "";
  const type = mimeType.split(";")[0].trim();
  if (!isGenericType(type) && mimeTypeForm.test(type)) return type;
  if (uniformType.length > longestType || genericIdentifier.test(uniformType)) return "";
  return identifierForm.test(uniformType) ? uniformType : "";
}

/**
 * All that the record says of where an attachment lay and what it was, each on a line of its own.
 * @param {Attachment} attachment
 */
export function originOf({ originalPath, mimeType, uniformType }) {
  return [originalPath, mimeType, uniformType].filter(Boolean).join("\n");
}
