/** So many pictures are read and decoded at once. */
const atOnce = 4;
/** A picture that takes longer than this, in milliseconds, is not waited for. */
const patience = 10_000;

/**
 * Resolves when all pictures have been read and decoded, or have turned out not to be shown.
 * @param {Element} place
 * @param {AbortSignal} signal
 */
export async function waitForPictures(place, signal) {
  const pictures = Array.from(place.querySelectorAll("img"));
  const takeTurns = async () => {
    for (let picture = pictures.pop(); picture && !signal.aborted; picture = pictures.pop()) await settle(picture);
  };
  pictures.reverse();
  await Promise.all(Array.from({ length: atOnce }, takeTurns));
}

/** @param {HTMLImageElement} picture */
function settle(picture) {
  /** @type {Promise<unknown>} */
  const loaded = picture.complete ? Promise.resolve() : new Promise((resolve) => {
    picture.addEventListener("load", resolve, { once: true });
    picture.addEventListener("error", resolve, { once: true });
  });
  const decoded = loaded.then(() => picture.decode()).catch(() => undefined);
  return Promise.race([decoded, new Promise((resolve) => setTimeout(resolve, patience))]);
}
