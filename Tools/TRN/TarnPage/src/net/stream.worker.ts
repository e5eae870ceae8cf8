// The stream's own thread: it holds the connection, parses, and hands whole frames over. It acknowledges a frame when
// the page has drawn it, so that the server never sends frames that nobody will see.
import { FrameAssembler, frameTypes, Message } from '../model/protocol';
import type { FromWorker, ToWorker } from './stream';

const scope = self as unknown as DedicatedWorkerGlobalScope;
const assembler = new FrameAssembler();
let address = '';
let types: string[] = [];
let socket: WebSocket | undefined;
let wait_ms = 250;

function post(message: FromWorker, transfer: Transferable[] = []): void {
  scope.postMessage(message, transfer);
}

function send(value: unknown): void {
  if (socket?.readyState === WebSocket.OPEN) socket.send(JSON.stringify(value));
}

function connect(): void {
  socket = new WebSocket(address);
  socket.onopen = () => {
    wait_ms = 250;
    send({ subscribe: types, acknowledge: true });
    post({ kind: 'connected' });
  };
  socket.onmessage = (event) => receive(String(event.data));
  socket.onclose = () => {
    post({ kind: 'lost', retry_ms: wait_ms });
    setTimeout(connect, wait_ms);
    wait_ms = Math.min(5000, wait_ms * 2);
  };
}

function receive(text: string): void {
  let message: Message;
  try {
    message = JSON.parse(text) as Message;
  } catch {
    post({ kind: 'garbled', text: text.slice(0, 200) });
    return;
  }
  const frame = assembler.take(message);
  if (frame) {
    const buffers = [...frame.live, ...frame.average, ...frame.maxHold, ...frame.iq.flatMap(({ i, q }) => [i, q])];
    post(
      { kind: 'frame', frame },
      buffers.map((array) => array.buffer as ArrayBuffer),
    );
  } else if (!frameTypes.has(message.type)) {
    post({ kind: 'message', message });
  }
}

scope.onmessage = (event: MessageEvent<ToWorker>) => {
  const order = event.data;
  if (order.kind === 'open') {
    address = order.address;
    types = order.types;
    connect();
  } else if (order.kind === 'subscribe') {
    types = order.types;
    send({ subscribe: types, acknowledge: true });
  } else {
    send({ drawn: order.seq });
  }
};
