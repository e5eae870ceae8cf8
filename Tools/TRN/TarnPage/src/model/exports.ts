// The shown traces as CSV and as SVG, with the settings in them.
import { Axis, binMhz, binsInside, columnsMinMax, Range, ticks } from './axis';
import { TraceKind, traceKinds, TraceSet, traceTitles } from './traces';

export function settingsText(traces: TraceSet): string {
  const tuning = traces.tuning;
  if (!tuning) return 'nothing measured';
  const facts = traces.frame?.facts;
  const average = facts?.average ? `, average ${facts.averageCount}/${facts.averageTarget}` : '';
  return (
    `Band ${tuning.band} GHz, channel ${tuning.channel}, ${tuning.bandwidth_mhz} MHz, chain ${tuning.chain}, ` +
    `RBW ${tuning.rbw_khz} kHz${average}, ${facts?.source || traces.frame?.utc || ''}`
  );
}

/** One line a bin: frequency, then each trace of each chain in dBm in one RBW. */
export function csvText(traces: TraceSet): string {
  const columns: { title: string; levels: ArrayLike<number> }[] = [];
  traces.chains().forEach((chain, index) => {
    for (const kind of traceKinds) {
      const levels = traces.levels(kind, index);
      const unit = kind === 'difference' ? 'dB' : `dBm/${traces.axis.rbw_khz} kHz`;
      if (levels) columns.push({ title: `${traceTitles[kind]} ${chain} (${unit})`, levels });
    }
  });
  const lines = [`# ${settingsText(traces)}`, ['Frequency (MHz)', ...columns.map((column) => column.title)].join(',')];
  for (let bin = 0; bin < traces.axis.bins; ++bin)
    lines.push([binMhz(traces.axis, bin).toFixed(6), ...columns.map((column) => cell(column.levels[bin]))].join(','));
  return lines.join('\n') + '\n';
}

function cell(level: number): string {
  return Number.isFinite(level) ? level.toFixed(3) : '';
}

function escapeXml(text: string): string {
  return text.replaceAll('&', '&amp;').replaceAll('<', '&lt;').replaceAll('>', '&gt;').replaceAll('"', '&quot;');
}

export interface PictureOptions {
  zoom: Range;
  levels: Range;
  shown: Record<TraceKind, boolean>;
  colours: Record<TraceKind, string>;
  notes: string[];
}

const box = { left: 70, top: 50, width: 860, height: 430 };

/** A picture of its own, not a copy of the screen: 1000 by 580, light, ready for a report. */
export function svgText(traces: TraceSet, options: PictureOptions): string {
  const x = (mhz: number) => box.left + ((mhz - options.zoom.low) / (options.zoom.high - options.zoom.low)) * box.width;
  const y = (level: number) => {
    const part = (options.levels.high - level) / (options.levels.high - options.levels.low);
    return box.top + Math.min(1, Math.max(0, part)) * box.height;
  };
  const parts = [
    '<svg xmlns="http://www.w3.org/2000/svg" width="1000" height="580" font-family="sans-serif" font-size="12">',
    '<rect width="1000" height="580" fill="#fff"/>',
    `<text x="${box.left}" y="24" font-size="14">${escapeXml(settingsText(traces))}</text>`,
    ...options.notes.map((note, k) => `<text x="${box.left}" y="${42 + 15 * k}" fill="#555">${escapeXml(note)}</text>`),
  ];
  for (const level of ticks(options.levels, 10))
    parts.push(
      `<path d="M${box.left} ${y(level).toFixed(1)}h${box.width}" stroke="#ddd"/>` +
        `<text x="${box.left - 8}" y="${(y(level) + 4).toFixed(1)}" text-anchor="end">${level}</text>`,
    );
  for (const mhz of ticks(options.zoom, 10))
    parts.push(
      `<path d="M${x(mhz).toFixed(1)} ${box.top}v${box.height}" stroke="#ddd"/>` +
        `<text x="${x(mhz).toFixed(1)}" y="${box.top + box.height + 18}" text-anchor="middle">` +
        `${+mhz.toFixed(6)}</text>`,
    );
  parts.push(
    `<text x="${box.left + box.width / 2}" y="528" text-anchor="middle">MHz</text>`,
    `<text x="16" y="${box.top + box.height / 2}" text-anchor="middle" ` +
      `transform="rotate(-90 16 ${box.top + box.height / 2})">dBm/${traces.axis.rbw_khz} kHz</text>`,
  );
  let shown = 0;
  for (const kind of traceKinds) {
    if (!options.shown[kind] || kind === 'difference') continue;
    for (let chain = 0; chain < traces.chainCount(); ++chain) {
      const levels = traces.levels(kind, chain);
      if (!levels) continue;
      const dash = chain ? ' stroke-dasharray="5 3"' : '';
      const stroke = `fill="none" stroke="${options.colours[kind]}"${dash}`;
      parts.push(`<path d="${pathOf(levels, traces.axis, options.zoom, x, y)}" ${stroke}/>`);
      const title = `${traceTitles[kind]} ${traces.chains()[chain]}`;
      const left = box.left + 8 + 130 * (shown % 6);
      const top = 548 + 18 * Math.floor(shown / 6);
      parts.push(
        `<path d="M${left} ${top}h24" ${stroke} stroke-width="2"/><text x="${left + 30}" y="${top + 4}">${title}</text>`,
      );
      ++shown;
    }
  }
  parts.push(
    `<rect x="${box.left}" y="${box.top}" width="${box.width}" height="${box.height}" fill="none" stroke="#333"/>`,
  );
  return parts.join('\n') + '\n</svg>\n';
}

function pathOf(
  levels: ArrayLike<number>,
  axis: Axis,
  zoom: Range,
  x: (mhz: number) => number,
  y: (level: number) => number,
): string {
  const { first, end } = binsInside(axis, zoom);
  const points: [number, number][] = [];
  if (end - first <= box.width) {
    for (let bin = first; bin < end; ++bin) points.push([x(binMhz(axis, bin)), levels[bin]]);
  } else {
    const columns = new Float64Array(2 * box.width);
    columnsMinMax(levels, axis, zoom, box.width, columns);
    columns.forEach((level, k) => points.push([box.left + Math.floor(k / 2) + 0.5, level]));
  }
  return points
    .filter(([, level]) => Number.isFinite(level))
    .map(([px, level], k) => `${k ? 'L' : 'M'}${px.toFixed(1)} ${y(level).toFixed(1)}`)
    .join('');
}
