// What the gallery shows, found in one pass over the records and kept as places alone.
import { attachmentKind } from "../files/albumFiles.js";
import { listOf, recordOf, textOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";
import { splitLinks } from "../text/links.js";
import { inSlices } from "../work/slices.js";
import { PlaceList } from "./PlaceList.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {"photos" | "audio" | "links" | "files"} Shelf */
/** @typedef {{ readonly [Name in Shelf]: PlaceList }} Collection each in the order of the conversation */

const mayHoldLink = /https?:\/\//iu;

/** @type {{ readonly [kind: string]: Shelf }} */
const shelfByKind = { image: "photos", video: "photos", audio: "audio", document: "files" };

/**
 * Where an attachment stands: by its kind alone, so that a missing one stands where it would be looked for.
 * @param {unknown} rawAttachment
 */
export function shelfOf(rawAttachment) {
  return shelfByKind[attachmentKind(attachmentOf(rawAttachment))];
}

/**
 * The addresses in a message's subject and text; a part of the place of a link counts them from 0.
 * @param {unknown} rawMessage
 * @returns {string[]}
 */
export function linksOf(rawMessage) {
  const { subject, text } = recordOf(rawMessage);
  const links = [];
  for (const words of [textOf(subject), textOf(text)]) {
    if (words === undefined || !mayHoldLink.test(words)) continue;
    for (const { href } of splitLinks(words)) {
      if (href !== undefined) links.push(href);
    }
  }
  return links;
}

/**
 * Resolves to nothing when the signal stopped it.
 * @param {Conversation} conversation
 * @param {AbortSignal} [signal]
 * @returns {Promise<Collection | undefined>}
 */
export async function collect({ rawMessages }, signal) {
  const collection = { photos: new PlaceList(), audio: new PlaceList(), links: new PlaceList(), files: new PlaceList() };
  const isComplete = await inSlices(rawMessages.length, (first, end) => {
    for (let index = first; index < end; index++) addMessage(collection, rawMessages[index], index);
  }, signal);
  return isComplete ? collection : undefined;
}

/** @param {Collection} collection @param {unknown} rawMessage @param {number} index */
function addMessage(collection, rawMessage, index) {
  const attachments = listOf(recordOf(rawMessage).attachments);
  for (let part = 0; part < attachments.length; part++) collection[shelfOf(attachments[part])].add(index, part);
  const linkCount = linksOf(rawMessage).length;
  for (let part = 0; part < linkCount; part++) collection.links.add(index, part);
}
