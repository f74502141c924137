// The few ways in which anything enters the page. Words enter as text and never as markup.

/**
 * @template {keyof HTMLElementTagNameMap} Tag
 * @param {Tag} tag
 * @param {string} [className]
 * @param {string} [text]
 * @returns {HTMLElementTagNameMap[Tag]}
 */
export function element(tag, className = "", text = "") {
  const made = document.createElement(tag);
  if (className) made.className = className;
  if (text) made.textContent = text;
  return made;
}

/**
 * Words of somebody else, kept from turning the words around them.
 * @param {string} text
 * @param {string} [className]
 */
export function isolated(text, className = "") {
  return element("bdi", className, text);
}

/** @param {string} className @param {() => void} onPress */
export function button(className, onPress) {
  const made = element("button", className);
  made.type = "button";
  made.addEventListener("click", onPress);
  return made;
}
