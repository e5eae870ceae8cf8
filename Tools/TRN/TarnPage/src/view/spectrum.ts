// The spectrum: uPlot behind arrays that are already reduced to minimum and maximum of each pixel column.
import uPlot from 'uplot';
import { Axis, binMhz, binsInside, columnsMinMax, nearestBin, Range } from '../model/axis';
import { Model } from '../model/model';
import { TraceKind, traceKinds, traceTitles } from '../model/traces';
import { levelRange } from '../model/view';
import { dashes, palette, widths } from './dom';
import { drawOverBack, drawOverTraces, markerNear } from './spectrumOverlay';

export const gutter = { left: 64, right: 52 };
const mostColumns = 4096;

interface Line {
  kind: TraceKind;
  chain: number;
}

export class SpectrumPlot {
  private plot: uPlot;
  private lines: Line[] = [];
  private x = new Float64Array(2 * mostColumns + 4);
  private y: Float64Array[] = [];
  private dragged = 0;

  /** @param chains indices of the chains that this plot shows */
  constructor(
    private host: HTMLElement,
    private model: Model,
    private chains: number[],
  ) {
    for (const chain of chains) for (const kind of traceKinds) this.lines.push({ kind, chain });
    this.y = this.lines.map(() => new Float64Array(this.x.length));
    this.plot = new uPlot(this.options(), [[], ...this.lines.map(() => [])] as unknown as uPlot.AlignedData, host);
    this.listen();
  }

  destroy(): void {
    this.plot.destroy();
  }

  /** Left edge and width of the drawing area in CSS pixels, for what is drawn under the same axis. */
  area(): { left: number; width: number } {
    return { left: this.plot.bbox.left / devicePixelRatio, width: this.plot.bbox.width / devicePixelRatio };
  }

  draw(): void {
    const size = { width: this.host.clientWidth, height: this.host.clientHeight };
    if (size.width < 50 || size.height < 50) return;
    if (size.width !== this.plot.width || size.height !== this.plot.height) this.plot.setSize(size);
    const zoom = this.model.zoom();
    const data = this.reduce(
      this.model.traces.axis,
      zoom,
      Math.min(mostColumns, Math.max(1, Math.floor(this.area().width))),
    );
    this.plot.batch(() => {
      this.lines.forEach((line, k) => {
        const show = this.model.view.shown[line.kind];
        if (this.plot.series[k + 1].show !== show) this.plot.setSeries(k + 1, { show });
      });
      this.plot.setData(data as unknown as uPlot.AlignedData, false);
      this.plot.setScale('x', { min: zoom.low, max: zoom.high });
      const levels = levelRange(this.model.view);
      this.plot.setScale('y', { min: levels.low, max: levels.high });
      this.plot.setScale('dB', { min: -5 * this.model.view.perDivision_db, max: 5 * this.model.view.perDivision_db });
    });
  }

  /** The picture on the screen. */
  canvas(): HTMLCanvasElement {
    return this.plot.ctx.canvas;
  }

  private reduce(axis: Axis, zoom: Range, columns: number): ArrayLike<number>[] {
    const { first, end } = binsInside(axis, zoom);
    const levelsOf = (line: Line) =>
      this.model.view.shown[line.kind] ? this.model.traces.levels(line.kind, line.chain) : undefined;
    if (end - first <= 2 * columns) {
      const from = Math.max(0, first - 1);
      const to = Math.min(axis.bins, end + 1);
      const count = Math.max(0, to - from);
      for (let k = 0; k < count; ++k) this.x[k] = binMhz(axis, from + k);
      this.lines.forEach((line, row) => {
        const levels = levelsOf(line);
        for (let k = 0; k < count; ++k) this.y[row][k] = levels ? levels[from + k] : NaN;
      });
      return [this.x.subarray(0, count), ...this.y.map((row) => row.subarray(0, count))];
    }
    const step = (zoom.high - zoom.low) / columns;
    for (let column = 0; column < columns; ++column)
      this.x[2 * column] = this.x[2 * column + 1] = zoom.low + (column + 0.5) * step;
    this.lines.forEach((line, row) => {
      const levels = levelsOf(line);
      if (levels) columnsMinMax(levels, axis, zoom, columns, this.y[row]);
      else this.y[row].fill(NaN, 0, 2 * columns);
    });
    return [this.x.subarray(0, 2 * columns), ...this.y.map((row) => row.subarray(0, 2 * columns))];
  }

  private options(): uPlot.Options {
    const axis = {
      stroke: () => palette().text,
      grid: { stroke: () => palette().grid, width: 1 },
      ticks: { show: false },
    };
    const font = '12px system-ui, sans-serif';
    return {
      width: Math.max(100, this.host.clientWidth),
      height: Math.max(100, this.host.clientHeight),
      padding: [8, 0, 0, 0],
      legend: { show: false },
      scales: { x: { time: false, auto: false }, y: { auto: false }, dB: { auto: false } },
      series: [{}, ...this.lines.map((line) => this.series(line))],
      axes: [
        { ...axis, font, size: 28, values: (_, splits) => splits.map((mhz) => String(+mhz.toFixed(4))), space: 90 },
        { ...axis, scale: 'y', font, size: gutter.left, space: 20, splits: () => this.levelSplits() },
        {
          ...axis,
          scale: 'dB',
          side: 1,
          font,
          size: gutter.right,
          space: 26,
          grid: { show: false },
          values: (_, splits) =>
            splits.map((level) => (this.model.view.shown.difference ? `${level > 0 ? '+' : ''}${level} dB` : '')),
        },
      ],
      cursor: {
        points: { show: false },
        drag: { x: true, y: false, setScale: false },
        bind: { mousedown: (_, __, handler) => (event) => (this.grab(event) ? null : handler(event)) },
      },
      hooks: {
        drawClear: [(plot) => drawOverBack(plot, this.model, palette())],
        draw: [(plot) => drawOverTraces(plot, this.model, palette(), this.chains)],
        setSelect: [(plot) => this.zoomToSelection(plot)],
        setCursor: [(plot) => this.moveCursor(plot)],
      },
    };
  }

  private levelSplits(): number[] {
    const { low } = levelRange(this.model.view);
    return Array.from({ length: 11 }, (_, k) => low + k * this.model.view.perDivision_db);
  }

  private series(line: Line): uPlot.Series {
    const dash = line.chain && this.chains.length > 1 ? [...dashes[line.kind], 5, 3] : dashes[line.kind];
    return {
      label: `${traceTitles[line.kind]} ${line.chain}`,
      scale: line.kind === 'difference' ? 'dB' : 'y',
      stroke: () => this.stroke(line),
      width: widths[line.kind],
      dash,
      points: { show: false },
      paths: tracePath,
    };
  }

  private stroke(line: Line): string {
    const colour = palette().traces[line.kind];
    const isDoubtful =
      (line.kind === 'reference' || line.kind === 'difference') && this.model.traces.referenceMismatch() !== '';
    return isDoubtful ? `${colour}66` : colour;
  }

  private zoomToSelection(plot: uPlot): void {
    const { left, width } = plot.select;
    if (width < 4) return;
    this.model.setZoom({ low: plot.posToVal(left, 'x'), high: plot.posToVal(left + width, 'x') });
    plot.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
  }

  private moveCursor(plot: uPlot): void {
    const left = plot.cursor.left ?? -1;
    const mhz = left >= 0 ? plot.posToVal(left, 'x') : NaN;
    if (Object.is(mhz, this.model.cursor_mhz)) return;
    this.model.cursor_mhz = mhz;
    const marker = this.model.markers.markers.find((candidate) => candidate.id === this.dragged);
    if (marker && Number.isFinite(mhz)) {
      marker.mhz = binMhz(this.model.traces.axis, nearestBin(this.model.traces.axis, mhz));
      this.model.tell('markers');
    } else {
      this.model.tell('view');
    }
  }

  /** Takes the marker under the pointer, if there is one, so that dragging moves it instead of zooming. */
  private grab(event: MouseEvent): boolean {
    const box = this.plot.over.getBoundingClientRect();
    const found = markerNear(this.plot, this.model, this.chains, event.clientX - box.left);
    this.dragged = found?.id ?? 0;
    if (!found) return false;
    this.model.markers.selected = found.id;
    this.model.tell('markers');
    return true;
  }

  private listen(): void {
    this.plot.over.addEventListener('wheel', (event) => {
      event.preventDefault();
      const box = this.plot.over.getBoundingClientRect();
      this.model.zoomBy(event.deltaY < 0 ? 1.25 : 0.8, this.plot.posToVal(event.clientX - box.left, 'x'));
    });
    this.plot.over.addEventListener('dblclick', () => this.model.setZoom(null));
    window.addEventListener('mouseup', () => (this.dragged = 0));
  }
}

/** A polyline through the points as they are; NaN leaves a gap, and no power at all lies under the plot. */
function tracePath(plot: uPlot, index: number, first: number, last: number): uPlot.Series.Paths | null {
  const path = new Path2D();
  const xs = plot.data[0] as unknown as Float64Array;
  const ys = plot.data[index] as unknown as Float64Array;
  const scale = plot.series[index].scale ?? 'y';
  let isOpen = false;
  for (let k = first; k <= last; ++k) {
    const level = ys[k];
    if (Number.isNaN(level)) {
      isOpen = false;
      continue;
    }
    const x = plot.valToPos(xs[k], 'x', true);
    const y = plot.valToPos(Math.max(level, -1000), scale, true);
    if (isOpen) path.lineTo(x, y);
    else path.moveTo(x, y);
    isOpen = true;
  }
  return { stroke: path, fill: null, clip: null, band: null, gaps: null, flags: 1 } as unknown as uPlot.Series.Paths;
}
