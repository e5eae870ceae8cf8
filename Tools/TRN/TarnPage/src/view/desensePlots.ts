// The pictures of a desense test: a bar for each channel, and the spectrum of one of them.
import { DesenseGraph, DesenseRow } from '../model/desense';
import { fixed } from '../model/text';
import { el, palette } from './dom';
import { drawAxes, fitCanvas } from './plots';

const bandOrder = ['2.4', '5.2', '6-7'];
const left = 40;
const bottom = 34;
const top = 18;
/** A bar's number takes this width in CSS pixels: of narrower bars only every n-th is numbered. */
const numberWidth = 28;

export interface DesenseChart {
  root: HTMLCanvasElement;
  draw(rows: DesenseRow[], selected: DesenseRow | undefined): void;
}

/** Bars of desense by band and channel. What fails is filled, what is within the margin hatched, what passes outlined. */
export function desenseChart(select: (row: DesenseRow) => void): DesenseChart {
  const canvas = el('canvas', { class: 'desense_chart', role: 'img' });
  let shown: DesenseRow[] = [];
  const slot = () => (canvas.clientWidth - left - 8) / Math.max(1, shown.length);
  canvas.onclick = (event) => {
    const row = shown[Math.floor((event.offsetX - left) / slot())];
    if (row) select(row);
  };
  canvas.onmousemove = (event) => {
    const row = shown[Math.floor((event.offsetX - left) / slot())];
    canvas.title = row ? rowText(row) : '';
  };

  function draw(rows: DesenseRow[], selected: DesenseRow | undefined): void {
    shown = [...rows].sort(
      (a, b) => bandOrder.indexOf(a.band) - bandOrder.indexOf(b.band) || a.channel - b.channel,
    );
    canvas.setAttribute('aria-label', `Desense by channel: ${shown.map(rowText).join('; ') || 'nothing measured yet'}`);
    const context = fitCanvas(canvas);
    if (!context) return;
    const colours = palette();
    const values = shown.flatMap((row) => [row.desense_db ?? 0, row.idle_desense_db ?? 0]);
    const high = Math.max(5, ...values) * 1.08;
    const low = Math.min(0, ...values);
    const base = canvas.clientHeight - bottom;
    const y = (value: number) => base - ((value - low) / (high - low)) * (base - top);
    context.strokeStyle = colours.grid;
    context.fillStyle = colours.faint;
    context.textAlign = 'right';
    const step = [2, 5, 10, 20, 50].find((one) => (high - low) / one <= (base - top) / 14) ?? 100;
    for (let value = 0; value <= high; value += step) {
      context.strokeRect(left, y(value), canvas.clientWidth - left - 8, 0);
      context.fillText(String(value), left - 6, y(value) + 4);
    }
    context.textAlign = 'left';
    context.fillText('dB over the reference, by channel', left, 12);
    const width = slot();
    shown.forEach((row, k) => {
      const x = left + k * width;
      if (row === selected) {
        context.fillStyle = colours.channel;
        context.fillRect(x, top, width, base - top + 16);
      }
      drawBar(context, row, { x: x + width * 0.1, width: width * 0.8, y, base: y(0) });
      context.fillStyle = colours.text;
      context.textAlign = 'center';
      if (k % Math.ceil(numberWidth / width) === 0) {
        if (row.desense_db !== null)
          context.fillText(fixed(row.desense_db, 1), x + width / 2, y(Math.max(0, row.desense_db)) - 4);
        context.fillText(String(row.channel), x + width / 2, base + 13);
      }
      if (k === 0 || shown[k - 1].band !== row.band) {
        context.textAlign = 'left';
        context.fillStyle = colours.faint;
        context.fillText(`${row.band} GHz`, x + 2, base + 28);
        context.fillRect(x, top, 1, base - top + 30);
      }
    });
  }
  return { root: canvas, draw };
}

interface BarPlace {
  x: number;
  width: number;
  y: (value: number) => number;
  base: number;
}

function drawBar(context: CanvasRenderingContext2D, row: DesenseRow, place: BarPlace): void {
  const colour = palette().verdicts[row.verdict || 'INVALID'];
  const { x, width, base } = place;
  const value = row.desense_db ?? 0;
  const height = base - place.y(value);
  context.save();
  context.strokeStyle = context.fillStyle = colour;
  context.globalAlpha = row.verdict === 'FAIL' ? 1 : row.verdict === 'MARGIN' ? 0.5 : 0.18;
  context.fillRect(x, base - height, width, height);
  context.globalAlpha = 1;
  context.lineWidth = 1.5;
  context.strokeRect(x, base - height, width, height);
  if (row.verdict === 'MARGIN') {
    context.beginPath();
    context.rect(x, base - height, width, height);
    context.clip();
    context.beginPath();
    for (let at = -height; at < width; at += 5) {
      context.moveTo(x + at, base);
      context.lineTo(x + at + height, base - height);
    }
    context.stroke();
  }
  context.restore();
  if (row.idle_desense_db !== null) {
    // what it was without load: a line across the bar
    context.fillStyle = palette().text;
    context.fillRect(x - 1, place.y(row.idle_desense_db) - 1, width + 2, 2);
  }
}

export function rowText(row: DesenseRow): string {
  const value = row.desense_db === null ? 'no desense yet' : `${fixed(row.desense_db, 1)} dB`;
  const idle = row.idle_desense_db === null ? '' : `, idle ${fixed(row.idle_desense_db, 1)} dB`;
  return `${row.band} GHz channel ${row.channel}: ${value}${idle}${row.verdict ? `, ${row.verdict}` : ''}`;
}

/** Average and maximum of every bin of a channel, chain B dashed. */
export function drawChannel(canvas: HTMLCanvasElement, graph: DesenseGraph, limit_dbm: number | null): void {
  const context = fitCanvas(canvas);
  if (!context) return;
  const half = graph.bandwidth_mhz / 2;
  const levels = graph.levels.flatMap((one) => [...one.average, ...one.maximum]).filter((level) => level !== null);
  if (limit_dbm !== null) levels.push(limit_dbm);
  if (!levels.length) return;
  const lowest = levels.reduce((a, b) => Math.min(a, b));
  const highest = levels.reduce((a, b) => Math.max(a, b));
  const map = drawAxes(
    context,
    { left: 48, top: 24, width: canvas.clientWidth - 62, height: canvas.clientHeight - 64 },
    { low: graph.centre_mhz - half, high: graph.centre_mhz + half },
    { low: Math.floor(lowest / 5) * 5, high: Math.ceil((highest + 1) / 5) * 5 },
    { title: '', x: 'MHz', y: 'dBm in one RBW' },
  );
  const line = (bins: (number | null)[], colour: string, width: number, dash: number[]) => {
    context.strokeStyle = colour;
    context.lineWidth = width;
    context.setLineDash(dash);
    context.beginPath();
    bins.forEach((level, k) => {
      const mhz = graph.centre_mhz - half + (k * graph.bandwidth_mhz) / bins.length;
      if (level !== null) context.lineTo(map.x(mhz), map.y(level));
    });
    context.stroke();
    context.setLineDash([]);
  };
  graph.levels.forEach(({ maximum }, k) => line(maximum, palette().traces.maxHold, 1, k ? [3, 3] : []));
  graph.levels.forEach(({ average }, k) => line(average, palette().traces.average, 1.8, k ? [6, 4] : []));
  if (limit_dbm === null) return;
  context.strokeStyle = palette().limit;
  context.setLineDash([10, 4]);
  context.beginPath();
  context.moveTo(map.x(graph.centre_mhz - half), map.y(limit_dbm));
  context.lineTo(map.x(graph.centre_mhz + half), map.y(limit_dbm));
  context.stroke();
  context.setLineDash([]);
}
