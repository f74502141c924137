/** @typedef {import("../files/Showability.js").Showability} Showability */
/** @typedef {import("../people/People.js").People} People */
/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("../timeline/Calendar.js").Calendar} Calendar */
/** @typedef {import("../timeline/TimelineIndex.js").TimelineIndex} TimelineIndex */
/** @typedef {import("../words/Formats.js").Formats} Formats */
/** @typedef {import("../words/Speech.js").Speech} Speech */

/**
 * What every part of the page works with. `formats`, `calendar` and `timeline` change when the reader chooses another time
 * zone, so they are asked for each time and never kept.
 * @typedef {object} Album
 * @property {Conversation} conversation
 * @property {Speech} speech
 * @property {People} people
 * @property {Formats} formats
 * @property {Calendar} calendar
 * @property {TimelineIndex} timeline
 * @property {Showability} showability
 * @property {(text: string) => readonly (readonly [number, number])[]} highlight the ranges of a text to mark, ascending and
 *   apart, in UTF-16 units; what the reader looks for
 * @property {() => void} refresh shows the rows in sight anew, as after another highlight
 * @property {(index: number) => void} show leads the timeline to a message, marks it, and keeps a way back
 * @property {(index: number) => void} peek the same without a way back, and leaves the focus alone: for steps from hit to hit
 * @property {(messageIndex: number, attachmentIndex: number) => void} view opens the viewer
 */

export {};
