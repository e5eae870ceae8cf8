// All channels visited, with bars: the table that a scan fills.
import { Model } from '../model/model';
import { ChannelRow } from '../model/protocol';
import { dbm, utcTime } from '../model/text';
import { api } from '../net/api';
import { Actions } from './actions';
import { download, el } from './dom';

const barLow_dbm = -120;
const barHigh_dbm = -30;

export function channelsView(model: Model, actions: Actions): HTMLElement {
  const body = el('tbody');
  const sweeps = el('input', {
    type: 'number',
    min: 1,
    max: 1000,
    value: 5,
    id: 'scan_sweeps',
    'aria-label': 'Sweeps of each channel',
  });
  const allBands = el('input', {
    type: 'checkbox',
    onchange: () => {
      model.view.allBandsScan = allBands.checked;
      model.tell('view');
    },
  });
  allBands.checked = model.view.allBandsScan;
  const scan = el(
    'button',
    {
      id: 'scan',
      title: 'Measure every channel of this band and width',
      onclick: () =>
        void (model.host?.run.mode === 'scan'
          ? actions.run('hold')
          : actions.run('scan', { sweeps: Number(sweeps.value), allBands: allBands.checked })),
    },
    'Scan all channels',
  );
  const progress = el('progress', { max: 1, value: 0, 'aria-label': 'Progress of the scan' });
  const empty = el(
    'p',
    { class: 'empty' },
    'No channel measured yet: Scan all channels fills this table, and so does every channel you visit.',
  );
  const head = el(
    'thead',
    {},
    el(
      'tr',
      {},
      ...[
        'Band',
        'Width',
        'Channel',
        'MHz',
        'A, dBm',
        'B, dBm',
        'Power over the channel',
        'Limit',
        'Verdict',
        'UTC',
      ].map((title) => el('th', {}, title)),
    ),
  );
  const root = el(
    'div',
    { class: 'view scroll' },
    el(
      'div',
      { class: 'bar' },
      scan,
      el('label', { class: 'check' }, 'sweeps each ', sweeps),
      el('label', { class: 'check' }, allBands, 'all bands'),
      progress,
      el(
        'button',
        { onclick: () => download('channels.csv', new Blob([csv(model.channels)], { type: 'text/csv' })) },
        'CSV',
      ),
      el('button', { onclick: () => void actions.guarded(api.clearChannels) }, 'Clear'),
    ),
    empty,
    el('table', { class: 'channels' }, head, body),
  );

  function row(entry: ChannelRow): HTMLElement {
    const isHere =
      model.traces.tuning?.channel === entry.channel && String(model.traces.tuning?.bandwidth_mhz) === entry.bandwidth;
    return el(
      'tr',
      {
        class: isHere ? 'selected' : '',
        title: 'Tune to this channel',
        'data-channel': entry.channel,
        onclick: () =>
          void actions.set(['-band', entry.band], ['-bandwidth', entry.bandwidth], ['-channel', String(entry.channel)]),
      },
      el('td', {}, entry.band),
      el('td', {}, `${entry.bandwidth} MHz`),
      el('td', {}, String(entry.channel)),
      el('td', { class: 'number' }, String(entry.centre_mhz)),
      el('td', { class: 'number' }, dbm(entry.powerA, 1)),
      el('td', { class: 'number' }, dbm(entry.powerB, 1)),
      el('td', { class: 'bars' }, bar(entry.powerA, 'A', entry.limit_dbm), bar(entry.powerB, 'B', entry.limit_dbm)),
      el('td', { class: 'number' }, entry.limit_dbm === null ? '' : String(entry.limit_dbm)),
      el('td', { class: entry.verdict }, entry.verdict),
      el('td', {}, utcTime(entry.utc)),
    );
  }
  function show(): void {
    empty.hidden = model.channels.length > 0;
    body.replaceChildren(...model.channels.map(row));
  }
  model.on(['channels', 'tuning'], show);
  model.on(['state'], () => {
    const isScanning = model.host?.run.mode === 'scan';
    scan.textContent = isScanning ? 'Stop the scan' : 'Scan all channels';
    progress.hidden = !isScanning || !model.progress;
    if (model.progress) Object.assign(progress, { max: model.progress.total, value: model.progress.done });
  });
  show();
  return root;
}

function bar(power: number | null, chain: string, limit: number | null): Node {
  if (power === null) return document.createTextNode('');
  const part = (level: number) =>
    `${Math.min(100, Math.max(0, ((level - barLow_dbm) / (barHigh_dbm - barLow_dbm)) * 100)).toFixed(1)}%`;
  const inner = el('span', { class: `inner chain${chain}` });
  inner.style.width = part(power);
  const outer = el(
    'div',
    {
      class: 'outer',
      title: `chain ${chain}: ${dbm(power)} dBm, the bar runs from ${barLow_dbm} to ${barHigh_dbm} dBm`,
    },
    inner,
  );
  if (limit !== null) {
    const mark = el('span', { class: 'mark' });
    mark.style.left = part(limit);
    outer.append(mark);
  }
  return outer;
}

function csv(rows: ChannelRow[]): string {
  const lines = rows.map((row) =>
    [
      row.band,
      row.bandwidth,
      row.channel,
      row.centre_mhz,
      row.powerA ?? '',
      row.powerB ?? '',
      row.limit_dbm ?? '',
      row.verdict,
      row.utc,
    ].join(','),
  );
  return (
    [
      'Band (GHz),Bandwidth (MHz),Channel,Centre (MHz),Chain A (dBm),Chain B (dBm),Limit (dBm),Verdict,UTC',
      ...lines,
    ].join('\n') + '\n'
  );
}
