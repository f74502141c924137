// Files of the album: where they lie and of what kind they are.

/** @typedef {import("../records/records.js").Attachment} Attachment */

/**
 * The relative address of a file of the album, or nothing for a path that is none: it must lie in `folder` and may not
 * climb out of it.
 * @param {string | undefined} path
 * @param {string} folder
 * @returns {string | undefined}
 */
export function albumAddress(path, folder) {
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

/** Apple's type identifiers of what messages hold. */
const typeByIdentifier = new Map(Object.entries({
  "public.jpeg": "image/jpeg", "public.png": "image/png", "com.compuserve.gif": "image/gif", "org.webmproject.webp": "image/webp",
  "public.heic": "image/heic", "public.heif": "image/heif", "public.tiff": "image/tiff",
  "public.mpeg-4": "video/mp4", "com.apple.m4v-video": "video/mp4", "com.apple.quicktime-movie": "video/quicktime",
  "public.3gpp": "video/3gpp", "public.mp3": "audio/mpeg", "com.apple.m4a-audio": "audio/mp4", "public.mpeg-4-audio": "audio/mp4",
  "com.microsoft.waveform-audio": "audio/wav", "com.apple.coreaudio-format": "audio/x-caf",
  "org.3gpp.adaptive-multi-rate-audio": "audio/amr", "public.aiff-audio": "audio/aiff",
}));

/**
 * The last part of a path; slashes behind it do not count.
 * @param {string} path
 */
export function lastPartOf(path) {
  let end = path.length;
  while (path[end - 1] === "/") end -= 1;
  return path.slice(0, end).slice(path.lastIndexOf("/", end - 1) + 1);
}

/**
 * The extension of a file's name, in lower case and without its full stop; empty when it has none.
 * @param {string} name
 */
export function extensionOf(name) {
  const file = name.slice(name.lastIndexOf("/") + 1);
  const stop = file.lastIndexOf(".");
  const isNamed = stop > 0 && /[^.]/.test(file.slice(0, stop));
  return isNamed && /^[^\s.]{1,12}$/u.test(file.slice(stop + 1)) ? file.slice(stop + 1).toLowerCase() : "";
}

/**
 * The extension that tells what an attachment is: that of its file or its name, or else of its file on the old device.
 * @param {Attachment} attachment
 */
export function attachmentExtension({ archivePath, name, originalPath }) {
  return extensionOf(archivePath ?? name) || extensionOf(lastPartOf(originalPath));
}

/**
 * RFC 2046 §4.5.1: such a type says only that there are bytes.
 * @param {string} mimeType
 */
export function isGenericType(mimeType) {
  return /^\s*(?:(?:application|binary)\/octet-stream\s*(?:;.*)?)?$/s.test(mimeType);
}

/** @param {Attachment} attachment */
export function mimeTypeOf(attachment) {
  const { mimeType, uniformType } = attachment;
  if (!isGenericType(mimeType)) return mimeType;
  return typeByExtension.get(attachmentExtension(attachment)) || typeByIdentifier.get(uniformType) || mimeType.trim();
}

/** @param {Attachment} attachment @returns {"image" | "video" | "audio" | "document"} */
export function attachmentKind(attachment) {
  const family = mimeTypeOf(attachment).split("/")[0];
  return family === "image" || family === "video" || family === "audio" ? family : "document";
}

/**
 * A picture's size as shown: its own, or what fits into a frame that leaves the words around it in sight.
 * @param {number} width
 * @param {number} height
 */
export function fittedSize(width, height) {
  const scale = Math.min(1, 352 / Math.max(width, 1), 416 / Math.max(height, 1));
  return { width: Math.max(1, Math.round(width * scale)), height: Math.max(1, Math.round(height * scale)) };
}
