// The waterfall: each sweep is a row, colours are tied to the reference level, and a change of levels repaints.
import { Axis, binMhz, nearestBin, Range } from '../model/axis';
import { colourIndex, colourTable, colourText } from '../model/colours';
import { Model } from '../model/model';
import { dbm, utcTime } from '../model/text';
import { levelRange } from '../model/view';
import { el, palette } from './dom';
import { gutter } from './spectrum';

export class Waterfall {
  readonly root = el('div', {
    class: 'waterfall',
    role: 'img',
    'aria-label': 'Waterfall: level over frequency and time',
  });
  private image = el('canvas');
  private times = el('canvas', { class: 'times' });
  private scale = el('canvas', { class: 'scale' });
  private context = this.image.getContext('2d', { alpha: false })!;
  private row: ImageData | undefined;
  /** First bin of each column, and one behind the last column's bins. */
  private edges = new Int32Array(0);
  private drawn = '';
  private shown = 0;
  private labels_ms = 0;

  constructor(private model: Model) {
    this.root.append(this.times, this.image, this.scale);
  }

  draw(now_ms: number): void {
    const width = this.root.clientWidth - gutter.left - gutter.right;
    const height = this.root.clientHeight;
    const ring = this.model.rings[Math.min(this.model.view.waterfallChain, this.model.rings.length - 1)];
    if (width < 20 || height < 10 || !ring) return;
    const zoom = this.model.zoom();
    const levels = levelRange(this.model.view);
    const chain = this.model.view.waterfallChain;
    const state = [
      width,
      height,
      zoom.low,
      zoom.high,
      levels.low,
      levels.high,
      chain,
      this.model.traces.epoch,
      palette().back,
    ].join();
    if (state !== this.drawn) {
      this.drawn = state;
      this.fit(width, height, this.model.traces.axis, zoom);
      this.context.fillStyle = palette().back;
      this.context.fillRect(0, 0, width, height);
      for (let age = Math.min(ring.length, height) - 1; age >= 0; --age) this.paint(ring.row(age), age, levels);
      this.drawScale(height, levels);
      this.labels_ms = 0;
    } else if (ring.total !== this.shown) {
      const rows = Math.min(ring.total - this.shown, ring.length, height - 1);
      this.context.drawImage(this.image, 0, 0, width, height - rows, 0, rows, width, height - rows);
      for (let age = rows - 1; age >= 0; --age) this.paint(ring.row(age), age, levels);
    }
    this.shown = ring.total;
    if (now_ms - this.labels_ms > 400) {
      this.labels_ms = now_ms;
      this.drawTimes(height, Math.min(ring.length, height), (age) => ring.time(age));
    }
  }

  canvas(): HTMLCanvasElement {
    return this.image;
  }

  private fit(width: number, height: number, axis: Axis, zoom: Range): void {
    this.image.width = width;
    this.image.height = height;
    this.row = this.context.createImageData(width, 1);
    this.edges = new Int32Array(width + 1);
    for (let column = 0; column <= width; ++column) {
      const mhz = zoom.low + ((zoom.high - zoom.low) * column) / width;
      const bin = nearestBin(axis, mhz);
      this.edges[column] = binMhz(axis, bin) < mhz ? bin + 1 : bin;
    }
  }

  private paint(row: Float32Array, y: number, levels: Range): void {
    const words = new Uint32Array(this.row!.data.buffer);
    for (let column = 0; column < words.length; ++column) {
      const first = Math.min(this.edges[column], row.length - 1);
      let highest = row[first];
      for (let bin = first + 1; bin < this.edges[column + 1]; ++bin) if (row[bin] > highest) highest = row[bin];
      words[column] = colourTable[colourIndex(highest, levels.low, levels.high)];
    }
    this.context.putImageData(this.row!, 0, y);
  }

  private drawTimes(height: number, rows: number, timeOf: (age: number) => number): void {
    const context = prepare(this.times, gutter.left, height);
    context.fillStyle = palette().text;
    context.textAlign = 'right';
    let last = '';
    for (let y = 10; y < rows; y += 28) {
      const text = utcTime(timeOf(y));
      if (text !== last) context.fillText(text, gutter.left - 8, y + 4);
      last = text;
    }
  }

  private drawScale(height: number, levels: Range): void {
    const context = prepare(this.scale, gutter.right, height);
    for (let y = 0; y < height; ++y) {
      context.fillStyle = colourText(255 - Math.round((255 * y) / Math.max(1, height - 1)));
      context.fillRect(6, y, 10, 1);
    }
    context.fillStyle = palette().text;
    context.fillText(dbm(levels.high, 0), 20, 11);
    context.fillText(dbm((levels.low + levels.high) / 2, 0), 20, height / 2 + 4);
    context.fillText(dbm(levels.low, 0), 20, height - 3);
  }
}

function prepare(canvas: HTMLCanvasElement, width: number, height: number): CanvasRenderingContext2D {
  canvas.width = width * devicePixelRatio;
  canvas.height = height * devicePixelRatio;
  const context = canvas.getContext('2d')!;
  context.scale(devicePixelRatio, devicePixelRatio);
  context.font = '11px system-ui, sans-serif';
  return context;
}
