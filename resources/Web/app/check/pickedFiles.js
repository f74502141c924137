import { inSlices } from "../work/slices.js";

/**
 * A file of the folder that was chosen, by its path in it. The browser asks the disk for a size, each time anew.
 * @typedef {{ path: string, size: number, file: File }} PickedFile
 */

/**
 * Everything in the folder that was chosen; the folder's own name is nothing to go by.
 * @param {FileList} list
 * @returns {Promise<PickedFile[]>}
 */
export async function pickedFiles(list) {
  /** @type {PickedFile[]} */
  const picked = [];
  await inSlices(list.length, (first, end) => {
    for (let index = first; index < end; index++) {
      const file = list[index];
      const whole = file.webkitRelativePath;
      picked.push({ path: whole.slice(whole.indexOf("/") + 1), size: file.size, file });
    }
  });
  return picked;
}
