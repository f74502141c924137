// Texts of emoji alone.

// Unicode TR51: presentation, modifier, keycap, flag and tag sequences, joined by U+200D.
const pictured = "(?!\\p{Regional_Indicator})\\p{Emoji_Presentation}";
const emojiSign = `(?:\\p{Emoji_Modifier_Base}\\uFE0F?\\p{Emoji_Modifier}|${pictured}|\\p{Emoji}\\uFE0F)`;
const emojiElement = `(?:[0-9#*]\\uFE0F?\\u20E3|\\p{Regional_Indicator}{2}|${emojiSign}[\\u{E0020}-\\u{E007F}]*)`;
// One way only to read what is joined: two would double the work with each element.
const joinedElement = "\\p{Extended_Pictographic}\\uFE0F?\\p{Emoji_Modifier}?[\\u{E0020}-\\u{E007F}]*";
const emojiSequence = `${emojiElement}(?:\\u200D${joinedElement})*`;
const fewEmoji = new RegExp(`^\\s*(?:${emojiSequence}\\s*){1,3}$`, "u");

/**
 * One to three emoji and nothing else.
 * @param {string} text
 */
export function isFewEmoji(text) {
  return text.length <= 120 && fewEmoji.test(text);
}
