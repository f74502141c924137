import assert from "node:assert/strict";
import { test } from "node:test";
import { AlbumFacts } from "../../../resources/Web/app/about/AlbumFacts.js";
import { Conversation, ownSender } from "../../../resources/Web/app/records/Conversation.js";
import { attachment, conversation, everyCase, jonas, message, mia } from "../support/album.js";

/** Counted in ranges of three messages. @param {unknown} record */
function factsOf(record) {
  const album = new Conversation(record);
  const facts = new AlbumFacts(album);
  for (let first = 0; first < album.messageCount; first += 3) facts.add(first, Math.min(first + 3, album.messageCount));
  return facts;
}

test("attachments are counted by what became of them, and one with a path that leads outside as missing", () => {
  assert.deepEqual(factsOf(everyCase()).attachments, { all: 8, available: 5, missing: 2, unreadable: 1 });
});

test("every attachment that is not in the album is told, and where it stood", () => {
  assert.deepEqual(factsOf(everyCase()).absences,
    [{ message: 10, attachment: 1 }, { message: 10, attachment: 2 }, { message: 11, attachment: 2 }]);
});

test("the messages of every sender are counted", () => {
  const counts = factsOf(everyCase()).countBySender;
  assert.deepEqual([counts.get(ownSender), counts.get(mia), counts.get(jonas)], [5, 11, 7]);
  assert.equal(Array.from(counts.values()).reduce((sum, count) => sum + count, 0), 25);
});

test("what a warning speaks of is found", () => {
  const record = everyCase();
  const album = new Conversation(record);
  const facts = factsOf(record);
  const found = Array.from({ length: album.warningCount }, (_, index) => facts.indexOfSource(album.warning(index)));
  assert.deepEqual(found, [10, 12, undefined, 10, undefined]);
});

test("a message is not mistaken for an attachment of the same number", () => {
  const warned = ["attachment_missing", "unsupported_payload"].map((code) => ({ id: code, code, summary: "", sourceID: "1" }));
  const facts = factsOf(conversation([message(1, mia, "first"),
    message(2, mia, "second", undefined, { attachments: [attachment(1, "a.jpg", "missing")] })], { warnings: warned }));
  assert.deepEqual(warned.map((warning) => facts.indexOfSource(warning)), [1, 0]);
});

test("a warning of a record that is no message is not mistaken for one of an attachment of the same number", () => {
  const warning = { id: "w", code: "unresolved_reaction", summary: "", sourceID: "42" };
  const facts = factsOf(conversation([message(1, mia, "first", undefined, { attachments: [attachment(42, "a.jpg")] })],
    { warnings: [warning] }));
  assert.equal(facts.indexOfSource(warning), undefined);
});

test("messages that were not read as a whole are told where no warning speaks of them", () => {
  const states = ["decoded", "partiallyDecoded", "unsupported", "unsupported", "somethingNew"];
  const messages = states.map((payloadState, number) => message(number, mia, "x", undefined, { payloadState }));
  const warnings = [{ id: "w", code: "unsupported_payload", summary: "", sourceID: "2" },
    { id: "v", code: "attachment_missing", summary: "", sourceID: "3" }];
  assert.deepEqual(factsOf(conversation([...messages, null], { warnings })).partlyRead, [1, 3, 4, 5]);
});

test("records that are no records count as messages without attachments", () => {
  const facts = factsOf({ messages: [null, 7, "text", [], {}, { attachments: "x" }], warnings: [null, { sourceID: {} }] });
  assert.equal(facts.attachments.all, 0);
  assert.equal(facts.countBySender.get(""), 6);
  assert.equal(facts.indexOfSource({ code: "attachment_missing", sourceID: "1" }), undefined);
});
