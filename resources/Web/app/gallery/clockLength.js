/**
 * A length of time as players write it, as in 0:07, 12:30 or 1:02:05; empty for one that is not known.
 * @param {number} seconds
 */
export function clockLength(seconds) {
  if (!Number.isFinite(seconds) || seconds < 0) return "";
  const whole = Math.round(seconds);
  const [hours, minutes] = [Math.floor(whole / 3600), Math.floor(whole / 60) % 60];
  const parts = hours > 0 ? [hours, minutes, whole % 60] : [minutes, whole % 60];
  return parts.map((part, index) => (index > 0 ? String(part).padStart(2, "0") : String(part))).join(":");
}
