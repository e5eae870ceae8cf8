// The views of the converter's codes: I and Q over time, the constellation, and the histograms.
import { Model } from '../model/model';
import { el, palette } from './dom';
import { Area, drawAxes, fitCanvas } from './plots';
import type { Readout } from './readouts';

const firstSamples = 512;
const constellationPoints = 6000;

export function iqView(model: Model): Readout {
  const canvas = el('canvas', {
    class: 'fill',
    role: 'img',
    'aria-label': 'I and Q samples over time, and as a constellation',
  });
  const empty = el('p', { class: 'empty' });
  const root = el('div', { class: 'view' }, empty, canvas);
  function draw(): void {
    const frame = model.traces.frame;
    empty.textContent = frame?.iq.length ? '' : 'Waiting for the next sweep’s samples. Press Single or Run.';
    if (!frame?.iq.length) return;
    const context = fitCanvas(canvas);
    if (!context) return;
    const height = canvas.clientHeight / frame.iq.length;
    const square = Math.max(60, Math.min(height - 70, canvas.clientWidth * 0.4));
    frame.iq.forEach(({ i, q }, chain) => {
      const top = chain * height + 26;
      const name = `Chain ${model.traces.chains()[chain] ?? chain}`;
      const most = Math.max(16, extent(i), extent(q)) * 1.05;
      const levels = { low: -most, high: most };
      const time: Area = { left: 60, top, width: canvas.clientWidth - square - 150, height: height - 66 };
      const rate_mhz = (model.traces.axis.bins * model.traces.axis.rbw_khz) / 1000;
      const count = Math.min(firstSamples, i.length);
      const map = drawAxes(context, time, { low: 0, high: count / rate_mhz }, levels, {
        title: name,
        x: `µs, first ${count} of ${i.length} samples`,
        y: 'ADC code, I solid, Q dashed',
      });
      trace(context, i, count, (k) => map.x(k / rate_mhz), map.y, palette().traces.average, []);
      trace(context, q, count, (k) => map.x(k / rate_mhz), map.y, palette().traces.maxHold, [4, 3]);
      const place: Area = { left: canvas.clientWidth - square - 16, top, width: square, height: square };
      const at = drawAxes(context, place, levels, levels, { title: name, x: 'I', y: 'Q over I, ADC code' });
      context.fillStyle = palette().traces.average;
      const step = Math.max(1, Math.floor(i.length / constellationPoints));
      for (let k = 0; k < i.length; k += step) context.fillRect(at.x(i[k]) - 0.5, at.y(q[k]) - 0.5, 1.2, 1.2);
    });
  }
  return { root, draw };
}

function extent(codes: Float32Array): number {
  let most = 0;
  for (const code of codes) if (Math.abs(code) > most) most = Math.abs(code);
  return most;
}

function trace(
  context: CanvasRenderingContext2D,
  codes: Float32Array,
  count: number,
  x: (k: number) => number,
  y: (code: number) => number,
  colour: string,
  dash: number[],
): void {
  context.save();
  context.strokeStyle = colour;
  context.setLineDash(dash);
  context.lineWidth = 1;
  context.beginPath();
  for (let k = 0; k < count; ++k) context.lineTo(x(k), y(codes[k]));
  context.stroke();
  context.restore();
}

const buckets = 20;

export function histogramView(model: Model): Readout {
  const canvas = el('canvas', { class: 'fill', role: 'img', 'aria-label': 'Histogram of the converter’s codes' });
  const empty = el('p', { class: 'empty' });
  const root = el('div', { class: 'view' }, empty, canvas);
  function draw(): void {
    const histograms = model.traces.frame?.histograms ?? [];
    const isOff = model.host?.settings['-histogram'] !== 'true';
    empty.textContent = isOff
      ? 'The histogram is off: switch Histogram on at the left.'
      : histograms.length
        ? ''
        : 'Waiting for the next sweep.';
    const context = fitCanvas(canvas);
    if (!context || !histograms.length || isOff) return;
    const height = canvas.clientHeight / histograms.length;
    histograms.forEach((histogram, chain) => {
      const most = Math.max(1, ...histogram.both, ...histogram.i, ...histogram.q) * 1.05;
      const area: Area = { left: 80, top: chain * height + 26, width: canvas.clientWidth - 110, height: height - 70 };
      const range = {
        low: histogram.lowest,
        high: histogram.highest > histogram.lowest ? histogram.highest : histogram.lowest + 1,
      };
      const name = `Chain ${model.traces.chains()[chain] ?? chain}`;
      const map = drawAxes(
        context,
        area,
        range,
        { low: 0, high: most },
        { title: name, x: 'ADC code', y: 'samples: I filled, Q outlined, I and Q together as a line' },
      );
      bars(context, histogram.i, range, map, (x, y, width, bottom) => {
        context.fillStyle = palette().traces.average;
        context.globalAlpha = 0.5;
        context.fillRect(x, y, width, bottom - y);
        context.globalAlpha = 1;
      });
      bars(context, histogram.q, range, map, (x, y, width, bottom) => {
        context.strokeStyle = palette().traces.maxHold;
        context.strokeRect(x, y, width, bottom - y);
      });
      context.strokeStyle = palette().text;
      context.lineWidth = 1.5;
      context.beginPath();
      bars(context, histogram.both, range, map, (x, y, width) => {
        context.lineTo(x, y);
        context.lineTo(x + width, y);
      });
      context.stroke();
    });
  }
  return { root, draw };
}

function bars(
  _: CanvasRenderingContext2D,
  counts: number[],
  range: { low: number; high: number },
  map: { x: (value: number) => number; y: (value: number) => number },
  bar: (x: number, y: number, width: number, bottom: number) => void,
): void {
  const step = (range.high - range.low) / buckets;
  counts.forEach((count, k) => {
    const x = map.x(range.low + k * step);
    bar(x, map.y(count), map.x(range.low + (k + 1) * step) - x, map.y(0));
  });
}
