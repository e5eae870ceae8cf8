// The burn-in desense test: configure, start, pause, stop, and watch. The server drives it; this view only shows it, so
// that every page shows the same and none is needed.
import {
  DesenseGraph,
  DesenseRow,
  DesenseWhole,
  isActive,
  progressShare,
  progressText,
  worst,
} from '../model/desense';
import { Model } from '../model/model';
import { dbm, fixed } from '../model/text';
import { api } from '../net/api';
import { Actions } from './actions';
import { desenseForm } from './desenseForm';
import { desenseFiles } from './desenseFiles';
import { desenseChart, drawChannel } from './desensePlots';
import { el } from './dom';

export interface DesenseView {
  root: HTMLElement;
  draw(): void;
  /** The view came to the front. */
  refresh(): void;
  /** The button that comes next, for the keyboard. */
  focus(): void;
}

export function desenseView(model: Model, actions: Actions): DesenseView {
  let whole: DesenseWhole | undefined;
  let selected: DesenseRow | undefined;
  /** A person chose what is selected; else it is the first, at the end the worst. */
  let isChosen = false;
  let graph: DesenseGraph | undefined;
  /** What the graph was measured under: a row that hasn't been judged was swept without load. */
  let graphPass = '';
  /** The row that the graph was asked for, as text: another figure of it is another graph. */
  let asked = '';
  let isPainted = false;

  // ---- orders

  const refusal = el('p', { class: 'warning', role: 'alert' });
  async function order(action: 'start' | 'pause' | 'resume' | 'stop', values: object = {}): Promise<void> {
    refusal.textContent = '';
    try {
      await api.desenseOrder(action, values);
    } catch (error) {
      refusal.textContent = error instanceof Error ? error.message : String(error);
    }
  }
  const form = desenseForm(model, actions);
  const config = el('details', { open: true }, el('summary', {}, 'Configuration'), form.root);
  const button = (id: string, label: string, title: string, onclick: () => void) =>
    el('button', { id: `desense_${id}`, title, onclick }, label);
  const start = button('start', 'Start', 'Start the test (T, then Enter)', () => void order('start', form.order()));
  const pause = button('pause', 'Pause', 'End the load, and go on later', () => {
    void order(model.desense?.phase === 'running' ? 'pause' : 'resume');
  });
  const stop = button('stop', 'Stop', 'End the test and its load; what was measured is kept', () => void order('stop'));

  // ---- what stands where

  const bar = el('progress', { max: 1, value: 0, 'aria-label': 'Progress of the test' });
  const verdict = el('strong', { id: 'desense_verdict' });
  const status = el('span', { id: 'desense_status', role: 'status', class: 'number' });
  const trouble = el('p', { class: 'warning', role: 'alert', id: 'desense_trouble' });
  const chart = desenseChart(choose);
  const rows = el('tbody');
  const table = el(
    'table',
    { class: 'channels desense_table', 'aria-label': 'Channels' },
    el(
      'thead',
      {},
      el(
        'tr',
        {},
        ...['Channel', 'Average', 'Peak', 'Limit', 'Desense', 'Idle', 'Rise', 'Verdict'].map((title, k) =>
          el('th', { class: k > 0 && k < 7 ? 'number' : '', title: titleHints[title] }, title),
        ),
      ),
    ),
    rows,
  );
  const empty = el(
    'p',
    { class: 'empty' },
    'Nothing tested yet: choose the channels above and press Start. The machine is loaded, then every channel is swept.',
  );
  const leftOut = el('p', { id: 'desense_left_out' });
  const graphTitle = el('h2');
  const canvas = el('canvas', { class: 'desense_graph', role: 'img' });
  const spurRows = el('tbody');
  const spurs = el(
    'table',
    { 'aria-label': 'Spurs' },
    el(
      'thead',
      {},
      el('tr', {}, ...['Spur in', 'Chain', 'MHz', 'from centre', 'dBm'].map((title) => el('th', {}, title))),
    ),
    spurRows,
  );
  const messages = el('ol', { class: 'desense_messages', 'aria-label': 'Messages of the test', tabindex: '0' });
  const files = desenseFiles(actions);
  const root = el(
    'div',
    { class: 'view scroll desense' },
    el('div', { class: 'bar' }, start, pause, stop, bar, verdict, status),
    refusal,
    trouble,
    config,
    chart.root,
    el(
      'div',
      { class: 'desense_parts' },
      el('div', { class: 'desense_rows' }, empty, table, leftOut),
      el('div', {}, graphTitle, canvas, spurs, el('h2', {}, 'Messages'), messages),
    ),
    files.root,
  );

  // ---- what comes from the server

  let shownKey = '';
  let isAsking = false;
  /** Asks for the whole test when the stream says that there is more of it than is shown. */
  async function update(): Promise<void> {
    const test = model.desense;
    if (!test) return;
    showProgress();
    const key = `${test.startedUtc}/${test.revision}/${test.phase}`;
    if (root.hidden || isAsking || key === shownKey) return;
    isAsking = true;
    try {
      const isFirst = whole === undefined;
      const wasActive = isActive(whole?.phase);
      whole = await api.desense();
      shownKey = `${whole.startedUtc}/${whole.revision}/${whole.phase}`;
      if (whole.order && (isFirst || (isActive(whole.phase) && !wasActive))) form.show(whole.order);
      if (isActive(whole.phase) !== wasActive) config.open = !isActive(whole.phase) && whole.phase !== 'ended';
      if (isFirst || wasActive !== isActive(whole.phase)) files.refresh();
      showWhole(whole);
    } catch {
      setTimeout(() => void update(), 1000); // the server will be back, or the page says that it isn't
    } finally {
      isAsking = false;
    }
    void update();
  }

  function showProgress(): void {
    const test = model.desense!;
    const active = isActive(test.phase);
    start.disabled = active;
    pause.disabled = !['running', 'pausing', 'paused'].includes(test.phase);
    pause.textContent = test.phase === 'running' || !active ? 'Pause' : 'Resume';
    stop.disabled = !active || test.phase === 'stopping';
    bar.hidden = !active;
    bar.value = progressShare(test);
    verdict.textContent = test.phase === 'ended' ? test.verdict : '';
    verdict.className = test.phase === 'ended' ? test.verdict : '';
    status.textContent = test.phase === 'none' ? '' : `${test.name}: ${progressText(test)}`;
    trouble.textContent = test.trouble;
  }

  function showWhole(test: DesenseWhole): void {
    const place = selected && test.channels.find((row) => isSame(row, selected!));
    selected = place;
    empty.hidden = test.channels.length > 0;
    table.hidden = !empty.hidden;
    rows.replaceChildren(...test.channels.map(tableRow));
    const unseen = test.leftOut.map(({ band, channel, reason }) => `${band} GHz channel ${channel} (${reason})`);
    leftOut.textContent = unseen.length ? `Left out: ${unseen.join(', ')}` : '';
    const found = test.channels.flatMap((row) => row.spurs.map((spur) => ({ row, spur })));
    spurs.hidden = !found.length;
    spurRows.replaceChildren(
      ...found.map(({ row, spur }) =>
        el(
          'tr',
          { onclick: () => choose(row) },
          el('td', {}, `${row.band} GHz ${row.channel}`),
          el('td', {}, spur.chain),
          el('td', { class: 'number' }, spur.frequency_mhz.toFixed(4)),
          el('td', { class: 'number' }, fixed(spur.baseband_mhz, 4)),
          el('td', { class: 'number' }, spur.level_dbm.toFixed(1)),
        ),
      ),
    );
    const isAtEnd = messages.scrollTop + messages.clientHeight >= messages.scrollHeight - 8;
    messages.replaceChildren(...test.messages.map((text) => el('li', {}, text)));
    if (isAtEnd) messages.scrollTop = messages.scrollHeight;
    isChosen &&= selected !== undefined;
    if (!isChosen && test.phase === 'ended') selected = undefined;
    const next = selected ?? test.channels[0];
    if (!next) asked = '';
    else if (next !== selected || JSON.stringify(next) !== asked) void select(next);
    isPainted = false;
    model.tell('view');
  }

  function tableRow(row: DesenseRow): HTMLElement {
    const number = (value: number | null, decimals = 1) => el('td', { class: 'number' }, value === null ? '' : dbm(value, decimals));
    return el(
      'tr',
      {
        class: selected && isSame(row, selected) ? 'selected' : '',
        'data-desense': `${row.band}/${row.channel}`,
        tabindex: '0',
        title: 'Show its spectrum',
        onclick: () => choose(row),
        onkeydown: (event: KeyboardEvent) => {
          if (event.key !== 'Enter') return;
          event.stopPropagation();
          choose(row);
        },
      },
      el('td', {}, `${row.band} GHz ${row.channel}`),
      number(worst(row, 'average_dbm')),
      number(worst(row, 'peak_dbm')),
      number(row.limit_dbm),
      number(row.desense_db),
      number(row.idle_desense_db),
      number(row.rise_db),
      el(
        'td',
        { class: row.verdict, title: row.invalid },
        row.verdict ? el('b', {}, row.verdict) : 'idle',
        row.invalid ? el('span', { class: 'detail' }, ` ${row.invalid}`) : '',
      ),
    );
  }

  function choose(row: DesenseRow): void {
    isChosen = true;
    void select(row);
  }
  async function select(row: DesenseRow): Promise<void> {
    selected = row;
    for (const element of Array.from(rows.children))
      element.classList.toggle('selected', (element as HTMLElement).dataset.desense === `${row.band}/${row.channel}`);
    const key = (asked = JSON.stringify(row));
    const found = await api.desenseGraph(row.band, row.channel).catch(() => undefined); // none: a new test has begun
    if (asked !== key) return; // another was chosen meanwhile
    graph = found;
    if (!found) asked = '';
    const isLoadedPass = row.verdict !== '';
    graphPass = isLoadedPass ? (whole?.order?.config.disableBit === 'true' ? 'no load' : 'loaded') : 'idle';
    isPainted = false;
    model.tell('view');
  }

  // ---- drawing

  let paintedSize = '';
  function draw(): void {
    const size = `${root.clientWidth}x${root.clientHeight}/${document.documentElement.dataset.theme}`;
    if (isPainted && size === paintedSize) return;
    isPainted = true;
    paintedSize = size;
    chart.root.hidden = !whole?.channels.length;
    chart.draw(whole?.channels ?? [], selected);
    const hasGraph = Boolean(graph?.levels.some((level) => level.average.length) && selected);
    canvas.hidden = graphTitle.hidden = !hasGraph;
    if (!hasGraph) return;
    graphTitle.textContent = `${selected!.band} GHz channel ${selected!.channel}, ${graphPass}: average bold, maximum thin, B dashed`;
    canvas.setAttribute(
      'aria-label',
      `Spectrum of ${selected!.band} GHz channel ${selected!.channel}: ` +
        selected!.levels
          .map((level) => `chain ${level.chain} average ${dbm(level.average_dbm)} dBm, peak ${dbm(level.peak_dbm)} dBm`)
          .join('; '),
    );
    drawChannel(canvas, graph!, selected!.limit_dbm);
  }

  model.on(['desense'], () => void update());
  return {
    root,
    draw,
    refresh: () => {
      form.refresh();
      files.refresh();
      isPainted = false;
      void update();
    },
    focus: () => [start, pause].find((one) => !one.disabled)?.focus(),
  };
}

const titleHints: Record<string, string> = {
  Average: 'dBm in one RBW, of the worse chain',
  Peak: 'dBm in one RBW, of the worse chain',
  Limit: 'dBm in one RBW',
  Desense: 'dB over the reference of the band, under load',
  Idle: 'the same without load',
  Rise: 'dB that the load adds',
};

function isSame(a: DesenseRow, b: DesenseRow): boolean {
  return a.band === b.band && a.channel === b.channel;
}
