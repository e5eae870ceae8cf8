// Puts the page together: model, stream, views, and one drawing loop.
import 'uplot/dist/uPlot.min.css';
import './style.css';
import { Model } from './model/model';
import { Tab, tabs, tabTitles, viewFromText } from './model/view';
import { api } from './net/api';
import { Stream } from './net/stream';
import { Actions } from './view/actions';
import { channelsView } from './view/channelsView';
import { histogramView, iqView } from './view/codesViews';
import { commandLine } from './view/commandLine';
import { desenseView } from './view/desenseView';
import { el, forgetPalette } from './view/dom';
import { filesView } from './view/filesView';
import { helpDialog, listenToKeys } from './view/keyboard';
import { markerPanel, messagePanel, peakPanel, powerPanel, tracePanel } from './view/readouts';
import { SpectrumView } from './view/spectrumView';
import { topBar } from './view/topBar';
import { tuningPanel } from './view/tuning';

const storageKey = 'tarn-view';
const model = new Model(viewFromText(localStorage.getItem(storageKey)));
const actions = new Actions(model);

// ---- what is kept over a reload

let saveTimer = 0;
function save(): void {
  clearTimeout(saveTimer);
  saveTimer = window.setTimeout(saveNow, 300);
}
function saveNow(): void {
  model.view.markers = model.markers.markers;
  model.view.selectedMarker = model.markers.selected;
  try {
    localStorage.setItem(storageKey, JSON.stringify(model.view));
  } catch {
    model.note('error', 'This browser keeps no more: the view will not survive a reload.');
  }
}
model.on(['view', 'markers'], save);
addEventListener('pagehide', saveNow);

// ---- theme

function retheme(): void {
  const dark =
    model.view.theme === 'dark' || (model.view.theme === 'auto' && matchMedia('(prefers-color-scheme: dark)').matches);
  document.documentElement.dataset.theme = dark ? 'dark' : 'light';
  forgetPalette();
  model.tell('view');
}
matchMedia('(prefers-color-scheme: dark)').addEventListener('change', retheme);

// ---- the layout

const bar = topBar(model, actions, retheme);
const spectrum = new SpectrumView(model);
const iq = iqView(model);
const histogram = histogramView(model);
const files = filesView(model, actions, () => spectrum.canvases());
const desense = desenseView(model, actions);
const power = powerPanel(model);
const markers = markerPanel(model, actions);
const peaks = peakPanel(model);
const command = commandLine(model, actions);
const views: Record<Tab, HTMLElement> = {
  spectrum: spectrum.root,
  iq: iq.root,
  histogram: histogram.root,
  channels: channelsView(model, actions),
  desense: desense.root,
  files: files.root,
};
const tabList = el(
  'nav',
  { role: 'tablist', 'aria-label': 'Views' },
  ...tabs.map((tab) =>
    el(
      'button',
      { role: 'tab', id: `tab-${tab}`, 'aria-controls': `view-${tab}`, onclick: () => showTab(tab) },
      tabTitles[tab],
    ),
  ),
);
for (const tab of tabs) Object.assign(views[tab], { id: `view-${tab}` }).setAttribute('role', 'tabpanel');
const hint = el(
  'div',
  { class: 'hint', role: 'note' },
  '1. Choose a channel at the left. 2. Press M: a marker on the highest peak. ' + '3. Store a trace to compare with. ',
  el(
    'button',
    {
      class: 'small',
      onclick: () => {
        model.view.hintSeen = true;
        hint.hidden = true;
        save();
      },
    },
    'Got it',
  ),
);
hint.hidden = model.view.hintSeen;
const lost = el('div', { class: 'lost', role: 'alert', hidden: true });
const alarm = el('span', { role: 'alert' });
const alarmBar = el(
  'div',
  { class: 'alarm' },
  alarm,
  el(
    'button',
    {
      class: 'small',
      title: 'Put this message away',
      onclick: () => {
        model.alarm = '';
        model.tell('messages');
      },
    },
    '×',
  ),
);
const showAlarm = () => {
  alarmBar.hidden = model.alarm === '';
  alarm.textContent = model.alarm && `ERROR ${model.alarm}`;
};
model.on(['messages'], showAlarm);
showAlarm();
const help = helpDialog();
document.body.append(
  bar.root,
  el(
    'main',
    {},
    tuningPanel(model, actions),
    el('div', { class: 'centre' }, hint, lost, ...tabs.map((tab) => views[tab]), alarmBar, tabList, command.root),
    el(
      'aside',
      { class: 'right', 'aria-label': 'Readouts' },
      power.root,
      tracePanel(model, actions),
      markers.root,
      peaks.root,
      messagePanel(model),
    ),
  ),
  help,
);

const alwaysWanted = [
  'Host State',
  'Host Frame',
  'Host Line',
  'Host Progress',
  'Host Channels',
  'Host Desense',
  'Host Refusal',
  'Trigger Response',
  'Power Per Chain',
  'Spectrum Data',
  'Supported Channels Data',
  'Supported Chains Data',
  'Gain Status',
  'Load All Response',
  'Save All Response',
  'Set MCC Response',
];
function wantedTypes(): string[] {
  const more: Partial<Record<Tab, string[]>> = { iq: ['IQ Amplitude Data'], histogram: ['Histogram Data'] };
  return [...alwaysWanted, ...(more[model.view.tab] ?? [])];
}

function showTab(tab: Tab): void {
  model.view.tab = tab;
  for (const name of tabs) {
    views[name].hidden = name !== tab;
    document.getElementById(`tab-${name}`)!.setAttribute('aria-selected', String(name === tab));
  }
  document.body.classList.toggle('wide', tab === 'desense'); // the readouts of the spectrum make room
  if (tab === 'files') files.refresh();
  if (tab === 'desense') desense.refresh();
  stream.subscribe(wantedTypes());
  model.tell('view');
}

// ---- the stream, and the one loop that draws

let waitingFrame = 0;
let isDirty = true;
const stream = new Stream(wantedTypes(), {
  connected: () => {
    model.connection = { state: 'connected', retryAt_ms: 0 };
    model.tell('connection');
    void loadVocabulary();
  },
  lost: (retry_ms) => {
    model.connection = { state: 'lost', retryAt_ms: Date.now() + retry_ms };
    model.tell('connection');
  },
  message: (message) => model.takeMessage(message),
  frame: (frame) => {
    model.takeFrame(frame, Date.now());
    waitingFrame = frame.seq;
    // nothing is drawn while the page is hidden, yet the waterfall and the holds go on; an empty frame draws nothing
    if (document.hidden || !frame.live.length) acknowledge();
  },
});

async function loadVocabulary(): Promise<void> {
  await actions.guarded(async () => {
    model.keys = await api.keys();
    model.channels = await api.channels();
    model.tell('channels');
    model.tell('vocabulary');
  });
}

function acknowledge(): void {
  if (waitingFrame) stream.drawn(waitingFrame);
  waitingFrame = 0;
}

let lastTick_ms = 0;
function draw(): void {
  requestAnimationFrame(draw);
  const now_ms = Date.now();
  if (now_ms - lastTick_ms > 200) {
    lastTick_ms = now_ms;
    tick(now_ms);
  }
  if (!isDirty) return;
  isDirty = false;
  const painters: Partial<Record<Tab, () => void>> = {
    spectrum: () => spectrum.draw(now_ms),
    iq: () => iq.draw(now_ms),
    histogram: () => histogram.draw(now_ms),
    desense: () => desense.draw(),
  };
  painters[model.view.tab]?.();
  power.draw(now_ms);
  markers.draw(now_ms);
  peaks.draw(now_ms);
  acknowledge();
}

function tick(now_ms: number): void {
  bar.tick(now_ms);
  const stale = model.staleReason(now_ms);
  document.body.classList.toggle('stale', stale !== '' && stale !== 'held');
  document.body.classList.toggle('held', stale === 'held');
  lost.hidden = model.connection.state !== 'lost';
  if (!lost.hidden) lost.textContent = 'The connection to the server is lost: what you see is old.';
  if (stale) power.draw(now_ms);
}

model.on(['frame', 'view', 'markers', 'tuning', 'state', 'desense'], () => (isDirty = true));
new ResizeObserver(() => (isDirty = true)).observe(document.body);

// ---- files dropped on the page

window.addEventListener('dragover', (event) => event.preventDefault());
window.addEventListener('drop', (event) => {
  event.preventDefault();
  void (async () => {
    let isShown = false;
    for (const file of Array.from(event.dataTransfer?.files ?? [])) isShown = await actions.look(file);
    showTab(isShown ? 'spectrum' : 'files');
  })();
});

listenToKeys(model, actions, {
  focusCommand: command.focus,
  showTab,
  desense: () => {
    showTab('desense');
    desense.focus();
  },
  nextTab: () => showTab(tabs[(tabs.indexOf(model.view.tab) + 1) % tabs.length]),
});
retheme();
showTab(model.view.tab);
requestAnimationFrame(draw);
