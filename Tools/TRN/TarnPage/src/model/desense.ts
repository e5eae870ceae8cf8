// The burn-in desense test as the server tells it, and its configuration as a form and as a file.
import type { BandChannels, Verdict } from './protocol';

export type DesensePhase = 'none' | 'running' | 'pausing' | 'paused' | 'stopping' | 'ended';

export interface DesenseProgress {
  phase: DesensePhase;
  name: string;
  what: string;
  /** Sweeps, those without load too. */
  done: number;
  total: number;
  left_s: number | null;
  startedUtc: string;
  endedUtc: string;
  verdict: Verdict;
  interrupted: boolean;
  trouble: string;
  /** Grows with every channel and message that GET /api/desense tells. */
  revision: number;
}

export interface DesenseSpur {
  chain: string;
  frequency_mhz: number;
  baseband_mhz: number;
  level_dbm: number;
}

export interface DesenseRow {
  band: string;
  channel: number;
  centre_mhz: number;
  /** Empty while it isn't judged yet. */
  verdict: Verdict;
  invalid: string;
  limit_dbm: number | null;
  desense_db: number | null;
  idle_desense_db: number | null;
  rise_db: number | null;
  levels: { chain: string; average_dbm: number; peak_dbm: number }[];
  spurs: DesenseSpur[];
}

export interface DesenseOrder {
  config: DesenseConfig;
  limit: string;
  margin_db: number;
  idleBaseline: boolean;
}

export interface DesenseWhole extends DesenseProgress {
  order: DesenseOrder | null;
  channels: DesenseRow[];
  /** Known at the end; a message tells each before. */
  leftOut: { band: string; channel: number; reason: string }[];
  messages: string[];
}

export interface DesenseGraph {
  band: string;
  channel: number;
  centre_mhz: number;
  bandwidth_mhz: number;
  levels: { chain: string; average: (number | null)[]; maximum: (number | null)[] }[];
}

export const configKeys = [
  'bw',
  'rbw',
  'chainMode',
  'iterations',
  'bitcfg',
  'disableBit',
  'LBChannels',
  'HBChannels',
  'UHBChannels',
] as const;
/** Values as the configuration's file writes them; channels without their brackets. */
export type DesenseConfig = Record<(typeof configKeys)[number], string>;

/** The key of a band's channels. */
export const channelKeys: Record<string, (typeof configKeys)[number]> = {
  '2.4': 'LBChannels',
  '5.2': 'HBChannels',
  '6-7': 'UHBChannels',
};

export function isActive(phase: DesensePhase | undefined): boolean {
  return phase !== undefined && phase !== 'none' && phase !== 'ended';
}

/** The values of a configuration file as far as it has them: the server checks them. */
export function configFromText(text: string): Partial<DesenseConfig> {
  const config: Partial<DesenseConfig> = {};
  for (const line of text.split(/\r?\n/)) {
    const comma = line.indexOf(',');
    const key = configKeys.find((name) => name === line.slice(0, comma));
    if (key) config[key] = line.slice(comma + 1).replace(/^\[(.*)\]$/, '$1');
  }
  return config;
}

export function configText(config: DesenseConfig): string {
  return configKeys
    .map((key) => `${key},${key.endsWith('Channels') ? `[${config[key]}]` : config[key]}\n`)
    .join('');
}

/** Every channel that the adapter has in a band at a width, "1;2;3". */
export function allChannels(supported: BandChannels[], band: string, bandwidth: string): string {
  const names = band === '5.2' ? ['5.2', '5'] : [band];
  const widths = supported.find((one) => names.includes(one.band))?.bandwidths ?? [];
  const channels = widths.find((one) => one.bandwidth === bandwidth)?.channels ?? [];
  return channels.map((channel) => channel.value).filter((value) => Number(value) > 0).join(';');
}

/** "1;6, 11" and the like as the file writes it. */
export function channelList(text: string): string {
  return text.split(/[;,\s]+/).filter(Boolean).join(';');
}

/** Of the worse chain; null before it is measured. */
export function worst(row: DesenseRow, figure: 'average_dbm' | 'peak_dbm'): number | null {
  return row.levels.length ? Math.max(...row.levels.map((level) => level[figure])) : null;
}

/** "40 s", "2 min 5 s". */
export function duration(seconds: number): string {
  const whole = Math.max(0, Math.round(seconds));
  if (whole < 60) return `${whole} s`;
  if (whole < 3600) return `${Math.floor(whole / 60)} min ${whole % 60} s`;
  return `${Math.floor(whole / 3600)} h ${Math.floor((whole % 3600) / 60)} min`;
}

/** Where a test stands, in one line. */
export function progressText(test: DesenseProgress): string {
  const parts = [test.what];
  if (isActive(test.phase) && test.total > 0) {
    parts.push(`${test.done} of ${test.total} sweeps`);
    if (test.left_s !== null) parts.push(`${duration(test.left_s)} left`);
  }
  return parts.join(' · ');
}

/** How far a test is, 0 to 1, over all its passes. */
export function progressShare(test: DesenseProgress): number {
  if (test.phase === 'ended') return 1;
  return test.total > 0 ? test.done / test.total : 0;
}
