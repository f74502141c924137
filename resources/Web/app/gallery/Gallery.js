import { makeDialog, openDialog, whenClosed } from "../page/dialogs.js";
import { element } from "../page/elements.js";
import { collect } from "./collect.js";
import { Entries } from "./Entries.js";
import { EntryList } from "./EntryList.js";
import { EntryRows } from "./EntryRows.js";
import { Lightbox } from "./Lightbox.js";
import { PhotoGrid } from "./PhotoGrid.js";
import { PlaceList } from "./PlaceList.js";
import { Tabs } from "./Tabs.js";

/** @typedef {import("../page/Album.js").Album} Album */
/** @typedef {import("../words/en.js").WordKey} WordKey */
/** @typedef {import("./collect.js").Collection} Collection */
/** @typedef {import("./collect.js").Shelf} Shelf */

/** @type {{ readonly [Name in Shelf]: { words: WordKey, nothing: WordKey } }} In the order of their tabs. */
const shelves = {
  photos: { words: "photosAndVideos", nothing: "noPhotos" },
  audio: { words: "audioFiles", nothing: "noAudio" },
  links: { words: "links", nothing: "noLinks" },
  files: { words: "files", nothing: "noFiles" },
};
const shelfNames = /** @type {Shelf[]} */ (Object.keys(shelves));

/** Everything that was sent besides words: pictures and films, sound, links and files, each with the way to its message. */
export class Gallery {
  /** @param {Album} album */
  constructor(album) {
    this.album = album;
    const { speech } = album;
    const entries = new Entries(album);
    const leadTo = (/** @type {number} */ index) => this.leadTo_(index);
    const rows = new EntryRows(album, entries, leadTo);
    this.lightbox = new Lightbox(album, entries, leadTo);
    /** @type {Promise<Collection | undefined> | undefined} */
    this.collecting_ = undefined;
    /** @type {Collection | undefined} */
    this.collection_ = undefined;
    this.grid_ = new PhotoGrid(album, entries, (position) => this.openPhoto_(position));
    /** @type {{ readonly [Name in Shelf]: PhotoGrid | EntryList }} */
    this.views_ = {
      photos: this.grid_,
      audio: new EntryList(speech.say("audioFiles"), (...place) => rows.audio(...place)),
      links: new EntryList(speech.say("links"), (message, part) => rows.link(message, part)),
      files: new EntryList(speech.say("files"), (message, part) => rows.file(message, part)),
    };
    this.tabs_ = new Tabs(speech.say("gallery"),
      shelfNames.map((name) => ({ name, words: speech.say(shelves[name].words), panel: this.views_[name].element })),
      () => this.showShelf_());
    const { dialog, body } = makeDialog(speech, "gallery", speech.say("gallery"));
    this.dialog = dialog;
    this.body_ = body;
    body.append(this.tabs_.element, ...shelfNames.map((name) => this.views_[name].element));
    whenClosed(dialog, () => this.hideShelves_());
  }

  open() {
    if (this.dialog.open) return;
    openDialog(this.dialog);
    this.tabs_.focus();
    void this.fill_();
  }

  /** @param {number} messageIndex @param {number} attachmentIndex */
  view(messageIndex, attachmentIndex) {
    if (this.lightbox.dialog.open) return;
    const alone = new PlaceList();
    alone.add(messageIndex, attachmentIndex);
    this.lightbox.onClose = () => {};
    this.lightbox.open(alone, 0);
    void this.findNeighbours_();
  }

  /** Goes through the conversation once. */
  collect_() {
    this.collecting_ = this.collecting_ ?? collect(this.album.conversation);
    return this.collecting_;
  }

  async fill_() {
    this.body_.setAttribute("aria-busy", "true");
    const collection = await this.collect_();
    this.body_.removeAttribute("aria-busy");
    if (!collection || !this.dialog.open) return;
    if (!this.collection_) this.tellCounts_(collection);
    this.collection_ = collection;
    this.showShelf_();
  }

  async findNeighbours_() {
    const collection = await this.collect_();
    const { shown } = this.lightbox;
    const position = shown && collection ? collection.photos.positionOf(shown.message, shown.part) : -1;
    if (collection && position >= 0) this.lightbox.setPlaces(collection.photos, position);
  }

  /** @param {Collection} collection */
  tellCounts_(collection) {
    for (const name of shelfNames) {
      const { count } = collection[name];
      this.tabs_.setCount(name, this.album.speech.numbers.format(count));
      const notice = element("p", "shelf-notice", this.album.speech.say(shelves[name].nothing));
      if (count === 0) this.views_[name].element.replaceChildren(notice);
    }
  }

  showShelf_() {
    this.hideShelves_();
    const name = /** @type {Shelf} */ (this.tabs_.chosen);
    const places = this.collection_?.[name];
    if (places && places.count > 0) this.views_[name].show(places);
  }

  hideShelves_() {
    for (const name of shelfNames) this.views_[name].hide();
  }

  /** @param {number} position */
  openPhoto_(position) {
    if (!this.collection_) return;
    this.lightbox.onClose = (last) => {
      if (this.dialog.open) this.grid_.focus(last);
    };
    this.lightbox.open(this.collection_.photos, position);
  }

  /** @param {number} messageIndex */
  leadTo_(messageIndex) {
    this.lightbox.onClose = () => {};
    this.lightbox.close();
    if (this.dialog.open) this.dialog.close();
    this.album.show(messageIndex);
  }
}
