/**
 * A file of the folder that was chosen, by its path in it.
 * @typedef {{ path: string, file: File }} PickedFile
 */

/**
 * Everything in the folder that was chosen; the folder's own name is nothing to go by.
 * @param {FileList} list
 * @returns {PickedFile[]}
 */
export function pickedFiles(list) {
  return Array.from(list, (file) => {
    const whole = file.webkitRelativePath;
    return { path: whole.slice(whole.indexOf("/") + 1), file };
  });
}
