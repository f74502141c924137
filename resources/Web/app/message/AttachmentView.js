import { namesOf, originOf, typeToTell } from "../files/absence.js";
import { attachmentExtension, attachmentKind, fittedSize } from "../files/albumFiles.js";
import { element, isolated } from "../page/elements.js";
import { icon } from "../page/icons.js";
import { marked } from "./marked.js";
import { PlayingFigures } from "./PlayingFigures.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../page/icons.js").IconName} IconName */
/** @typedef {import("../records/records.js").Attachment} Attachment */

/**
 * Where an attachment stands.
 * @typedef {{ message: number, attachment: number }} Position
 */

/** Attachments in their places: pictures, players, and a tile with the name for whatever else there is. */
export class AttachmentView {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
    /** @type {Map<string, { width: number, height: number }>} As shown, so that a picture shown again has its room at once. */
    this.pictureSizes_ = new Map();
    this.playing_ = new PlayingFigures();
    this.nearby_ = new IntersectionObserver((entries) => {
      for (const { isIntersecting, target } of entries) {
        if (isIntersecting && target instanceof HTMLMediaElement) this.prepare_(target);
      }
    }, { rootMargin: "50% 0%" });
  }

  /** @param {Attachment} attachment @param {Position} position @returns {HTMLElement} */
  build(attachment, position) {
    const address = this.album.showability.addressOf(attachment);
    if (address === undefined) return this.absentTile_(attachment);
    const look = this.album.showability.lookOf(attachment, address);
    if (look === "image") return this.picture_(attachment, address, position);
    if (look === "document") return this.fileTile_(attachment, address);
    return this.playing_.take(address) ?? this.player_(attachment, address, look);
  }

  /**
   * What plays in a row goes on when the row leaves.
   * @param {HTMLElement} row
   */
  keepPlaying(row) {
    this.playing_.keep(row);
  }

  /** @param {Attachment} attachment */
  nameOf(attachment) {
    const isThere = this.album.showability.addressOf(attachment) !== undefined;
    return (isThere ? attachment.name : namesOf(attachment)[0]) || this.album.speech.say("attachment");
  }

  /** @param {Attachment} attachment @param {string} address @param {Position} position */
  picture_(attachment, address, position) {
    const link = this.openingLink_("picture part is-pending", address);
    const image = element("img");
    image.alt = this.nameOf(attachment);
    image.title = this.captionOf_(attachment);
    image.loading = "lazy";
    image.decoding = "async";
    const giveRoom = () => {
      const size = this.pictureSizes_.get(address);
      if (!size) return;
      Object.assign(image, size);
      link.classList.remove("is-pending");
    };
    giveRoom();
    image.addEventListener("load", () => {
      this.pictureSizes_.set(address, fittedSize(image.naturalWidth, image.naturalHeight));
      giveRoom();
    });
    image.addEventListener("error", () => this.giveUp_(link, attachment, address));
    image.src = address;
    link.append(image);
    // A picture says its name where that is what was looked for.
    if (this.album.highlight(image.alt).length > 0) link.append(this.name_(image.alt, "picture-name"));
    link.addEventListener("click", (event) => {
      if (event.button !== 0 || event.ctrlKey || event.metaKey || event.shiftKey || event.altKey) return;
      event.preventDefault();
      this.album.view(position.message, position.attachment);
    });
    return link;
  }

  /** @param {Attachment} attachment @param {string} address @param {"video" | "audio"} kind */
  player_(attachment, address, kind) {
    const player = element(kind);
    const figure = element("figure", "player part");
    player.controls = true;
    player.preload = "none";
    player.setAttribute("aria-label", this.nameOf(attachment));
    player.addEventListener("error", () => this.giveUp_(figure, attachment, address));
    player.addEventListener("loadedmetadata", () => {
      // A film whose pictures this browser cannot decode would play as sound behind a black field.
      if (player instanceof HTMLVideoElement && player.videoWidth === 0) this.giveUp_(figure, attachment, address);
    });
    player.src = address;
    const caption = element("figcaption", "player-name");
    caption.append(this.name_(this.captionOf_(attachment), ""));
    figure.append(player, caption);
    this.nearby_.observe(player);
    return figure;
  }

  /**
   * A browser holds only so many players ready, so each becomes one when it comes near the window.
   * @param {HTMLMediaElement} player
   */
  prepare_(player) {
    this.nearby_.unobserve(player);
    player.preload = "metadata";
  }

  /** @param {HTMLElement} shown @param {Attachment} attachment @param {string} address */
  giveUp_(shown, attachment, address) {
    this.album.showability.giveUp(address);
    const tile = this.fileTile_(attachment, address);
    tile.id = shown.id;
    for (const name of ["first-of-run", "last-of-run"]) tile.classList.toggle(name, shown.classList.contains(name));
    shown.replaceWith(tile);
  }

  /** @param {Attachment} attachment */
  captionOf_(attachment) {
    return [this.nameOf(attachment), ...this.sizeOf_(attachment)].join(" · ");
  }

  /** @param {Attachment} attachment @returns {string[]} */
  sizeOf_({ byteSize }) {
    return byteSize === undefined ? [] : [this.album.formats.size(byteSize)];
  }

  /** @param {string} className @param {string} address */
  openingLink_(className, address) {
    const link = element("a", className);
    link.href = address;
    link.target = "_blank";
    link.rel = "noopener noreferrer";
    return link;
  }

  /** @param {Attachment} attachment @param {string} address */
  fileTile_(attachment, address) {
    const { speech } = this.album;
    const kind = attachmentKind(attachment);
    const tile = this.openingLink_("tile part", address);
    const words = this.tileWords_(attachment, this.facts_(attachment));
    if (kind !== "document") words.append(element("span", "tile-facts", speech.say("cannotShow")));
    words.append(element("span", "tile-open", speech.say("openFile")));
    tile.append(this.tileIcon_(kind), words);
    return tile;
  }

  /** @param {Attachment} attachment */
  absentTile_(attachment) {
    const tile = element("div", "tile part is-absent");
    const otherNames = namesOf(attachment).slice(1).map((name) => this.name_(name, ""));
    const type = typeToTell(attachment);
    const facts = [...otherNames, ...this.facts_(attachment), ...(type ? [isolated(type)] : [])];
    const words = this.tileWords_(attachment, facts);
    const trouble = attachment.availability === "unreadable" ? "unreadableAttachment" : "missingAttachment";
    words.append(element("span", "tile-trouble", this.album.speech.say(trouble)));
    const origin = originOf(attachment);
    if (origin) tile.title = origin;
    tile.append(this.tileIcon_("warning"), words);
    return tile;
  }

  /** @param {IconName} name */
  tileIcon_(name) {
    const made = element("span", "tile-icon");
    made.append(icon(name));
    return made;
  }

  /** @param {Attachment} attachment @param {readonly Node[]} facts */
  tileWords_(attachment, facts) {
    const words = element("span", "tile-words");
    words.append(this.name_(this.nameOf(attachment), "tile-name"), this.factsLine_(facts));
    return words;
  }

  /**
   * The dot behind a fact stays on its line.
   * @param {readonly Node[]} facts
   */
  factsLine_(facts) {
    const line = element("span", "tile-facts");
    facts.forEach((fact, place) => {
      const held = element("span", "tile-fact");
      held.append(fact);
      if (place > 0) line.append(" ");
      if (place < facts.length - 1) held.append(" ·");
      line.append(held);
    });
    return line;
  }

  /**
   * Kind, extension and size.
   * @param {Attachment} attachment
   */
  facts_(attachment) {
    const extension = attachmentExtension(attachment).toUpperCase();
    const kind = this.album.speech.say(attachmentKind(attachment));
    return [kind, ...(extension ? [extension] : []), ...this.sizeOf_(attachment)].map((fact) => isolated(fact));
  }

  /** @param {string} text @param {string} className */
  name_(text, className) {
    const name = isolated("", className);
    name.append(...marked(text, this.album.highlight(text)));
    return name;
  }
}
