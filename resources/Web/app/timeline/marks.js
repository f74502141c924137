// What a message's place in time says about its looks: bits of a byte.

/** The first message of a day, under its heading. */
export const startsDay = 1;
/** The first of a run of one sender. */
export const startsGroup = 2;
/** The last of such a run. */
export const endsGroup = 4;

/** A longer pause, in milliseconds, ends a run. */
export const longestPause = 10 * 60 * 1000;
