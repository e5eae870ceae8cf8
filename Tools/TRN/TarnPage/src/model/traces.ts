// The traces of the spectrum: what the sweeps say, and what the person stored to compare with.
import { Axis, binMhz, nearestBin } from './axis';
import { chainNames, Frame, FrameFacts, Tuning } from './protocol';

export const traceKinds = ['live', 'maxHold', 'average', 'reference', 'difference', 'minHold'] as const;
export type TraceKind = (typeof traceKinds)[number];

export const traceTitles: Record<TraceKind, string> = {
  live: 'Live',
  maxHold: 'Max hold',
  average: 'Average',
  reference: 'Reference',
  difference: 'Difference',
  minHold: 'Min hold',
};

export interface StoredTrace {
  name: string;
  source: TraceKind;
  utc: string;
  tuning: Tuning;
  axis: Axis;
  chains: number[][];
}

export function tuningOf(facts: FrameFacts): Tuning {
  const { band, channel, bandwidth_mhz, centre_mhz, chain, rbw_khz } = facts;
  return { band, channel, bandwidth_mhz, centre_mhz, chain, rbw_khz };
}

/** What differs, in words: "channel 1 instead of 6"; empty when the sweeps can be compared. */
export function tuningDifference(stored: Tuning, now: Tuning): string {
  const names: [keyof Tuning, string, string][] = [
    ['band', 'band', ' GHz'],
    ['channel', 'channel', ''],
    ['bandwidth_mhz', 'width', ' MHz'],
    ['chain', 'chain', ''],
    ['rbw_khz', 'RBW', ' kHz'],
  ];
  return names
    .filter(([key]) => stored[key] !== now[key])
    .map(([key, name, unit]) => `${name} ${stored[key]}${unit} instead of ${now[key]}${unit}`)
    .join(', ');
}

/** Levels of another axis at the bins of this one; NaN where the other has none. */
export function resample(levels: ArrayLike<number>, from: Axis, to: Axis): Float32Array {
  const out = new Float32Array(to.bins).fill(NaN);
  for (let bin = 0; bin < to.bins; ++bin) {
    const mhz = binMhz(to, bin);
    const source = nearestBin(from, mhz);
    if (Math.abs(binMhz(from, source) - mhz) <= from.rbw_khz / 2000 + 1e-9) out[bin] = levels[source];
  }
  return out;
}

/** The traces of the last sweep and what was stored before it. */
export class TraceSet {
  axis: Axis = { centre_mhz: 0, rbw_khz: 1, bins: 0 };
  tuning: Tuning | undefined;
  frame: Frame | undefined;
  reference: StoredTrace | undefined;
  /** Lowest levels since `minSince`, of the sweeps that this page has seen. */
  private minimum: Float32Array[] = [];
  minSince = '';
  /** Counts up whenever the tuning changed, so that whoever shows old sweeps starts anew. */
  epoch = 0;
  private cache = new Map<string, Float32Array>();

  /** @returns whether the tuning is another one than that of the sweep before */
  take(frame: Frame): boolean {
    const tuning = tuningOf(frame.facts);
    const bins = frame.live[0]?.length ?? 0;
    const isNew = this.tuning === undefined || tuningDifference(this.tuning, tuning) !== '' || this.axis.bins !== bins;
    if (isNew) {
      this.tuning = tuning;
      this.axis = { centre_mhz: tuning.centre_mhz, rbw_khz: tuning.rbw_khz, bins };
      this.clearMinimum();
      ++this.epoch;
    }
    this.frame = frame;
    this.cache.clear();
    this.addMinimum(frame);
    return isNew;
  }

  chainCount(): number {
    return this.frame?.live.length ?? 0;
  }

  chains(): string[] {
    return this.tuning ? chainNames(this.tuning.chain) : [];
  }

  /** Levels of a trace, or undefined while it doesn't exist. The difference is in dB, all others in dBm in one RBW. */
  levels(kind: TraceKind, chain: number): ArrayLike<number> | undefined {
    switch (kind) {
      case 'live':
        return this.frame?.live[chain];
      case 'maxHold':
        return this.frame?.maxHold[chain];
      case 'average':
        return this.frame?.average[chain];
      case 'minHold':
        return this.minimum[chain];
      case 'reference':
        return this.derived(`reference${chain}`, () => this.resampledReference(chain));
      case 'difference':
        return this.derived(`difference${chain}`, () => this.difference(chain));
    }
  }

  /** Why the reference can't be trusted against the present sweeps; empty when it can. */
  referenceMismatch(): string {
    return this.reference && this.tuning ? tuningDifference(this.reference.tuning, this.tuning) : '';
  }

  /** Keeps a copy of a trace as the reference. False when there is nothing to keep. */
  store(kind: TraceKind, name: string): boolean {
    const chains: number[][] = [];
    for (let chain = 0; chain < this.chainCount(); ++chain) {
      const levels = this.levels(kind, chain);
      // finite, as the view is kept as JSON, where no power at all would come back as 0 dBm
      if (levels) chains.push(Array.from(levels, (level) => Math.round(Math.max(level, -1000) * 1000) / 1000));
    }
    if (!chains.length || !this.tuning || !this.frame) return false;
    const source = kind === 'reference' || kind === 'difference' ? 'live' : kind;
    this.reference = { name, source, utc: this.frame.utc, tuning: this.tuning, axis: { ...this.axis }, chains };
    this.cache.clear();
    return true;
  }

  clearReference(): void {
    this.reference = undefined;
    this.cache.clear();
  }

  clearMinimum(): void {
    this.minimum = [];
    this.minSince = '';
  }

  private derived(key: string, make: () => Float32Array | undefined): Float32Array | undefined {
    const kept = this.cache.get(key);
    if (kept) return kept;
    const made = make();
    if (made) this.cache.set(key, made);
    return made;
  }

  private resampledReference(chain: number): Float32Array | undefined {
    const levels = this.reference?.chains[chain];
    return levels && this.axis.bins ? resample(levels, this.reference!.axis, this.axis) : undefined;
  }

  private difference(chain: number): Float32Array | undefined {
    const reference = this.levels('reference', chain);
    const now = this.reference && this.levels(this.reference.source, chain);
    return reference && now ? Float32Array.from(now, (level, bin) => level - reference[bin]) : undefined;
  }

  private addMinimum(frame: Frame): void {
    if (this.minimum.length !== frame.live.length) {
      this.minimum = frame.live.map((levels) => Float32Array.from(levels));
      this.minSince = frame.utc;
      return;
    }
    frame.live.forEach((levels, chain) => {
      const lowest = this.minimum[chain];
      for (let bin = 0; bin < levels.length; ++bin) if (levels[bin] < lowest[bin]) lowest[bin] = levels[bin];
    });
  }
}
