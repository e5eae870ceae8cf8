// Requests to the server. Every failure is an Error whose message is for a person.
import type { DesenseGraph, DesenseWhole } from '../model/desense';
import type { ChannelRow, HostState, LineAnswer } from '../model/protocol';
import type { KeyRow } from '../model/keys';

async function request(method: string, path: string, body?: unknown): Promise<Response> {
  const init: RequestInit = { method, cache: 'no-store' };
  if (body instanceof Blob) {
    init.body = body;
    init.headers = { 'Content-Type': 'application/octet-stream' };
  } else if (body !== undefined) {
    init.body = JSON.stringify(body);
    init.headers = { 'Content-Type': 'application/json' };
  }
  let response: Response;
  try {
    response = await fetch(path, init);
  } catch {
    throw new Error('the server does not answer');
  }
  if (response.ok) return response;
  const text = await response.text();
  let reason = text;
  try {
    reason = (JSON.parse(text) as { error?: string }).error ?? text;
  } catch {
    // the text itself is the reason
  }
  throw new Error(reason || `${response.status} ${response.statusText}`);
}

async function get<T>(path: string): Promise<T> {
  return (await (await request('GET', path)).json()) as T;
}

export interface DesenseEntry {
  name: string;
  utc: string;
  verdict: string;
  files: FileEntry[];
}

export interface FileEntry {
  name: string;
  bytes: number;
  utc: string;
}

export const api = {
  state: () => get<HostState>('/api/state'),
  keys: () => get<KeyRow[]>('/api/keys'),
  channels: () => get<ChannelRow[]>('/api/channels'),
  files: () => get<FileEntry[]>('/api/files'),
  fileText: async (name: string) => (await request('GET', `/api/files/${encodeURIComponent(name)}`)).text(),
  line: async (line: string, plain = false) =>
    (await (await request('POST', '/api/lines', { line, plain })).json()) as LineAnswer,
  run: (mode: string, options: object = {}) => request('POST', '/api/run', { mode, ...options }),
  capture: (name: string) => request('POST', '/api/captures', { name }),
  limits: (text: string, margin_db: number) => request('PUT', '/api/limits', { text, margin_db }),
  clearChannels: () => request('DELETE', '/api/channels'),
  upload: (name: string, content: Blob) => request('PUT', `/api/files/${encodeURIComponent(name)}`, content),
  remove: (name: string) => request('DELETE', `/api/files/${encodeURIComponent(name)}`),
  desense: () => get<DesenseWhole>('/api/desense'),
  desenseOrder: (action: 'start' | 'pause' | 'resume' | 'stop', order: object = {}) =>
    request('POST', '/api/desense', { action, ...order }),
  desenseGraph: (band: string, channel: number) => get<DesenseGraph>(`/api/desense/channels/${band}/${channel}`),
  desenseTests: () => get<DesenseEntry[]>('/api/desense/tests'),
  desenseFile: (test: string, file: string) => `/api/desense/tests/${encodeURIComponent(test)}/${file}`,
  removeDesense: (test: string) => request('DELETE', `/api/desense/tests/${encodeURIComponent(test)}`),
};
