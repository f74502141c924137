import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Conversation } from "../../../resources/Web/app/records/Conversation.js";
import { identifierOf, timeOf } from "../../../resources/Web/app/records/fields.js";
import { attachmentOf, messageOf, participantOf, reactionOf, warningOf } from "../../../resources/Web/app/records/records.js";
import { conversation, everyCase } from "../support/album.js";

describe("timeOf", () => {
  const cases = {
    "2024-05-01T12:34:56Z": Date.UTC(2024, 4, 1, 12, 34, 56),
    "2024-05-01T12:34:56.789Z": Date.UTC(2024, 4, 1, 12, 34, 56, 789),
    "0001-01-01T00:00:00Z": -62135596800000,
    "10000-01-01T00:00:00Z": 253402300800000,
    "275760-09-13T00:00:00Z": 8.64e15,
    "999999-01-01T00:00:00Z": NaN,
    "yesterday": NaN,
    "": NaN,
  };
  for (const [text, time] of Object.entries(cases)) {
    test(`reads “${text}”`, () => assert.ok(Object.is(timeOf(text), time), String(timeOf(text))));
  }
  for (const value of [12, null, undefined, {}, [], ["2024-05-01T12:34:56Z"], true]) {
    test(`takes ${JSON.stringify(value)} for no date`, () => assert.ok(Number.isNaN(timeOf(value))));
  }
});

const damaged = [null, undefined, 7, NaN, true, "text", [], [[]], {}, { reactions: 1, attachments: "x", text: 5, date: {} },
  { length: 3 }, { reactions: null, attachments: null, text: null, date: null, payloadState: null }];

describe("a damaged record", () => {
  for (const value of damaged) {
    test(`${JSON.stringify(value)} is read as a message without words`, () => {
      const read = messageOf(value);
      assert.equal(read.text, "");
      assert.ok(Number.isNaN(read.time));
      assert.deepEqual(read.reactions, []);
      assert.deepEqual(read.attachments, []);
    });
    test(`${JSON.stringify(value)} is read as every other record`, () => {
      assert.equal(participantOf(value).id, "");
      assert.equal(reactionOf(value).kind, "unknown");
      assert.equal(attachmentOf(value).archivePath, undefined);
      assert.equal(warningOf(value).code, "");
      assert.equal(new Conversation(value).messageCount, 0);
    });
  }
  test("that is no record is told as an unreadable message", () => {
    assert.equal(messageOf(null).payloadState, "unsupported");
    assert.equal(messageOf({}).payloadState, "decoded");
  });
  test("never has a size below nothing or without an end", () => {
    for (const byteSize of [-1, NaN, "12", null]) assert.equal(attachmentOf({ byteSize }).byteSize, undefined, String(byteSize));
  });
  test("may have null where a field has no value", () => {
    const read = messageOf({ id: "1", subject: null, replyToGUID: null, editedAt: null, retractedAt: null, service: null });
    assert.deepEqual([read.subject, read.replyToGUID, read.editedAt, read.retractedAt, read.service],
      ["", undefined, undefined, undefined, undefined]);
  });
  test("may hold numbers for identifiers", () => assert.deepEqual([7, "7", {}].map(identifierOf), ["7", "7", undefined]));
});

describe("a conversation", () => {
  const album = new Conversation(everyCase());

  test("keeps every message, in the file's order", () => {
    const read = Array.from({ length: album.messageCount }, (_, index) => album.message(index).id);
    assert.deepEqual(read, Array.from({ length: 25 }, (_, index) => String(2 * index + 1)));
  });
  test("finds a message by its guid", () => {
    assert.equal(album.indexOfGUID("GUID-7"), 3);
    for (const guid of ["GUID-GONE", "", "__proto__", "constructor"]) assert.equal(album.indexOfGUID(guid), undefined);
  });
  test("with more than one other person is a group", () => {
    const people = everyCase().participants;
    assert.equal(album.isGroup, true);
    assert.equal(new Conversation(conversation([], { participants: people.slice(0, 1) })).isGroup, false);
    assert.equal(new Conversation(conversation([], { participants: [] })).isGroup, false);
  });
  test("with two participants of one id keeps the first", () => {
    const twice = new Conversation(conversation([], { participants: [{ id: "a", displayName: "One" }, { id: "a", displayName: "Two" }] }));
    assert.equal(twice.participantByID.get("a").displayName, "One");
  });
  test("is read in whatever form its lists come", () => {
    for (const value of damaged) {
      const read = new Conversation({ title: value, messages: value, participants: value, warnings: value, sourceMessageCount: value });
      assert.equal(typeof read.title, "string");
      assert.equal(read.messageCount, Array.isArray(value) ? value.length : 0);
    }
  });
  test("with messages that are no records still counts and shows each", () => {
    const read = new Conversation({ messages: damaged });
    assert.equal(read.messageCount, damaged.length);
    damaged.forEach((_, index) => assert.equal(read.message(index).text, ""));
    assert.equal(read.indexOfGUID("x"), undefined);
  });
});
