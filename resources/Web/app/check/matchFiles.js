/**
 * Pairs the files that are listed with those that are there, each of either with one of the other at most. A name may come back
 * from a disk with its accents taken apart, so what has no namesake is paired by the composed form of its name.
 * @template {{ path: string }} Listed
 * @template {{ path: string }} Present
 * @param {readonly Listed[]} listed
 * @param {readonly Present[]} present
 * @returns {{ pairs: { listed: Listed, present: Present }[], missing: Listed[], unexpected: Present[] }}
 */
export function matchFiles(listed, present) {
  const exact = pairBy(listed, present, (path) => path);
  const composed = pairBy(exact.missing, exact.unexpected, (path) => path.normalize("NFC"));
  return { pairs: exact.pairs.concat(composed.pairs), missing: composed.missing, unexpected: composed.unexpected };
}

/**
 * @template {{ path: string }} Listed
 * @template {{ path: string }} Present
 * @param {readonly Listed[]} listed
 * @param {readonly Present[]} present
 * @param {(path: string) => string} keyOf
 */
function pairBy(listed, present, keyOf) {
  /** @type {Map<string, Present[]>} */
  const byKey = new Map();
  for (const file of present) {
    const key = keyOf(file.path);
    const namesakes = byKey.get(key);
    if (namesakes) namesakes.push(file);
    else byKey.set(key, [file]);
  }
  /** @type {{ listed: Listed, present: Present }[]} */
  const pairs = [];
  /** @type {Listed[]} */
  const missing = [];
  for (const file of listed) {
    const found = byKey.get(keyOf(file.path))?.shift();
    if (found) pairs.push({ listed: file, present: found });
    else missing.push(file);
  }
  const paired = new Set(pairs.map((pair) => pair.present));
  return { pairs, missing, unexpected: present.filter((file) => !paired.has(file)) };
}
