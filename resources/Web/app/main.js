import { element } from "./page/elements.js";
import { Page } from "./page/Page.js";
import { Speech } from "./words/Speech.js";

/**
 * Tells the page's state to whoever looks from outside.
 * @param {"ready" | "failed"} state
 */
function tell(state) {
  document.documentElement.dataset.state = state;
}

/** In place of a conversation that could not be loaded. */
function showFailure() {
  const notice = element("p", "notice", new Speech(document.documentElement.lang).say("dataMissing"));
  notice.setAttribute("role", "alert");
  const main = document.getElementById("conversation");
  main?.replaceChildren(notice);
  main?.removeAttribute("aria-busy");
  tell("failed");
}

const data = /** @type {{ QUILLBOOK_DATA?: unknown }} */ (/** @type {unknown} */ (window)).QUILLBOOK_DATA;
if (typeof data === "object" && data !== null) {
  new Page(data).load().then(() => tell("ready"), (error) => {
    showFailure();
    throw error;
  });
} else {
  showFailure();
}
