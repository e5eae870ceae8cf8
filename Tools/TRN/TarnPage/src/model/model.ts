// Everything that the page knows, and who wants to hear of it. Drawing reads it; nothing here touches the document.
import { fullRange, Range } from './axis';
import { DesenseProgress } from './desense';
import { KeyRow } from './keys';
import { MarkerSet } from './markers';
import { BandChannels, ChannelRow, Frame, HostState, LineAnswer, Message } from './protocol';
import { LevelRing } from './ring';
import { TraceKind, traceKinds, TraceSet } from './traces';
import { ViewState } from './view';

export type Topic =
  'frame' | 'tuning' | 'state' | 'view' | 'markers' | 'messages' | 'channels' | 'connection' | 'vocabulary' | 'desense';

export interface LogEntry {
  utc: string;
  kind: 'line' | 'answer' | 'error' | 'note';
  text: string;
}

export interface Connection {
  state: 'connecting' | 'connected' | 'lost';
  /** When the next attempt comes, in milliseconds of the page's clock. */
  retryAt_ms: number;
}

export interface Progress {
  what: string;
  done: number;
  total: number;
}

const waterfallRows = 480;
const logLength = 200;
/** Without a sweep for this long, running values count as old. */
const staleAfter_ms = 2500;

export class Model {
  readonly traces = new TraceSet();
  readonly markers = new MarkerSet();
  host: HostState | undefined;
  channels: ChannelRow[] = [];
  supported: BandChannels[] = [];
  chains: string[] = ['A', 'B', 'AB'];
  keys: KeyRow[] = [];
  log: LogEntry[] = [];
  /** Newest last: what the page itself sent, for a script. */
  sent: string[] = [];
  rings: LevelRing[] = [];
  connection: Connection = { state: 'connecting', retryAt_ms: 0 };
  progress: Progress | undefined;
  desense: DesenseProgress | undefined;
  lastFrame_ms = 0;
  /** The newest error, until the person has put it away. */
  alarm = '';
  cursor_mhz = NaN;

  private listeners = new Map<Topic, (() => void)[]>();

  constructor(readonly view: ViewState) {
    this.markers.markers = view.markers;
    this.markers.selected = view.selectedMarker;
    if (view.stored) this.traces.reference = view.stored;
  }

  on(topics: Topic[], listener: () => void): void {
    for (const topic of topics) this.listeners.set(topic, [...(this.listeners.get(topic) ?? []), listener]);
  }

  tell(topic: Topic): void {
    for (const listener of this.listeners.get(topic) ?? []) listener();
  }

  takeFrame(frame: Frame, now_ms: number): void {
    if (!frame.live.length) return;
    const isFirst = this.traces.tuning === undefined;
    const isAgain = this.traces.frame?.seq === frame.seq; // of a held sweep, with what another view needs
    const isNew = this.traces.take(frame);
    this.lastFrame_ms = now_ms;
    if (isNew) {
      this.rings = frame.live.map((levels) => new LevelRing(levels.length, waterfallRows));
      if (!isFirst) {
        this.view.zoom = null;
        this.note('note', 'The tuning changed: traces and waterfall start anew.');
      } else if (this.view.zoom && !overlaps(this.view.zoom, fullRange(this.traces.axis))) {
        this.view.zoom = null;
      }
      this.tell('tuning');
    }
    const time = new Date(frame.utc).getTime();
    if (!isAgain) frame.live.forEach((levels, chain) => this.rings[chain]?.push(levels, time));
    this.tell('frame');
  }

  /** A message that belongs to no sweep. */
  takeMessage(message: Message): void {
    switch (message.type) {
      case 'Host State':
        this.host = message.data as HostState;
        if (this.host.run.mode !== 'scan') this.progress = undefined;
        this.tell('state');
        break;
      case 'Host Channels':
        this.channels = message.data as ChannelRow[];
        this.tell('channels');
        break;
      case 'Host Progress':
        this.progress = message.data as Progress;
        this.tell('state');
        break;
      case 'Host Desense':
        this.desense = message.data as DesenseProgress;
        this.tell('desense');
        break;
      case 'Host Line':
        this.takeLine(message.data as LineAnswer);
        break;
      case 'Host Refusal':
        this.note('error', String((message.data as { text: string }).text));
        break;
      case 'Supported Channels Data':
        this.supported = message.data as BandChannels[];
        this.tell('vocabulary');
        break;
      case 'Supported Chains Data':
        this.chains = (message.data as { value: string }[]).map((chain) => chain.value);
        this.tell('vocabulary');
        break;
      default:
        this.note('answer', `${message.type}: ${JSON.stringify(message.data).slice(0, 400)}`);
    }
  }

  note(kind: LogEntry['kind'], text: string): void {
    this.log.push({ utc: new Date().toISOString(), kind, text });
    if (this.log.length > logLength) this.log.shift();
    if (kind === 'error') this.alarm = text;
    this.tell('messages');
  }

  private takeLine(answer: LineAnswer): void {
    this.note('line', answer.line);
    if (answer.exitCode !== 0) this.note('error', answer.error.trim() || 'the line failed');
    else if (answer.output.trim()) this.note('answer', answer.output.trim().slice(0, 400));
  }

  /** The frequencies that the plots show. */
  zoom(): Range {
    return this.view.zoom ?? fullRange(this.traces.axis);
  }

  /** Why the values on the screen are not those of now; empty when they are. */
  staleReason(now_ms: number): string {
    if (this.connection.state !== 'connected') return 'connection lost';
    if (!this.lastFrame_ms) return 'no sweep yet';
    const mode = this.host?.run.mode;
    if (mode === 'hold') return 'held';
    return now_ms - this.lastFrame_ms > staleAfter_ms ? 'no new sweep' : '';
  }

  /** Shown traces that exist, the most telling first: what readouts and peaks are taken from. */
  mainTrace(): TraceKind {
    const order: TraceKind[] = ['average', 'maxHold', 'live'];
    return order.find((kind) => this.view.shown[kind] && this.traces.levels(kind, 0)) ?? 'live';
  }

  shownTraces(): TraceKind[] {
    return traceKinds.filter((kind) => this.view.shown[kind]);
  }

  setZoom(range: Range | null): void {
    const full = fullRange(this.traces.axis);
    if (range) {
      const least = (4 * this.traces.axis.rbw_khz) / 1000;
      const width = Math.min(full.high - full.low, Math.max(least, range.high - range.low));
      const low = Math.min(full.high - width, Math.max(full.low, (range.low + range.high - width) / 2));
      range = width >= full.high - full.low ? null : { low, high: low + width };
    }
    this.view.zoom = range;
    this.tell('view');
  }

  /** Zooms by a factor about a frequency; a factor above 1 shows less. */
  zoomBy(factor: number, about_mhz: number): void {
    const { low, high } = this.zoom();
    const about = Number.isFinite(about_mhz) ? about_mhz : (low + high) / 2;
    this.setZoom({ low: about - (about - low) / factor, high: about + (high - about) / factor });
  }
}

function overlaps(a: Range, b: Range): boolean {
  return a.low < b.high && b.low < a.high;
}
