// The axis of frequency of one sweep, and what is read off it. All readings come from bins, never from pixels.

export interface Axis {
  centre_mhz: number;
  rbw_khz: number;
  bins: number;
}

export interface Range {
  low: number;
  high: number;
}

/** Centre of a bin in MHz. Bin bins/2 lies at the channel's centre. */
export function binMhz(axis: Axis, bin: number): number {
  return axis.centre_mhz + ((bin - Math.floor(axis.bins / 2)) * axis.rbw_khz) / 1000;
}

/** The bin whose centre is nearest, kept inside the sweep. */
export function nearestBin(axis: Axis, mhz: number): number {
  const bin = Math.round(((mhz - axis.centre_mhz) * 1000) / axis.rbw_khz) + Math.floor(axis.bins / 2);
  return Math.min(axis.bins - 1, Math.max(0, bin));
}

/** From the lower edge of the lowest bin to the upper edge of the highest. */
export function fullRange(axis: Axis): Range {
  const half = axis.rbw_khz / 2000;
  return { low: binMhz(axis, 0) - half, high: binMhz(axis, axis.bins - 1) + half };
}

/** Bins whose centre lies in the range: first, and one behind the last. */
export function binsInside(axis: Axis, range: Range): { first: number; end: number } {
  const middle = Math.floor(axis.bins / 2);
  const step = axis.rbw_khz / 1000;
  const first = Math.ceil((range.low - axis.centre_mhz) / step - 1e-9) + middle;
  const last = Math.floor((range.high - axis.centre_mhz) / step + 1e-9) + middle;
  return { first: Math.max(0, first), end: Math.max(0, Math.min(axis.bins, last + 1)) };
}

/**
 * Lowest and highest level of the bins under each pixel column, in dBm: out[2 c] and out[2 c + 1]. A column without a
 * bin gets NaN. Bins are given to the column that holds their centre.
 */
export function columnsMinMax(trace: ArrayLike<number>, axis: Axis, range: Range, columns: number, out: Float64Array) {
  out.fill(NaN, 0, 2 * columns);
  const { first, end } = binsInside(axis, range);
  const scale = columns / (range.high - range.low);
  for (let bin = first; bin < end; ++bin) {
    const column = Math.min(columns - 1, Math.floor((binMhz(axis, bin) - range.low) * scale));
    const level = trace[bin];
    if (!(out[2 * column] <= level)) out[2 * column] = level;
    if (!(out[2 * column + 1] >= level)) out[2 * column + 1] = level;
  }
}

/** Sum of the bins' powers between two frequencies, in dBm; -Infinity without a bin. */
export function bandPower(trace: ArrayLike<number>, axis: Axis, range: Range): number {
  const { first, end } = binsInside(axis, range);
  let sum = 0;
  for (let bin = first; bin < end; ++bin) sum += 10 ** (trace[bin] / 10);
  return 10 * Math.log10(sum);
}

/**
 * Noise density at a bin in dBm/Hz: mean power of the bins within `reach` bins, over the width of a bin. A bin of the
 * unwindowed transform has a noise bandwidth of one RBW, so nothing else is corrected.
 */
export function noiseDensity(trace: ArrayLike<number>, axis: Axis, bin: number, reach = 5): number {
  const first = Math.max(0, bin - reach);
  const last = Math.min(axis.bins - 1, bin + reach);
  let sum = 0;
  for (let k = first; k <= last; ++k) sum += 10 ** (trace[k] / 10);
  return 10 * Math.log10(sum / (last - first + 1)) - 10 * Math.log10(axis.rbw_khz * 1000);
}

/** Median level: the floor that peaks are told against. */
export function medianLevel(trace: ArrayLike<number>): number {
  const sorted = Float64Array.from(trace).sort();
  return sorted.length ? sorted[Math.floor(sorted.length / 2)] : NaN;
}

export interface FoundPeak {
  bin: number;
  level: number;
  overFloor: number;
}

/**
 * Local maxima that rise by `excursion` dB above the valleys on both sides and above the floor, the strongest first.
 */
export function findPeaks(trace: ArrayLike<number>, excursion = 6, most = 10): FoundPeak[] {
  const floor = medianLevel(trace);
  const found: FoundPeak[] = [];
  let valley = trace.length ? trace[0] : NaN;
  let best = -1;
  for (let bin = 0; bin < trace.length; ++bin) {
    const level = trace[bin];
    if (best >= 0 && trace[best] - level >= excursion) {
      found.push({ bin: best, level: trace[best], overFloor: trace[best] - floor });
      best = -1;
      valley = level;
    } else if (level - valley >= excursion && (best < 0 || level > trace[best])) {
      best = bin;
    }
    if (level < valley) valley = level;
  }
  if (best >= 0) found.push({ bin: best, level: trace[best], overFloor: trace[best] - floor });
  return found
    .filter((peak) => peak.overFloor >= excursion)
    .sort((a, b) => b.level - a.level)
    .slice(0, most);
}

/** Tick values: multiples of 1, 2 or 5 times a power of ten inside the range, `most` at the most. */
export function ticks(range: Range, most: number): number[] {
  const rough = (range.high - range.low) / Math.max(1, most);
  if (!(rough > 0)) return [];
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((candidate) => candidate >= rough) ?? 10 * power;
  const values: number[] = [];
  for (let k = Math.ceil(range.low / step - 1e-9); k * step <= range.high + step * 1e-9; ++k) values.push(k * step);
  return values;
}
