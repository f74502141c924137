import { albumAddress } from "../files/albumFiles.js";
import { element } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { initialsOf } from "../text/initials.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("../records/records.js").Participant} Participant */
/** @typedef {import("../words/Speech.js").Speech} Speech */

const avatarTones = 6;

/**
 * The same tone for the same person in every album.
 * @param {string} id
 */
export function toneOf(id) {
  let sum = 0;
  for (const character of id) sum = (sum * 31 + (character.codePointAt(0) ?? 0)) >>> 0;
  return sum % avatarTones;
}

export class People {
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
