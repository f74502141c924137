import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import fs from "node:fs";
import path from "node:path";
import { test } from "node:test";
import { webFolder } from "../support/album.js";

const folder = webFolder();
const script = fs.readFileSync(path.join(folder, "app.js"), "utf8");
const styles = fs.readFileSync(path.join(folder, "styles.css"), "utf8");
const page = fs.readFileSync(path.join(folder, "index.html"), "utf8");

/** The script as esbuild writes it for browsers of an age. @param {string} target */
function writtenFor(target) {
  const run = spawnSync(process.env.QUILLBOOK_ESBUILD || "esbuild", [`--target=${target}`, "--charset=utf8"],
    { input: script, encoding: "utf8", maxBuffer: 1e8 });
  assert.equal(run.status, 0, run.stderr);
  return run.stdout;
}

/** Whether the script, its texts and comments aside, holds a word. @param {RegExp} pattern */
function code(pattern) {
  return script.split("\n").filter((line) => !/^\s*(\/\/|\*|\/\*)/.test(line) && pattern.test(line));
}

test("an album's website is these three files", () => {
  assert.deepEqual(fs.readdirSync(folder).sort(), ["app.js", "index.html", "styles.css"]);
});

test("the script holds no syntax that is newer than ES2019", () => {
  assert.notEqual(script, "");
  assert.equal(writtenFor("es2019"), writtenFor("esnext"));
});

test("the script is one classic script that leaves no name behind", () => {
  assert.match(script, /^"use strict";\n\(\(\) => \{|^\(\(\) => \{/);
  assert.match(script, /\}\)\(\);\s*$/);
  assert.deepEqual(code(/^\s*(import|export)\b/), []);
});

const barred = {
  "fetches nothing": /\b(fetch|XMLHttpRequest|WebSocket|EventSource|sendBeacon|importScripts)\b/,
  "makes no script of a text": /\beval\s*\(|\bnew Function\b|\bset(Timeout|Interval)\(\s*["'`]/,
  "makes no element of a text": /\b(innerHTML|outerHTML|insertAdjacentHTML|document\.write|createContextualFragment|DOMParser|srcdoc)\b/,
  "loads no module": /\bimport\s*\(|\bimport\.meta\b/,
  "sets no style by a text": /setAttribute\(\s*["'`]style["'`]|\bcssText\b/,
  "calls nothing that browsers of 2020 lack": /\.(replaceAll|hasOwn|findLast|toSorted|toReversed)\(|\bstructuredClone\b|\(\?<[=!]/,
};
for (const [claim, pattern] of Object.entries(barred)) {
  test(`the script ${claim}`, () => assert.deepEqual(code(pattern), []));
}

test("script and styles name no address but the namespace of drawings", () => {
  const addresses = `${script}\n${styles}`.match(/\b(https?|wss?|ftp):\/\/[a-z0-9][^\s"'`)]*/gi) ?? [];
  assert.deepEqual(addresses.filter((address) => address !== "http://www.w3.org/2000/svg"), []);
});

test("the styles load nothing", () => {
  assert.doesNotMatch(styles, /@import|url\(|src:/);
});

test("the page allows nothing but the album's own files", () => {
  const [, policy] = /<meta http-equiv="Content-Security-Policy" content="([^"]+)">/.exec(page) ?? [];
  assert.ok(policy, "there is no policy");
  const directives = new Map(policy.split(";").map((directive) => {
    const [name, ...sources] = directive.trim().split(/\s+/);
    return [name, sources];
  }));
  assert.deepEqual(directives.get("default-src"), ["'none'"]);
  assert.deepEqual(directives.get("base-uri"), ["'none'"]);
  assert.deepEqual(directives.get("form-action"), ["'none'"]);
  const allowed = new Set(["'none'", "'self'", "file:", "blob:"]);
  for (const [name, sources] of directives) {
    for (const source of sources) assert.ok(allowed.has(source), `${name} ${source}`);
    if (sources.includes("blob:")) assert.ok(["img-src", "media-src", "worker-src"].includes(name), `${name} blob:`);
  }
});

test("the policy stands before all that it governs", () => {
  const policy = page.indexOf("Content-Security-Policy");
  for (const element of ["<script", "<link", "<style", "<img"]) {
    const place = page.indexOf(element);
    assert.ok(place < 0 || place > policy, element);
  }
});

test("the page holds no script or style of its own, and loads its scripts deferred", () => {
  assert.doesNotMatch(page, /<style|\son[a-z]+=|\sstyle=/i);
  const scripts = page.match(/<script[^>]*>[^<]*/g);
  assert.deepEqual(scripts, ['<script defer src="data/messages.js">', '<script defer src="assets/app.js">']);
});

test("the page has places for the title and the language", () => {
  assert.match(page, /<html lang="\{\{LANG\}\}"/);
  assert.match(page, /<title>\{\{TITLE\}\}<\/title>/);
});
