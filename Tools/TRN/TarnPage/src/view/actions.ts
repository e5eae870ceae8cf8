// What the controls do: each sends a line or an order to the server, and says on the page what it sent.
import { clearHoldsLine, lineOf, quoteToken } from '../model/keys';
import { Model } from '../model/model';
import { fileKind, isFileName } from '../model/text';
import { fitLevels } from '../model/view';
import { api } from '../net/api';

export class Actions {
  constructor(private model: Model) {}

  /** Sends a line; its answer comes back over the stream to every page. A refusal is shown here. */
  async line(line: string): Promise<boolean> {
    if (!line.trim()) return false;
    this.model.sent.push(line);
    if (this.model.sent.length > 500) this.model.sent.shift();
    this.model.tell('messages');
    try {
      if ((await api.line(line)).exitCode === 0) return true;
      this.showDevice();
    } catch (error) {
      this.refused(error);
    }
    return false;
  }

  /** "-key value" pairs as one line. */
  set(...pairs: [string, string?][]): Promise<boolean> {
    return this.line(lineOf(pairs));
  }

  async run(mode: 'run' | 'hold' | 'single' | 'scan', options: object = {}): Promise<void> {
    await this.guarded(() => api.run(mode, options));
  }

  toggleRun(): void {
    void this.run(this.model.host?.run.mode === 'hold' ? 'run' : 'hold');
  }

  clearHolds(): void {
    this.model.traces.clearMinimum();
    void this.line(clearHoldsLine(this.model.host?.settings ?? {}));
  }

  /** Reference level and scale so that the shown levels fill the plot. */
  autoLevels(): void {
    let lowest = Infinity;
    let highest = -Infinity;
    for (const kind of this.model.shownTraces()) {
      if (kind === 'difference') continue;
      for (let chain = 0; chain < this.model.traces.chainCount(); ++chain) {
        for (const level of Array.from(this.model.traces.levels(kind, chain) ?? [])) {
          if (level < lowest && level > -400) lowest = level;
          if (level > highest) highest = level;
        }
      }
    }
    if (!(highest >= lowest)) return;
    Object.assign(this.model.view, fitLevels(lowest, highest));
    this.model.tell('view');
  }

  addMarker(kind: 'normal' | 'delta' | 'noise' | 'channel'): void {
    const { model } = this;
    if (!model.traces.axis.bins) return;
    const mhz = Number.isFinite(model.cursor_mhz) ? model.cursor_mhz : model.traces.axis.centre_mhz;
    const wasAimed = Number.isFinite(model.cursor_mhz);
    model.markers.add(kind, model.mainTrace(), 0, mhz);
    if (kind === 'delta' && !model.markers.base(model.markers.current()!)) model.markers.current()!.kind = 'normal';
    if (kind === 'channel') model.markers.current()!.mhz = model.traces.axis.centre_mhz;
    else if (!wasAimed) model.markers.toPeak('highest', model.traces);
    model.markers.step(0, model.traces.axis);
    model.tell('markers');
  }

  /** Moves the selected marker to a peak, making one first when there is none. */
  peak(where: 'highest' | 'left' | 'right' | 'lower'): void {
    if (!this.model.markers.current()) this.addMarker('normal');
    else if (!this.model.markers.toPeak(where, this.model.traces)) this.model.note('note', 'No further peak that way.');
    this.model.tell('markers');
  }

  /** Puts a file into the data folder; the name that it has there, or nothing. */
  async upload(file: File): Promise<string> {
    const name = file.name.replaceAll(/[^A-Za-z0-9._-]/g, '_').replace(/^[^A-Za-z0-9]+/, '');
    if (!isFileName(name)) {
      this.model.note('error', `'${file.name}' has no name that can be kept`);
      return '';
    }
    const isThere = await this.guarded(() => api.upload(name, file));
    if (isThere) this.model.note('note', `${name} is in the data folder.`);
    return isThere ? name : '';
  }

  /** Keeps a dropped file and shows what is in it. @returns whether it is on the screen now */
  async look(file: File): Promise<boolean> {
    const name = await this.upload(file);
    const kind = name && fileKind(name, await file.slice(0, 200).text());
    if (kind === 'snapshot') return this.load(name);
    if (kind === 'capture') return this.analyse(name);
    if (kind === 'capture without tuning')
      this.model.note(
        'error',
        `${name} holds samples, but its name does not tell the tuning: ` +
          'name it like BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt and drop it again.',
      );
    return false;
  }

  async load(name: string): Promise<boolean> {
    await this.run('hold');
    return (await this.line(`-load_all ${quoteToken(name)}`)) && this.line('-update_spectrum');
  }

  /** Has the server analyse a capture of the data folder. */
  async analyse(name: string): Promise<boolean> {
    const isDone = await this.guarded(() => api.capture(name));
    if (isDone) this.model.note('note', `${name} is analysed and held: press Run for live sweeps.`);
    return isDone;
  }

  /** False when the work was refused, which is told. */
  async guarded(work: () => Promise<unknown>): Promise<boolean> {
    try {
      await work();
      return true;
    } catch (error) {
      this.refused(error);
      return false;
    }
  }

  private refused(error: unknown): void {
    this.model.note('error', error instanceof Error ? error.message : String(error));
    this.showDevice();
  }

  /** Takes back from the controls what the device didn't take. */
  private showDevice(): void {
    this.model.tell('state');
  }
}
