// How a picture lies in the window that it is looked at through, reckoned in pixels without a page. All places are counted
// from the window's middle.

/** @typedef {{ scale: number, x: number, y: number }} View times its fitted size, and where its middle lies */
/** @typedef {{ width: number, height: number }} Size */

/**
 * The whole picture.
 * @type {View}
 */
export const wholeView = { scale: 1, x: 0, y: 0 };

const mostScale = 8;

/**
 * Moved, but never so far that the picture's edge comes inside the window's.
 * @param {View} view
 * @param {number} x
 * @param {number} y
 * @param {Size} fitted
 * @param {Size} stage
 * @returns {View}
 */
export function panned(view, x, y, fitted, stage) {
  return { scale: view.scale, x: kept(view.x + x, fitted.width * view.scale, stage.width),
    y: kept(view.y + y, fitted.height * view.scale, stage.height) };
}

/**
 * Larger or smaller by a factor; what is at a point stays there where it can.
 * @param {View} view
 * @param {number} factor
 * @param {{ x: number, y: number }} point
 * @param {Size} fitted
 * @param {Size} stage
 * @returns {View}
 */
export function zoomed(view, factor, point, fitted, stage) {
  const scale = Math.max(1, Math.min(mostScale, view.scale * factor));
  const change = scale / view.scale;
  const moved = { scale, x: point.x - (point.x - view.x) * change, y: point.y - (point.y - view.y) * change };
  return panned(moved, 0, 0, fitted, stage);
}

/** @param {number} middle @param {number} length @param {number} window */
function kept(middle, length, window) {
  const room = Math.max(0, (length - window) / 2);
  return Math.max(-room, Math.min(room, middle)) || 0;
}
