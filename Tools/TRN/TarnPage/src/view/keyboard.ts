// Keys for everything, and the page that tells them.
import { Model } from '../model/model';
import { traceKinds } from '../model/traces';
import { Tab } from '../model/view';
import { Actions } from './actions';
import { el } from './dom';

const helpRows: [string, string][] = [
  ['Space', 'run or hold'],
  ['S', 'single sweep'],
  ['C', 'clear holds and average'],
  ['M', 'marker (Shift: delta)'],
  ['N', 'noise density marker'],
  ['P', 'next lower peak (Shift: highest)'],
  ['← →', 'marker by a bin (Shift: to the next peak)'],
  ['↑ ↓', 'reference level by a division'],
  ['+ −', 'zoom in, out'],
  ['F', 'full width'],
  ['A', 'fit levels once'],
  ['1 … 6', 'show or hide a trace'],
  ['V', 'next view'],
  ['T', 'desense test (Enter: start)'],
  ['/', 'command line'],
  ['Delete', 'remove the marker'],
  ['?', 'this page'],
];

export function helpDialog(): HTMLDialogElement {
  const dialog = el('dialog', { 'aria-label': 'Help' });
  dialog.append(
    el('h2', {}, 'First steps'),
    el(
      'ol',
      {},
      el('li', {}, 'Choose band, width and channel at the left: the spectrum follows.'),
      el(
        'li',
        {},
        'Press M for a marker on the highest peak; drag over the plot to zoom, double-click for full width.',
      ),
      el('li', {}, 'Store a trace as the reference, change something on the platform, and look at the difference.'),
    ),
    el('h2', {}, 'Keys'),
    el(
      'table',
      {},
      ...helpRows.map(([key, text]) => el('tr', {}, el('td', {}, el('kbd', {}, key)), el('td', {}, text))),
    ),
    el('button', { onclick: () => dialog.close() }, 'Close'),
  );
  document.addEventListener('tarn-help', () => dialog.showModal());
  return dialog;
}

export interface KeyTargets {
  focusCommand(): void;
  showTab(tab: Tab): void;
  desense(): void;
  nextTab(): void;
}

export function listenToKeys(model: Model, actions: Actions, targets: KeyTargets): void {
  const plain: Record<string, () => void> = {
    ' ': () => actions.toggleRun(),
    s: () => void actions.run('single'),
    c: () => actions.clearHolds(),
    m: () => actions.addMarker('normal'),
    M: () => actions.addMarker('delta'),
    n: () => actions.addMarker('noise'),
    p: () => actions.peak('lower'),
    P: () => actions.peak('highest'),
    a: () => actions.autoLevels(),
    f: () => model.setZoom(null),
    v: () => targets.nextTab(),
    t: () => targets.desense(),
    '+': () => model.zoomBy(1.5, focusMhz(model)),
    '=': () => model.zoomBy(1.5, focusMhz(model)),
    '-': () => model.zoomBy(1 / 1.5, focusMhz(model)),
    '/': () => targets.focusCommand(),
    '?': () => document.dispatchEvent(new Event('tarn-help')),
    ArrowUp: () => shiftReference(model, -1),
    ArrowDown: () => shiftReference(model, 1),
    Delete: () => {
      model.markers.remove(model.markers.selected);
      model.tell('markers');
    },
  };
  const arrows: Record<string, [number, 'left' | 'right']> = { ArrowLeft: [-1, 'left'], ArrowRight: [1, 'right'] };
  document.addEventListener('keydown', (event) => {
    const target = event.target as HTMLElement;
    if (event.ctrlKey || event.metaKey || event.altKey || target.closest('input, select, textarea, dialog[open]'))
      return;
    if (event.key === ' ' && target.closest('button, a, summary')) return;
    const arrow = arrows[event.key];
    const digit = Number(event.key);
    if (arrow) {
      if (event.shiftKey) actions.peak(arrow[1]);
      else model.markers.step(arrow[0], model.traces.axis);
      model.tell('markers');
    } else if (digit >= 1 && digit <= traceKinds.length) {
      const kind = traceKinds[digit - 1];
      model.view.shown[kind] = !model.view.shown[kind];
      model.tell('view');
    } else {
      const work = plain[event.key] ?? plain[event.key.length === 1 ? event.key.toLowerCase() : ''];
      if (!work) return;
      work();
    }
    event.preventDefault();
  });
}

function focusMhz(model: Model): number {
  return model.markers.current()?.mhz ?? model.cursor_mhz;
}

function shiftReference(model: Model, divisions: number): void {
  model.view.reference_dbm += divisions * model.view.perDivision_db;
  model.tell('view');
}
