"use strict";

// What the website reckons without a page: heights, days and runs, reactions, links, addresses.

const assert = require("node:assert/strict");
const path = require("node:path");
const { describe, test } = require("node:test");
const web = require(path.join(__dirname, "..", "..", "resources", "Web", "app.js"));

/** A small generator of its own, so that each run tries the same numbers. */
function makeRandom(seed) {
  let state = seed;
  return (limit) => {
    state = (state * 1103515245 + 12345) % 2147483648;
    return state % limit;
  };
}

describe("HeightMap", () => {
  test("of no rows has no height", () => {
    const map = new web.HeightMap(0, () => 10);
    assert.equal(map.total, 0);
    assert.equal(map.indexAt(100), 0);
  });

  test("finds the row at each edge", () => {
    const map = new web.HeightMap(4, (index) => [10, 20, 30, 40][index]);
    const cases = [[-5, 0], [0, 0], [9.9, 0], [10, 1], [29, 1], [30, 2], [59, 2], [60, 3], [99, 3], [100, 3], [1e9, 3]];
    for (const [offset, index] of cases) assert.equal(map.indexAt(offset), index, `offset ${offset}`);
  });

  test("tells whether a height was news", () => {
    const map = new web.HeightMap(2, () => 10);
    assert.equal(map.setHeight(1, 10), false);
    assert.equal(map.setHeight(1, 11), true);
    assert.equal(map.total, 21);
  });

  for (const count of [1, 2, 3, 7, 8, 9, 64, 100, 1000]) {
    test(`agrees with plain sums of ${count} rows after many changes`, () => {
      const random = makeRandom(count);
      const plain = Array.from({ length: count }, () => 1 + random(200));
      const map = new web.HeightMap(count, (index) => plain[index]);
      for (let change = 0; change < 200; change++) {
        const index = random(count);
        plain[index] = 1 + random(200);
        map.setHeight(index, plain[index]);
      }
      let sum = 0;
      plain.forEach((height, index) => {
        assert.equal(map.offsetOf(index), sum);
        assert.equal(map.indexAt(sum), index);
        assert.equal(map.indexAt(sum + height - 0.5), index);
        sum += height;
      });
      assert.equal(map.total, sum);
    });
  }

  test("of 500,000 rows answers fast", () => {
    const map = new web.HeightMap(500_000, () => 60);
    const start = process.hrtime.bigint();
    for (let step = 0; step < 100_000; step++) {
      map.setHeight((step * 7919) % 500_000, 50 + (step % 40));
      map.indexAt(step * 300);
    }
    assert.ok(process.hrtime.bigint() - start < 2_000_000_000n);
  });
});

describe("ScrollScale", () => {
  test("is pixel for pixel while the rows fit", () => {
    const scale = new web.ScrollScale(50_000, 800);
    assert.equal(scale.height, 50_000);
    assert.equal(scale.isScaled, false);
    for (const position of [0, 1, 700, 49_200]) assert.equal(scale.offsetAt(position), position);
  });

  test("never lays out more than browsers bear", () => {
    assert.equal(new web.ScrollScale(30_000_000, 800).height, web.tallestLayout);
    assert.ok(web.tallestLayout <= 7_000_000);
  });

  test("reaches both ends of a scaled list", () => {
    const scale = new web.ScrollScale(30_000_000, 800);
    assert.equal(scale.offsetAt(0), 0);
    assert.equal(scale.offsetAt(scale.lastPosition), 30_000_000 - 800);
    assert.equal(scale.offsetAt(100), 100);
    assert.equal(scale.lastOffset - scale.offsetAt(scale.lastPosition - 100), 100);
  });

  test("maps back what it maps, and rises all the way", () => {
    const scale = new web.ScrollScale(30_000_000, 800);
    let last = -1;
    for (let position = 0; position <= scale.lastPosition; position += 9_973) {
      const offset = scale.offsetAt(position);
      assert.ok(offset > last);
      assert.ok(Math.abs(scale.positionOf(offset) - position) < 0.01);
      last = offset;
    }
  });

  test("lets what stands above the list pass unscaled", () => {
    assert.equal(new web.ScrollScale(30_000_000, 800).offsetAt(-300), -300);
  });

  test("of a list shorter than the window stays at its beginning", () => {
    const scale = new web.ScrollScale(200, 800);
    assert.equal(scale.lastPosition, 0);
    assert.equal(scale.offsetAt(50), 0);
  });
});

describe("estimateHeight", () => {
  const plain = { textLength: 20, lineBreaks: 0, pictures: 0, files: 0, extras: 0, marks: 0 };
  test("grows with the text", () => {
    assert.ok(web.estimateHeight({ ...plain, textLength: 400 }, 60) > web.estimateHeight(plain, 60));
  });
  test("of an empty row is not nothing", () => {
    assert.ok(web.estimateHeight({ ...plain, textLength: 0 }, 60) > 0);
  });
});

describe("timelineMarks", () => {
  const day = web.startsDay;
  const first = web.startsGroup;
  const last = web.endsGroup;
  const marksOf = (rows) =>
    Array.from(web.timelineMarks(rows.length, (index) => rows[index][0], (index) => rows[index][1]));
  const at = (...parts) => new Date(...parts).getTime();

  const cases = {
    "no message": [[], []],
    "one message": [[[at(2026, 4, 1, 9), "a"]], [day | first | last]],
    "a run of one sender": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 1), "a"], [at(2026, 4, 1, 9, 2), "a"]],
      [day | first, 0, last]],
    "a change of sender": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 1), "b"]], [day | first | last, first | last]],
    "a long pause": [
      [[at(2026, 4, 1, 9, 0), "a"], [at(2026, 4, 1, 9, 11), "a"]], [day | first | last, first | last]],
    "midnight between two minutes": [
      [[at(2026, 4, 1, 23, 59), "a"], [at(2026, 4, 2, 0, 0), "a"]], [day | first | last, day | first | last]],
    "the same day of another month": [
      [[at(2026, 4, 1, 9), "a"], [at(2026, 5, 1, 9), "b"]], [day | first | last, day | first | last]],
    "messages without dates": [[[NaN, "a"], [NaN, "a"]], [day | first, last]],
    "a date behind none": [[[NaN, "a"], [at(2026, 4, 1, 9), "a"]], [day | first | last, day | first | last]],
  };
  for (const [name, [rows, marks]] of Object.entries(cases)) {
    test(name, () => assert.deepEqual(marksOf(rows), marks));
  }
});

describe("timeOf", () => {
  const cases = {
    "2024-05-01T12:34:56Z": Date.UTC(2024, 4, 1, 12, 34, 56),
    "0001-01-01T00:00:00Z": -62135596800000,
    "10000-01-01T00:00:00Z": 253402300800000,
    "275760-09-13T00:00:00Z": 8.64e15,
    "999999-01-01T00:00:00Z": NaN,
    "yesterday": NaN,
    "": NaN,
  };
  for (const [text, time] of Object.entries(cases)) {
    test(`reads “${text}”`, () => assert.ok(Object.is(web.timeOf(text), time), String(web.timeOf(text))));
  }
  test("takes nothing but a text", () => assert.ok(Number.isNaN(web.timeOf(12))));
});

describe("settleReactions", () => {
  const reaction = (senderID, kind, isRemoved, minute) => ({
    senderID, kind, isRemoved, time: minute === undefined ? NaN : minute * 60_000,
  });
  const cases = {
    "an addition stands": [[reaction("a", "loved", false, 1)], [["loved", ["a"]]]],
    "a later removal takes it away": [[reaction("a", "loved", false, 1), reaction("a", "loved", true, 2)], []],
    "an addition after the removal stands": [
      [reaction("a", "loved", false, 1), reaction("a", "loved", true, 2), reaction("a", "loved", false, 3)], [["loved", ["a"]]]],
    "dates decide, not the order in the file": [
      [reaction("a", "loved", true, 2), reaction("a", "loved", false, 1)], []],
    "at one date the order in the file decides": [
      [reaction("a", "loved", false, 1), reaction("a", "loved", true, 1)], []],
    "one without a date comes before those with one": [
      [reaction("a", "loved", false, 1), reaction("a", "loved", true)], [["loved", ["a"]]]],
    "another sender's removal takes nothing away": [
      [reaction("a", "loved", false, 1), reaction("b", "loved", true, 2)], [["loved", ["a"]]]],
    "another kind's removal takes nothing away": [
      [reaction("a", "loved", false, 1), reaction("a", "liked", true, 2)], [["loved", ["a"]]]],
    "the same addition twice counts once": [
      [reaction("a", "loved", false, 1), reaction("a", "loved", false, 2)], [["loved", ["a"]]]],
    "a removal alone is nothing": [[reaction("a", "loved", true, 1)], []],
    "unnamed senders are counted one by one": [
      [reaction(undefined, "liked", false, 1), reaction(undefined, "liked", false, 2), reaction(undefined, "liked", true, 3)],
      [["liked", [undefined]]]],
    "kinds keep the order of their first appearance": [
      [reaction("a", "liked", false, 1), reaction("b", "loved", false, 2), reaction("c", "liked", false, 3)],
      [["liked", ["a", "c"]], ["loved", ["b"]]]],
  };
  for (const [name, [reactions, standing]] of Object.entries(cases)) {
    test(name, () => {
      const settled = web.settleReactions(reactions).map(({ kind, senderIDs }) => [kind, senderIDs]);
      assert.deepEqual(settled, standing);
    });
  }
});

describe("splitLinks", () => {
  const cases = {
    "no link here": [],
    "see https://example.org/a?b=c#d now": ["https://example.org/a?b=c#d"],
    "HTTP://EXAMPLE.ORG": ["HTTP://EXAMPLE.ORG"],
    "(https://example.org/a).": ["https://example.org/a"],
    "https://example.org/wiki/Lake_(film)": ["https://example.org/wiki/Lake_(film)"],
    "https://a.example https://b.example!": ["https://a.example", "https://b.example"],
    "“https://example.org/x”": ["https://example.org/x"],
    "javascript:alert(1)": [],
    "data:text/html,<b>x</b> file:///etc/passwd ftp://example.org": [],
    "https:// and http://": [],
    "https://example.org/\u202Egpj.exe": ["https://example.org/"],
    "javascript:'https://example.org/'": ["https://example.org/"],
  };
  for (const [text, links] of Object.entries(cases)) {
    test(`in “${text}”`, () => {
      const pieces = web.splitLinks(text);
      assert.deepEqual(pieces.filter(({ href }) => href !== undefined).map((piece) => piece.text), links);
      assert.equal(pieces.map((piece) => piece.text).join(""), text);
      for (const { href } of pieces) assert.ok(href === undefined || /^https?:\/\//.test(href));
    });
  }

  test("ends soon on a megabyte without a blank", () => {
    for (const text of ["x".repeat(1e6), `https://example.org/${")".repeat(1e6)}`, "http://a".repeat(125_000)]) {
      const start = process.hrtime.bigint();
      assert.equal(web.splitLinks(text).map((piece) => piece.text).join(""), text);
      assert.ok(process.hrtime.bigint() - start < 2_000_000_000n);
    }
  });
});

describe("albumAddress", () => {
  const cases = [
    ["attachments/a/b.jpg", "attachments/a/b.jpg"],
    ["attachments/a b#1?%.jpg", "attachments/a%20b%231%3F%25.jpg"],
    ["attachments/ä\u2028.jpg", "attachments/%C3%A4%E2%80%A8.jpg"],
    ["attachments/javascript:x.jpg", "attachments/javascript%3Ax.jpg"],
    ["attachments/..\\x", "attachments/..%5Cx"],
    ["attachments/../manifest.json", undefined],
    ["attachments/./a", undefined],
    ["attachments//a", undefined],
    ["attachments/", undefined],
    ["attachments", undefined],
    ["/attachments/a", undefined],
    ["https://example.org/attachments/a", undefined],
    ["attachments/\uD800.jpg", undefined],
    ["attachments/a\0.jpg", undefined],
    [undefined, undefined],
  ];
  for (const [text, address] of cases) {
    test(`of ${JSON.stringify(text)}`, () => assert.equal(web.albumAddress(text, "attachments"), address));
  }
});

describe("isFewEmoji", () => {
  const cases = {
    "🎉": true, "🎉🎉🎉": true, "🎉🎉🎉🎉": false, "🎉 🎉": true, "❤️": true, "👍🏽": true, "👩‍👩‍👧‍👦": true,
    "🏳️‍🌈": true, "🇳🇵": true,
    "🏴\u{E0067}\u{E0062}\u{E0073}\u{E0063}\u{E0074}\u{E007F}": true, "1️⃣": true, "1": false,
    "12": false, "©": false, "a🎉": false,
    "🎉!": false, "": false, " ": false, "#": false,
  };
  for (const [text, isFew] of Object.entries(cases)) {
    test(`of “${text}”`, () => assert.equal(web.isFewEmoji(text), isFew));
  }
});

describe("piecesOf", () => {
  const mark = "\uFFFC";
  const cases = [
    ["words and no attachment", "hello", [], ["hello"]],
    ["nothing at all", "", [], []],
    ["a mark and its attachment", mark, ["A"], ["<A>"]],
    ["a mark without an attachment", mark, [], []],
    ["words round an attachment", `before${mark}behind`, ["A"], ["before", "<A>", "behind"]],
    ["two marks and two attachments", `${mark}${mark}\nbehind`, ["A", "B"], ["<A>", "<B>", "behind"]],
    ["fewer marks than attachments", `${mark}words`, ["A", "B"], ["words", "<A>", "<B>"]],
    ["more marks than attachments", `a${mark}b${mark}c`, ["A"], ["abc", "<A>"]],
    ["attachments without marks", "words", ["A"], ["words", "<A>"]],
    ["attachments and no words", "", ["A", "B"], ["<A>", "<B>"]],
    ["blanks of a message without marks", "  two\n", [], ["  two\n"]],
  ];
  for (const [name, text, attachments, pieces] of cases) {
    test(name, () => {
      const found = web.piecesOf(text, attachments).map((piece) => ("text" in piece ? piece.text : `<${piece.attachment}>`));
      assert.deepEqual(found, pieces);
    });
  }
});

describe("files", () => {
  test("are told by type, then by extension", () => {
    const kindOf = (attachment) => web.attachmentKind(web.attachmentOf(attachment));
    assert.equal(kindOf({ mimeType: "image/heic", displayName: "a" }), "image");
    assert.equal(kindOf({ displayName: "a.MOV" }), "video");
    assert.equal(kindOf({ displayName: "a", archivePath: "attachments/Audio.caf" }), "audio");
    assert.equal(kindOf({ displayName: "a.pdf" }), "document");
    assert.equal(kindOf({ displayName: "constructor.constructor" }), "document");
  });

  test("without a display name are named by the source's path", () => {
    assert.equal(web.attachmentOf({ displayName: "", originalFilename: "~/x/IMG_1.jpg" }).name, "IMG_1.jpg");
  });

  test("have an extension only behind a name", () => {
    assert.equal(web.extensionOf("a.tar.gz"), "gz");
    assert.equal(web.extensionOf(".hidden"), "");
    assert.equal(web.extensionOf("folder.d/file"), "");
  });

  test("tell their size in the largest unit that leaves one", () => {
    for (const [bytes, power] of [[0, 0], [999, 0], [1000, 1], [999_499, 1], [999_500, 2], [5e9, 3], [1e18, 4]]) {
      assert.equal(web.byteSizePower(bytes), power, String(bytes));
    }
  });
});

describe("names", () => {
  const cases = { "Mia Okafor": "MO", "mia": "M", "+1 555 0142": "", "Ana de la Cruz": "AC", "": "", "𝒜b": "𝒜" };
  for (const [name, initials] of Object.entries(cases)) {
    test(`initials of “${name}”`, () => assert.equal(web.initialsOf(name), initials));
  }
  test("a beginning is cut between characters", () => assert.equal(web.beginningOf("🎉🎉🎉", 2), "🎉🎉…"));
});

describe("Speech", () => {
  test("falls back to English for a language it has no words of", () => {
    assert.equal(new web.Speech("ja").say("edited"), "Edited");
  });
  test("takes a tag that is none for English", () => {
    assert.equal(new web.Speech("{{LANG}}").tag, "en");
  });
  test("counts with the language's plural forms", () => {
    const speech = new web.Speech("en");
    assert.equal(speech.sayCount("messageCount", 1), "1 message");
    assert.equal(speech.sayCount("messageCount", 1234), "1,234 messages");
  });
  test("fills a place with a text that looks like a place", () => {
    assert.equal(new web.Speech("en").say("replyTo", { name: "{name} $& $1" }), "Reply to {name} $& $1");
  });
});

describe("damaged records", () => {
  for (const value of [null, undefined, 7, "text", [], {}, { reactions: 1, attachments: "x", text: 5, date: {} }]) {
    test(`${JSON.stringify(value)} is read as a message without words`, () => {
      const message = web.messageOf(value);
      assert.equal(message.text, "");
      assert.deepEqual(message.reactions, []);
      assert.deepEqual(message.attachments, []);
    });
  }
  test("a message that is no record is told as unreadable", () => {
    assert.equal(web.messageOf(null).payloadState, "unsupported");
    assert.equal(web.messageOf({}).payloadState, "decoded");
  });
});
