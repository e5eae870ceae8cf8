// What the server sends, as the page uses it: one object a message, and the frames made of them.

import type { DesensePhase } from './desense';

/** One object of the stream. `data` is what its `type` says. */
export interface Message {
  seq: number;
  utc: string;
  type: string;
  data: unknown;
  /** Only with "Host Frame": sweeps that the server didn't send, because this page hadn't drawn the ones before. */
  dropped?: number;
}

export type Verdict = 'PASS' | 'MARGIN' | 'FAIL' | 'INVALID' | '';

export interface ChainVerdict {
  chain: string;
  power_dbm: number | null;
  limit_dbm: number | null;
  margin_db: number | null;
  verdict: Verdict;
  reason: string;
}

/** What decides whether two sweeps may be compared bin by bin. */
export interface Tuning {
  band: string;
  channel: number;
  bandwidth_mhz: number;
  centre_mhz: number;
  chain: string;
  rbw_khz: number;
}

/** What one sweep was measured with. It ends the sweep's messages. */
export interface FrameFacts extends Tuning {
  maxHold: boolean;
  average: boolean;
  averageCount: number;
  averageTarget: number;
  sweeps: number;
  holdSince: string;
  sweepsPerSecond: number;
  dropped: number;
  overloaded: string[];
  trouble: string;
  /** Stored capture that the sweep is of; empty for one of the adapter. */
  source: string;
  verdicts: ChainVerdict[];
}

export interface Histogram {
  both: number[];
  i: number[];
  q: number[];
  lowest: number;
  highest: number;
}

export interface Peak {
  frequency: number;
  power: number;
}

/** One sweep with everything that the view subscribed to. Arrays are dBm in one RBW, lowest frequency first. */
export interface Frame {
  seq: number;
  utc: string;
  facts: FrameFacts;
  samples: number;
  live: Float32Array[];
  average: Float32Array[];
  maxHold: Float32Array[];
  powers: Map<string, number>;
  iq: { i: Float32Array; q: Float32Array }[];
  histograms: Histogram[];
}

export interface Adapter {
  description: string;
  mac: string;
  air: string;
  antennas: number;
}

export interface DesenseState {
  phase: DesensePhase;
  name: string;
}

export interface RunState {
  mode: 'run' | 'hold' | 'single' | 'scan';
  line: string;
  waiting: number;
  resting: boolean;
}

export interface HostState {
  version: string;
  adapter: Adapter;
  settings: Record<string, string>;
  run: RunState;
  desense: DesenseState;
  trouble: string;
  /** `line`: MHz and dBm in one RBW of each point; empty for a limit on the channel's power. */
  limits: { text: string; margin_db: number; line: [number, number][] } | null;
}

export interface LineAnswer {
  line: string;
  origin: string;
  exitCode: number;
  output: string;
  error: string;
}

export interface ChannelRow {
  band: string;
  bandwidth: string;
  channel: number;
  centre_mhz: number;
  powerA: number | null;
  powerB: number | null;
  utc: string;
  verdict: Verdict;
  limit_dbm: number | null;
}

export interface BandChannels {
  band: string;
  bandwidths: { bandwidth: string; channels: { value: string; frequency: string }[] }[];
}

/** null where a bin has no power at all, or a gain file made no number of it. */
type Level = number | null;

interface SpectrumObject {
  chain: string;
  data: Level[];
  averageData?: Level[];
  maxData?: Level[];
}

/** Puts the messages of one sweep together. A sweep's last message is "Host Frame". */
export class FrameAssembler {
  private waiting: Message[] = [];

  /** The frame that the message completes; other messages than a frame's give undefined and aren't kept. */
  take(message: Message): Frame | undefined {
    if (frameTypes.has(message.type)) this.waiting.push(message);
    if (message.type === 'Trigger Response') this.waiting = [message];
    if (message.type !== 'Host Frame') return undefined;
    const parts = this.waiting;
    this.waiting = [];
    return assemble(parts, message);
  }
}

export const frameTypes: ReadonlySet<string> = new Set([
  'Trigger Response',
  'Power Per Chain',
  'Spectrum Data',
  'IQ Amplitude Data',
  'Histogram Data',
]);

function assemble(parts: Message[], end: Message): Frame {
  const frame: Frame = {
    seq: end.seq,
    utc: end.utc,
    facts: { ...(end.data as FrameFacts), dropped: end.dropped ?? 0 },
    samples: 0,
    live: [],
    average: [],
    maxHold: [],
    powers: new Map(),
    iq: [],
    histograms: [],
  };
  for (const part of parts) addPart(frame, part);
  return frame;
}

function levels(data: Level[]): Float32Array {
  return Float32Array.from(data, (level) => level ?? -Infinity);
}

function addPart(frame: Frame, part: Message): void {
  if (part.data === null) return; // not JSON
  switch (part.type) {
    case 'Trigger Response':
      frame.samples = (part.data as { numOfSamples: number }).numOfSamples;
      break;
    case 'Power Per Chain': {
      const { chain, power } = part.data as { chain: string; power: string };
      frame.powers.set(chain, Number(power));
      break;
    }
    case 'Spectrum Data':
      for (const chain of part.data as SpectrumObject[]) {
        frame.live.push(levels(chain.data));
        if (chain.averageData) frame.average.push(levels(chain.averageData));
        if (chain.maxData) frame.maxHold.push(levels(chain.maxData));
      }
      break;
    case 'IQ Amplitude Data':
      for (const chain of part.data as { IData: number[]; QData: number[] }[])
        frame.iq.push({ i: Float32Array.from(chain.IData), q: Float32Array.from(chain.QData) });
      break;
    case 'Histogram Data':
      for (const chain of part.data as { IQData: number[]; IData: number[]; QData: number[]; IQMinMax: number[] }[])
        frame.histograms.push({
          both: chain.IQData,
          i: chain.IData,
          q: chain.QData,
          lowest: chain.IQMinMax[0] ?? NaN,
          highest: chain.IQMinMax[1] ?? NaN,
        });
      break;
  }
}

/** Names of the chains behind the arrays of a frame, in their order. */
export function chainNames(selection: string): string[] {
  return selection === 'AB' ? ['A', 'B'] : [selection];
}
