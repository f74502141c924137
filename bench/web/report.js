// How figures are told.

/** @param {number[]} values */
export function median(values) {
  const sorted = Array.from(values).sort((one, other) => one - other);
  const middle = sorted.length >> 1;
  return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

/**
 * One line of the report: a figure that must not go beyond its goal, or, with "at least", not below it.
 * @param {string} name @param {number} figure @param {number} goal @param {string} unit @param {string} [how]
 * @param {"at most" | "at least"} [sense]
 */
export function report(name, figure, goal, unit, how = "", sense = "at most") {
  const isMet = sense === "at most" ? figure <= goal : figure >= goal;
  const digits = Math.abs(figure) < 10 ? 2 : 0;
  console.log(`${name.padEnd(58)} ${figure.toFixed(digits).padStart(7)} ${unit.padEnd(5)} goal ${String(goal).padStart(5)}  `
    + `${isMet ? "ok" : "MISSED"}  ${how}`);
}
