import { albumAddress } from "../files/albumFiles.js";
import { listOf, recordOf } from "../records/fields.js";
import { attachmentOf } from "../records/records.js";
import { isDigest, isListable } from "./manifest.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("./manifest.js").Manifest} Manifest */

/** @typedef {import("./manifest.js").ListedFile} ListedFile */

/** What every album holds. */
const always = ["Open Album.html", "index.html", "assets/app.js", "assets/styles.css", "data/messages.js"];

/** @param {string} path @param {string} folder */
const isInFolder = (path, folder) => albumAddress(path, folder) !== undefined;

/**
 * The files that this page knows to belong to its album, so that a list from which entries were lost is found out. Made a range
 * of messages at a time.
 */
export class BelongingFiles {
  /** @param {Conversation} conversation */
  constructor(conversation) {
    this.conversation_ = conversation;
    this.paths_ = new Set(always);
    /** @type {Map<string, string>} What the conversation itself tells of its attachments' files: their SHA-256, by path. */
    this.digests_ = new Map();
    this.attachmentCount_ = 0;
    this.copiedCount_ = 0;
    for (const { avatarPath } of conversation.participants) this.addPath_(avatarPath, "assets/avatars");
  }

  /** @param {number} first @param {number} end */
  add(first, end) {
    for (let index = first; index < end; index++) {
      for (const raw of listOf(recordOf(this.conversation_.rawMessages[index]).attachments)) {
        const { availability, archivePath, sha256 } = attachmentOf(raw);
        this.attachmentCount_ += 1;
        if (availability !== "available") continue;
        this.copiedCount_ += 1;
        this.addPath_(archivePath, "attachments");
        if (archivePath !== undefined && isInFolder(archivePath, "attachments") && isDigest(sha256)) {
          this.digests_.set(archivePath, sha256);
        }
      }
    }
  }

  /**
   * Those that a manifest does not list.
   * @param {Manifest} manifest
   */
  unlisted({ files }) {
    const listed = new Set(files.map(({ path }) => path));
    return Array.from(this.paths_).filter((path) => !listed.has(path));
  }

  /**
   * Attachments that no manifest lists, since they have its own name; the conversation vouches for them.
   * @returns {ListedFile[]}
   */
  unlistable() {
    return Array.from(this.digests_).filter(([path]) => !isListable(path))
      .map(([path, sha256]) => ({ path, byteSize: 0, sha256 }));
  }

  /**
   * Whether what a manifest says of a file is what the conversation says of it, if it does.
   * @param {ListedFile} listed
   */
  vouchesFor({ path, sha256 }) {
    return (this.digests_.get(path) ?? sha256) === sha256;
  }

  /**
   * Whether the counts of a manifest agree with each other and with the conversation.
   * @param {Manifest} manifest
   */
  agreesWith(manifest) {
    return manifest.messageCount === this.conversation_.messageCount
      && manifest.availableMessageCount === manifest.messageCount
      && manifest.attachmentCount === this.attachmentCount_
      && manifest.copiedCount === this.copiedCount_
      && manifest.copiedCount + manifest.missingCount === manifest.attachmentCount;
  }

  /** @param {string | undefined} path @param {string} folder */
  addPath_(path, folder) {
    if (path !== undefined && isInFolder(path, folder) && isListable(path)) this.paths_.add(path);
  }
}
