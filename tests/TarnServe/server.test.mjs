// The server from outside: what it refuses, what it answers, and that no client holds back another.
import assert from 'node:assert/strict';
import { existsSync, mkdirSync, readFileSync, rmSync, symlinkSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import test from 'node:test';
import { Server } from './support.mjs';

/** Why a value doesn't fit a schema; empty when it does. Knows what the server's description uses. */
function misfit(schema, value, place = '') {
  if (schema === null || Object.keys(schema).length === 0 || schema.$ref) return '';
  if (schema.anyOf) return schema.anyOf.some((one) => !misfit(one, value)) ? '' : `${place}: none of the forms`;
  if (schema.const !== undefined) return value === schema.const ? '' : `${place}: not ${schema.const}`;
  if (schema.enum) return schema.enum.includes(value) ? '' : `${place}: ${value} isn't listed`;
  const kind =
    value === null ? 'null' : Array.isArray(value) ? 'array' : Number.isInteger(value) ? 'integer' : typeof value;
  const kinds = [schema.type].flat();
  if (!kinds.includes(kind) && !(kind === 'integer' && kinds.includes('number')))
    return `${place}: ${kind}, not ${kinds}`;
  if (kind === 'array') return value.map((item, k) => misfit(schema.items, item, `${place}[${k}]`)).find(Boolean) ?? '';
  if (kind !== 'object') return '';
  const missing = (schema.required ?? []).find((name) => !(name in value));
  if (missing) return `${place}: no ${missing}`;
  for (const [name, item] of Object.entries(value)) {
    const member = schema.properties?.[name] ?? schema.additionalProperties;
    if (member === false) return `${place}.${name}: not described`;
    const reason = misfit(member ?? {}, item, `${place}.${name}`);
    if (reason) return reason;
  }
  return '';
}

test('only this server’s own page and plain programs on this machine are served', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const own = `127.0.0.1:${server.port}`;
  const cases = [
    [{ Host: own }, 200],
    [
      { Host: `localhost:${server.port}`, Origin: `http://localhost:${server.port}`, 'Sec-Fetch-Site': 'same-origin' },
      200,
    ],
    [{ Host: own, Origin: 'http://evil.example' }, 403],
    [{ Host: own, Origin: `http://127.0.0.1:${server.port + 1}` }, 403],
    [{ Host: own, Origin: `http://localhost:${server.port}` }, 403],
    [{ Host: own, Origin: 'null' }, 403],
    [{ Host: own, 'Sec-Fetch-Site': 'cross-site' }, 403],
    [{ Host: `evil.example:${server.port}` }, 421],
    [{ Host: '127.0.0.1' }, 421],
    [{ Host: `127.0.0.1.evil.example:${server.port}` }, 421],
  ];
  for (const [headers, status] of cases) {
    assert.equal((await server.request('GET', '/api/state', { headers })).status, status, JSON.stringify(headers));
    const stream = await server.stream({ headers });
    assert.equal(stream.status, status === 200 ? 101 : status, `stream ${JSON.stringify(headers)}`);
    stream.close();
  }
  const page = await server.request('GET', '/');
  assert.match(page.headers['content-security-policy'], /^default-src 'none'; script-src 'self';/);
  assert.equal(page.headers['access-control-allow-origin'], undefined);
  assert.match(page.body, /<script type="module" src="\/main.js">/);
  // what a form of a foreign page could send, were Origin not there
  const form = { headers: { 'Content-Type': 'text/plain' }, body: '{"line": "-channel 1"}' };
  assert.equal((await server.request('POST', '/api/lines', form)).status, 400);
  assert.equal(await server.stop(), 0);
});

test('another address needs a token, and then asks every client for it', async () => {
  const refused = await Server.start({ more: ['--bind', '0.0.0.0'] });
  assert.match(refused.ready, /ended with 1: .*needs a --token/);
  for (const token of ['a;b', 'a&b', 'a b', 'ä'])
    assert.match((await Server.start({ more: ['--token', token] })).ready, /ended with 1: .*the token may hold/, token);
  const server = await Server.start({ more: ['--bind', '0.0.0.0', '--token', 'a/b+c'] });
  const status = async (path, headers) => (await server.request('GET', path, { headers })).status;
  assert.equal(await status('/api/state', {}), 401);
  assert.equal(await status('/api/state', { Authorization: 'Bearer a/b+x' }), 401);
  for (const scheme of ['Bearer', 'bearer'])
    assert.equal(await status('/api/state', { Authorization: `${scheme} a/b+c` }), 200);
  assert.equal((await server.stream()).status, 401);
  const landing = await server.request('GET', '/?token=a/b+c');
  assert.deepEqual([landing.status, landing.headers.location], [303, '/']);
  const cookie = landing.headers['set-cookie'][0];
  assert.match(cookie, /HttpOnly; SameSite=Strict/);
  assert.equal(await status('/api/state', { Cookie: cookie.split(';')[0] }), 200);
  await server.stop();
});

test('the loopback address of IPv6 serves, however it is written', async (t) => {
  const server = await Server.start({ more: ['--bind', '0:0:0:0:0:0:0:1'] });
  if (/Address family|assign requested/.test(server.ready)) return t.skip('this machine has no IPv6');
  assert.equal(server.ready, `http://[::1]:${server.port}/\n`);
  for (const [host, status] of [
    ['[::1]', 200],
    ['[0:0:0:0:0:0:0:1]', 200],
    ['[::2]', 421],
    ['[::1].evil.example', 421],
  ]) {
    const headers = { Host: `${host}:${server.port}` };
    assert.equal((await server.request('GET', '/', { headers, host: '::1' })).status, status, host);
  }
  await server.stop();
});

test('files are names in one folder, whatever a line or a path says', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const outside = join(server.folder, 'outside.csv');
  const inside = (name) => join(server.folder, 'data', name);
  await server.line('-trigger_now');
  for (const name of [outside, '../outside.csv', '..', '.hidden', 'a\\b', '"a b"', 'x'.repeat(65)]) {
    assert.equal((await server.line(`-save_spectrum ${name}`)).status, 409, name);
    assert.equal((await server.line(`-gain_file_name ${name}`)).status, 409, name);
  }
  // an earlier key takes a token away, and would bring the path behind the name's key
  assert.equal((await server.line(`-save_IQ -channel_average true ${outside}`)).status, 409);
  assert.equal((await server.line(`-save_spectrum name.csv,${outside}`)).status, 409);
  assert.equal(existsSync(outside), false);
  // a save that fails answers as ever, and is told to everybody
  mkdirSync(inside('taken.txt'));
  const stream = await server.stream();
  stream.send('no order'); // its refusal comes though nothing is subscribed
  assert.match((await stream.next('Host Refusal')).data.text, /an order is a JSON object/);
  assert.equal((await server.line('-save_spectrum taken.txt')).json.exitCode, 0);
  assert.match((await stream.next('Host Refusal')).data.text, /can't write 'taken.txt'/);
  stream.close();
  const saved = await server.line('-save_spectrum here.txt');
  assert.deepEqual([saved.json.exitCode, existsSync(inside('here.txt'))], [0, true]);
  assert.equal(JSON.stringify(saved.json).includes(server.folder), false);
  writeFileSync(outside, 'secret');
  symlinkSync(outside, inside('link.csv'));
  for (const path of [
    '/api/files/link.csv',
    '/api/files/..%2foutside.csv',
    '/api/files/../outside.csv',
    '/api/files/.tarn-state.json',
  ])
    assert.ok([400, 404].includes((await server.request('GET', path)).status), path);
  const put = { headers: { 'Content-Type': 'application/octet-stream' }, body: 'x' };
  assert.equal((await server.request('PUT', '/api/files/link.csv', put)).status, 409);
  assert.equal(readFileSync(outside, 'utf8'), 'secret');
  assert.equal((await server.request('PUT', '/api/files/new.csv', put)).status, 200);
  assert.equal((await server.request('GET', '/api/files/new.csv')).body, 'x');
  for (const key of ['-load_all', '-save_spectrum'])
    assert.equal((await server.line(`${key} link.csv`)).status, 409, key);
  rmSync(outside);
  const settings = async () => (await server.json('GET', '/api/state')).json.settings;
  await server.line('-channel 11 -channel_average true -maxhold false -internal_gain 1 -preLNA_resistor true');
  await server.line(`-save_all snap.csv${',0'.repeat(14)}`);
  const before = await settings();
  await server.line('-band 5.2 -bandwidth 40 -channel 38 -rbw 78.125 -channel_average false -maxhold true -internal_gain 2');
  await server.line('-load_all snap.csv');
  assert.deepEqual(await settings(), before);
  // the front-end's part of a snapshot may pretend to be entries of the plug-in's: none becomes a line, none is fatal
  const entries = `0"},5,{"parameter": "m_RBW","value": "1\\" -save_spectrum ${outside} -rbw \\"1 z`;
  const snapshot = readFileSync(inside('snap.csv'), 'utf8').replace('is_scan=0', `is_scan=${entries}`);
  writeFileSync(inside('snap.csv'), snapshot);
  assert.ok((await server.line('-load_all snap.csv')).json.messages[0].includes('},5,{'));
  await server.line('-bogus'); // sets the tuning again
  await server.line('-get_channel_average');
  assert.equal(existsSync(outside), false);
  const names = (await server.json('GET', '/api/files')).json.map((file) => file.name);
  assert.deepEqual(names, ['here.txt', 'new.csv', 'snap.csv']);
  assert.equal((await server.request('HEAD', '/api/health')).status, 200);
  await server.stop(true);
  writeFileSync(inside('.tarn-state.json'), '{"mode": 1, "limits": {"text": 5}, "settings": {"-rbw": 1}}');
  const again = await Server.start({ folder: server.folder, samples: 98304 });
  t.after(() => again.process.kill('SIGKILL'));
  assert.match(again.ready, /^http:/);
  await again.stop();
});

test('a capture is analysed as its name says and shown to everybody, or told what is wrong with it', async (t) => {
  const server = await Server.start({ samples: 1024 });
  t.after(() => server.process.kill('SIGKILL'));
  const put = (name, body) =>
    server.request('PUT', `/api/files/${name}`, { headers: { 'Content-Type': 'application/octet-stream' }, body });
  const name = 'BAND_5.2_CHANNEL_100_BW_20_CHAIN_B_1.txt';
  // a tone of 4 MHz at 1/64 of the converter's range: 40 MHz are sampled
  const turns = Array.from({ length: 1024 }, (_, k) => (2 * Math.PI * 4 * k) / 40);
  const samples = turns.map((turn) => `${Math.round(512 * Math.cos(turn))} ,${Math.round(512 * Math.sin(turn))}\n`);
  await put(name, samples.join(''));
  await put('BAND_5.2_CHANNEL_100_BW_20_CHAIN_B_2.txt', '1 ,2\nfive ,6\n');
  const stream = await server.stream();
  stream.send({ subscribe: ['Host Frame', 'Spectrum Data', 'Host State'] });
  await server.line('-rbw 312.5');
  assert.equal((await server.json('POST', '/api/captures', { name })).status, 200);
  let frame;
  do frame = await stream.next('Host Frame');
  while (frame.data.source !== name);
  const { band, channel, chain, centre_mhz } = frame.data;
  assert.deepEqual([band, channel, chain, centre_mhz], ['5.2', 100, 'B', 5500]);
  const levels = stream.messages.filter((message) => message.type === 'Spectrum Data').at(-1).data[0].data;
  assert.equal(levels.indexOf(Math.max(...levels)), Math.round(64 + 4 / 0.3125));
  // a code at the converter's end, told by the histogram or else by the samples
  const loud = name.replace('_1.', '_4.');
  samples[7] = '32767 ,0\n';
  await put(loud, samples.join(''));
  for (const histogram of ['true', 'false']) {
    await server.line(`-histogram ${histogram}`);
    await server.json('POST', '/api/captures', { name: loud });
    do frame = await stream.next('Host Frame');
    while (frame.data.source !== loud);
    assert.deepEqual(frame.data.overloaded, ['B'], `histogram ${histogram}`);
  }
  for (const [wrong, why] of [
    ['BAND_5.2_CHANNEL_100_BW_20_CHAIN_B_2.txt', /line 2: I isn't a number/],
    ['BAND_5.2_CHANNEL_100_BW_20_CHAIN_B_3.txt', /there is no file/],
    ['run7.txt', /doesn't tell its tuning/],
  ]) {
    const refused = await server.json('POST', '/api/captures', { name: wrong });
    assert.equal(refused.status, 409);
    assert.match(refused.json.error, why);
  }
  const state = (await server.json('GET', '/api/state')).json;
  assert.deepEqual([state.run.mode, state.settings['-channel'], state.settings['-chain']], ['hold', '100', 'B']);
  await server.json('POST', '/api/run', { mode: 'single' });
  assert.equal((await stream.next('Host Frame')).data.source, '');
  await server.stop();
});

test('ten clients with lines of a megabyte, binary and broken bodies get answers, and the server goes on', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const json = { 'Content-Type': 'application/json' };
  const bodies = [
    [JSON.stringify({ line: 'x'.repeat(1 << 20) }), 413],
    [JSON.stringify({ line: '-channel 6\u0000\u0001' }), 200],
    [Buffer.from([0xff, 0xfe, 0x00]), 400],
    ['{"line": 1}', 400],
    ['[]', 400],
    ['{"line": "-channel', 400],
  ];
  const asked = Array.from({ length: 10 }, () =>
    bodies.map(async ([body, status]) => {
      const answer = await server.request('POST', '/api/lines', { headers: json, body });
      assert.equal(answer.status, status, String(body).slice(0, 40));
    }),
  );
  await Promise.all(asked.flat());
  const huge = await server
    .request('POST', '/api/lines', { headers: { ...json, 'Content-Length': 1 << 30 }, body: '{' })
    .catch(() => ({ status: 413 }));
  assert.equal(huge.status, 413);
  // long files lie in memory until they are whole: the fifth one is refused
  const head = `PUT /api/files/big HTTP/1.1\r\nHost: 127.0.0.1:${server.port}\r\nContent-Length: ${100 << 20}\r\n\r\n`;
  const uploads = Array.from({ length: 5 }, () => server.raw(head));
  const refused = await Promise.any(uploads.map((one) => new Promise((done) => one.once('data', done))));
  assert.match(String(refused), /^HTTP\/1.1 503/);
  uploads.forEach((one) => one.destroy());
  assert.equal((await server.line('-nonsense')).json.exitCode !== 0, true);
  for (const [method, path, value] of [
    ['POST', '/api/run', { mode: 'fly' }],
    ['POST', '/api/run', { mode: 'scan', sweeps: 0 }],
    ['PUT', '/api/limits', { text: 5 }],
  ])
    assert.equal((await server.json(method, path, value)).status, 400, path);
  for (const [path, allowed] of [
    ['/api/state', 'GET, HEAD'],
    ['/api/lines', 'POST'],
    ['/api/files/a', 'GET, HEAD, PUT, DELETE'],
    ['/main.js', 'GET, HEAD'],
  ]) {
    const answer = await server.request('PATCH', path);
    assert.deepEqual([answer.status, answer.headers.allow], [405, allowed], path);
  }
  assert.equal((await server.request('PATCH', '/api/nothing')).status, 404);
  assert.equal((await server.json('GET', '/api/health')).json.status, 'ok');
  await server.stop();
});

test('every message of the stream and every answer is as the API describes it', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const api = (await server.json('GET', '/api')).json;
  const stream = await server.stream();
  stream.send({ subscribe: '*' });
  const first = await stream.next('Host Frame');
  const keys = (await server.json('GET', '/api/keys')).json.map((key) => key.name);
  const hasSnapshots = keys.includes('-save_all');
  const snapshotLines = hasSnapshots ? ['-save_all snap.csv' + ',0'.repeat(14), '-load_all snap.csv'] : [];
  const lines = [
    '-channel_average true -maxhold true -channel_average_sweep_val 4',
    '-trigger_now',
    '-find_peaks 10',
    '-update_peaks',
    '-update_channel_average',
    '-get_platform_info',
    ...snapshotLines,
    '-mcc_profile DE -set_mcc',
    '-gain_file_name none.csv',
    '-export_freq_power powers.csv',
  ];
  const recordSchema = api.paths['/api/lines'].post.responses['200'].content['application/json'].schema;
  for (const line of lines) {
    const answer = await server.line(line);
    assert.equal(misfit(recordSchema, answer.json), '', line);
    assert.equal(answer.json.exitCode, 0, `${line}: ${answer.json.error}`);
  }
  if (hasSnapshots) await stream.next('Power Table Data');
  await stream.next('Set MCC Response');
  const last = await stream.next('Host Frame');
  assert.ok(last.seq > first.seq);
  const types = new Set(['Host Frame']);
  for (const message of [first, last, ...stream.messages]) {
    types.add(message.type);
    assert.ok(api.components.schemas[message.type], message.type);
    assert.equal(misfit(api.components.schemas[message.type], message), '', message.type);
  }
  for (const type of [
    'Spectrum Data',
    'Histogram Data',
    'IQ Amplitude Data',
    'Maximum Peaks Data',
    'Host State',
    'Host Line',
  ])
    assert.ok(types.has(type), type);
  const state = await server.json('GET', '/api/state');
  assert.equal(misfit(api.paths['/api/state'].get.responses['200'].content['application/json'].schema, state.json), '');
  // a gain that is no number makes levels that JSON doesn't know
  const row = `${state.json.adapter.mac},A,2412,nan,20MHz`;
  const put = { headers: { 'Content-Type': 'application/octet-stream' }, body: `mac,chain,freq,gain,bw\n${row}\n` };
  await server.request('PUT', '/api/files/gain.csv', put);
  await server.line('-maxhold false -channel_average false -gain_file_name gain.csv');
  await server.line('-set_gain_from_file');
  for (;;) {
    const spectrum = await stream.next('Spectrum Data'); // each parsed as JSON on its way here
    assert.equal(misfit(api.components.schemas['Spectrum Data'], spectrum), '');
    if (spectrum.data[0].data.every((level) => level === null)) break;
  }
  stream.close();
  await server.stop();
});

test('a client that doesn’t draw or doesn’t read loses sweeps, and the others lose nothing', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const dead = await server.stream({ reads: false });
  dead.send({ subscribe: '*' });
  const slow = await server.stream();
  slow.send({ subscribe: ['Host Frame', 'Spectrum Data'], acknowledge: true });
  const quick = await server.stream();
  quick.send({ subscribe: ['Host Frame', 'Spectrum Data'], acknowledge: true });
  let last;
  for (let k = 0; k < 30; ++k) {
    last = await quick.next('Host Frame');
    quick.send({ drawn: last.seq });
  }
  assert.ok(last.dropped <= 10, `${last.dropped} dropped`);
  assert.equal(slow.messages.filter((message) => message.type === 'Host Frame').length, 2);
  const second = slow.messages.filter((message) => message.type === 'Host Frame')[1];
  slow.send({ drawn: second.seq });
  await slow.next('Host Frame');
  await slow.next('Host Frame');
  const newest = await slow.next('Host Frame'); // one that came when it had drawn, not one that waited since
  assert.ok(newest.dropped >= 10, `${newest.dropped} dropped`);
  assert.ok(newest.seq > last.seq - 20 * 3);
  assert.equal(
    slow.messages.some((message) => message.type === 'IQ Amplitude Data'),
    false,
  );
  // the end waits for a client that has much to read, and begins to
  const ended = server.stop();
  await new Promise((resolve) => setTimeout(resolve, 500));
  dead.socket.resume();
  assert.equal(await ended, 0);
  assert.equal(dead.saidGoodbye, true);
});

test('hold, single, scan and the average are driven by the server, for every client alike', async (t) => {
  const server = await Server.start();
  t.after(() => server.process.kill('SIGKILL'));
  const one = await server.stream();
  const other = await server.stream();
  for (const stream of [one, other])
    stream.send({ subscribe: ['Host State', 'Host Frame', 'Host Channels', 'Host Progress'] });
  await one.next('Host Frame');
  const until = async (stream, type, isIt) => {
    for (;;) {
      const message = await stream.next(type);
      if (isIt(message.data)) return message.data;
    }
  };
  await server.line('-channel 6 -channel_average true -channel_average_sweep_val 3');
  const frame = await until(other, 'Host Frame', (data) => data.average && data.averageCount === 3);
  assert.deepEqual([frame.centre_mhz, frame.averageTarget], [2437, 3]);
  await server.json('PUT', '/api/limits', { text: '-70', margin_db: 3 });
  const judged = await until(one, 'Host Frame', (data) => data.verdicts[0].verdict === 'FAIL');
  assert.ok(Math.abs(judged.verdicts[0].power_dbm + 60) < 1, String(judged.verdicts[0].power_dbm)); // the tone at 2440 MHz
  await server.json('POST', '/api/run', { mode: 'scan', sweeps: 1 });
  assert.equal((await server.line('-channel 1')).status, 409);
  const rows = await until(other, 'Host Channels', (data) => data.length >= 13);
  assert.deepEqual(
    rows.slice(0, 2).map((row) => row.channel),
    [1, 2],
  );
  await until(one, 'Host State', (data) => data.run.mode === 'run' && data.settings['-channel'] === '6');
  await server.json('POST', '/api/run', { mode: 'hold' });
  await until(one, 'Host State', (data) => data.run.mode === 'hold');
  // a band alone leaves no channel open, and a line that fails leaves the tuning as it was
  await server.line('-band 5.2');
  await until(one, 'Host State', (data) => data.settings['-channel'] === '36');
  await server.line('-bandwidth 40 -channel 37');
  const settings = (await server.json('GET', '/api/state')).json.settings;
  assert.deepEqual([settings['-bandwidth'], settings['-channel']], ['20', '36']);
  assert.equal(await server.stop(true), 0);
  const again = await Server.start({ folder: server.folder, samples: 98304 });
  const stream = await again.stream();
  stream.send({ subscribe: ['Host State'] });
  const kept = await until(stream, 'Host State', (data) => data.settings['-channel'] === '36');
  assert.deepEqual([kept.run.mode, kept.limits.text], ['hold', '-70']);
  await again.stop();
});

test('a desense test rests, goes on, ends and keeps what it measured, and refuses what doesn’t fit', async (t) => {
  const server = await Server.start({ air: 'sim:laptop', more: ['--workload', 'on'] });
  t.after(() => server.process.kill('SIGKILL'));
  const api = (await server.json('GET', '/api')).json;
  const stream = await server.stream();
  stream.send({ subscribe: '*' });
  const order = async (action, more = {}) => (await server.json('POST', '/api/desense', { action, ...more })).status;
  const until = async (phase) => {
    while ((await stream.next('Host Desense')).data.phase !== phase);
    return (await server.json('GET', '/api/desense')).json;
  };
  const config = {
    ...{ bw: 20, rbw: 39.0625, chainMode: 'A->B', iterations: 2, bitcfg: 'Workload.bitcfg', disableBit: true },
    ...{ LBChannels: '13', HBChannels: [36, 52, 200], UHBChannels: [] },
  };
  for (const action of ['pause', 'resume', 'stop']) assert.equal(await order(action), 409, action);
  for (const wrong of [{ bw: 21 }, { iterations: 0 }, { iterations: '2x' }, { bitcfg: '../x' }, { more: 1 }, { HBChannels: 'x' }, { HBChannels: ';;' }, { HBChannels: {} }, { UHBChannels: null }, { HBChannels: [36, '52'] }, { HBChannels: [301] }, { rbw: 'nan' }, { rbw: 40 }])
    assert.equal(await order('start', { config: { ...config, ...wrong } }), 400, JSON.stringify(wrong));
  for (const wrong of [{ config: 'none.cfg' }, { config, name: '../up' }, { config, limit: 'none.csv' }, { config, margin_db: -1 }, {}])
    assert.equal(await order('start', wrong), 400, JSON.stringify(wrong));

  assert.equal(await order('start', { name: 'short', config, idleBaseline: true }), 200);
  const ended = await until('ended');
  const verdicts = ended.channels.map((row) => [row.channel, row.verdict]);
  assert.deepEqual([ended.verdict, verdicts], ['FAIL', [[52, 'FAIL'], [13, 'FAIL'], [36, 'PASS']]]);
  assert.deepEqual(ended.leftOut.map((one) => [one.band, one.channel]), [['5.2', 200]]);
  assert.ok(ended.channels.every((row) => Math.abs(row.rise_db) < 1)); // it is as loud without the test's own load
  for (const message of stream.messages)
    assert.equal(misfit(api.components.schemas[message.type], message), '', message.type);
  assert.equal((await server.json('GET', '/api/desense/channels/5.2/52x')).status, 404);
  for (const [path, place] of [
    ['/api/desense', '/api/desense'],
    ['/api/desense/tests', '/api/desense/tests'],
    ['/api/desense/channels/{band}/{channel}', '/api/desense/channels/5.2/52'],
  ]) {
    const schema = api.paths[path].get.responses['200'].content['application/json'].schema;
    assert.equal(misfit(schema, (await server.json('GET', place)).json), '', path);
  }

  // a long one, out of a file, that has the adapter for itself until it is stopped
  const lines = Object.entries({ ...config, iterations: 100, HBChannels: '[36;52]', LBChannels: '[1;2;3;4;5;6;7;8;9;10;11;12;13]', UHBChannels: '[]' });
  const file = lines.map((line) => `${line.join(',')}\n`).join('');
  writeFileSync(join(server.folder, 'data', 'long.cfg'), `${file.replace('true', 'TRUE')}a tenth line`);
  writeFileSync(join(server.folder, 'data', 'twice.cfg'), `bw,20\n${file}`);
  assert.equal(await order('start', { config: 'twice.cfg' }), 400);
  assert.equal(await order('start', { name: 'short', config: 'long.cfg' }), 409); // keeps what is there
  assert.equal(await order('start', { name: 'long', config: 'long.cfg' }), 200);
  assert.equal(await order('start', { name: 'other', config: 'long.cfg' }), 409);
  assert.equal(await order('resume'), 409);
  assert.equal((await server.line('-channel 6')).status, 409);
  assert.equal((await server.line('-get_platform_info')).json.exitCode, 0);
  assert.equal((await server.json('POST', '/api/run', { mode: 'scan' })).status, 409);
  assert.equal((await server.json('DELETE', '/api/desense/tests/long')).status, 409);
  assert.equal(await order('pause'), 200);
  const resting = await until('paused');
  assert.equal(await order('pause'), 409);
  assert.equal((await server.json('GET', '/api/state')).json.desense.phase, 'paused');
  assert.equal(await order('resume'), 200);
  while ((await stream.next('Host Desense')).data.done <= resting.done);
  assert.equal(await order('stop'), 200);
  assert.equal((await until('ended')).interrupted, true);
  const settings = (await server.json('GET', '/api/state')).json.settings;
  assert.equal((await stream.next('Host Frame')).data.channel, Number(settings['-channel']));

  // the end of the server ends the test with what it has
  assert.equal(await order('start', { name: 'last', config: 'long.cfg' }), 200);
  while ((await stream.next('Host Desense')).data.done < 3);
  assert.equal(await server.stop(true), 0);
  const kept = JSON.parse(readFileSync(join(server.folder, 'data', 'last', 'result.json'), 'utf8'));
  assert.deepEqual([kept.interrupted, kept.channels.length], [true, 15]);

  // a line that doesn't end holds nobody up
  const busy = await Server.start({ folder: server.folder, samples: 98304 });
  t.after(() => busy.process.kill('SIGKILL'));
  const given = busy.line(`-rbw 39.0625 ${'-trigger_now '.repeat(1200)}`);
  while (!(await busy.json('GET', '/api/state')).json.run.line.includes('trigger'));
  assert.equal(await busy.stop(true), 0);
  assert.deepEqual([(await given).status, (await given).json.error], [409, 'the server is ending']);
  rmSync(server.folder, { recursive: true });
});
