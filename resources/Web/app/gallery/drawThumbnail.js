// Small square pictures of pictures and films. What was decoded for them is let go at once.

/** @typedef {{ canvas: HTMLCanvasElement, duration: number }} Thumbnail the duration in seconds; NaN for what has none */

/** A film that has not shown its first picture by then is left with its sign alone. */
const filmPatience = 8000;
/** The first picture of a film is often black. */
const filmMoment = 0.5;

/** The file is there and the browser cannot show it. */
export class UnshowableError extends Error {}

/** @param {CanvasImageSource} source @param {number} width @param {number} height @param {number} side in pixels */
function drawSquare(source, width, height, side) {
  const canvas = document.createElement("canvas");
  canvas.width = side;
  canvas.height = side;
  const context = canvas.getContext("2d");
  const cut = Math.min(width, height);
  if (context) context.imageSmoothingQuality = "medium";
  // A drawing without a size of its own is drawn to the size that is wanted.
  if (cut === 0) context?.drawImage(source, 0, 0, side, side);
  else context?.drawImage(source, (width - cut) / 2, (height - cut) / 2, cut, cut, 0, 0, side, side);
  return canvas;
}

/**
 * @param {string} address
 * @param {number} side
 * @param {AbortSignal} signal
 * @returns {Promise<Thumbnail | undefined>} nothing when stopped
 */
export async function drawPicture(address, side, signal) {
  const image = new Image();
  const letGo = () => image.removeAttribute("src");
  signal.addEventListener("abort", letGo);
  image.src = address;
  try {
    await image.decode();
    if (signal.aborted) return undefined;
    return { canvas: drawSquare(image, image.naturalWidth, image.naturalHeight, side), duration: NaN };
  } catch {
    if (signal.aborted) return undefined;
    throw new UnshowableError();
  } finally {
    signal.removeEventListener("abort", letGo);
    letGo();
  }
}

/**
 * @param {string} address
 * @param {number} side
 * @param {AbortSignal} signal
 * @returns {Promise<Thumbnail | undefined>} nothing when stopped
 */
export async function drawFilm(address, side, signal) {
  const film = document.createElement("video");
  film.muted = true;
  film.playsInline = true;
  film.preload = "metadata";
  film.src = address;
  try {
    if (!await becomes(film, "loadedmetadata", signal)) return undefined;
    // A film whose pictures cannot be decoded would play as sound behind a black field.
    if (film.videoWidth === 0) throw new UnshowableError();
    film.currentTime = Math.min(filmMoment, Number.isFinite(film.duration) ? film.duration / 2 : 0);
    if (!await becomes(film, "seeked", signal)) return undefined;
    return { canvas: drawSquare(film, film.videoWidth, film.videoHeight, side), duration: film.duration };
  } finally {
    film.removeAttribute("src");
    film.load();
  }
}

/**
 * Resolves whether the event came, and rejects when the film failed first.
 * @param {HTMLVideoElement} film @param {"loadedmetadata" | "seeked"} event @param {AbortSignal} signal
 * @returns {Promise<boolean>}
 */
function becomes(film, event, signal) {
  return new Promise((resolve, reject) => {
    const timer = window.setTimeout(() => resolve(false), filmPatience);
    const end = (/** @type {() => void} */ tell) => () => {
      window.clearTimeout(timer);
      tell();
    };
    film.addEventListener(event, end(() => resolve(true)), { once: true });
    film.addEventListener("error", end(() => reject(new UnshowableError())), { once: true });
    signal.addEventListener("abort", end(() => resolve(false)), { once: true });
  });
}
