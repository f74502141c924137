import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { byteSizePower, Formats } from "../../../resources/Web/app/words/Formats.js";
import { plainBlanks } from "../support/measures.js";

const evening = Date.UTC(2024, 1, 29, 20, 5, 9);

describe("a moment in UTC is told", () => {
  const told = {
    en: { day: "Thursday, February 29, 2024", shortDay: "Feb 29, 2024", date: "February 29, 2024", month: "February 2024",
      monthName: "Feb", year: "2024", clock: "8:05 PM", moment: "February 29, 2024 at 8:05:09 PM" },
    de: { day: "Donnerstag, 29. Februar 2024", shortDay: "29. Feb. 2024", date: "29. Februar 2024", month: "Februar 2024",
      monthName: "Feb", year: "2024", clock: "20:05", moment: "29. Februar 2024 um 20:05:09" },
  };
  for (const [tag, texts] of Object.entries(told)) {
    for (const [part, text] of Object.entries(texts)) {
      test(`as ${part} in ${tag}`, () => assert.equal(plainBlanks(new Formats(tag, "UTC")[part](evening)), text));
    }
  }
});

test("the zone is the reader's own or UTC", () => {
  const before = process.env.TZ;
  process.env.TZ = "Asia/Kathmandu";
  const [own, universal] = [new Formats("en", "local"), new Formats("en", "UTC")];
  if (before === undefined) delete process.env.TZ;
  else process.env.TZ = before;
  assert.equal(plainBlanks(own.clock(evening)), "1:50 AM");
  assert.equal(own.date(evening), "March 1, 2024");
  assert.match(own.zoneName, /^Asia\/Kat(h?)mandu$/);
  assert.equal(plainBlanks(universal.clock(evening)), "8:05 PM");
  assert.equal(universal.zoneName, "UTC");
});

test("the ends of time can be told", () => {
  for (const zone of ["local", "UTC"]) {
    for (const time of [-8.64e15, -62135596800000, 0, 253402300800000, 8.64e15]) {
      for (const part of ["day", "shortDay", "date", "month", "monthName", "year", "clock", "moment"]) {
        assert.notEqual(new Formats("en", zone)[part](time), "");
      }
    }
  }
});

describe("a size is told", () => {
  const sizes = [[0, "0 bytes"], [1, "1 byte"], [999, "999 bytes"], [1000, "1 kB"], [184_320, "184 kB"], [999_499, "999 kB"],
    [999_500, "1 MB"], [41_200_331, "41.2 MB"], [5e9, "5 GB"], [1.5e12, "1.5 TB"], [1e18, "1,000,000 TB"]];
  for (const [bytes, text] of sizes) {
    test(`of ${bytes} bytes`, () => assert.equal(plainBlanks(new Formats("en", "UTC").size(bytes)), text));
  }
  test("in the largest unit that leaves one", () => {
    for (const [bytes, power] of [[0, 0], [999, 0], [1000, 1], [999_499, 1], [999_500, 2], [5e9, 3], [1e18, 4]]) {
      assert.equal(byteSizePower(bytes), power, String(bytes));
    }
  });
});
