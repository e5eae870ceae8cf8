// The panels on the right: channel power, traces, markers, peaks, messages.
import { binMhz, findPeaks } from '../model/axis';
import { MarkerKind, markerKinds, markerTitles } from '../model/markers';
import { Model } from '../model/model';
import { ChainVerdict } from '../model/protocol';
import { dbm, since, utcTime } from '../model/text';
import { traceKinds, traceTitles } from '../model/traces';
import { Actions } from './actions';
import { el, section } from './dom';

/** Panels whose numbers follow the sweeps; `draw` is called at most once a frame. */
export interface Readout {
  root: HTMLElement;
  draw(now_ms: number): void;
}

export function powerPanel(model: Model): Readout {
  const root = el('section', { class: 'panel power', 'aria-label': 'Channel power', 'aria-live': 'off' });
  function draw(now_ms: number): void {
    const frame = model.traces.frame;
    const tuning = model.traces.tuning;
    if (!frame || !tuning) {
      root.replaceChildren(
        el(
          'p',
          { class: 'empty' },
          model.connection.state === 'connected' ? 'No sweep yet: press Run.' : 'Not connected yet.',
        ),
      );
      return;
    }
    const facts = frame.facts;
    const kind = facts.source
      ? `of the capture ${facts.source}`
      : facts.maxHold
      ? 'of the max hold'
      : facts.average
        ? `of the average (power), ${facts.averageCount}/${facts.averageTarget}`
        : 'of the last sweep';
    const unit = model.host?.limits?.line.length ? `dBm/${tuning.rbw_khz} kHz` : 'dBm';
    const rows = facts.verdicts.map((verdict) =>
      el(
        'div',
        { class: `big ${verdict.verdict}`, 'data-chain': verdict.chain },
        el('span', { class: 'level' }, dbm(verdict.power_dbm, 1)),
        el('span', { class: 'unit' }, ` dBm/${tuning.bandwidth_mhz} MHz`),
        el('div', { class: 'detail' }, `chain ${verdict.chain}`, verdict.verdict ? ` · ${verdictText(verdict, unit)}` : ''),
      ),
    );
    const hold = !facts.source && facts.maxHold && facts.holdSince ? `, holding since ${since(facts.holdSince, now_ms)}` : '';
    const stale = model.staleReason(now_ms);
    root.replaceChildren(
      el('h2', {}, `Channel ${tuning.channel}, ${tuning.centre_mhz} MHz`),
      ...rows,
      el('p', { class: 'detail' }, `${kind}${hold}`),
      el(
        'p',
        { class: 'detail' },
        stale ? `${stale}: of ${utcTime(frame.utc)} UTC` : `${utcTime(frame.utc)} UTC, sweep ${facts.sweeps}`,
      ),
    );
  }
  return { root, draw };
}

function verdictText({ limit_dbm, margin_db, verdict, reason }: ChainVerdict, unit: string): string {
  if (limit_dbm === null) return reason || verdict;
  const margin =
    margin_db === null ? '' : `, ${Math.abs(margin_db).toFixed(1)} dB ${margin_db >= 0 ? 'below' : 'above'}`;
  return `limit ${+limit_dbm.toFixed(1)} ${unit}: ${verdict}${margin}${reason ? ` (${reason})` : ''}`;
}

export function tracePanel(model: Model, actions: Actions): HTMLElement {
  const table = el('table', { class: 'traces' });
  const note = el('p', { class: 'detail', id: 'reference_note' });
  traceKinds.forEach((kind, index) => {
    const box = el('input', {
      type: 'checkbox',
      'aria-label': `Show ${traceTitles[kind]}`,
      id: `show-${kind}`,
      onchange: () => {
        model.view.shown[kind] = box.checked;
        model.tell('view');
      },
    });
    model.on(['view'], () => (box.checked = model.view.shown[kind]));
    box.checked = model.view.shown[kind];
    const canStore = kind === 'live' || kind === 'maxHold' || kind === 'average' || kind === 'minHold';
    table.append(
      el(
        'tr',
        {},
        el('td', {}, box),
        el('td', {}, el('span', { class: `sample ${kind}`, 'aria-hidden': 'true' })),
        el('td', {}, `${index + 1} ${traceTitles[kind]}`),
        el(
          'td',
          {},
          canStore
            ? el(
                'button',
                {
                  class: 'small',
                  id: `store-${kind}`,
                  title: `Keep ${traceTitles[kind]} as the reference`,
                  onclick: () => store(kind),
                },
                'Store',
              )
            : '',
        ),
        el('td', {}, clearButton(model, actions, kind)),
      ),
    );
  });
  const name = el('input', {
    type: 'text',
    placeholder: 'name of the reference',
    'aria-label': 'Name of the reference',
  });
  function store(kind: (typeof traceKinds)[number]): void {
    if (!model.traces.store(kind, name.value.trim() || traceTitles[kind]))
      return model.note('note', `${traceTitles[kind]} holds nothing yet.`);
    model.view.stored = model.traces.reference ?? null;
    model.view.shown.reference = true;
    model.tell('view');
  }
  const describe = () => {
    const reference = model.traces.reference;
    const mismatch = model.traces.referenceMismatch();
    note.textContent = reference
      ? `Reference “${reference.name}”: ${traceTitles[reference.source]} of ` +
        `${reference.utc.slice(0, 10)} ${utcTime(reference.utc)} UTC` +
        (mismatch ? `. DIFFERS: ${mismatch}` : '')
      : 'No reference stored.';
    note.classList.toggle('warning', mismatch !== '');
  };
  model.on(['view', 'tuning', 'frame'], describe);
  describe();
  return section('Traces', table, name, note);
}

function clearButton(model: Model, actions: Actions, kind: (typeof traceKinds)[number]): Node | string {
  const clear: Partial<Record<typeof kind, () => void>> = {
    maxHold: () => void actions.set(['-maxhold', 'false'], ['-maxhold', 'true']),
    average: () => void actions.line('-clear_average'),
    minHold: () => model.traces.clearMinimum(),
    reference: () => {
      model.traces.clearReference();
      model.view.stored = null;
      model.tell('view');
    },
  };
  const work = clear[kind];
  return work ? el('button', { class: 'small', title: `Clear ${traceTitles[kind]}`, onclick: work }, 'Clear') : '';
}

export function markerPanel(model: Model, actions: Actions): Readout {
  const body = el('tbody');
  const add = el(
    'span',
    { class: 'group', role: 'group', 'aria-label': 'Add a marker' },
    ...markerKinds.map((kind) =>
      el(
        'button',
        {
          class: 'small',
          id: `marker-${kind}`,
          title: `Add: ${markerTitles[kind]}`,
          onclick: () => actions.addMarker(kind),
        },
        { normal: '+M', delta: '+Δ', noise: '+/Hz', channel: '+Ch' }[kind],
      ),
    ),
  );
  const move = el(
    'span',
    { class: 'group', role: 'group', 'aria-label': 'Move the marker' },
    el('button', { class: 'small', title: 'Next peak to the left', onclick: () => actions.peak('left') }, '◀ peak'),
    el(
      'button',
      { class: 'small', id: 'peak-highest', title: 'Highest peak', onclick: () => actions.peak('highest') },
      '▲',
    ),
    el('button', { class: 'small', title: 'Next lower peak (P)', onclick: () => actions.peak('lower') }, '▼'),
    el('button', { class: 'small', title: 'Next peak to the right', onclick: () => actions.peak('right') }, 'peak ▶'),
  );
  const empty = el('p', { class: 'empty' }, 'Press M for a marker on the highest peak.');
  const table = el('table', { class: 'readings', 'aria-label': 'Markers' }, body);
  const rows = new Map<number, HTMLElement[]>();

  function rebuild(): void {
    rows.clear();
    body.replaceChildren(
      ...model.markers.markers.map((marker) => {
        const cells = [el('td'), el('span', { class: 'number' }), el('span', { class: 'number' })];
        rows.set(marker.id, cells);
        const kind = el(
          'select',
          {
            'aria-label': `Kind of marker ${marker.id}`,
            onchange: () => {
              marker.kind = kind.value as MarkerKind;
              model.tell('markers');
            },
          },
          ...markerKinds.map((value) => el('option', { value, selected: value === marker.kind }, markerTitles[value])),
        );
        const trace = el(
          'select',
          {
            'aria-label': `Trace of marker ${marker.id}`,
            onchange: () => {
              const [name, chain] = trace.value.split(' ');
              Object.assign(marker, { trace: name, chain: Number(chain) });
              model.tell('markers');
            },
          },
          ...traceKinds.flatMap((value) =>
            model.traces.chains().map((chain, index) =>
              el(
                'option',
                {
                  value: `${value} ${index}`,
                  selected: value === marker.trace && index === marker.chain,
                },
                `${traceTitles[value]} ${chain}`,
              ),
            ),
          ),
        );
        const remove = el(
          'button',
          {
            class: 'small',
            title: `Remove marker ${marker.id}`,
            onclick: () => {
              model.markers.remove(marker.id);
              model.tell('markers');
            },
          },
          '×',
        );
        return el(
          'tr',
          {
            class: marker.id === model.markers.selected ? 'selected' : '',
            'data-marker': marker.id,
            onclick: (event: MouseEvent) => {
              if ((event.target as HTMLElement).closest('select, button') || model.markers.selected === marker.id)
                return;
              model.markers.selected = marker.id;
              model.tell('markers');
            },
          },
          cells[0],
          el('td', { class: 'reading' }, el('div', {}, cells[1], ' ', cells[2]), el('div', {}, kind, trace)),
          el('td', {}, remove),
        );
      }),
    );
    empty.hidden = model.markers.markers.length > 0;
  }

  function draw(): void {
    for (const marker of model.markers.markers) {
      const cells = rows.get(marker.id);
      if (!cells) continue;
      const reading = model.markers.read(marker, model.traces);
      setText(cells[0], reading.name);
      setText(cells[1], `${reading.mhz.toFixed(4)} MHz`);
      setText(cells[2], reading.text);
    }
  }
  model.on(['markers', 'tuning'], () => {
    rebuild();
    draw();
  });
  rebuild();
  return { root: section('Markers', add, move, table, empty), draw };
}

function setText(element: HTMLElement, text: string): void {
  if (element.textContent !== text) element.textContent = text;
}

const peakPeriod_ms = 300;

export function peakPanel(model: Model): Readout {
  const title = el('p', { class: 'detail' });
  const body = el('tbody');
  let drawn_ms = 0;
  function draw(now_ms: number): void {
    if (now_ms - drawn_ms < peakPeriod_ms) return;
    drawn_ms = now_ms;
    const kind = model.mainTrace();
    const levels = model.traces.levels(kind, 0);
    const axis = model.traces.axis;
    if (!levels) return;
    title.textContent = `${traceTitles[kind]} ${model.traces.chains()[0]}, dBm/${axis.rbw_khz} kHz`;
    const peaks = findPeaks(levels, 6, 6);
    body.replaceChildren(
      ...(peaks.length
        ? peaks.map((peak) =>
            el(
              'tr',
              {
                title: 'Put the marker here',
                onclick: () => {
                  if (!model.markers.current()) model.markers.add('normal', kind, 0, axis.centre_mhz);
                  model.markers.current()!.mhz = binMhz(axis, peak.bin);
                  model.tell('markers');
                },
              },
              el('td', { class: 'number' }, binMhz(axis, peak.bin).toFixed(3)),
              el('td', { class: 'number' }, dbm(peak.level, 1)),
              el('td', { class: 'number' }, `+${peak.overFloor.toFixed(1)}`),
            ),
          )
        : [el('tr', {}, el('td', { colspan: 3, class: 'empty' }, 'Nothing stands 6 dB above the floor.'))]),
    );
  }
  const head = el('thead', {}, el('tr', {}, el('th', {}, 'MHz'), el('th', {}, 'dBm'), el('th', {}, 'dB over floor')));
  return { root: section('Peaks', title, el('table', { class: 'readings' }, head, body)), draw };
}

export function messagePanel(model: Model): HTMLElement {
  const list = el('ol', { class: 'messages', role: 'log', 'aria-label': 'Messages' });
  const show = () => {
    list.replaceChildren(
      ...model.log
        .slice(-60)
        .map((entry) =>
          el(
            'li',
            { class: entry.kind },
            el('time', {}, utcTime(entry.utc)),
            ' ',
            entry.kind === 'error' ? 'ERROR ' : '',
            entry.text,
          ),
        ),
    );
    list.scrollTop = list.scrollHeight;
  };
  model.on(['messages'], show);
  return section('Messages', list);
}
