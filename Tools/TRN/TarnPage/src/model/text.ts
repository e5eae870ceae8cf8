// Numbers as a person reads them: every one with its unit.

/** A number with so many decimals, and no sign before a zero. */
export function fixed(value: number, decimals: number): string {
  const text = value.toFixed(decimals);
  return Number(text) === 0 ? text.replace('-', '') : text;
}

export function dbm(level: number | null | undefined, decimals = 2): string {
  return level !== null && level !== undefined && Number.isFinite(level) ? fixed(level, decimals) : '---';
}

/** "14:03:22" in UTC. */
export function utcTime(utc: string | number): string {
  const date = new Date(utc);
  return Number.isNaN(date.getTime()) ? '--:--:--' : date.toISOString().slice(11, 19);
}

/** "3 min", "45 s", "2 h 5 min": how long ago. */
export function since(utc: string, now_ms: number): string {
  const seconds = Math.max(0, Math.round((now_ms - new Date(utc).getTime()) / 1000));
  if (!Number.isFinite(seconds)) return '';
  if (seconds < 60) return `${seconds} s`;
  if (seconds < 3600) return `${Math.floor(seconds / 60)} min`;
  return `${Math.floor(seconds / 3600)} h ${Math.floor((seconds % 3600) / 60)} min`;
}

/** A name that the server's data folder takes: letters, digits, "-", "_" and ".", not beginning with a point. */
export function isFileName(name: string): boolean {
  return /^[A-Za-z0-9][A-Za-z0-9._-]{0,63}$/.test(name);
}

/** "2026-01-31T140322" for a file's name. */
export function stamp(now: Date): string {
  return now.toISOString().slice(0, 19).replaceAll(':', '');
}

/** Whether a name tells the tuning, as a capture's must: each value between its key and the next "_". */
export function isCaptureName(name: string): boolean {
  return ['BAND_', 'CHANNEL_', 'BW_', 'CHAIN_'].every((key) => new RegExp(`${key}[^_]+_`).test(name));
}

/** What a file is, by its name and its first characters. */
export function fileKind(name: string, head: string): 'snapshot' | 'capture' | 'capture without tuning' | 'other' {
  if (/^m_Average_0\[/.test(head)) return 'snapshot';
  const isSamples = /^\s*[-+]?\d+(\.\d*)? +.[-+]?\d+(\.\d*)?\s*$/m.test(head.split('\n', 1)[0]);
  if (!isSamples) return 'other';
  return isCaptureName(name) ? 'capture' : 'capture without tuning';
}
