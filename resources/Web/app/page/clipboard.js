import { element } from "./elements.js";

/**
 * Resolves whether the text is in the clipboard now.
 * @param {string} text
 * @returns {Promise<boolean>}
 */
export async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return copyFromField(text);
  }
}

/**
 * The older way, for browsers that keep the newer one from pages on a disk.
 * @param {string} text
 */
function copyFromField(text) {
  const focused = document.activeElement;
  const field = element("textarea", "visually-hidden");
  field.value = text;
  document.body.append(field);
  field.select();
  const isCopied = document.execCommand("copy");
  field.remove();
  if (focused instanceof HTMLElement) focused.focus({ preventScroll: true });
  return isCopied;
}
