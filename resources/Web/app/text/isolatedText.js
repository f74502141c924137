/**
 * Words of somebody else within a sentence, kept from turning the words around them: between the marks FIRST STRONG ISOLATE
 * and POP DIRECTIONAL ISOLATE. Marks of their own that would close it early or stay open are left out.
 * @param {string} text
 */
export function isolatedText(text) {
  return `\u2068${text.replace(/[\u202A-\u202E\u2066-\u2069]/g, "")}\u2069`;
}
