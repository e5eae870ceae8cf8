// A server of its own for each test, and clients that say what a browser never would.
import { spawn } from 'node:child_process';
import { randomBytes } from 'node:crypto';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import http from 'node:http';
import { connect } from 'node:net';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

/** A floor of -114 + 7 dBm in a MHz, and one tone. */
const scene = { capture_interval_s: 0.1, tones: [{ frequency_mhz: 2440, level_dbm: -60 }] };

const processes = [];
process.on('exit', () => processes.forEach((one) => one.kill('SIGKILL'))); // also behind a test that failed

export class Server {
  /** Starts tarn serve on a free port; resolves once it printed its address. */
  static async start(options = {}) {
    const server = new Server();
    server.folder = options.folder ?? mkdtempSync(join(tmpdir(), 'tarn-serve-'));
    const sceneFile = join(server.folder, 'scene.json');
    writeFileSync(sceneFile, JSON.stringify(scene));
    const air = ['--air', options.air ?? `sim:${sceneFile}`, '--adapter', `samples=${options.samples ?? 8192}`];
    const data = join(server.folder, 'data');
    server.process = spawn(process.env.TARN_PROGRAM, [
      'serve',
      '--port',
      String(options.port ?? 0),
      '--data',
      data,
      ...air,
      ...(options.more ?? []),
    ]);
    processes.push(server.process);
    server.complaints = '';
    server.process.stderr.on('data', (text) => (server.complaints += text));
    server.ended = new Promise((resolve) => server.process.on('exit', (code) => resolve(code)));
    const line = await Promise.race([
      new Promise((resolve) => server.process.stdout.once('data', (text) => resolve(String(text)))),
      server.ended.then((code) => `ended with ${code}: ${server.complaints}`),
    ]);
    server.ready = line;
    server.port = Number(/:(\d+)\/\n$/.exec(line)?.[1]);
    return server;
  }

  get address() {
    return `http://127.0.0.1:${this.port}`;
  }

  /** Ends it gracefully; the exit status. The folder goes unless it is kept for another server. */
  async stop(keep = false) {
    this.process.kill('SIGTERM');
    const code = await this.ended;
    if (!keep) rmSync(this.folder, { recursive: true, force: true });
    return code;
  }

  /** One request with exactly these headers; { status, headers, body }. */
  request(method, path, { headers = {}, body, host = '127.0.0.1' } = {}) {
    return new Promise((resolve, reject) => {
      const request = http.request(
        { host, port: this.port, method, path, headers, agent: false },
        (response) => {
          let text = '';
          response.setEncoding('utf8');
          response.on('data', (piece) => (text += piece));
          response.on('end', () => resolve({ status: response.statusCode, headers: response.headers, body: text }));
        },
      );
      request.on('error', reject);
      request.end(body);
    });
  }

  async json(method, path, value) {
    const body = value === undefined ? undefined : JSON.stringify(value);
    const answer = await this.request(method, path, {
      headers: body ? { 'Content-Type': 'application/json' } : {},
      body,
    });
    return { status: answer.status, json: JSON.parse(answer.body) };
  }

  line(line, plain = false) {
    return this.json('POST', '/api/lines', { line, plain });
  }

  /** A connection that says this and no more. */
  raw(text) {
    const socket = connect(this.port, '127.0.0.1');
    socket.on('error', () => {});
    socket.write(text);
    return socket;
  }

  /** A WebSocket client; resolves to { status, send, next, close, socket }. */
  stream({ headers = {}, path = '/api/stream', reads = true } = {}) {
    const fields = { Host: `127.0.0.1:${this.port}`, Upgrade: 'websocket', Connection: 'Upgrade', ...headers };
    fields['Sec-WebSocket-Key'] = randomBytes(16).toString('base64');
    fields['Sec-WebSocket-Version'] = '13';
    const socket = connect(this.port, '127.0.0.1');
    socket.on('error', () => {});
    socket.write(
      `GET ${path} HTTP/1.1\r\n${Object.entries(fields)
        .map(([name, value]) => `${name}: ${value}\r\n`)
        .join('')}\r\n`,
    );
    return new Promise((resolve) => {
      const client = { socket, messages: [], waiting: [], isClosed: false };
      client.send = (value) => socket.write(maskedFrame(JSON.stringify(value)));
      client.close = () => socket.destroy();
      client.next = (type) => nextMessage(client, type);
      let received = Buffer.alloc(0);
      socket.on('close', () => {
        client.isClosed = true;
        client.waiting.splice(0).forEach(({ reject }) => reject(new Error('closed')));
      });
      socket.on('data', (piece) => {
        received = Buffer.concat([received, piece]);
        if (client.status === undefined) {
          const end = received.indexOf('\r\n\r\n');
          if (end < 0) return;
          client.status = Number(received.subarray(9, 12).toString());
          received = received.subarray(end + 4);
          if (!reads) socket.pause();
          resolve(client);
        }
        for (let frame; (frame = takeFrame(received)); received = received.subarray(frame.length)) {
          if (frame.opcode === 1) deliver(client, JSON.parse(frame.text));
          if (frame.opcode !== 8) continue;
          client.saidGoodbye = true;
          socket.end();
        }
      });
    });
  }
}

function maskedFrame(text) {
  const payload = Buffer.from(text);
  const head =
    payload.length < 126
      ? Buffer.from([0x81, 0x80 | payload.length])
      : Buffer.from([0x81, 0xfe, payload.length >> 8, payload.length & 255]);
  return Buffer.concat([head, Buffer.alloc(4), payload]); // a mask of zeros leaves the payload as it is
}

/** The first whole frame of the server; undefined while it isn't whole. */
function takeFrame(bytes) {
  if (bytes.length < 2) return undefined;
  const short = bytes[1] & 127;
  const head = short === 126 ? 4 : short === 127 ? 10 : 2;
  if (bytes.length < head) return undefined;
  const size = short === 126 ? bytes.readUInt16BE(2) : short === 127 ? Number(bytes.readBigUInt64BE(2)) : short;
  if (bytes.length < head + size) return undefined;
  return { opcode: bytes[0] & 15, length: head + size, text: bytes.toString('utf8', head, head + size) };
}

function deliver(client, message) {
  const taker = client.waiting.findIndex(({ type }) => type === message.type);
  if (taker >= 0) client.waiting.splice(taker, 1)[0].resolve(message);
  else client.messages.push(message);
}

/** The next message of a type, kept ones first. */
function nextMessage(client, type) {
  const kept = client.messages.findIndex((message) => message.type === type);
  if (kept >= 0) return Promise.resolve(client.messages.splice(kept, 1)[0]);
  if (client.isClosed) return Promise.reject(new Error('closed'));
  return new Promise((resolve, reject) => client.waiting.push({ type, resolve, reject }));
}
