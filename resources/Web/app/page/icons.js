/** Line drawings on a field of 24 by 24. */
export const iconPaths = {
  first: "M5 4h14M12 20V9M7 13.5 12 8.5l5 5",
  last: "M5 20h14M12 4v11M7 10.5l5 5 5-5",
  info: "M12 21a9 9 0 1 0 0-18 9 9 0 0 0 0 18ZM12 11v5.5M12 7.6v.1",
  close: "M6.5 6.5l11 11M17.5 6.5l-11 11",
  person: "M12 11.5a4 4 0 1 0 0-8 4 4 0 0 0 0 8ZM4.5 20.5c.6-4 3.6-6 7.5-6s6.9 2 7.5 6",
  document: "M7 3.5h7l4.5 4.5v12.5H7ZM14 3.5V8h4.5",
  image: "M4 5h16v14H4ZM4 16l4.5-4.5 4 4 3-3L20 16M9 9.5v.1",
  video: "M4 6.5h11v11H4ZM15 10.5l5-2.5v8l-5-2.5",
  audio: "M4 10v4M8 7v10M12 4v16M16 8v8M20 10.5v3",
  find: "M11 17.5a6.5 6.5 0 1 0 0-13 6.5 6.5 0 0 0 0 13ZM15.8 15.8l4.4 4.4",
  calendar: "M4.5 6.5h15v13h-15ZM4.5 10.5h15M8.5 4v4M15.5 4v4",
  gallery: "M4 4.5h7v7H4ZM13.5 4.5h6.5v7h-6.5ZM4 14h7v6H4ZM13.5 14h6.5v6h-6.5Z",
  more: "M5.5 11.4a.6.6 0 1 0 0 1.2.6.6 0 0 0 0-1.2ZM12 11.4a.6.6 0 1 0 0 1.2.6.6 0 0 0 0-1.2Z"
    + "M18.5 11.4a.6.6 0 1 0 0 1.2.6.6 0 0 0 0-1.2Z",
  link: "M10 14a4 4 0 0 0 6 .4l3-3a4 4 0 0 0-5.7-5.7l-1.2 1.2M14 10a4 4 0 0 0-6-.4l-3 3a4 4 0 0 0 5.7 5.7l1.2-1.2",
  back: "M9.5 5.5 4.5 10.5l5 5M5 10.5h9a5.5 5.5 0 0 1 0 11h-3",
  check: "M12 3.5 19 6v5.5c0 4.4-2.9 7.6-7 9-4.1-1.4-7-4.6-7-9V6ZM8.8 12l2.3 2.3 4.3-4.6",
  print: "M7.5 8V4h9v4M7.5 17H4.5V8.5h15V17h-3M7.5 14h9v6h-9Z",
  previous: "M14.5 5.5 8 12l6.5 6.5",
  next: "M9.5 5.5 16 12l-6.5 6.5",
  up: "M5.5 14.5 12 8l6.5 6.5",
  down: "M5.5 9.5 12 16l6.5-6.5",
  play: "M8.5 6v12l9.5-6Z",
  zoomIn: "M11 17.5a6.5 6.5 0 1 0 0-13 6.5 6.5 0 0 0 0 13ZM15.8 15.8l4.4 4.4M11 8.3v5.4M8.3 11h5.4",
  zoomOut: "M11 17.5a6.5 6.5 0 1 0 0-13 6.5 6.5 0 0 0 0 13ZM15.8 15.8l4.4 4.4M8.3 11h5.4",
  warning: "M12 4 2.8 19.5h18.4ZM12 10v4.5M12 17v.1",
};

/** @typedef {keyof typeof iconPaths} IconName */

/** @param {IconName} name */
export function icon(name) {
  const drawing = document.createElementNS("http://www.w3.org/2000/svg", "svg");
  drawing.setAttribute("class", "icon");
  drawing.setAttribute("viewBox", "0 0 24 24");
  drawing.setAttribute("aria-hidden", "true");
  const path = document.createElementNS("http://www.w3.org/2000/svg", "path");
  path.setAttribute("d", iconPaths[name]);
  drawing.append(path);
  return drawing;
}
