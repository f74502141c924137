import assert from "node:assert/strict";
import { test } from "node:test";
import { splitLinks } from "../../../resources/Web/app/text/links.js";
import { shown, timeTaken } from "../support/measures.js";

const cases = {
  "": [],
  "no link here": [],
  "see https://example.org/a?b=c#d now": ["https://example.org/a?b=c#d"],
  "HTTP://EXAMPLE.ORG": ["HTTP://EXAMPLE.ORG"],
  "(https://example.org/a).": ["https://example.org/a"],
  "https://example.org/wiki/Lake_(film)": ["https://example.org/wiki/Lake_(film)"],
  "https://a.example https://b.example!": ["https://a.example", "https://b.example"],
  "https://a.example\nhttps://b.example": ["https://a.example", "https://b.example"],
  "“https://example.org/x”": ["https://example.org/x"],
  "https://münchen.example/straße": ["https://münchen.example/straße"],
  "javascript:alert(1)": [],
  "JaVaScRiPt:alert(1)": [],
  "data:text/html,<b>x</b> file:///etc/passwd ftp://example.org": [],
  "vbscript:x blob:https//x about:blank": [],
  "https:// and http://": [],
  "http://[": [],
  "https://%": [],
  "https://example.org:99999/": [],
  "https://example.org/\u202Egpj.exe": ["https://example.org/"],
  "https://example.org/\u2066x": ["https://example.org/"],
  "https://example.org/a\uFFFCb": ["https://example.org/a"],
  "javascript:'https://example.org/'": ["https://example.org/"],
  "https://example.org/\uD800": ["https://example.org/\uD800"],
};

for (const [text, links] of Object.entries(cases)) {
  test(`in ${JSON.stringify(text)}`, () => {
    const pieces = splitLinks(text);
    assert.deepEqual(pieces.filter(({ href }) => href !== undefined).map((piece) => piece.text), links);
    assert.equal(pieces.map((piece) => piece.text).join(""), text);
    for (const { href } of pieces) assert.ok(href === undefined || /^https?:\/\//.test(href));
  });
}

const megabytes = {
  "without a blank": "x".repeat(1e6),
  "that is one link of brackets": `https://example.org/${")".repeat(1e6)}`,
  "of beginnings of links": "http://a".repeat(125_000),
  "of links of brackets": `https://example.org/${")".repeat(1970)} `.repeat(500),
  "of links of two kinds of brackets": `https://example.org/${"([".repeat(490)}${")]".repeat(490)} `.repeat(500),
  "of short links": "http://a.b ".repeat(90_000),
  "of full stops behind a link": `http://a.b/${".".repeat(1e6)}`,
};

for (const [name, text] of Object.entries(megabytes)) {
  test(`in a megabyte ${name} are soon found`, () => {
    const time = timeTaken(() => {
      const pieces = splitLinks(text);
      assert.ok(pieces.map((piece) => piece.text).join("") === text, shown(pieces));
    });
    assert.ok(time < 2000, `${time} ms`);
  });
}
