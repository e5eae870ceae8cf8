// The page's side of the stream: frames and messages as events, and which types the page wants.
import type { Frame, Message } from '../model/protocol';

export type ToWorker =
  | { kind: 'open'; address: string; types: string[] }
  | { kind: 'subscribe'; types: string[] }
  | { kind: 'drawn'; seq: number };

export type FromWorker =
  | { kind: 'connected' }
  | { kind: 'lost'; retry_ms: number }
  | { kind: 'garbled'; text: string }
  | { kind: 'message'; message: Message }
  | { kind: 'frame'; frame: Frame };

export interface StreamEvents {
  connected(): void;
  lost(retry_ms: number): void;
  message(message: Message): void;
  frame(frame: Frame): void;
}

export class Stream {
  private worker: Worker;

  constructor(types: string[], events: StreamEvents) {
    this.worker = new Worker('/stream.worker.js', { type: 'module' });
    this.worker.onmessage = (event: MessageEvent<FromWorker>) => {
      const report = event.data;
      if (report.kind === 'frame') events.frame(report.frame);
      else if (report.kind === 'message') events.message(report.message);
      else if (report.kind === 'connected') events.connected();
      else if (report.kind === 'lost') events.lost(report.retry_ms);
      else console.warn('not JSON:', report.text);
    };
    const protocol = location.protocol === 'https:' ? 'wss:' : 'ws:';
    this.order({ kind: 'open', address: `${protocol}//${location.host}/api/stream`, types });
  }

  subscribe(types: string[]): void {
    this.order({ kind: 'subscribe', types });
  }

  /** The frame is on the screen: the next one may come. */
  drawn(seq: number): void {
    this.order({ kind: 'drawn', seq });
  }

  private order(order: ToWorker): void {
    this.worker.postMessage(order);
  }
}
