import assert from "node:assert/strict";
import { test } from "node:test";
import { Speech } from "../../../resources/Web/app/words/Speech.js";

test("falls back to English for a language it has no words of", () => {
  assert.equal(new Speech("sw").say("edited"), "Edited");
});

test("speaks a region's language where it has no words of the region", () => {
  assert.equal(new Speech("en-GB").say("edited"), "Edited");
  assert.equal(new Speech("en-GB").tag, "en-GB");
});

for (const tag of ["{{LANG}}", "", "no language", "<b>", "x".repeat(10_000), "constructor"]) {
  test(`takes the tag ${JSON.stringify(tag.slice(0, 20))} for one that Intl accepts`, () => {
    assert.doesNotThrow(() => new Intl.NumberFormat(new Speech(tag).tag));
    assert.equal(new Speech(tag).say("edited"), "Edited");
  });
}

test("takes a tag that is none for English", () => assert.equal(new Speech("{{LANG}}").tag, "en"));

test("counts with the language's plural forms", () => {
  const speech = new Speech("en");
  assert.equal(speech.sayCount("messageCount", 0), "0 messages");
  assert.equal(speech.sayCount("messageCount", 1), "1 message");
  assert.equal(speech.sayCount("messageCount", 1234), "1,234 messages");
});

test("fills a place with a text that looks like a place", () => {
  assert.equal(new Speech("en").say("replyTo", { name: "{name} $& $1" }), "Reply to {name} $& $1");
});

test("leaves a place open for which it was told nothing", () => {
  assert.equal(new Speech("en").say("replyTo", {}), "Reply to {name}");
});

test("joins names as the language does", () => {
  assert.equal(new Speech("en").list(["Mia", "Jonas", "Ana"]), "Mia, Jonas, and Ana");
  assert.equal(new Speech("en").list([]), "");
});
