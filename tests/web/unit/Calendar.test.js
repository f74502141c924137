import assert from "node:assert/strict";
import { describe, test } from "node:test";
import { Calendar } from "../../../resources/Web/app/timeline/Calendar.js";
import { makeRandom } from "../support/measures.js";

const hour = 3_600_000;
const utc = new Calendar("UTC");
const local = new Calendar("local");

/** Runs `work` as a reader in another zone would. */
function inZone(zone, work) {
  const before = process.env.TZ;
  process.env.TZ = zone;
  try {
    work();
  } finally {
    if (before === undefined) delete process.env.TZ;
    else process.env.TZ = before;
  }
}

describe("rangeOf", () => {
  const at = (...parts) => Date.UTC(...parts);
  const ranges = {
    "2024-05-01": [at(2024, 4, 1), at(2024, 4, 2)],
    "2024-5-1": [at(2024, 4, 1), at(2024, 4, 2)],
    "2024-02-29": [at(2024, 1, 29), at(2024, 2, 1)],
    "2024-12-31": [at(2024, 11, 31), at(2025, 0, 1)],
    "2024-05": [at(2024, 4, 1), at(2024, 5, 1)],
    "2024-12": [at(2024, 11, 1), at(2025, 0, 1)],
    "2024": [at(2024, 0, 1), at(2025, 0, 1)],
    "0001-01-01": [-62135596800000, -62135596800000 + 24 * hour],
    "10000": [253402300800000, 253402300800000 + 366 * 24 * hour],
  };
  for (const [text, [start, end]] of Object.entries(ranges)) {
    test(`of ${text}`, () => assert.deepEqual(utc.rangeOf(text), { start, end }));
  }
  for (const text of ["", "yesterday", "24", "2024-", "2024-13", "2024-00", "2024-05-00", "2024-05-32", "2023-02-29", "2024-05-01T",
    " 2024", "2024-05-01-01", "999999", "999999-01-01", "１２３４", "-2024", "2024-123", "2024/05/01"]) {
    for (const calendar of [utc, local]) {
      test(`finds none in ${JSON.stringify(text)}, ${calendar.zone}`, () => assert.equal(calendar.rangeOf(text), undefined));
    }
  }
  test("at the end of time holds its last moment", () => {
    for (const calendar of [utc, local]) {
      for (const text of ["275760", "275760-09"]) {
        const { start, end } = calendar.rangeOf(text);
        const time = 8.64e15 - 48 * hour;
        assert.ok(time >= start && time < end, `${text} ${calendar.zone} ${start} ${end}`);
      }
    }
  });
});

describe("dayOf", () => {
  test("holds its moment and ends where the next begins", () => {
    for (const zone of ["UTC", "Asia/Kathmandu", "America/Sao_Paulo", "Pacific/Apia", "America/Havana", "Europe/Berlin"]) {
      inZone(zone, () => {
        const random = makeRandom(7);
        for (let step = 0; step < 500; step++) {
          const time = (random(60 * 366 * 24 * 60) - 366 * 24 * 60) * 60_000;
          const { start, end } = local.dayOf(time);
          assert.ok(start <= time && time < end, `${zone} ${time}`);
          assert.equal(local.dayOf(end).start, end, `${zone} ${time}`);
          assert.equal(local.dayOf(end - 1).start, start, `${zone} ${time}`);
        }
      });
    }
  });

  const lengths = [
    ["Europe/Berlin", "2024-03-31", 23, "spring forward"],
    ["Europe/Berlin", "2024-10-27", 25, "fall back"],
    ["America/Sao_Paulo", "2018-11-04", 23, "no midnight"],
    ["America/Havana", "2024-11-03", 25, "midnight twice"],
    ["Asia/Kathmandu", "2024-05-01", 24, "three quarters of an hour aside"],
    ["Pacific/Apia", "2011-12-29", 24, "the day before one that was left out"],
  ];
  for (const [zone, day, hours, what] of lengths) {
    test(`of ${day} in ${zone} has ${hours} hours: ${what}`, () => inZone(zone, () => {
      const { start, end } = local.rangeOf(day);
      assert.equal((end - start) / hour, hours);
      assert.equal(local.fieldText(start), day);
      assert.equal(local.fieldText(end - 1), day);
    }));
  }

  test("knows no day that was left out", () => inZone("Pacific/Apia", () => assert.equal(local.rangeOf("2011-12-30"), undefined)));

  test("at the ends of time still holds its moment", () => {
    for (const calendar of [utc, local]) {
      for (const time of [-8.64e15, 8.64e15]) {
        const { start, end } = calendar.dayOf(time);
        assert.ok(start <= time && time < end, `${calendar.zone} ${time}`);
      }
    }
  });

  test("of no date holds no moment", () => {
    for (const calendar of [utc, local]) {
      const { start, end } = calendar.dayOf(NaN);
      assert.ok(!(0 >= start && 0 < end), calendar.zone);
    }
  });
});

describe("startOfDay", () => {
  test("runs on into the next month and the years before 100", () => {
    assert.equal(utc.startOfDay(2024, 1, 30), Date.UTC(2024, 2, 1));
    assert.equal(new Date(utc.startOfDay(42, 0, 1)).toISOString(), "0042-01-01T00:00:00.000Z");
    assert.deepEqual(local.partsOf(local.startOfDay(42, 0, 1)), { year: 42, month: 0, day: 1 });
  });
  test("is no number beyond what a date can hold", () => {
    for (const calendar of [utc, local]) assert.ok(Number.isNaN(calendar.startOfDay(300_000, 0, 1)));
  });
});

describe("monthNumber", () => {
  test("rises with time", () => {
    let last = -Infinity;
    for (let month = -24; month < 24; month++) {
      const number = utc.monthNumber(Date.UTC(1970, month, 15));
      assert.equal(number, 1970 * 12 + month);
      assert.ok(number > last);
      last = number;
    }
  });
  test("is no number for no date", () => assert.ok(Number.isNaN(utc.monthNumber(NaN)) && Number.isNaN(local.monthNumber(NaN))));
});

describe("fieldText", () => {
  const cases = [[Date.UTC(2024, 4, 1, 23, 59), "2024-05-01"], [-62135596800000, "0001-01-01"], [253402300800000, "10000-01-01"], [NaN, ""]];
  for (const [time, text] of cases) test(`of ${time}`, () => assert.equal(utc.fieldText(time), text));
});
