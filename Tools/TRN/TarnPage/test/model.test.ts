import assert from 'node:assert/strict';
import test from 'node:test';
import {
  Axis,
  bandPower,
  binMhz,
  binsInside,
  columnsMinMax,
  findPeaks,
  fullRange,
  nearestBin,
  noiseDensity,
  ticks,
} from '../src/model/axis';
import { clearHoldsLine, completions, KeyRow, lineOf } from '../src/model/keys';
import { Model } from '../src/model/model';
import { Frame, FrameAssembler, FrameFacts, Message } from '../src/model/protocol';
import { defaultView, fitLevels, viewFromText } from '../src/model/view';
import { LevelRing } from '../src/model/ring';
import { csvText } from '../src/model/exports';
import { fileKind, since } from '../src/model/text';

const axis: Axis = { centre_mhz: 2437, rbw_khz: 312.5, bins: 128 };
let frames = 0;

function facts(more: Partial<FrameFacts> = {}): FrameFacts {
  return {
    band: '2.4',
    channel: 6,
    bandwidth_mhz: 20,
    centre_mhz: 2437,
    chain: 'AB',
    rbw_khz: 312.5,
    maxHold: false,
    average: false,
    averageCount: 0,
    averageTarget: 25,
    sweeps: 1,
    holdSince: '',
    sweepsPerSecond: 1,
    dropped: 0,
    overloaded: [],
    trouble: '',
    source: '',
    verdicts: [],
    ...more,
  };
}

/** A floor with a tone in one bin of each chain. */
function levels(floor: number, tone: number, bin: number): Float32Array {
  const all = new Float32Array(axis.bins).fill(floor);
  all[bin] = tone;
  return all;
}

function frame(live: Float32Array[], more: Partial<FrameFacts> = {}): Frame {
  return {
    seq: ++frames,
    utc: '2026-01-31T14:03:22.000Z',
    facts: facts(more),
    samples: 1024,
    live,
    average: [],
    maxHold: [],
    powers: new Map(),
    iq: [],
    histograms: [],
  };
}

function near(actual: number, expected: number, slack: number): void {
  assert.ok(Math.abs(actual - expected) <= slack, `${actual} isn't within ${slack} of ${expected}`);
}

test('the middle bin is the channel centre, and a frequency finds its bin', () => {
  assert.equal(binMhz(axis, 64), 2437);
  assert.equal(binMhz(axis, 0), 2417);
  assert.equal(nearestBin(axis, 2437.15), 64);
  assert.equal(nearestBin(axis, 2437.16), 65);
  assert.equal(nearestBin(axis, 9999), 127);
  assert.deepEqual(binsInside(axis, { low: 2427, high: 2447 }), { first: 32, end: 97 });
  assert.deepEqual(binsInside(axis, { low: 100, high: 200 }), { first: 0, end: 0 });
});

test('a spur one bin wide shows in its column at every zoom', () => {
  for (const columns of [1, 7, 50, 127]) {
    for (let bin = 0; bin < axis.bins; bin += 9) {
      const out = new Float64Array(2 * columns);
      columnsMinMax(levels(-100, -40, bin), axis, fullRange(axis), columns, out);
      assert.equal(Math.max(...out.filter(Number.isFinite)), -40, `bin ${bin} of ${columns} columns`);
    }
  }
});

test('power adds up over a band, and noise density is told per hertz', () => {
  const flat = new Float32Array(axis.bins).fill(-100);
  near(bandPower(flat, axis, { low: 2427, high: 2447 }), -100 + 10 * Math.log10(65), 1e-9);
  near(noiseDensity(flat, axis, 3), -100 - 54.949, 1e-3); // 312.5 kHz is 54.949 dB above a hertz
  assert.equal(bandPower(flat, axis, { low: 1, high: 2 }), -Infinity);
});

test('peaks come by level, without the ripple of the floor', () => {
  const trace = levels(-100, -40, 20);
  trace[90] = -60;
  trace[91] = -63;
  trace[50] = -96;
  assert.deepEqual(
    findPeaks(trace).map((peak) => [peak.bin, peak.overFloor]),
    [
      [20, 60],
      [90, 40],
    ],
  );
  assert.deepEqual(findPeaks(new Float32Array(axis.bins).fill(-100)), []);
});

test('ticks stand on round numbers inside the range', () => {
  assert.deepEqual(ticks({ low: 2417, high: 2457 }, 5), [2420, 2430, 2440, 2450]);
  assert.deepEqual(ticks({ low: 1, high: 1 }, 5), []);
});

test('the messages of one sweep become one frame, and others none', () => {
  const assembler = new FrameAssembler();
  const message = (type: string, data: unknown): Message => ({ seq: 7, utc: '2026-01-31T14:03:22Z', type, data });
  assembler.take(message('Spectrum Data', [{ chain: 'A', data: [-1] }])); // of a sweep whose begin was missed
  assembler.take(message('Trigger Response', { numOfBins: 2, numOfSamples: 64 }));
  assembler.take(message('Power Per Chain', { chain: 'A', power: '-83.500000' }));
  assembler.take(
    message('Spectrum Data', [{ chain: 'A', data: [-90, -91], averageData: [-92, -93], maxData: [-80, -81] }]),
  );
  assert.equal(assembler.take(message('Gain Status', { status: 'x' })), undefined);
  const made = assembler.take(message('Host Frame', facts()))!;
  assert.deepEqual([made.live.length, made.samples, made.powers.get('A')], [1, 64, -83.5]);
  assert.deepEqual([...made.maxHold[0], ...made.average[0]], [-80, -81, -92, -93]);
  assert.equal(assembler.take(message('Host Frame', facts()))!.live.length, 0);
});

test('markers read bins, keep their frequency over sweeps, and tell deltas', () => {
  const model = new Model(defaultView());
  model.takeFrame(frame([levels(-100, -50, 80), levels(-100, -60, 80)]), 0);
  const first = model.markers.add('normal', 'live', 0, 2437);
  assert.ok(model.markers.toPeak('highest', model.traces));
  assert.equal(first.mhz, 2442);
  const delta = model.markers.add('delta', 'live', 1, 2442);
  assert.equal(model.markers.read(delta, model.traces).text, '+0.0000 MHz, -10.00 dB');
  model.takeFrame(frame([levels(-100, -55, 80), levels(-100, -60, 80)]), 1);
  assert.equal(model.markers.read(first, model.traces).text, '-55.00 dBm/312.5 kHz');
  const away = frame([levels(-100, -55, 80)], { channel: 36, band: '5.2', centre_mhz: 5180, chain: 'A' });
  model.takeFrame(away, 2);
  assert.equal(model.markers.read(first, model.traces).text, 'no data');
  assert.equal(model.markers.toPeak('left', model.traces), false);
});

test('a new tuning starts minimum and waterfall anew, and the reference says what differs', () => {
  const model = new Model(defaultView());
  model.takeFrame(frame([levels(-100, -50, 80)], { chain: 'A' }), 0);
  assert.ok(model.traces.store('live', 'yesterday'));
  model.takeFrame(frame([levels(-97, -50, 80)], { chain: 'A' }), 1);
  assert.equal(model.traces.levels('difference', 0)![10], 3);
  assert.equal(model.traces.levels('minHold', 0)![10], -100);
  assert.equal(model.rings[0].length, 2);
  model.takeFrame(frame([levels(-90, -50, 80)], { chain: 'A', channel: 7, centre_mhz: 2442 }), 2);
  assert.equal(model.traces.referenceMismatch(), 'channel 6 instead of 7');
  assert.equal(model.traces.levels('minHold', 0)![10], -90);
  assert.equal(model.rings[0].length, 1);
  assert.equal(model.traces.levels('difference', 0)![10], 10); // by frequency: 5 MHz are 16 bins
  assert.ok(Number.isNaN(model.traces.levels('difference', 0)![127])); // beyond the stored sweep
  assert.match(
    csvText(model.traces),
    /^# Band 2.4 GHz, channel 7.*\nFrequency \(MHz\),Live A \(dBm\/312.5 kHz\),Reference A/,
  );
});

test('values are old when the connection is lost, nothing comes, or the sweep is held', () => {
  const model = new Model(defaultView());
  model.connection.state = 'connected';
  assert.equal(model.staleReason(0), 'no sweep yet');
  model.takeFrame(frame([levels(-100, -50, 80)], { chain: 'A' }), 1000);
  assert.equal(model.staleReason(2000), '');
  assert.equal(model.staleReason(60_000), 'no new sweep');
  model.connection.state = 'lost';
  assert.equal(model.staleReason(1000), 'connection lost');
});

test('the zoom stays inside the sweep and never shows less than some bins', () => {
  const model = new Model(defaultView());
  model.takeFrame(frame([levels(-100, -50, 80)], { chain: 'A' }), 0);
  model.setZoom({ low: 2400, high: 2420 });
  near(model.zoom().low, 2416.84375, 1e-9);
  near(model.zoom().high - model.zoom().low, 20, 1e-9);
  model.zoomBy(1000, 2430);
  near(model.zoom().high - model.zoom().low, 1.25, 1e-9);
  model.zoomBy(1e-6, NaN);
  assert.equal(model.view.zoom, null);
});

test('the ring keeps the newest rows', () => {
  const ring = new LevelRing(2, 3);
  for (let k = 1; k <= 4; ++k) ring.push([k, -k], 10 * k);
  assert.deepEqual([ring.length, ring.total, ring.time(0), ring.time(2)], [3, 4, 40, 20]);
  assert.deepEqual([...ring.row(1)], [3, -3]);
});

test('completion offers keys, and the values of the key before', () => {
  const row = (name: string, argument: KeyRow['argument'], values: string[] = []): KeyRow => ({
    name,
    argument,
    values,
    placeholder: '',
    group: '',
    help: '',
  });
  const keys = [
    row('-band', 'text', ['2.4', '5.2']),
    row('-bandwidth', 'text', ['20']),
    row('-save_IQ', 'text'),
    row('-trigger_now', 'none'),
  ];
  assert.deepEqual(
    completions('-BAND', keys).map((offer) => offer.line),
    ['-band ', '-bandwidth '],
  );
  assert.deepEqual(
    completions('-band 5', keys).map((offer) => offer.line),
    ['-band 5.2 '],
  );
  assert.deepEqual(
    completions('-trigger_now -save_i', keys).map((offer) => offer.line),
    ['-trigger_now -save_IQ '],
  );
  assert.equal(lineOf([['-save_all', 'my "file"'], ['-trigger_now']]), '-save_all "my file" -trigger_now');
  assert.equal(clearHoldsLine({ '-maxhold': 'true' }), '-maxhold false -maxhold true -clear_average');
});

test('a damaged stored view falls back to defaults, part by part', () => {
  assert.deepEqual(viewFromText('{"tab":'), defaultView());
  assert.deepEqual(viewFromText('[1]'), defaultView());
  const view = viewFromText('{"tab":"nonsense","reference_dbm":-60,"perDivision_db":"wide","markers":{},"evil":1}');
  assert.deepEqual([view.tab, view.reference_dbm, view.perDivision_db, view.markers], ['spectrum', -60, 10, []]);
});

test('levels fit the plot, and times read like a clock', () => {
  assert.deepEqual(fitLevels(-112, -48), { reference_dbm: -45, perDivision_db: 10 });
  assert.equal(since('2026-01-31T14:00:00Z', Date.parse('2026-01-31T16:05:10Z')), '2 h 5 min');
});

test('a dropped file is known by its name and its first line', () => {
  const name = 'BAND_5.2_CHANNEL_36_BW_20_CHAIN_A_run7.txt';
  const cases: [string, string, string][] = [
    [name, '33 ,-8\n1 ,-44\n', 'capture'],
    ['run7.txt', '33 ,-8\n', 'capture without tuning'],
    ['BAND_5.2_CHANNEL_36_BW_20_CHAIN_A.txt', '33 ,-8\n', 'capture without tuning'],
    [name, 'm_Average_0[512],m_Average_1[512],', 'snapshot'],
    ['limits.csv', 'band,width,channel,limit_dbm\n2.4,20,1,-90\n', 'other'],
    [name, '', 'other'],
  ];
  for (const [file, head, kind] of cases) assert.equal(fileKind(file, head), kind, `${file}: ${head}`);
});
