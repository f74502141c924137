import assert from "node:assert/strict";
import { test } from "node:test";
import { settleReactions } from "../../../resources/Web/app/message/settleReactions.js";

const reaction = (senderID, kind, isRemoved, minute) => ({
  senderID, kind, isRemoved, time: minute === undefined ? NaN : minute * 60_000,
});
const cases = {
  "no reaction is none": [[], []],
  "an addition stands": [[reaction("a", "loved", false, 1)], [["loved", ["a"]]]],
  "a later removal takes it away, and is told": [
    [reaction("a", "loved", false, 1), reaction("a", "loved", true, 2)], [["loved", [], ["a"]]]],
  "an addition after the removal stands": [
    [reaction("a", "loved", false, 1), reaction("a", "loved", true, 2), reaction("a", "loved", false, 3)], [["loved", ["a"]]]],
  "dates decide, not the order in the file": [
    [reaction("a", "loved", true, 2), reaction("a", "loved", false, 1)], [["loved", [], ["a"]]]],
  "at one date the order in the file decides": [
    [reaction("a", "loved", false, 1), reaction("a", "loved", true, 1)], [["loved", [], ["a"]]]],
  "one without a date comes before those with one": [
    [reaction("a", "loved", false, 1), reaction("a", "loved", true)], [["loved", ["a"]]]],
  "another sender's removal takes nothing away": [
    [reaction("a", "loved", false, 1), reaction("b", "loved", true, 2)], [["loved", ["a"], ["b"]]]],
  "another kind's removal takes nothing away": [
    [reaction("a", "loved", false, 1), reaction("a", "liked", true, 2)], [["loved", ["a"]], ["liked", [], ["a"]]]],
  "the same addition twice counts once": [
    [reaction("a", "loved", false, 1), reaction("a", "loved", false, 2)], [["loved", ["a"]]]],
  "a removal alone is told": [[reaction("a", "loved", true, 1)], [["loved", [], ["a"]]]],
  "the same removal twice is told once": [
    [reaction("a", "loved", true, 1), reaction("a", "loved", true, 2)], [["loved", [], ["a"]]]],
  "unnamed senders are counted one by one": [
    [reaction(undefined, "liked", false, 1), reaction(undefined, "liked", false, 2), reaction(undefined, "liked", true, 3)],
    [["liked", [undefined], [undefined]]]],
  "kinds without a name may be several reactions, and are counted one by one": [
    [reaction("a", "unknown", false, 1), reaction("a", "unknown", false, 2), reaction("a", "unknown", true, 3),
      reaction("a", "custom", false, 4), reaction("a", "custom", false, 5)],
    [["unknown", ["a"], ["a"]], ["custom", ["a", "a"]]]],
  "kinds keep the order of their first appearance": [
    [reaction("a", "liked", false, 1), reaction("b", "loved", false, 2), reaction("c", "liked", false, 3)],
    [["liked", ["a", "c"]], ["loved", ["b"]]]],
  "a sender named by the empty text is no unnamed sender": [
    [reaction("", "liked", false, 1), reaction("", "liked", false, 2), reaction(undefined, "liked", false, 3)],
    [["liked", ["", undefined]]]],
  "kinds and senders may be called like parts of the language": [
    [reaction("__proto__", "constructor", false, 1), reaction("toString", "constructor", false, 2)],
    [["constructor", ["__proto__", "toString"]]]],
};
/** @param {readonly { senderID: string | undefined }[]} reactions */
const sendersOf = (reactions) => reactions.map(({ senderID }) => senderID);

for (const [name, [reactions, expected]] of Object.entries(cases)) {
  test(name, () => {
    const settled = settleReactions(reactions).map(({ kind, standing, removed }) => [kind, sendersOf(standing), sendersOf(removed)]);
    assert.deepEqual(settled, expected.map(([kind, standing, removed = []]) => [kind, standing, removed]));
  });
}

test("further additions of one sender are told apart, until they are taken back", () => {
  const reactions = [1, 2, 3].map((minute) => reaction("a", "loved", false, minute));
  const timesOf = (/** @type {any[]} */ all) => settleReactions(all).map(({ standing, repeated }) =>
    [standing, repeated].map((list) => list.map(({ time }) => time / 60_000)));
  assert.deepEqual(timesOf(reactions), [[[1], [2, 3]]]);
  assert.deepEqual(timesOf([...reactions, reaction("a", "loved", true, 4)]), [[[], []]]);
  assert.deepEqual(timesOf([...reactions, reaction("a", "loved", true, 4), reaction("a", "loved", false, 5)]), [[[5], []]]);
});

test("what was handed over is left in its order", () => {
  const reactions = [reaction("a", "loved", true, 2), reaction("a", "loved", false, 1)];
  settleReactions(reactions);
  assert.deepEqual(reactions.map(({ time }) => time), [120_000, 60_000]);
});
