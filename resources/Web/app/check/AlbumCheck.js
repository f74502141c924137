import { inSlices } from "../work/slices.js";
import { timeOf } from "../records/fields.js";
import { BelongingFiles } from "./BelongingFiles.js";
import { HashPool } from "./HashPool.js";
import { isListable, manifestName, readManifest } from "./manifest.js";
import { matchFiles } from "./matchFiles.js";

/** @typedef {import("../records/Conversation.js").Conversation} Conversation */
/** @typedef {import("./manifest.js").ListedFile} ListedFile */
/** @typedef {import("./manifest.js").Manifest} Manifest */
/** @typedef {import("./pickedFiles.js").PickedFile} PickedFile */
/** @typedef {import("./verdict.js").Findings} Findings */
/** @typedef {{ listed: ListedFile, present: PickedFile }} Pair */

/**
 * What came of a check: findings, or why there are none.
 * @typedef {{ kind: "findings", findings: Findings } | { kind: "noManifest" } | { kind: "badManifest" } | { kind: "cancelled" }
 *   | { kind: "otherConversation", title: string } | { kind: "otherAlbum", madeAt: number }} Outcome
 */

/** @typedef {{ done: number, all: number, path: string }} Progress bytes, and the file that is being read */

/** A manifest of a million files stays below this; a larger file is none. */
const largestManifest = 512 * 1024 * 1024;

/**
 * A listed size of 0 may also mean that the system had told none.
 * @param {ListedFile} listed
 * @param {number} byteSize
 * @param {string} digest
 */
function isAsListed(listed, byteSize, digest) {
  return listed.sha256 === digest && (listed.byteSize === 0 || listed.byteSize === byteSize);
}

/** One check of a folder against the manifest in it. */
export class AlbumCheck {
  /** @param {Conversation} conversation of this page's album @param {(progress: Progress) => void} onProgress */
  constructor(conversation, onProgress) {
    this.conversation_ = conversation;
    this.onProgress_ = onProgress;
  }

  /** @param {readonly PickedFile[]} picked @param {AbortSignal} signal @returns {Promise<Outcome>} */
  async run(picked, signal) {
    const manifestFile = picked.find(({ path }) => path === manifestName)?.file;
    if (!manifestFile) return { kind: "noManifest" };
    const manifest = await this.read_(manifestFile);
    if (!manifest) return { kind: "badManifest" };
    if (manifest.conversationID !== this.conversation_.id) return { kind: "otherConversation", title: manifest.title };
    const madeAt = timeOf(this.conversation_.generatedAt);
    if (!Number.isNaN(madeAt) && madeAt !== manifest.generatedAt) return { kind: "otherAlbum", madeAt: manifest.generatedAt };
    const findings = await this.compare_(manifest, picked, signal);
    return findings && !signal.aborted ? { kind: "findings", findings } : { kind: "cancelled" };
  }

  /** @param {File} file */
  async read_(file) {
    if (file.size > largestManifest) return undefined;
    try {
      return readManifest(new TextDecoder("utf-8", { fatal: true }).decode(await file.arrayBuffer()));
    } catch {
      return undefined;
    }
  }

  /** @param {Manifest} manifest @param {readonly PickedFile[]} picked @param {AbortSignal} signal */
  async compare_(manifest, picked, signal) {
    const belonging = new BelongingFiles(this.conversation_);
    const { messageCount } = this.conversation_;
    if (!await inSlices(messageCount, (first, end) => belonging.add(first, end), signal)) return undefined;
    const files = manifest.files.concat(belonging.unlistable());
    const { pairs, missing, unexpected } = matchFiles(files, picked);
    const { changed, unreadable } = await this.hash_(pairs, (listed) => belonging.vouchesFor(listed), signal);
    /** @type {Findings} */
    return {
      checkedCount: files.length, changed, unreadable,
      missing: missing.map(({ path }) => path),
      unexpected: unexpected.map(({ path }) => path).filter(isListable).sort(),
      unlisted: belonging.unlisted(manifest),
      countsAgree: belonging.agreesWith(manifest),
    };
  }

  /**
   * The paths of the files that are not as they were written, and of those that cannot be read.
   * @param {readonly Pair[]} pairs
   * @param {(listed: ListedFile) => boolean} isVouchedFor whether what is listed of a file can be right
   * @param {AbortSignal} signal
   */
  async hash_(pairs, isVouchedFor, signal) {
    // A file that nothing is told of counts as unreadable.
    /** @type {("right" | "changed" | "unreadable")[]} */
    const found = pairs.map(() => "unreadable");
    const progress = { done: 0, all: pairs.reduce((sum, { listed }) => sum + listed.byteSize, 0), path: "" };
    const tasks = pairs.map(({ listed, present }, number) => ({ number, size: listed.byteSize, file: present.file }));
    await new HashPool(tasks, (report) => {
      const { listed } = pairs[report.number];
      if ("byteCount" in report) {
        progress.done += report.byteCount;
        progress.path = listed.path;
        this.onProgress_(progress);
      } else if (report.digest === null) found[report.number] = "unreadable";
      else found[report.number] = isVouchedFor(listed) && isAsListed(listed, report.byteSize, report.digest) ? "right" : "changed";
    }).run(signal);
    const pathsOf = (/** @type {string} */ what) => pairs.filter((_, number) => found[number] === what).map(({ listed }) => listed.path);
    return { changed: pathsOf("changed"), unreadable: pathsOf("unreadable") };
  }
}
