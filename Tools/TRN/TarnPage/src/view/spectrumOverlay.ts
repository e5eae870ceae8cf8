// What the spectrum shows beside its traces: the channel, the limit, the markers.
import type uPlot from 'uplot';
import { nearestBin } from '../model/axis';
import { Marker } from '../model/markers';
import { Model } from '../model/model';
import type { Palette } from './dom';

/** The channel's width, under the traces. */
export function drawOverBack(plot: uPlot, model: Model, colours: Palette): void {
  const { ctx, bbox } = plot;
  ctx.save();
  ctx.fillStyle = colours.back;
  ctx.fillRect(bbox.left, bbox.top, bbox.width, bbox.height);
  const tuning = model.traces.tuning;
  if (tuning) {
    clip(plot);
    const left = plot.valToPos(tuning.centre_mhz - tuning.bandwidth_mhz / 2, 'x', true);
    const right = plot.valToPos(tuning.centre_mhz + tuning.bandwidth_mhz / 2, 'x', true);
    ctx.fillStyle = colours.channel;
    ctx.fillRect(left, bbox.top, right - left, bbox.height);
    ctx.strokeStyle = colours.edge;
    ctx.lineWidth = devicePixelRatio;
    ctx.setLineDash([6 * devicePixelRatio, 4 * devicePixelRatio]);
    ctx.beginPath();
    for (const x of [left, right]) {
      ctx.moveTo(x, bbox.top);
      ctx.lineTo(x, bbox.top + bbox.height);
    }
    ctx.stroke();
  }
  ctx.restore();
}

/** Limit and markers, above the traces. */
export function drawOverTraces(plot: uPlot, model: Model, colours: Palette, chains: number[]): void {
  plot.ctx.save();
  clip(plot);
  plot.ctx.font = `${12 * devicePixelRatio}px system-ui, sans-serif`;
  drawLimit(plot, model, colours);
  for (const marker of model.markers.markers)
    if (chains.includes(marker.chain)) drawMarker(plot, model, colours, marker);
  plot.ctx.restore();
}

function clip(plot: uPlot): void {
  const { left, top, width, height } = plot.bbox;
  plot.ctx.beginPath();
  plot.ctx.rect(left, top, width, height);
  plot.ctx.clip();
}

/**
 * A limit over frequency, point by point; or one on the channel's power, drawn as the level of a bin if the power were
 * spread evenly over the channel.
 */
function drawLimit(plot: uPlot, model: Model, colours: Palette): void {
  const tuning = model.traces.tuning;
  const limits = model.host?.limits;
  if (!tuning || !limits) return;
  const limit = model.traces.frame?.facts.verdicts.find((verdict) => verdict.limit_dbm !== null)?.limit_dbm;
  let points = limits.line;
  let text = `limit ${limits.text}, dBm/${tuning.rbw_khz} kHz`;
  if (!points.length) {
    if (limit === null || limit === undefined) return;
    const spread = limit - 10 * Math.log10((tuning.bandwidth_mhz * 1000) / tuning.rbw_khz);
    points = [-1, 1].map((side) => [tuning.centre_mhz + (side * tuning.bandwidth_mhz) / 2, spread]);
    text = `limit ${limit} dBm/${tuning.bandwidth_mhz} MHz, evenly spread`;
  }
  const { ctx } = plot;
  const r = devicePixelRatio;
  const place = ([mhz, level]: [number, number]): [number, number] => [
    plot.valToPos(mhz, 'x', true),
    plot.valToPos(level, 'y', true),
  ];
  ctx.strokeStyle = ctx.fillStyle = colours.limit;
  // the limit, and under it where the margin begins
  for (const [below, width, dash] of [
    [0, 2, [12, 4]],
    [limits.margin_db, 1, [2, 4]],
  ] as [number, number, number[]][]) {
    ctx.lineWidth = width * r;
    ctx.setLineDash(dash.map((length) => length * r));
    ctx.beginPath();
    for (const [mhz, level] of points) ctx.lineTo(...place([mhz, level - below]));
    ctx.stroke();
  }
  const { low, high } = model.zoom();
  if (points[0][0] < high && points[points.length - 1][0] > low) label(plot, colours, text);
}

/** A text in the plot's upper right corner that traces behind it don't blur. */
function label(plot: uPlot, colours: Palette, text: string): void {
  const { ctx, bbox } = plot;
  const r = devicePixelRatio;
  const colour = ctx.fillStyle;
  const width = ctx.measureText(text).width;
  const left = Math.max(bbox.left, bbox.left + bbox.width - width - 6 * r);
  const base = bbox.top + 16 * r;
  ctx.fillStyle = colours.back;
  ctx.fillRect(left - 3 * r, base - 12 * r, width + 6 * r, 16 * r);
  ctx.fillStyle = colour;
  ctx.textAlign = 'left';
  ctx.fillText(text, left, base);
}

function drawMarker(plot: uPlot, model: Model, colours: Palette, marker: Marker): void {
  const reading = model.markers.read(marker, model.traces);
  if (!Number.isFinite(reading.level)) return;
  const { ctx, bbox } = plot;
  const r = devicePixelRatio;
  const x = plot.valToPos(reading.mhz, 'x', true);
  const scale = marker.trace === 'difference' ? 'dB' : 'y';
  const y = Math.min(
    bbox.top + bbox.height - 2 * r,
    Math.max(bbox.top + 20 * r, plot.valToPos(reading.level, scale, true)),
  );
  const isSelected = marker.id === model.markers.selected;
  ctx.strokeStyle = ctx.fillStyle = colours.marker;
  ctx.lineWidth = 1.5 * r;
  ctx.setLineDash([]);
  ctx.beginPath();
  ctx.moveTo(x, y - 2 * r);
  ctx.lineTo(x - 6 * r, y - 13 * r);
  ctx.lineTo(x + 6 * r, y - 13 * r);
  ctx.closePath();
  if (isSelected) ctx.fill();
  else ctx.stroke();
  ctx.textAlign = 'center';
  ctx.fillText(reading.name, x, y - 17 * r);
}

/** The marker within a finger's reach of a place on the plot, in CSS pixels from its left edge. */
export function markerNear(plot: uPlot, model: Model, chains: number[], left: number): Marker | undefined {
  const reach = 9;
  const axis = model.traces.axis;
  if (!axis.bins) return undefined;
  const distance = (marker: Marker) => Math.abs(plot.valToPos(marker.mhz, 'x') - left);
  return model.markers.markers
    .filter((marker) => chains.includes(marker.chain) && distance(marker) <= reach && nearestBin(axis, marker.mhz) >= 0)
    .sort((a, b) => distance(a) - distance(b))[0];
}
