// Markers: where they stand and what they read. A marker stands on the centre of a bin of one trace of one chain.
import { Axis, bandPower, binMhz, findPeaks, nearestBin, noiseDensity } from './axis';
import { fixed } from './text';
import { TraceKind, TraceSet } from './traces';

export const markerKinds = ['normal', 'delta', 'noise', 'channel'] as const;
export type MarkerKind = (typeof markerKinds)[number];

export const markerTitles: Record<MarkerKind, string> = {
  normal: 'Normal',
  delta: 'Delta',
  noise: 'Noise density',
  channel: 'Channel power',
};

export interface Marker {
  id: number;
  kind: MarkerKind;
  trace: TraceKind;
  chain: number;
  mhz: number;
}

export interface Reading {
  name: string;
  mhz: number;
  /** Level at the marker's bin, in dBm in one RBW (dB on the difference trace); NaN while the trace doesn't exist. */
  level: number;
  /** What the marker's kind says, with unit and bandwidth. */
  text: string;
}

/** A level with two decimals, or "no data" for what doesn't exist. */
export function levelText(level: number, unit: string): string {
  return Number.isFinite(level) ? `${fixed(level, 2)} ${unit}` : 'no data';
}

export class MarkerSet {
  markers: Marker[] = [];
  selected = 0;

  add(kind: MarkerKind, trace: TraceKind, chain: number, mhz: number): Marker {
    let id = 1;
    while (this.markers.some((marker) => marker.id === id)) ++id;
    const marker = { id, kind, trace, chain, mhz };
    this.markers.push(marker);
    this.selected = id;
    return marker;
  }

  remove(id: number): void {
    this.markers = this.markers.filter((marker) => marker.id !== id);
    if (this.selected === id) this.selected = this.markers.at(-1)?.id ?? 0;
  }

  current(): Marker | undefined {
    return this.markers.find((marker) => marker.id === this.selected);
  }

  /** A delta marker is told against the nearest marker before it that isn't one. */
  base(marker: Marker): Marker | undefined {
    const before = this.markers.slice(0, this.markers.indexOf(marker)).reverse();
    return before.find((other) => other.kind !== 'delta');
  }

  read(marker: Marker, traces: TraceSet): Reading {
    const name = (marker.kind === 'delta' ? 'D' : '') + marker.id;
    const levels = traces.levels(marker.trace, marker.chain);
    const axis = traces.axis;
    if (!levels || !axis.bins || !isInside(axis, marker.mhz))
      return { name, mhz: marker.mhz, level: NaN, text: 'no data' };
    const bin = nearestBin(axis, marker.mhz);
    const level = levels[bin];
    const unit = marker.trace === 'difference' ? 'dB' : `dBm/${axis.rbw_khz} kHz`;
    return { name, mhz: binMhz(axis, bin), level, text: this.text(marker, traces, levels, bin, unit) };
  }

  private text(marker: Marker, traces: TraceSet, levels: ArrayLike<number>, bin: number, unit: string): string {
    const axis = traces.axis;
    if (marker.kind === 'noise') return levelText(noiseDensity(levels, axis, bin), 'dBm/Hz');
    if (marker.kind === 'channel') {
      const width = traces.tuning?.bandwidth_mhz ?? 0;
      const centre = binMhz(axis, bin);
      const power = bandPower(levels, axis, { low: centre - width / 2, high: centre + width / 2 });
      return levelText(power, `dBm/${width} MHz`);
    }
    const base = marker.kind === 'delta' ? this.base(marker) : undefined;
    if (!base) return levelText(levels[bin], unit);
    const reading = this.read(base, traces);
    const mhz = binMhz(axis, bin) - reading.mhz;
    return `${mhz >= 0 ? '+' : ''}${mhz.toFixed(4)} MHz, ${levelText(levels[bin] - reading.level, 'dB')}`;
  }

  /** Moves the selected marker to a peak: the highest, or the next one to a side or down in level. */
  toPeak(where: 'highest' | 'left' | 'right' | 'lower', traces: TraceSet): boolean {
    const marker = this.current();
    const levels = marker && traces.levels(marker.trace, marker.chain);
    if (!marker || !levels) return false;
    const peaks = findPeaks(levels, 6, 1000);
    const here = nearestBin(traces.axis, marker.mhz);
    const left = peaks.filter((peak) => peak.bin < here).sort((a, b) => b.bin - a.bin);
    const right = peaks.filter((peak) => peak.bin > here).sort((a, b) => a.bin - b.bin);
    const lower = peaks.filter((peak) => peak.level < levels[here] || (peak.level === levels[here] && peak.bin > here));
    const target = { highest: peaks[0], left: left[0], right: right[0], lower: lower[0] }[where];
    if (!target) return false;
    marker.mhz = binMhz(traces.axis, target.bin);
    return true;
  }

  /** Moves the selected marker by whole bins. */
  step(bins: number, axis: Axis): void {
    const marker = this.current();
    if (!marker || !axis.bins) return;
    const bin = Math.min(axis.bins - 1, Math.max(0, nearestBin(axis, marker.mhz) + bins));
    marker.mhz = binMhz(axis, bin);
  }
}

function isInside(axis: Axis, mhz: number): boolean {
  const half = axis.rbw_khz / 2000;
  return mhz >= binMhz(axis, 0) - half && mhz <= binMhz(axis, axis.bins - 1) + half;
}
