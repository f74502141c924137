"use strict";

// The page of an album. It reads the one record in window.QUILLBOOK_DATA and shows all of it: no server, no network, no
// other script. Sections follow, each owning one thing; those down to "Height map" never touch the page and run anywhere.

/* ---------------------------------------------------------------------------------------------------------------------
 * Records: the conversation as the data file holds it. The file may be old, new or damaged, so every field is looked at
 * before it is believed, one message at a time and only when it is wanted: a long conversation is never copied whole.
 */

/** @typedef {{ readonly [key: string]: unknown }} RawRecord */

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
 * @property {number} time milliseconds since 1970, NaN when absent
 */

/**
 * @typedef {object} Attachment
 * @property {string} id
 * @property {string} name
 * @property {string} mimeType lower case, empty when unknown
 * @property {number | undefined} byteSize
 * @property {string | undefined} archivePath
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

/** @typedef {{ all: number, available: number, missing: number, unreadable: number }} AttachmentCounts */

/** @param {unknown} value @returns {RawRecord} */
function recordOf(value) {
  return typeof value === "object" && value !== null ? /** @type {RawRecord} */ (value) : {};
}

/** @param {unknown} value @returns {readonly unknown[]} */
function listOf(value) {
  return Array.isArray(value) ? value : [];
}

/** @param {unknown} value @returns {string | undefined} */
function textOf(value) {
  return typeof value === "string" ? value : undefined;
}

/**
 * Identifiers are texts, but one that came as a number still names what it names.
 * @param {unknown} value
 */
function identifierOf(value) {
  return typeof value === "number" ? String(value) : textOf(value);
}

const isoDate = /^([+-]?\d{4,9})-(\d\d)-(\d\d)T(\d\d):(\d\d):(\d\d)(?:\.\d+)?Z$/;

/**
 * Milliseconds since 1970 of an ISO 8601 date, NaN when it cannot be read or lies beyond what a Date can hold. Years of five
 * digits stand in the file without a sign, which Date.parse refuses.
 * @param {unknown} value
 */
function timeOf(value) {
  if (typeof value !== "string") return NaN;
  const time = Date.parse(value);
  if (!Number.isNaN(time)) return time;
  const match = isoDate.exec(value);
  if (!match) return NaN;
  const [year, month, day, hour, minute, second] = match.slice(1).map(Number);
  const date = new Date(0);
  date.setUTCFullYear(year, month - 1, day);
  return date.setUTCHours(hour, minute, second);
}

/** @param {unknown} value @returns {Participant} */
function participantOf(value) {
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
function reactionOf(value) {
  const raw = recordOf(value);
  return {
    senderID: textOf(raw.senderID),
    kind: textOf(raw.kind) ?? "unknown",
    isRemoved: raw.isRemoved === true,
    time: timeOf(raw.date),
  };
}

/** @param {unknown} value @returns {Attachment} */
function attachmentOf(value) {
  const raw = recordOf(value);
  const original = textOf(raw.originalFilename) ?? "";
  const size = raw.byteSize;
  return {
    id: identifierOf(raw.id) ?? "",
    name: textOf(raw.displayName)?.trim() || original.slice(original.lastIndexOf("/") + 1),
    mimeType: (textOf(raw.mimeType) ?? "").toLowerCase(),
    byteSize: typeof size === "number" && size >= 0 ? size : undefined,
    archivePath: textOf(raw.archivePath),
    availability: textOf(raw.availability) ?? "missing",
  };
}

/** @param {unknown} value @returns {Message} */
function messageOf(value) {
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
    // A record that is no object at all could be read no better than one whose body is unknown.
    payloadState: typeof value === "object" && value !== null ? textOf(raw.payloadState) ?? "decoded" : "unsupported",
  };
}

/** @param {unknown} value @returns {Warning} */
function warningOf(value) {
  const raw = recordOf(value);
  return { code: textOf(raw.code) ?? "", summary: textOf(raw.summary) ?? "", sourceID: identifierOf(raw.sourceID) };
}

/** The conversation with what is looked up in it. Messages are known by their index, in the file's order. */
class Conversation {
  /** @param {unknown} data */
  constructor(data) {
    const raw = recordOf(data);
    this.title = textOf(raw.title) ?? "";
    this.service = textOf(raw.service) || undefined;
    this.generatedAt = textOf(raw.generatedAt);
    this.sourceSystemVersion = textOf(raw.sourceSystemVersion);
    this.sourceMessageCount = typeof raw.sourceMessageCount === "number" ? raw.sourceMessageCount : undefined;
    this.participants = listOf(raw.participants).map(participantOf);
    this.warnings = listOf(raw.warnings).map(warningOf);
    this.rawMessages = listOf(raw.messages);
    /** @type {Map<string, Participant>} Of two participants with one id the first stays. */
    this.participantByID = new Map();
    for (const participant of this.participants) {
      if (!this.participantByID.has(participant.id)) this.participantByID.set(participant.id, participant);
    }
    /** @type {Map<string, number> | undefined} */
    this.indexByGUID = undefined;
    /** @type {Map<string, number> | undefined} */
    this.indexByMessageID = undefined;
    /** @type {Map<string, number> | undefined} */
    this.indexByAttachmentID = undefined;
  }

  get messageCount() {
    return this.rawMessages.length;
  }

  /** @param {number} index */
  message(index) {
    return messageOf(this.rawMessages[index]);
  }

  /**
   * Who wrote a message, as one word to compare: all of the user's own are one sender.
   * @param {number} index
   */
  senderKey(index) {
    const raw = recordOf(this.rawMessages[index]);
    return raw.isFromMe === true ? "me" : `from ${textOf(raw.senderID) ?? ""}`;
  }

  /** More than one person besides the user speaks, or may have spoken. */
  get isGroup() {
    return this.participants.filter((participant) => !participant.isMe).length > 1;
  }

  /**
   * A later message with the same guid is the one that a reply means.
   * @param {string} guid
   */
  indexOfGUID(guid) {
    this.indexByGUID ??= this.#index((raw) => [textOf(raw.guid)]);
    return this.indexByGUID.get(guid);
  }

  /**
   * The message that a warning speaks of, by its own id or by an attachment's.
   * @param {Warning} warning
   */
  indexOfSource({ code, sourceID }) {
    if (sourceID === undefined) return undefined;
    this.indexByMessageID ??= this.#index((raw) => [identifierOf(raw.id)]);
    this.indexByAttachmentID ??= this.#index((raw) =>
      listOf(raw.attachments).map((attachment) => identifierOf(recordOf(attachment).id)));
    const byMessage = this.indexByMessageID.get(sourceID);
    const byAttachment = this.indexByAttachmentID.get(sourceID);
    return code.startsWith("attachment_") ? byAttachment : byMessage ?? byAttachment;
  }

  /** @returns {AttachmentCounts} */
  countAttachments() {
    const counts = { all: 0, available: 0, missing: 0, unreadable: 0 };
    for (const raw of this.rawMessages) {
      for (const attachment of listOf(recordOf(raw).attachments)) {
        const { availability, archivePath } = attachmentOf(attachment);
        counts.all += 1;
        if (availability === "unreadable") counts.unreadable += 1;
        else if (availability === "available" && albumAddress(archivePath, "attachments")) counts.available += 1;
        else counts.missing += 1;
      }
    }
    return counts;
  }

  /**
   * How many messages each sender wrote, by sender key.
   * @returns {Map<string, number>}
   */
  countBySender() {
    /** @type {Map<string, number>} */
    const counts = new Map();
    for (let index = 0; index < this.messageCount; index++) {
      const key = this.senderKey(index);
      counts.set(key, (counts.get(key) ?? 0) + 1);
    }
    return counts;
  }

  /** @param {(raw: RawRecord) => readonly (string | undefined)[]} keysOf @returns {Map<string, number>} */
  #index(keysOf) {
    /** @type {Map<string, number>} */
    const indexes = new Map();
    this.rawMessages.forEach((value, index) => {
      for (const key of keysOf(recordOf(value))) {
        if (key !== undefined) indexes.set(key, index);
      }
    });
    return indexes;
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Words: all that the page itself says, by language tag. A language may hold any part of the English table; what it lacks
 * is said in English. A word with a count has one form for each plural category of its language.
 */

const english = {
  me: "Me",
  unknownSender: "Unknown sender",
  unknownSenderNamed: "Unknown sender ({id})",
  unknownDate: "Unknown date",
  messageCount: { one: "{count} message", other: "{count} messages" },
  attachmentCount: { one: "{count} attachment", other: "{count} attachments" },
  personCount: { one: "{count} person", other: "{count} people" },
  warningCount: { one: "{count} thing to know about this album", other: "{count} things to know about this album" },
  dateRange: "{first} – {last}",
  emptyConversation: "This conversation has no messages.",
  dataMissing: "The words of this conversation could not be loaded. "
    + "The file “data/messages.js” belongs beside this page: it is missing or damaged.",
  toFirst: "Go to the first message",
  toLast: "Go to the latest message",
  messagesLabel: "Messages",
  edited: "Edited",
  editedOn: "Edited on {date}",
  unsent: "Unsent",
  unsentOn: "Unsent on {date}",
  unsentMessage: "This message was unsent.",
  emptyMessage: "This message has no text.",
  unsupportedMessage: "This message could not be read.",
  partialMessage: "Only part of this message could be read.",
  replyTo: "Reply to {name}",
  replyToUnknown: "Reply to an earlier message",
  loved: "Loved by {names}",
  liked: "Liked by {names}",
  disliked: "Disliked by {names}",
  laughed: "Laughed at by {names}",
  emphasized: "Emphasized by {names}",
  questioned: "Questioned by {names}",
  otherReaction: "Reaction by {names}",
  attachment: "Attachment",
  openFile: "Open file",
  image: "Image",
  video: "Video",
  audio: "Audio",
  document: "Document",
  cannotShow: "This browser cannot show this file.",
  missingAttachment: "Missing: this file is not in the album.",
  unreadableAttachment: "This file could not be read and is not in the album.",
  about: "About this album",
  close: "Close",
  title: "Title",
  service: "Service",
  firstMessage: "First message",
  latestMessage: "Latest message",
  messages: "Messages",
  sourceRecords: "Records in the source",
  attachments: "Attachments",
  attachmentsAvailable: "{count} in the album",
  attachmentsMissing: "{count} missing",
  attachmentsUnreadable: "{count} unreadable",
  madeOn: "Album made on",
  madeWith: "Made on system",
  participants: "Participants",
  warnings: "Warnings",
  noWarnings: "None.",
  showMessage: "Show message",
  showAllWarnings: "Show all {count} warnings",
  unresolved_reaction: "A reaction could not be matched to its message.",
  unsupported_payload: "A message payload could not be fully decoded.",
  attachment_missing: "An attachment was missing and could not be included.",
  attachment_unreadable: "An attachment could not be read and was skipped.",
};

/** @typedef {typeof english} Words */
/** @typedef {keyof Words} WordKey */

/** @type {{ readonly [tag: string]: { readonly [Key in WordKey]?: string | { readonly [category: string]: string } } }} */
const wordsByTag = { en: english };

/**
 * A tag that Intl accepts: the page's own, or "en" when that is none.
 * @param {string} tag
 */
function usableTag(tag) {
  try {
    return new Intl.Locale(tag).toString();
  } catch {
    return "en";
  }
}

/** @param {string} template @param {{ readonly [name: string]: string }} values */
function fillIn(template, values) {
  return template.replace(/\{(\w+)\}/g, (place, name) => values[name] ?? place);
}

/** Says the page's words in one language. */
class Speech {
  /** @param {string} tag */
  constructor(tag) {
    this.tag = usableTag(tag);
    this.words = { ...english, ...(wordsByTag[this.tag] ?? wordsByTag[this.tag.split("-")[0]]) };
    this.plurals = new Intl.PluralRules(this.tag);
    this.numbers = new Intl.NumberFormat(this.tag);
    this.lists = new Intl.ListFormat(this.tag, { type: "conjunction" });
  }

  /** @param {WordKey} key @param {{ readonly [name: string]: string }} [values] */
  say(key, values = {}) {
    const word = this.words[key];
    return fillIn(typeof word === "string" ? word : word.other, values);
  }

  /** @param {WordKey} key @param {number} count */
  sayCount(key, count) {
    /** @type {string | { readonly [category: string]: string }} */
    const word = this.words[key];
    const form = typeof word === "string" ? word : word[this.plurals.select(count)] ?? word.other;
    return fillIn(form, { count: this.numbers.format(count) });
  }

  /** @param {readonly string[]} names */
  list(names) {
    return this.lists.format(names);
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Dates and sizes, as the reader's own language and time zone write them.
 */

/**
 * @typedef {object} Formats
 * @property {(time: number) => string} day
 * @property {(time: number) => string} clock
 * @property {(time: number) => string} moment
 * @property {(bytes: number) => string} size
 */

const byteUnits = ["byte", "kilobyte", "megabyte", "gigabyte", "terabyte"];

/** @param {string} tag @returns {Formats} */
function makeFormats(tag) {
  const day = new Intl.DateTimeFormat(tag, { weekday: "long", year: "numeric", month: "long", day: "numeric" });
  const clock = new Intl.DateTimeFormat(tag, { hour: "numeric", minute: "2-digit" });
  const moment = new Intl.DateTimeFormat(tag, { dateStyle: "long", timeStyle: "medium" });
  const sizes = byteUnits.map((unit, power) => {
    const digits = power < 2 ? 0 : 1;
    return new Intl.NumberFormat(tag, { style: "unit", unit, unitDisplay: power ? "short" : "long", maximumFractionDigits: digits });
  });
  return {
    day: (time) => day.format(time),
    clock: (time) => clock.format(time),
    moment: (time) => moment.format(time),
    size: (bytes) => {
      const power = byteSizePower(bytes);
      return sizes[power].format(bytes / 1000 ** power);
    },
  };
}

/**
 * Which power of 1000 a size is told in: the largest that leaves at least 1, rounding included.
 * @param {number} bytes
 */
function byteSizePower(bytes) {
  let power = 0;
  while (power < byteUnits.length - 1 && bytes / 1000 ** power >= 999.5) power += 1;
  return power;
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Text of messages.
 */

/** Unicode's object replacement character: it stands in a text where an attachment stood. */
const attachmentMark = "\uFFFC";

/**
 * The text as it is shown: without the marks of attachments, and without the blank lines that stood only round them.
 * @param {string} text
 */
function shownText(text) {
  return text.includes(attachmentMark) ? text.split(attachmentMark).join("").trim() : text;
}

/**
 * The pieces of a message in their order: its text, cut where its attachments stood. Without one mark for each attachment
 * their places are not known, and they follow the whole text.
 * @template Item
 * @param {string} text
 * @param {readonly Item[]} attachments
 * @returns {({ text: string } | { attachment: Item })[]}
 */
function piecesOf(text, attachments) {
  const cuts = text.split(attachmentMark);
  const isPlaced = attachments.length > 0 && cuts.length === attachments.length + 1;
  const texts = isPlaced ? cuts.map((cut) => cut.trim()) : [shownText(text)];
  /** @type {({ text: string } | { attachment: Item })[]} */
  const pieces = [];
  for (let index = 0; index < Math.max(texts.length, attachments.length); index++) {
    if (texts[index]) pieces.push({ text: texts[index] });
    if (index < attachments.length) pieces.push({ attachment: attachments[index] });
  }
  return pieces;
}

// Unicode TR51: presentation, modifier, keycap, flag and tag sequences, joined by U+200D.
const emojiSign = "(?:\\p{Emoji_Modifier_Base}\\uFE0F?\\p{Emoji_Modifier}|\\p{Emoji_Presentation}|\\p{Emoji}\\uFE0F)";
const emojiElement = `(?:[0-9#*]\\uFE0F?\\u20E3|\\p{Regional_Indicator}{2}|${emojiSign}[\\u{E0020}-\\u{E007F}]*)`;
const emojiSequence = `${emojiElement}(?:\\u200D(?:${emojiElement}|\\p{Extended_Pictographic}))*`;
const fewEmoji = new RegExp(`^\\s*(?:${emojiSequence}\\s*){1,3}$`, "u");

/**
 * One to three emoji and nothing else.
 * @param {string} text
 */
function isFewEmoji(text) {
  return text.length <= 120 && fewEmoji.test(text);
}

// Bidi controls end a link, so that its words cannot be made to read as another address.
const linkStart = /https?:\/\/[^\s<>"\uFFFC\u061C\u200E\u200F\u202A-\u202E\u2066-\u2069]+/giu;
const closingBrackets = new Map([[")", "("], ["]", "["], ["}", "{"]]);

/**
 * Leaves behind what belongs to the sentence: its full stop, and a bracket that was opened before the link.
 * @param {string} link
 */
function withoutSentenceEnd(link) {
  let end = link.length;
  while (end > 0) {
    const last = link[end - 1];
    const opening = closingBrackets.get(last);
    const isUnopened = opening !== undefined && countOf(link, opening, end) < countOf(link, last, end);
    if (!isUnopened && !/[.,;:!?'’”»…*]/u.test(last)) break;
    end -= 1;
  }
  return link.slice(0, end);
}

/** @param {string} text @param {string} character @param {number} end */
function countOf(text, character, end) {
  let count = 0;
  for (let index = text.indexOf(character); index >= 0 && index < end; index = text.indexOf(character, index + 1)) count += 1;
  return count;
}

/** The longest link worth making: browsers take no longer address, and the sentence's end is sought in no longer text. */
const longestLink = 2_000;

/** @param {string} text @returns {string | undefined} */
function webAddress(text) {
  try {
    const url = new URL(text);
    return (url.protocol === "http:" || url.protocol === "https:") && url.hostname !== "" ? url.href : undefined;
  } catch {
    return undefined;
  }
}

/**
 * A text cut into plain pieces and links; joined again the pieces are the text. Only http and https make a link.
 * @param {string} text
 * @returns {{ text: string, href?: string }[]}
 */
function splitLinks(text) {
  /** @type {{ text: string, href?: string }[]} */
  const pieces = [];
  let done = 0;
  for (const { 0: found, index = 0 } of text.matchAll(linkStart)) {
    if (found.length > longestLink) continue;
    const link = withoutSentenceEnd(found);
    const href = webAddress(link);
    if (href === undefined) continue;
    if (index > done) pieces.push({ text: text.slice(done, index) });
    pieces.push({ text: link, href });
    done = index + link.length;
  }
  if (done < text.length) pieces.push({ text: text.slice(done) });
  return pieces;
}

/**
 * The beginning of a text, cut between characters.
 * @param {string} text
 * @param {number} length
 */
function beginningOf(text, length) {
  const start = text.slice(0, length * 4).replace(/\s+/gu, " ").trim();
  const characters = Array.from(start).slice(0, length).join("");
  return characters.length < start.length || text.length > length * 4 ? `${characters}…` : start;
}

/**
 * Up to two initials of a name, none of a telephone number.
 * @param {string} name
 */
function initialsOf(name) {
  const words = name.split(/\s+/u).filter((word) => /^\p{L}/u.test(word));
  const chosen = words.length > 1 ? [words[0], words[words.length - 1]] : words;
  return chosen.map((word) => Array.from(word)[0].toLocaleUpperCase()).join("");
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Files of the album.
 */

/**
 * The relative address of a file of the album, or nothing for a path that is none: it must lie in `folder` and may not
 * climb out of it.
 * @param {string | undefined} path
 * @param {string} folder
 * @returns {string | undefined}
 */
function albumAddress(path, folder) {
  if (path === undefined || !path.startsWith(`${folder}/`)) return undefined;
  const parts = path.split("/");
  if (parts.some((part) => part === "" || part === "." || part === ".." || part.includes("\0"))) return undefined;
  try {
    return parts.map(encodeURIComponent).join("/");
  } catch {
    return undefined; // Half a surrogate pair names no file.
  }
}

const typeByExtension = new Map(Object.entries({
  jpg: "image/jpeg", jpeg: "image/jpeg", png: "image/png", gif: "image/gif", webp: "image/webp", avif: "image/avif",
  heic: "image/heic", heif: "image/heif", tif: "image/tiff", tiff: "image/tiff", bmp: "image/bmp", svg: "image/svg+xml",
  mp4: "video/mp4", m4v: "video/mp4", mov: "video/quicktime", webm: "video/webm", avi: "video/x-msvideo", mkv: "video/x-matroska",
  "3gp": "video/3gpp", mpg: "video/mpeg", mpeg: "video/mpeg",
  mp3: "audio/mpeg", m4a: "audio/mp4", aac: "audio/aac", wav: "audio/wav", caf: "audio/x-caf", amr: "audio/amr",
  ogg: "audio/ogg", oga: "audio/ogg", opus: "audio/ogg", flac: "audio/flac", aif: "audio/aiff", aiff: "audio/aiff",
}));

/**
 * The extension of a file's name, in lower case and without its full stop; empty when it has none.
 * @param {string} name
 */
function extensionOf(name) {
  return /[^/.][^/]*\.([^./]{1,12})$/u.exec(name)?.[1].toLowerCase() ?? "";
}

/** @param {Attachment} attachment */
function mimeTypeOf({ mimeType, archivePath, name }) {
  return mimeType || typeByExtension.get(extensionOf(archivePath ?? name)) || "";
}

/** @param {Attachment} attachment @returns {"image" | "video" | "audio" | "document"} */
function attachmentKind(attachment) {
  const family = mimeTypeOf(attachment).split("/")[0];
  return family === "image" || family === "video" || family === "audio" ? family : "document";
}

/**
 * A picture's size as shown: its own, or what fits into a frame that leaves the words around it in sight.
 * @param {number} width
 * @param {number} height
 */
function fittedSize(width, height) {
  const scale = Math.min(1, 352 / Math.max(width, 1), 416 / Math.max(height, 1));
  return { width: Math.max(1, Math.round(width * scale)), height: Math.max(1, Math.round(height * scale)) };
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Reactions: additions and removals are records of their own; what counts is how each sender's last word on a kind stands.
 */

/**
 * The reactions that stand, by kind in the order in which each kind first appeared.
 * @param {readonly Reaction[]} reactions
 * @returns {{ kind: string, senderIDs: (string | undefined)[] }[]}
 */
function settleReactions(reactions) {
  /** @type {Map<string, Map<string, (string | undefined)[]>>} */
  const byKind = new Map();
  for (const { kind, senderID, isRemoved } of inOrderOfTime(reactions)) {
    const bySender = byKind.get(kind) ?? new Map();
    byKind.set(kind, bySender);
    const key = senderID === undefined ? "" : `from ${senderID}`;
    const standing = bySender.get(key) ?? [];
    // Senders without a name may be several people: each of their additions counts, and a removal takes one away.
    if (isRemoved) standing.pop();
    else if (senderID === undefined || standing.length === 0) standing.push(senderID);
    bySender.set(key, standing);
  }
  return Array.from(byKind, ([kind, bySender]) => ({ kind, senderIDs: Array.from(bySender.values()).flat() }))
    .filter(({ senderIDs }) => senderIDs.length > 0);
}

/**
 * By date, those without one first and equals in their own order, as the source keeps them.
 * @param {readonly Reaction[]} reactions
 */
function inOrderOfTime(reactions) {
  /** @param {Reaction} reaction */
  const rank = ({ time }) => (Number.isNaN(time) ? -Infinity : time);
  return Array.from(reactions).sort((one, other) => (rank(one) === rank(other) ? 0 : rank(one) - rank(other)));
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Timeline: where a day begins, and which messages stand together as one run of one sender.
 */

const startsDay = 1;
const startsGroup = 2;
const endsGroup = 4;
const longestPause = 10 * 60 * 1000;

/**
 * One number for each day of the reader's calendar; NaN for no date.
 * @param {number} time
 */
function dayNumber(time) {
  const date = new Date(time);
  return date.getFullYear() * 512 + date.getMonth() * 32 + date.getDate();
}

/**
 * The marks startsDay, startsGroup and endsGroup of each message.
 * @param {number} count
 * @param {(index: number) => number} timeAt
 * @param {(index: number) => string} senderAt
 * @returns {Uint8Array}
 */
function timelineMarks(count, timeAt, senderAt) {
  const marks = new Uint8Array(count);
  let lastTime = NaN;
  let lastDay = NaN;
  let lastSender = "";
  for (let index = 0; index < count; index++) {
    const time = timeAt(index);
    const day = dayNumber(time);
    const sender = senderAt(index);
    const isNewDay = index === 0 || !Object.is(day, lastDay);
    // Two messages without dates have no pause between them.
    const isPause = Math.abs(time - lastTime) > longestPause;
    if (isNewDay) marks[index] |= startsDay;
    if (isNewDay || isPause || sender !== lastSender) {
      marks[index] |= startsGroup;
      if (index > 0) marks[index - 1] |= endsGroup;
    }
    [lastTime, lastDay, lastSender] = [time, day, sender];
  }
  if (count > 0) marks[count - 1] |= endsGroup;
  return marks;
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Height map: how tall each row is, estimated until it has been measured, and where each row lies. Pixels without a page.
 */

/** Sums of heights in a Fenwick tree: each question and each change takes steps in proportion to the logarithm of the count. */
class HeightMap {
  /** @param {number} count @param {(index: number) => number} heightAt a first estimate of each row */
  constructor(count, heightAt) {
    this.count = count;
    this.heights = new Float64Array(count);
    this.sums = new Float64Array(count + 1);
    for (let index = 0; index < count; index++) {
      this.heights[index] = heightAt(index);
      this.sums[index + 1] = this.heights[index];
    }
    for (let node = 1; node <= count; node++) {
      const parent = node + (node & -node);
      if (parent <= count) this.sums[parent] += this.sums[node];
    }
    this.firstStep = 2 ** Math.floor(Math.log2(Math.max(count, 1)));
  }

  get total() {
    return this.offsetOf(this.count);
  }

  /**
   * Returns whether that changed anything worth moving for.
   * @param {number} index
   * @param {number} height
   */
  setHeight(index, height) {
    const change = height - this.heights[index];
    if (Math.abs(change) < 0.01) return false;
    this.heights[index] = height;
    for (let node = index + 1; node <= this.count; node += node & -node) this.sums[node] += change;
    return true;
  }

  /**
   * The height of all rows before `index`, which may be the count.
   * @param {number} index
   */
  offsetOf(index) {
    let offset = 0;
    for (let node = index; node > 0; node -= node & -node) offset += this.sums[node];
    return offset;
  }

  /**
   * The row at an offset; before the first row the first, behind the last the last.
   * @param {number} offset
   */
  indexAt(offset) {
    let node = 0;
    let rest = offset;
    for (let step = this.firstStep; step >= 1; step /= 2) {
      if (node + step <= this.count && this.sums[node + step] <= rest) {
        node += step;
        rest -= this.sums[node];
      }
    }
    return Math.max(0, Math.min(node, this.count - 1));
  }
}

/** Browsers clamp elements taller than about this many pixels. */
const tallestLayout = 7_000_000;
/** So near the ends of a scaled list, one pixel of scrolling is one pixel of rows. */
const unscaledEnd = 50_000;

/**
 * How the scroll range stands for the rows: pixel for pixel while they fit, else compressed in the middle.
 * `position` is the scroll position within the list, `offset` the height of rows above the window.
 */
class ScrollScale {
  /** @param {number} total the height of all rows @param {number} windowHeight */
  constructor(total, windowHeight) {
    this.height = Math.min(total, tallestLayout);
    this.lastPosition = Math.max(0, this.height - windowHeight);
    this.lastOffset = Math.max(0, total - windowHeight);
  }

  get isScaled() {
    return this.lastOffset > this.lastPosition;
  }

  /** @param {number} position */
  offsetAt(position) {
    return this.#map(position, this.lastPosition, this.lastOffset);
  }

  /** @param {number} offset */
  positionOf(offset) {
    return this.#map(offset, this.lastOffset, this.lastPosition);
  }

  /** @param {number} value @param {number} lastFrom @param {number} lastTo */
  #map(value, lastFrom, lastTo) {
    if (value <= unscaledEnd || !this.isScaled) return Math.min(value, lastTo);
    if (value >= lastFrom - unscaledEnd) return lastTo - Math.max(0, lastFrom - value);
    const share = (value - unscaledEnd) / (lastFrom - 2 * unscaledEnd);
    return unscaledEnd + share * (lastTo - 2 * unscaledEnd);
  }
}

/**
 * A first estimate of a row's height in pixels, close enough that the scroll bar does not jump when the row is measured.
 * @param {{ textLength: number, lineBreaks: number, pictures: number, files: number, extras: number, marks: number }} row
 * @param {number} charactersPerLine
 */
function estimateHeight(row, charactersPerLine) {
  const lines = Math.ceil(row.textLength / charactersPerLine) + row.lineBreaks;
  let height = 2 + row.pictures * 240 + row.files * 80 + row.extras * 28;
  if (lines > 0) height += 14 + lines * 22;
  if (row.marks & startsGroup) height += 10;
  if (row.marks & endsGroup) height += 18;
  if (row.marks & startsDay) height += 48;
  return height;
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Elements: the few ways in which anything enters the page. Words enter as text and never as markup.
 */

/**
 * @template {keyof HTMLElementTagNameMap} Tag
 * @param {Tag} tag
 * @param {string} [className]
 * @param {string} [text]
 * @returns {HTMLElementTagNameMap[Tag]}
 */
function element(tag, className = "", text = "") {
  const made = document.createElement(tag);
  if (className) made.className = className;
  if (text) made.textContent = text;
  return made;
}

/**
 * Words of somebody else, kept from turning the words around them.
 * @param {string} text
 * @param {string} [className]
 */
function isolated(text, className = "") {
  return element("bdi", className, text);
}

/** @param {string} className @param {() => void} onPress */
function button(className, onPress) {
  const made = element("button", className);
  made.type = "button";
  made.addEventListener("click", onPress);
  return made;
}

/** Line drawings on a field of 24 by 24. */
const iconPaths = {
  first: "M5 4h14M12 20V9M7 13.5 12 8.5l5 5",
  last: "M5 20h14M12 4v11M7 10.5l5 5 5-5",
  info: "M12 21a9 9 0 1 0 0-18 9 9 0 0 0 0 18ZM12 11v5.5M12 7.6v.1",
  close: "M6.5 6.5l11 11M17.5 6.5l-11 11",
  person: "M12 11.5a4 4 0 1 0 0-8 4 4 0 0 0 0 8ZM4.5 20.5c.6-4 3.6-6 7.5-6s6.9 2 7.5 6",
  document: "M7 3.5h7l4.5 4.5v12.5H7ZM14 3.5V8h4.5",
  image: "M4 5h16v14H4ZM4 16l4.5-4.5 4 4 3-3L20 16M9 9.5v.1",
  video: "M4 6.5h11v11H4ZM15 10.5l5-2.5v8l-5-2.5",
  audio: "M4 10v4M8 7v10M12 4v16M16 8v8M20 10.5v3",
  warning: "M12 4 2.8 19.5h18.4ZM12 10v4.5M12 17v.1",
};

/** @param {keyof typeof iconPaths} name */
function icon(name) {
  const drawing = document.createElementNS("http://www.w3.org/2000/svg", "svg");
  drawing.setAttribute("class", "icon");
  drawing.setAttribute("viewBox", "0 0 24 24");
  drawing.setAttribute("aria-hidden", "true");
  const path = document.createElementNS("http://www.w3.org/2000/svg", "path");
  path.setAttribute("d", iconPaths[name]);
  drawing.append(path);
  return drawing;
}

/* ---------------------------------------------------------------------------------------------------------------------
 * People: names and pictures.
 */

const avatarTones = 6;

/**
 * The same tone for the same person in every album.
 * @param {string} id
 */
function toneOf(id) {
  let sum = 0;
  for (const character of id) sum = (sum * 31 + (character.codePointAt(0) ?? 0)) >>> 0;
  return sum % avatarTones;
}

class People {
  /** @param {Conversation} conversation @param {Speech} speech */
  constructor(conversation, speech) {
    this.conversation = conversation;
    this.speech = speech;
    this.me = conversation.participants.find((participant) => participant.isMe);
  }

  /** @param {Participant} participant */
  nameOf(participant) {
    return participant.displayName ?? (participant.address || this.speech.say("unknownSender"));
  }

  /**
   * The name behind the sender of a message or reaction.
   * @param {string | undefined} id
   * @param {boolean} isFromMe
   */
  senderName(id, isFromMe) {
    const participant = id === undefined ? undefined : this.conversation.participantByID.get(id);
    if (participant) return this.nameOf(participant);
    if (isFromMe || id === "me") return this.me?.displayName ?? this.speech.say("me");
    return id ? this.speech.say("unknownSenderNamed", { id }) : this.speech.say("unknownSender");
  }

  /**
   * A person's picture, else initials, else a figure. It repeats a name beside it, so it says nothing itself.
   * @param {string | undefined} id
   */
  avatar(id) {
    const participant = id === undefined ? undefined : this.conversation.participantByID.get(id);
    const made = element("span", "avatar");
    made.setAttribute("aria-hidden", "true");
    made.dataset.tone = String(toneOf(id ?? ""));
    const fallback = () => made.replaceChildren(initialsOf(participant?.displayName ?? "") || icon("person"));
    const address = albumAddress(participant?.avatarPath, "assets/avatars");
    if (address === undefined) {
      fallback();
      return made;
    }
    const image = element("img");
    image.alt = "";
    image.decoding = "async";
    image.addEventListener("error", fallback);
    image.src = address;
    made.append(image);
    return made;
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * Attachments in their places: pictures, players, and a tile with the name for whatever else there is.
 */

/** Kinds that few browsers play; others are tried even where a browser is not sure of them. */
const rarelyPlayed = /caf|amr|aiff|3gpp|qcelp|x-msvideo|mpeg4-generic/;

class AttachmentView {
  /** @param {Speech} speech @param {Formats} formats */
  constructor(speech, formats) {
    this.speech = speech;
    this.formats = formats;
    /** @type {Set<string>} Files that this browser has failed to show. */
    this.unshowable = new Set();
    /** @type {Map<string, { width: number, height: number }>} As shown, so that a picture shown again has its room at once. */
    this.pictureSizes = new Map();
    this.nearby = new IntersectionObserver((entries) => {
      for (const { isIntersecting, target } of entries) {
        if (isIntersecting && target instanceof HTMLMediaElement) this.#prepare(target);
      }
    }, { rootMargin: "50% 0%" });
  }

  /** @param {Attachment} attachment @returns {HTMLElement} */
  build(attachment) {
    const address = albumAddress(attachment.archivePath, "attachments");
    if (attachment.availability !== "available" || address === undefined) return this.#absentTile(attachment);
    const kind = attachmentKind(attachment);
    if (kind === "document") return this.#fileTile(attachment, address);
    if (this.unshowable.has(address)) return this.#unshowableTile(attachment, address);
    return kind === "image" ? this.#picture(attachment, address) : this.#player(attachment, address, kind);
  }

  /** @param {Attachment} attachment */
  nameOf(attachment) {
    return attachment.name || this.speech.say("attachment");
  }

  /** @param {Attachment} attachment @param {string} address */
  #picture(attachment, address) {
    const link = this.#openingLink("picture part is-pending", address);
    const image = element("img");
    image.alt = this.nameOf(attachment);
    image.title = this.#captionOf(attachment);
    image.loading = "lazy";
    image.decoding = "async";
    const giveRoom = () => {
      const size = this.pictureSizes.get(address);
      if (!size) return;
      Object.assign(image, size);
      link.classList.remove("is-pending");
    };
    giveRoom();
    image.addEventListener("load", () => {
      this.pictureSizes.set(address, fittedSize(image.naturalWidth, image.naturalHeight));
      giveRoom();
    });
    image.addEventListener("error", () => this.#giveUp(link, attachment, address));
    image.src = address;
    link.append(image);
    return link;
  }

  /** @param {Attachment} attachment @param {string} address @param {"video" | "audio"} kind */
  #player(attachment, address, kind) {
    const player = element(kind);
    const type = mimeTypeOf(attachment);
    if (player.canPlayType(type) === "" && rarelyPlayed.test(type)) return this.#unshowableTile(attachment, address);
    const figure = element("figure", "player part");
    player.controls = true;
    player.preload = "none";
    player.setAttribute("aria-label", this.nameOf(attachment));
    player.addEventListener("error", () => this.#giveUp(figure, attachment, address));
    player.addEventListener("loadedmetadata", () => {
      // A film whose pictures this browser cannot decode would play as sound behind a black field.
      if (player instanceof HTMLVideoElement && player.videoWidth === 0) this.#giveUp(figure, attachment, address);
    });
    player.src = address;
    const caption = element("figcaption", "player-name");
    caption.append(isolated(this.#captionOf(attachment)));
    figure.append(player, caption);
    this.nearby.observe(player);
    return figure;
  }

  /**
   * A browser holds only so many players ready, so each becomes one when it comes near the window.
   * @param {HTMLMediaElement} player
   */
  #prepare(player) {
    this.nearby.unobserve(player);
    player.preload = "metadata";
  }

  /** @param {HTMLElement} shown @param {Attachment} attachment @param {string} address */
  #giveUp(shown, attachment, address) {
    this.unshowable.add(address);
    const tile = this.#unshowableTile(attachment, address);
    for (const name of ["first-of-run", "last-of-run"]) tile.classList.toggle(name, shown.classList.contains(name));
    shown.replaceWith(tile);
  }

  /** @param {Attachment} attachment */
  #captionOf(attachment) {
    return [this.nameOf(attachment), ...this.#sizeOf(attachment)].join(" · ");
  }

  /** @param {Attachment} attachment @returns {string[]} */
  #sizeOf({ byteSize }) {
    return byteSize === undefined ? [] : [this.formats.size(byteSize)];
  }

  /** @param {string} className @param {string} address */
  #openingLink(className, address) {
    const link = element("a", className);
    link.href = address;
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    return link;
  }

  /** @param {Attachment} attachment @param {string} address */
  #fileTile(attachment, address) {
    const tile = this.#openingLink("tile part", address);
    const words = this.#tileWords(attachment);
    words.append(element("span", "tile-open", this.speech.say("openFile")));
    tile.append(this.#tileIcon(attachmentKind(attachment)), words);
    return tile;
  }

  /** @param {Attachment} attachment @param {string} address */
  #unshowableTile(attachment, address) {
    const tile = this.#fileTile(attachment, address);
    tile.querySelector(".tile-open")?.before(element("span", "tile-facts", this.speech.say("cannotShow")));
    return tile;
  }

  /** @param {Attachment} attachment */
  #absentTile(attachment) {
    const tile = element("div", "tile part is-absent");
    const words = this.#tileWords(attachment);
    const trouble = attachment.availability === "unreadable" ? "unreadableAttachment" : "missingAttachment";
    words.append(element("span", "tile-trouble", this.speech.say(trouble)));
    tile.append(this.#tileIcon("warning"), words);
    return tile;
  }

  /** @param {keyof typeof iconPaths} name */
  #tileIcon(name) {
    const made = element("span", "tile-icon");
    made.append(icon(name));
    return made;
  }

  /** @param {Attachment} attachment */
  #tileWords(attachment) {
    const words = element("span", "tile-words");
    const extension = extensionOf(attachment.archivePath ?? attachment.name).toUpperCase();
    const kind = this.speech.say(attachmentKind(attachment));
    const facts = [kind, ...(extension ? [extension] : []), ...this.#sizeOf(attachment)];
    words.append(isolated(this.nameOf(attachment), "tile-name"), element("span", "tile-facts", facts.join(" · ")));
    return words;
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * One message as a row of the conversation.
 */

/** @type {ReadonlyMap<string, { sign: string, word: WordKey }>} */
const reactionLooks = new Map([
  ["loved", { sign: "❤️", word: "loved" }],
  ["liked", { sign: "👍", word: "liked" }],
  ["disliked", { sign: "👎", word: "disliked" }],
  ["laughed", { sign: "😂", word: "laughed" }],
  ["emphasized", { sign: "‼️", word: "emphasized" }],
  ["questioned", { sign: "❓", word: "questioned" }],
]);
/** The record says that there was a reaction, but not which. */
const otherReactionLook = { sign: "💬", word: /** @type {WordKey} */ ("otherReaction") };

class MessageView {
  /**
   * @param {Conversation} conversation
   * @param {People} people
   * @param {Speech} speech
   * @param {Formats} formats
   * @param {Uint8Array} marks
   */
  constructor(conversation, people, speech, formats, marks) {
    this.conversation = conversation;
    this.people = people;
    this.speech = speech;
    this.formats = formats;
    this.marks = marks;
    this.attachments = new AttachmentView(speech, formats);
    /** @type {(index: number) => void} */
    this.onJump = () => {};
  }

  /** @param {number} index @returns {HTMLLIElement} */
  buildRow(index) {
    const message = this.conversation.message(index);
    const marks = this.marks[index];
    const row = element("li", "row");
    row.dataset.index = String(index);
    row.setAttribute("aria-setsize", String(this.conversation.messageCount));
    row.setAttribute("aria-posinset", String(index + 1));
    row.classList.toggle("starts-group", (marks & startsGroup) !== 0);
    if (marks & startsDay) {
      row.classList.add("starts-day");
      row.append(element("h2", "day", this.#dayText(message)));
    }
    row.append(this.#article(message, marks));
    return row;
  }

  /**
   * What a reply shows of the message it answers.
   * @param {Message} message
   */
  summaryOf(message) {
    const words = beginningOf(shownText(message.text) || message.subject, 160);
    if (words) return words;
    if (message.attachments.length > 0) return message.attachments.map((one) => this.attachments.nameOf(one)).join(", ");
    return this.#wordsForNothing(message);
  }

  /** @param {Message} message @param {number} marks */
  #article(message, marks) {
    const article = element("article", "message");
    article.dataset.id = message.id;
    article.classList.add(message.isFromMe ? "is-own" : "is-other");
    article.classList.toggle("is-text-service", /^(sms|mms|rcs)/i.test(message.service ?? this.conversation.service ?? ""));
    article.classList.toggle("is-retracted", message.retractedAt !== undefined);
    article.append(this.#sender(message, marks));
    if (message.replyToGUID !== undefined) article.append(this.#reply(message.replyToGUID));
    const stack = this.#stack(message, marks);
    article.append(stack);
    const reactions = settleReactions(message.reactions);
    if (reactions.length > 0) article.append(...this.#reactions(reactions));
    const meta = this.#meta(message, marks);
    (meta.classList.contains("is-quiet") ? stack : article).append(meta);
    return article;
  }

  /** @param {Message} message */
  #dayText(message) {
    return Number.isNaN(message.time) ? this.speech.say("unknownDate") : this.formats.day(message.time);
  }

  /**
   * Every message says who wrote it; only the first of a run, and only where it is in question, says so to the eye.
   * @param {Message} message
   * @param {number} marks
   */
  #sender(message, marks) {
    const isKnown = message.senderID !== undefined && this.conversation.participantByID.has(message.senderID);
    const isShown = !message.isFromMe && (marks & startsGroup) !== 0 && (this.conversation.isGroup || !isKnown);
    const sender = element("p", isShown ? "sender" : "visually-hidden");
    sender.append(isolated(this.people.senderName(message.senderID, message.isFromMe), "sender-name"));
    return sender;
  }

  /** @param {Message} message @param {number} marks */
  #stack(message, marks) {
    const stack = element("div", "stack");
    stack.append(...this.#parts(message));
    stack.firstElementChild?.classList.toggle("first-of-run", (marks & startsGroup) !== 0 || message.replyToGUID !== undefined);
    stack.lastElementChild?.classList.toggle("last-of-run", (marks & endsGroup) !== 0);
    if (this.conversation.isGroup && !message.isFromMe && marks & endsGroup) {
      stack.append(this.people.avatar(message.senderID));
    }
    return stack;
  }

  /**
   * What was said, from top to bottom; never nothing.
   * @param {Message} message
   * @returns {HTMLElement[]}
   */
  #parts(message) {
    const parts = piecesOf(message.text, message.attachments).map((piece) =>
      "text" in piece ? this.#bubble(piece.text) : this.attachments.build(piece.attachment));
    if (message.subject) this.#addSubject(parts, message.subject);
    const isUnread = message.payloadState === "unsupported" || message.payloadState === "partiallyDecoded";
    if (parts.length === 0 || isUnread) parts.push(this.#note(this.#wordsForNothing(message)));
    return parts;
  }

  /**
   * Why a message shows no words, or not all of them.
   * @param {Message} message
   */
  #wordsForNothing(message) {
    if (message.payloadState === "partiallyDecoded") return this.speech.say("partialMessage");
    if (message.payloadState === "unsupported") return this.speech.say("unsupportedMessage");
    return this.speech.say(message.retractedAt === undefined ? "emptyMessage" : "unsentMessage");
  }

  /**
   * The subject heads the first bubble, or is one when the message has no words.
   * @param {HTMLElement[]} parts
   * @param {string} subject
   */
  #addSubject(parts, subject) {
    const heading = element("p", "subject", subject);
    heading.dir = "auto";
    const first = parts[0];
    if (first?.classList.contains("bubble")) {
      first.classList.remove("is-large");
      first.prepend(heading);
      return;
    }
    const bubble = element("div", "bubble part");
    bubble.append(heading);
    parts.unshift(bubble);
  }

  /** @param {string} text */
  #bubble(text) {
    const bubble = element("div", isFewEmoji(text) ? "bubble part is-large" : "bubble part");
    const words = element("p", "words");
    words.dir = "auto";
    words.append(...splitLinks(text).map(({ text: piece, href }) => (href === undefined ? piece : this.#link(piece, href))));
    bubble.append(words);
    return bubble;
  }

  /** @param {string} text @param {string} href */
  #link(text, href) {
    const link = element("a", "", text);
    link.href = href;
    link.dir = "ltr";
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    return link;
  }

  /** @param {string} text */
  #note(text) {
    return element("div", "bubble part is-note", text);
  }

  /** @param {string} guid */
  #reply(guid) {
    const index = this.conversation.indexOfGUID(guid);
    if (index === undefined) return element("p", "reply", this.speech.say("replyToUnknown"));
    const target = this.conversation.message(index);
    const name = this.people.senderName(target.senderID, target.isFromMe);
    const reply = button("reply", () => this.onJump(index));
    const words = element("span", "reply-words", this.summaryOf(target));
    words.dir = "auto";
    reply.append(isolated(this.speech.say("replyTo", { name }), "reply-sender"), words);
    return reply;
  }

  /** @param {{ kind: string, senderIDs: (string | undefined)[] }[]} reactions @returns {HTMLElement[]} */
  #reactions(reactions) {
    const badges = element("div", "reactions");
    const people = element("ul", "reaction-people");
    people.hidden = true;
    for (const { kind, senderIDs } of reactions) {
      const look = reactionLooks.get(kind) ?? otherReactionLook;
      const words = this.speech.say(look.word, { names: this.#reactionNames(senderIDs) });
      badges.append(this.#badge(look.sign, senderIDs.length, words, people));
      people.append(element("li", "", words));
    }
    return [badges, people];
  }

  /** @param {(string | undefined)[]} senderIDs */
  #reactionNames(senderIDs) {
    return this.speech.list(senderIDs.map((id) => this.people.senderName(id, false)));
  }

  /** @param {string} sign @param {number} count @param {string} words @param {HTMLElement} people */
  #badge(sign, count, words, people) {
    const badge = button("reaction", () => {
      people.hidden = !people.hidden;
      const badges = badge.parentElement?.querySelectorAll(".reaction") ?? [];
      badges.forEach((one) => one.setAttribute("aria-expanded", String(!people.hidden)));
    });
    badge.title = words;
    badge.setAttribute("aria-label", words);
    badge.setAttribute("aria-expanded", "false");
    badge.append(element("span", "", sign));
    if (count > 1) badge.append(element("span", "reaction-count", this.speech.numbers.format(count)));
    return badge;
  }

  /**
   * Time and marks: below the last message of a run and below every changed one, else beside the message on pointing.
   * @param {Message} message
   * @param {number} marks
   */
  #meta(message, marks) {
    const meta = element("p", "meta");
    meta.append(this.#time(message));
    if (message.service !== undefined && message.service !== this.conversation.service) meta.append(isolated(message.service));
    if (message.editedAt !== undefined) meta.append(this.#mark("edited", "editedOn", message.editedAt));
    if (message.retractedAt !== undefined) meta.append(this.#mark("unsent", "unsentOn", message.retractedAt));
    const isChanged = message.editedAt !== undefined || message.retractedAt !== undefined;
    meta.classList.toggle("is-quiet", !isChanged && !(marks & endsGroup));
    return meta;
  }

  /** @param {Message} message */
  #time(message) {
    const time = element("time");
    if (Number.isNaN(message.time)) {
      time.textContent = message.date || this.speech.say("unknownDate");
      return time;
    }
    time.dateTime = message.date;
    time.textContent = this.formats.clock(message.time);
    time.title = [this.formats.moment(message.time), ...(message.service ? [message.service] : [])].join(" · ");
    return time;
  }

  /** @param {WordKey} word @param {WordKey} titleWord @param {string} date */
  #mark(word, titleWord, date) {
    const mark = element("time", `mark-${word}`, this.speech.say(word));
    const time = timeOf(date);
    mark.dateTime = date;
    mark.title = this.speech.say(titleWord, { date: Number.isNaN(time) ? date : this.formats.moment(time) });
    return mark;
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * The list: all rows at once while they are few, so that the browser's own search and printing see everything; a window
 * onto them when they are many.
 */

const fewRows = 2_000;

/**
 * @typedef {object} RowList
 * @property {(index: number) => HTMLElement | undefined} reveal brings a row under the eye
 * @property {() => void} toStart
 * @property {() => void} toEnd
 */

/** @implements {RowList} */
class WholeList {
  /** @param {HTMLElement} rows @param {number} count @param {(index: number) => HTMLLIElement} buildRow */
  constructor(rows, count, buildRow) {
    this.rows = rows;
    document.documentElement.classList.add("is-whole");
    const made = document.createDocumentFragment();
    for (let index = 0; index < count; index++) made.append(buildRow(index));
    rows.append(made);
  }

  /** @param {number} index */
  reveal(index) {
    const row = /** @type {HTMLElement | undefined} */ (this.rows.children[index]);
    row?.scrollIntoView({ block: "center" });
    return row;
  }

  toStart() {
    window.scrollTo(0, 0);
  }

  toEnd() {
    window.scrollTo(0, document.documentElement.scrollHeight);
  }
}

/**
 * Shows the rows near the window and lays them where the height map says. Whatever is measured, loaded or folded out,
 * one row, the anchor, stays where the eye has it; the scroll bar follows when scrolling has come to rest.
 * @implements {RowList}
 */
class VirtualList {
  /** @type {HTMLLIElement[]} */
  #shown = [];
  #firstShown = 0;
  /** The row under the eye, and how far above the window's top edge its own top edge lies. */
  #anchor = { index: 0, above: 0 };
  /** The scroll position for which the rows were last laid. */
  #position = 0;
  #isAtEnd = false;
  #isPrinting = false;
  #listWidth = 0;
  /** @type {number | undefined} */
  #restTimer = undefined;

  /**
   * @param {HTMLElement} track as tall as the scroll range
   * @param {HTMLElement} rows
   * @param {number} count
   * @param {(index: number, listWidth: number) => number} estimate
   * @param {(index: number) => HTMLLIElement} buildRow
   */
  constructor(track, rows, count, estimate, buildRow) {
    this.track = track;
    this.rows = rows;
    this.count = count;
    this.estimate = estimate;
    this.buildRow = buildRow;
    track.classList.add("is-virtual");
    this.#listWidth = track.clientWidth;
    this.heights = this.#estimatedHeights();
    this.resizes = new ResizeObserver((entries) => this.#onRowsResized(entries));
    this.#moveTo(window.scrollY - this.#trackTop());
    this.#render();
    window.addEventListener("scroll", () => this.#onScroll(), { passive: true });
    window.addEventListener("resize", () => this.#onWindowResized());
    window.addEventListener("keydown", (event) => this.#onKey(event));
    window.addEventListener("beforeprint", () => this.#showAll());
    window.addEventListener("afterprint", () => this.#showWindow());
  }

  /** @param {number} index */
  reveal(index) {
    this.#isAtEnd = false;
    this.#anchor = { index, above: -window.innerHeight / 3 };
    this.#render();
    this.#followWithScrollBar();
    return this.#shown[index - this.#firstShown];
  }

  toStart() {
    window.scrollTo(0, 0);
    this.#onScroll();
  }

  toEnd() {
    window.scrollTo(0, document.documentElement.scrollHeight);
    this.#onScroll();
  }

  /**
   * Browsers glide to the end that there was when the key was pressed, while rows measured on the way move it.
   * @param {KeyboardEvent} event
   */
  #onKey(event) {
    const isForEnd = event.key === "End" || (event.metaKey && event.key === "ArrowDown");
    const isElsewhere = event.target instanceof HTMLMediaElement || document.querySelector("dialog[open]") !== null;
    if (!isForEnd || isElsewhere || event.defaultPrevented || event.shiftKey || event.altKey) return;
    event.preventDefault();
    this.toEnd();
  }

  #estimatedHeights() {
    return new HeightMap(this.count, (index) => this.estimate(index, this.#listWidth));
  }

  #trackTop() {
    return this.track.getBoundingClientRect().top + window.scrollY;
  }

  #scale() {
    return new ScrollScale(this.heights.total, window.innerHeight);
  }

  /** The height of rows above the window's top edge; negative while something else stands above the rows. */
  #offset() {
    if (this.#isAtEnd) return this.#scale().lastOffset;
    return Math.min(this.heights.offsetOf(this.#anchor.index) + this.#anchor.above, this.#scale().lastOffset);
  }

  /**
   * Makes the row a little below the window's top edge the anchor.
   * @param {number} offset
   */
  #moveTo(offset) {
    const index = this.heights.indexAt(offset + Math.min(120, window.innerHeight / 4));
    this.#anchor = { index, above: offset - this.heights.offsetOf(index) };
  }

  #onScroll() {
    if (this.#isPrinting) return;
    const position = window.scrollY;
    const moved = position - this.#position;
    const scale = this.#scale();
    const inList = position - this.#trackTop();
    const isLeap = Math.abs(moved) > 4 * window.innerHeight;
    const offset = this.#offset();
    this.#isAtEnd = inList > 0 && inList >= scale.lastPosition - 1;
    // A leap goes where the scroll bar points; a step moves the rows by as many pixels as the hand did.
    this.#moveTo(isLeap || inList <= 0 ? scale.offsetAt(inList) : offset + moved);
    this.#position = position;
    this.#render();
    this.#followAtRest(inList, scale);
  }

  /** @param {number} inList @param {ScrollScale} scale */
  #followAtRest(inList, scale) {
    window.clearTimeout(this.#restTimer);
    const nearEnds = 2 * window.innerHeight;
    if (inList < nearEnds || inList > scale.lastPosition - nearEnds) this.#followWithScrollBar();
    else this.#restTimer = window.setTimeout(() => this.#followWithScrollBar(), 150);
  }

  /** Puts the scroll bar where the rows are, without moving the rows. */
  #followWithScrollBar() {
    const offset = this.#offset();
    const wanted = this.#trackTop() + this.#scale().positionOf(offset);
    if (Math.abs(wanted - window.scrollY) < 1) return;
    window.scrollTo(0, wanted);
    this.#lay();
  }

  #onWindowResized() {
    if (this.#isPrinting) return;
    if (this.track.clientWidth !== this.#listWidth) {
      this.#listWidth = this.track.clientWidth;
      this.heights = this.#estimatedHeights();
      this.#measure();
    }
    this.#render();
    this.#followWithScrollBar();
  }

  /** @param {readonly ResizeObserverEntry[]} entries */
  #onRowsResized(entries) {
    if (this.#isPrinting) return;
    if (this.#measure(entries.map(({ target }) => target))) this.#render();
  }

  #render() {
    if (this.#isPrinting) return;
    const margin = window.innerHeight;
    // Rows that turn out shorter than estimated leave room for more of them, which must be measured in turn.
    for (let pass = 0; pass < 10; pass++) {
      const offset = this.#offset();
      this.#show(this.heights.indexAt(offset - margin), this.heights.indexAt(offset + 2 * margin) + 1);
      if (!this.#measure()) break;
    }
    this.#lay();
  }

  /** @param {number} first @param {number} end */
  #show(first, end) {
    const shownEnd = this.#firstShown + this.#shown.length;
    if (first >= shownEnd || end <= this.#firstShown) {
      this.#forget(this.#shown);
      this.#shown = this.#build(first, end);
      this.rows.replaceChildren(...this.#shown);
    } else {
      this.#forget(this.#shown.splice(Math.max(0, end - this.#firstShown)));
      this.#forget(this.#shown.splice(0, Math.max(0, first - this.#firstShown)));
      const before = this.#build(first, this.#firstShown);
      const behind = this.#build(shownEnd, end);
      this.rows.prepend(...before);
      this.rows.append(...behind);
      this.#shown = [...before, ...this.#shown, ...behind];
    }
    this.#firstShown = first;
  }

  /** @param {number} first @param {number} end @returns {HTMLLIElement[]} */
  #build(first, end) {
    const made = [];
    for (let index = first; index < end; index++) {
      const row = this.buildRow(index);
      this.resizes.observe(row, { box: "border-box" });
      made.push(row);
    }
    return made;
  }

  /** @param {readonly HTMLLIElement[]} rows */
  #forget(rows) {
    for (const row of rows) {
      this.resizes.unobserve(row);
      row.remove();
    }
  }

  /**
   * Returns whether any height was news.
   * @param {readonly Element[]} [rows]
   */
  #measure(rows = this.#shown) {
    let isNews = false;
    for (const row of rows) {
      if (!row.isConnected || !(row instanceof HTMLElement)) continue;
      if (this.heights.setHeight(Number(row.dataset.index), row.getBoundingClientRect().height)) isNews = true;
    }
    return isNews;
  }

  #lay() {
    this.track.style.height = `${this.#scale().height}px`;
    // A shorter track may have moved the scroll position just now; the rows are laid for where it is.
    this.#position = window.scrollY;
    const windowTop = this.#position - this.#trackTop();
    const above = this.#offset() - this.heights.offsetOf(this.#firstShown);
    this.rows.style.top = `${Math.round(windowTop - above)}px`;
  }

  #showAll() {
    this.#isPrinting = true;
    this.#forget(this.#shown);
    this.#shown = [];
    for (let index = 0; index < this.count; index++) this.rows.append(this.buildRow(index));
  }

  #showWindow() {
    this.#isPrinting = false;
    this.rows.replaceChildren();
    this.#render();
    this.#followWithScrollBar();
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * About this album: what it is made of, who speaks in it, and what it could not keep.
 */

/**
 * The warnings whose words the page has; another one is told by its stored text.
 * @type {ReadonlySet<string>}
 */
const knownWarnings = new Set(["unresolved_reaction", "unsupported_payload", "attachment_missing", "attachment_unreadable"]);

/** So many warnings are shown without asking. */
const fewWarnings = 2_000;

class AboutPanel {
  /**
   * @param {Conversation} conversation
   * @param {People} people
   * @param {Speech} speech
   * @param {Formats} formats
   */
  constructor(conversation, people, speech, formats) {
    this.conversation = conversation;
    this.people = people;
    this.speech = speech;
    this.formats = formats;
    /** @type {(index: number) => void} */
    this.onJump = () => {};
    this.dialog = element("dialog", "about");
    this.dialog.setAttribute("aria-labelledby", "about-title");
    this.dialog.addEventListener("click", (event) => {
      if (event.target === this.dialog) this.dialog.close();
    });
  }

  build() {
    const body = element("div", "about-body");
    body.append(this.#facts(), this.#heading("participants"), this.#participants(), this.#heading("warnings"));
    body.append(...this.#warnings());
    this.dialog.append(this.#head(), body);
    return this.dialog;
  }

  open() {
    this.dialog.showModal();
    this.dialog.scrollTop = 0;
  }

  #head() {
    const head = element("header", "about-head");
    const title = element("h2", "", this.speech.say("about"));
    title.id = "about-title";
    const close = button("bar-action", () => this.dialog.close());
    close.setAttribute("aria-label", this.speech.say("close"));
    close.append(icon("close"));
    head.append(title, close);
    return head;
  }

  /** @param {WordKey} word */
  #heading(word) {
    return element("h3", "", this.speech.say(word));
  }

  #facts() {
    const { conversation, speech } = this;
    const list = element("dl", "facts");
    /** @param {WordKey} word @param {string | undefined} value */
    const add = (word, value) => {
      if (!value) return;
      const description = element("dd");
      description.append(isolated(value));
      list.append(element("dt", "", speech.say(word)), description);
    };
    const last = conversation.messageCount - 1;
    add("title", conversation.title);
    add("service", conversation.service);
    add("firstMessage", last < 0 ? undefined : this.#momentOf(conversation.message(0).date));
    add("latestMessage", last < 0 ? undefined : this.#momentOf(conversation.message(last).date));
    add("messages", speech.numbers.format(conversation.messageCount));
    if (conversation.sourceMessageCount !== undefined) add("sourceRecords", speech.numbers.format(conversation.sourceMessageCount));
    add("attachments", this.#attachmentText());
    add("madeOn", this.#momentOf(conversation.generatedAt));
    add("madeWith", conversation.sourceSystemVersion);
    return list;
  }

  /** @param {string | undefined} date */
  #momentOf(date) {
    const time = timeOf(date);
    return Number.isNaN(time) ? date : this.formats.moment(time);
  }

  #attachmentText() {
    const counts = this.conversation.countAttachments();
    const lines = [this.speech.numbers.format(counts.all)];
    if (counts.all > 0) lines.push(this.speech.sayCount("attachmentsAvailable", counts.available));
    if (counts.missing > 0) lines.push(this.speech.sayCount("attachmentsMissing", counts.missing));
    if (counts.unreadable > 0) lines.push(this.speech.sayCount("attachmentsUnreadable", counts.unreadable));
    return lines.join("\n");
  }

  #participants() {
    const counts = this.conversation.countBySender();
    const list = element("ul", "people");
    for (const participant of this.conversation.participants) {
      const key = participant.isMe ? "me" : `from ${participant.id}`;
      list.append(this.#person(participant, counts.get(key) ?? 0));
    }
    return list;
  }

  /** @param {Participant} participant @param {number} messageCount */
  #person(participant, messageCount) {
    const item = element("li");
    const words = element("div", "person-words");
    words.append(isolated(this.people.nameOf(participant), "person-name"));
    const facts = element("span", "person-facts");
    if (participant.displayName && participant.address) facts.append(isolated(participant.address), " · ");
    facts.append(this.speech.sayCount("messageCount", messageCount));
    words.append(facts);
    item.append(this.people.avatar(participant.id), words);
    return item;
  }

  /** @returns {HTMLElement[]} */
  #warnings() {
    const { warnings } = this.conversation;
    if (warnings.length === 0) return [element("p", "warning-detail", this.speech.say("noWarnings"))];
    const list = element("ul", "warnings");
    list.append(...warnings.slice(0, fewWarnings).map((warning) => this.#warning(warning)));
    if (warnings.length <= fewWarnings) return [list];
    const more = button("text-button", () => {
      more.remove();
      list.append(...warnings.slice(fewWarnings).map((warning) => this.#warning(warning)));
    });
    more.textContent = this.speech.sayCount("showAllWarnings", warnings.length);
    window.addEventListener("beforeprint", () => more.isConnected && more.click());
    return [list, more];
  }

  /**
   * A known warning is told in the page's language; its stored text, which may name the file, stands below.
   * @param {Warning} warning
   */
  #warning(warning) {
    const item = element("li");
    const known = knownWarnings.has(warning.code) ? this.speech.say(/** @type {WordKey} */ (warning.code)) : "";
    item.append(element("p", "", known || warning.summary || warning.code));
    if (known && warning.summary && warning.summary !== known) {
      const detail = element("p", "warning-detail");
      detail.append(isolated(warning.summary));
      item.append(detail);
    }
    const index = this.conversation.indexOfSource(warning);
    if (index !== undefined) item.append(this.#jumpButton(index));
    return item;
  }

  /** @param {number} index */
  #jumpButton(index) {
    const jump = button("text-button", () => {
      this.dialog.close();
      this.onJump(index);
    });
    jump.textContent = this.speech.say("showMessage");
    return jump;
  }
}

/* ---------------------------------------------------------------------------------------------------------------------
 * The page: bar, cover, conversation, and how they are put together.
 */

/** A cover shows no more faces than this. */
const mostFaces = 5;

class Page {
  /** @param {unknown} data */
  constructor(data) {
    this.conversation = new Conversation(data);
    this.speech = new Speech(document.documentElement.lang);
    this.formats = makeFormats(this.speech.tag);
    this.people = new People(this.conversation, this.speech);
    this.about = new AboutPanel(this.conversation, this.people, this.speech, this.formats);
    this.main = /** @type {HTMLElement} */ (document.getElementById("conversation"));
    /** @type {RowList | undefined} */
    this.list = undefined;
    /** @type {number | undefined} */
    this.flashTimer = undefined;
  }

  show() {
    const { conversation } = this;
    document.body.append(this.about.build());
    this.about.onJump = (index) => this.jumpTo(index);
    this.#fillBar();
    this.main.removeAttribute("aria-busy");
    this.main.replaceChildren(this.#cover());
    if (conversation.messageCount === 0) this.main.append(element("p", "notice", this.speech.say("emptyConversation")));
    else this.#showMessages();
  }

  /** @param {number} index */
  jumpTo(index) {
    const row = this.list?.reveal(index);
    if (!row) return;
    document.querySelectorAll(".is-found").forEach((found) => found.classList.remove("is-found"));
    row.classList.add("is-found");
    row.tabIndex = -1;
    row.focus({ preventScroll: true });
    window.clearTimeout(this.flashTimer);
    this.flashTimer = window.setTimeout(() => row.classList.remove("is-found"), 2500);
  }

  #fillBar() {
    const { conversation, speech } = this;
    const summary = document.getElementById("summary");
    if (summary) summary.textContent = speech.sayCount("messageCount", conversation.messageCount);
    document.getElementById("actions")?.append(
      this.#action("first", "toFirst", () => this.list?.toStart()),
      this.#action("last", "toLast", () => this.list?.toEnd()),
      this.#action("info", "about", () => this.about.open()),
    );
  }

  /** @param {keyof typeof iconPaths} name @param {WordKey} word @param {() => void} onPress */
  #action(name, word, onPress) {
    const action = button("bar-action", onPress);
    action.title = this.speech.say(word);
    action.setAttribute("aria-label", action.title);
    action.append(icon(name));
    return action;
  }

  #cover() {
    const { conversation, people, speech } = this;
    const others = conversation.participants.filter((participant) => !participant.isMe);
    const cover = element("section", "cover");
    const pictures = element("div", "cover-pictures");
    pictures.append(...others.slice(0, mostFaces).map((participant) => people.avatar(participant.id)));
    const names = element("p", "cover-names");
    // Lines are broken between names sooner than within one.
    const parts = speech.lists.formatToParts(others.map((participant) => people.nameOf(participant).replace(/ /g, "\u00A0")));
    names.append(...parts.map(({ type, value }) => (type === "element" ? isolated(value) : value)));
    cover.append(pictures, names);
    for (const line of this.#coverFacts()) cover.append(element("p", "cover-facts", line));
    if (conversation.warnings.length > 0) {
      const warnings = button("cover-warnings", () => this.about.open());
      warnings.append(icon("warning"), speech.sayCount("warningCount", conversation.warnings.length));
      cover.append(warnings);
    }
    return cover;
  }

  /** @returns {string[]} */
  #coverFacts() {
    const { conversation, speech } = this;
    const attachmentCount = conversation.countAttachments().all;
    const counts = [speech.sayCount("messageCount", conversation.messageCount)];
    if (attachmentCount > 0) counts.push(speech.sayCount("attachmentCount", attachmentCount));
    return [...this.#dateRange(), counts.join(" · ")];
  }

  /** @returns {string[]} */
  #dateRange() {
    const { conversation } = this;
    const day = new Intl.DateTimeFormat(this.speech.tag, { dateStyle: "long" });
    if (conversation.messageCount === 0) return [];
    const times = [0, conversation.messageCount - 1].map((index) => conversation.message(index).time);
    if (times.some(Number.isNaN)) return [];
    const [first, last] = times.map((time) => day.format(time));
    return [first === last ? first : this.speech.say("dateRange", { first, last })];
  }

  #showMessages() {
    const { conversation } = this;
    const track = element("section", "track");
    track.setAttribute("aria-label", this.speech.say("messagesLabel"));
    track.classList.toggle("is-group", conversation.isGroup);
    const rows = element("ol", "rows");
    rows.setAttribute("role", "list");
    track.append(rows);
    this.main.append(track);
    const marks = timelineMarks(conversation.messageCount,
      (index) => timeOf(recordOf(conversation.rawMessages[index]).date), (index) => conversation.senderKey(index));
    const view = new MessageView(conversation, this.people, this.speech, this.formats, marks);
    view.onJump = (index) => this.jumpTo(index);
    this.list = this.#makeList(track, rows, view, marks);
  }

  /** @param {HTMLElement} track @param {HTMLElement} rows @param {MessageView} view @param {Uint8Array} marks @returns {RowList} */
  #makeList(track, rows, view, marks) {
    const count = this.conversation.messageCount;
    if (count <= fewRows) return new WholeList(rows, count, (index) => view.buildRow(index));
    return new VirtualList(track, rows, count, (index, width) => this.#estimateRow(index, width, marks[index]),
      (index) => view.buildRow(index));
  }

  /** @param {number} index @param {number} width @param {number} marks */
  #estimateRow(index, width, marks) {
    const raw = recordOf(this.conversation.rawMessages[index]);
    const text = textOf(raw.text) ?? "";
    const attachments = listOf(raw.attachments);
    const pictures = attachments.length && attachments.filter((one) => attachmentKind(attachmentOf(one)) === "image").length;
    const extras = Number(raw.replyToGUID !== undefined) * 2 + Number(listOf(raw.reactions).length > 0);
    const charactersPerLine = Math.max(12, Math.min(512, width * 0.78) / 8);
    const row = { textLength: text.length, lineBreaks: 0, pictures, files: attachments.length - pictures, extras, marks };
    return estimateHeight(row, charactersPerLine);
  }
}

function showAlbum() {
  const data = /** @type {{ QUILLBOOK_DATA?: unknown }} */ (/** @type {unknown} */ (window)).QUILLBOOK_DATA;
  if (typeof data === "object" && data !== null) {
    new Page(data).show();
    return;
  }
  const notice = element("p", "notice", new Speech(document.documentElement.lang).say("dataMissing"));
  notice.setAttribute("role", "alert");
  document.getElementById("conversation")?.replaceChildren(notice);
}

if (typeof module !== "undefined") {
  module.exports = {
    HeightMap, ScrollScale, Speech, albumAddress, attachmentKind, attachmentOf, beginningOf, byteSizePower, endsGroup,
    estimateHeight, extensionOf, initialsOf, isFewEmoji, messageOf, piecesOf, reactionOf, settleReactions, shownText, splitLinks,
    startsDay, startsGroup, tallestLayout, timeOf, timelineMarks,
  };
}
if (typeof document !== "undefined") showAlbum();
