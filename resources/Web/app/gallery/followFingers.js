/**
 * @typedef {object} FingerWork
 * @property {(event: PointerEvent) => boolean} takes whether a finger that comes down here is followed
 * @property {(x: number, y: number) => void} drag one finger, or the mouse, moved so far
 * @property {(steps: number) => void} end it was lifted; 1 or -1 when its way was a swipe to the next or the previous
 * @property {(factor: number, x: number, y: number) => void} zoom two fingers went apart or together about a place, from the middle
 */

/** What moves less is a tap. */
const leastWay = 8;
const leastSwipe = 56;

/**
 * Drags, swipes and pinches on an element. The mouse drags but does not swipe.
 * @param {HTMLElement} stage
 * @param {FingerWork} work
 */
export function followFingers(stage, work) {
  /** @type {Map<number, { x: number, y: number, startX: number, startY: number }>} */
  const fingers = new Map();
  let isDrag = false;
  let wasPinch = false;
  stage.addEventListener("pointerdown", (event) => {
    if (event.button !== 0 || !work.takes(event)) return;
    if (fingers.size === 0) isDrag = wasPinch = false;
    const { pointerId, clientX, clientY } = event;
    fingers.set(pointerId, { x: clientX, y: clientY, startX: clientX, startY: clientY });
  });
  stage.addEventListener("pointermove", (event) => {
    const finger = fingers.get(event.pointerId);
    if (!finger) return;
    const [x, y] = [event.clientX - finger.x, event.clientY - finger.y];
    if (!isDrag && Math.hypot(event.clientX - finger.startX, event.clientY - finger.startY) < leastWay) return;
    // Held only now, so that a tap still reaches what lies under it.
    if (!isDrag) stage.setPointerCapture(event.pointerId);
    isDrag = true;
    const before = spread(fingers);
    Object.assign(finger, { x: event.clientX, y: event.clientY });
    if (fingers.size === 1) {
      if (!wasPinch) work.drag(x, y);
      return;
    }
    wasPinch = true;
    const { left, top, width, height } = stage.getBoundingClientRect();
    const after = spread(fingers);
    if (before.length > 0) work.zoom(after.length / before.length, after.x - left - width / 2, after.y - top - height / 2);
  });
  /** @param {PointerEvent} event @param {boolean} isWhole */
  const lift = (event, isWhole) => {
    const finger = fingers.get(event.pointerId);
    if (!fingers.delete(event.pointerId) || !finger || fingers.size > 0 || !isDrag) return;
    const [x, y] = [finger.x - finger.startX, finger.y - finger.startY];
    const isLevel = Math.abs(x) >= leastSwipe && Math.abs(x) > 1.5 * Math.abs(y);
    work.end(isWhole && !wasPinch && event.pointerType !== "mouse" && isLevel ? -Math.sign(x) : 0);
  };
  stage.addEventListener("pointerup", (event) => lift(event, true));
  stage.addEventListener("pointercancel", (event) => lift(event, false));
}

/**
 * Where two fingers are together and how far apart.
 * @param {ReadonlyMap<number, { x: number, y: number }>} fingers
 */
function spread(fingers) {
  const places = Array.from(fingers.values());
  const one = places[0];
  const other = places[1] ?? one;
  return { x: (one.x + other.x) / 2, y: (one.y + other.y) / 2, length: Math.hypot(one.x - other.x, one.y - other.y) };
}
