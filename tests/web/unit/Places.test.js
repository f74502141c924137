import assert from "node:assert/strict";
import { test } from "node:test";
import { linkedGUID, linkTo } from "../../../resources/Web/app/page/Places.js";

for (const guid of ["GUID-7", "p:0/AB CD", "100%", "50%25", "a#m=b?c&d=e", "Ä\u2028\n🎉", "../..", "</script>"]) {
  test(`the link to ${JSON.stringify(guid)} names it`, () => {
    assert.match(linkTo(guid), /^#m=[\w.~!'()*%-]+$/);
    assert.equal(linkedGUID(linkTo(guid)), guid);
  });
}

for (const guid of ["\ud800", "\udc00", "\udc00\udc00", "a\ud800\ud800b", "\ude00\ud83d"]) {
  test(`half characters as in ${JSON.stringify(guid)} make no error`, () => assert.match(linkTo(guid), /^#m=a?(%EF%BF%BD)+b?$/));
}

/** Part of an address: the guid that it names. @type {[string, string | undefined][]} */
const typed = [
  ["", undefined],
  ["#", undefined],
  ["#m", undefined],
  ["#m=", undefined],
  ["#n=GUID-7", undefined],
  ["#m=GUID-7", "GUID-7"],
  ["#m=GUID%2D7", "GUID-7"],
  ["#m=p:0/AB CD", "p:0/AB CD"],
  ["#m=100%", "100%"],
  ["#m=%E0%A4%A", "%E0%A4%A"],
];
for (const [hash, guid] of typed) {
  test(`the address part “${hash}” names ${guid ?? "nothing"}`, () => assert.equal(linkedGUID(hash), guid));
}
