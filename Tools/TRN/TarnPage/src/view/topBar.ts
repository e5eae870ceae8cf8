// The bar on top: adapter, run and hold, rate, time, connection, theme. Trouble has its place here, in words.
import { isActive } from '../model/desense';
import { Model } from '../model/model';
import { utcTime } from '../model/text';
import { Actions } from './actions';
import { el } from './dom';

export function topBar(
  model: Model,
  actions: Actions,
  retheme: () => void,
): { root: HTMLElement; tick(now_ms: number): void } {
  const adapter = el('span', { class: 'adapter' });
  const button = (label: string, mode: 'run' | 'hold' | 'single', title: string) =>
    el('button', { id: `mode-${mode}`, title, 'aria-pressed': 'false', onclick: () => void actions.run(mode) }, label);
  const buttons = {
    run: button('Run', 'run', 'Sweep after sweep (Space)'),
    hold: button('Hold', 'hold', 'Stop behind this sweep (Space)'),
    single: button('Single', 'single', 'One sweep, then hold (S)'),
  };
  const rate = el('span', { class: 'number', id: 'rate' });
  const clock = el('span', { class: 'number' });
  const connection = el('span', { id: 'connection', role: 'status' });
  const trouble = el('span', { id: 'trouble', role: 'alert' });
  const theme = el('button', { title: 'Light, dark, or as the computer says', onclick: nextTheme }, '');
  const help = el(
    'button',
    { title: 'Keys and hints (?)', onclick: () => document.dispatchEvent(new Event('tarn-help')) },
    '?',
  );
  const root = el(
    'header',
    {},
    el('h1', {}, 'Tarn'),
    adapter,
    el('div', { class: 'group', role: 'group', 'aria-label': 'Measuring' }, buttons.run, buttons.hold, buttons.single),
    rate,
    trouble,
    el('span', { class: 'space' }),
    clock,
    connection,
    theme,
    help,
  );

  function nextTheme(): void {
    const order = ['auto', 'light', 'dark'] as const;
    model.view.theme = order[(order.indexOf(model.view.theme) + 1) % order.length];
    retheme();
    show();
  }

  function show(): void {
    const host = model.host;
    adapter.textContent = host
      ? `${host.adapter.description} · ${host.adapter.air} · ${host.adapter.mac}`
      : 'no adapter yet';
    adapter.title = adapter.textContent;
    for (const [mode, element] of Object.entries(buttons)) {
      element.setAttribute('aria-pressed', String(host?.run.mode === mode));
      element.disabled = isActive(host?.desense?.phase);
    }
    theme.textContent = { auto: 'Auto', light: 'Light', dark: 'Dark' }[model.view.theme];
  }

  /** What is wrong at present, in words. It goes away only when its cause does. */
  function troubles(): string[] {
    const facts = model.traces.frame?.facts;
    const words: string[] = [];
    if (model.host?.trouble) words.push(model.host.trouble);
    if (facts?.trouble) words.push(facts.trouble);
    for (const chain of facts?.overloaded ?? []) words.push(`OVERLOAD chain ${chain}: levels read low`);
    return words;
  }

  function tick(now_ms: number): void {
    const { state, retryAt_ms } = model.connection;
    connection.className = state;
    connection.textContent =
      state === 'connected'
        ? '● connected'
        : state === 'connecting'
          ? '○ connecting'
          : `✕ connection lost, trying again in ${Math.max(0, Math.ceil((retryAt_ms - now_ms) / 1000))} s`;
    clock.textContent = `${utcTime(now_ms)} UTC`;
    const facts = model.traces.frame?.facts;
    const mode = model.host?.run.mode;
    const progress = model.progress;
    rate.textContent = isActive(model.host?.desense?.phase)
      ? `desense test ${model.host?.desense.phase}`
      : mode === 'scan' && progress
        ? `scan ${progress.done}/${progress.total}: ${progress.what}`
        : mode === 'hold'
          ? 'held'
          : facts
            ? `${facts.sweepsPerSecond.toFixed(1)} sweeps/s${facts.dropped ? `, ${facts.dropped} not shown` : ''}`
            : '';
    const words = troubles().join(' · ');
    if (trouble.textContent !== words) trouble.textContent = words;
  }

  model.on(['state'], show);
  show();
  return { root, tick };
}
