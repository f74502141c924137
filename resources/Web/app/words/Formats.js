// Dates and sizes, as the reader's own language writes them, in the reader's time zone or in UTC.

/** @typedef {"local" | "UTC"} Zone */

const byteUnits = ["byte", "kilobyte", "megabyte", "gigabyte", "terabyte"];

/**
 * Which power of 1000 a size is told in: the largest that leaves at least 1, rounding included.
 * @param {number} bytes
 */
export function byteSizePower(bytes) {
  let power = 0;
  while (power < byteUnits.length - 1 && bytes / 1000 ** power >= 999.5) power += 1;
  return power;
}

/** Times are milliseconds since 1970 and must be finite. */
export class Formats {
  /** @param {string} tag a tag that Intl accepts @param {Zone} [zone] */
  constructor(tag, zone = "local") {
    this.tag = tag;
    this.sizes = byteUnits.map((unit, power) => new Intl.NumberFormat(tag, {
      style: "unit", unit, unitDisplay: power ? "short" : "long", maximumFractionDigits: power < 2 ? 0 : 1,
    }));
    const timeZone = zone === "UTC" ? "UTC" : undefined;
    /** @param {Intl.DateTimeFormatOptions} options */
    const made = (options) => new Intl.DateTimeFormat(this.tag, { ...options, timeZone });
    this.zone = zone;
    this.days = made({ weekday: "long", year: "numeric", month: "long", day: "numeric" });
    this.shortDays = made({ year: "numeric", month: "short", day: "numeric" });
    this.dates = made({ dateStyle: "long" });
    this.months = made({ year: "numeric", month: "long" });
    this.monthNames = made({ month: "short" });
    this.years = made({ year: "numeric" });
    this.clocks = made({ hour: "numeric", minute: "2-digit" });
    this.moments = made({ dateStyle: "long", timeStyle: "medium" });
  }

  /** The zone in use, as in "Europe/Berlin". */
  get zoneName() {
    return this.moments.resolvedOptions().timeZone;
  }

  /**
   * With the day of the week.
   * @param {number} time
   */
  day(time) {
    return this.days.format(time);
  }

  /**
   * Day, short month and year.
   * @param {number} time
   */
  shortDay(time) {
    return this.shortDays.format(time);
  }

  /**
   * Day, month and year.
   * @param {number} time
   */
  date(time) {
    return this.dates.format(time);
  }

  /**
   * Month and year.
   * @param {number} time
   */
  month(time) {
    return this.months.format(time);
  }

  /**
   * The month's short name alone.
   * @param {number} time
   */
  monthName(time) {
    return this.monthNames.format(time);
  }

  /** @param {number} time */
  year(time) {
    return this.years.format(time);
  }

  /**
   * Hour and minute.
   * @param {number} time
   */
  clock(time) {
    return this.clocks.format(time);
  }

  /**
   * Day and time to the second.
   * @param {number} time
   */
  moment(time) {
    return this.moments.format(time);
  }

  /** @param {number} bytes */
  size(bytes) {
    const power = byteSizePower(bytes);
    return this.sizes[power].format(bytes / 1000 ** power);
  }
}
