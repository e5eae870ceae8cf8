// Elements in one expression each, and the colours of the theme for the canvases.
import { TraceKind } from '../model/traces';

type Attributes = Record<string, string | number | boolean | undefined | ((event: never) => void)>;

/** An element with attributes, listeners (functions under "onclick" and the like) and children. */
export function el<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: (Node | string)[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === 'function') element.addEventListener(name.slice(2), value as unknown as EventListener);
    else if (value === true) element.setAttribute(name, '');
    else if (value !== false && value !== undefined) element.setAttribute(name, String(value));
  }
  element.append(...children);
  return element;
}

/** A titled part of a side panel. */
export function section(title: string, ...children: (Node | string)[]): HTMLElement {
  return el('section', { class: 'panel', 'aria-label': title }, el('h2', {}, title), ...children);
}

/** A control with its label in front. */
export function labelled(label: string, control: HTMLElement): HTMLElement {
  if (!control.hasAttribute('aria-label')) control.setAttribute('aria-label', label);
  return el('label', { class: 'row' }, el('span', {}, label), control);
}

const typing = new WeakSet<EventTarget>();
document.addEventListener('input', (event) => event.target && typing.add(event.target), true);
for (const end of ['change', 'focusout'])
  document.addEventListener(end, (event) => event.target && typing.delete(event.target), true);

/** Shows a value in a field, unless somebody is typing there. */
export function show(input: HTMLInputElement, value: string): void {
  if (!typing.has(input)) input.value = value;
}

/** Fills a select, keeping what it shows when that is still offered. */
export function offer(select: HTMLSelectElement, options: { value: string; label?: string }[], value: string): void {
  const wanted = options.map((option) => `${option.value}\n${option.label ?? option.value}`).join('\n');
  if (select.dataset.offered !== wanted) {
    select.dataset.offered = wanted;
    select.replaceChildren(
      ...options.map((option) => el('option', { value: option.value }, option.label ?? option.value)),
    );
  }
  if (select.value !== value) select.value = value;
}

export interface Palette {
  text: string;
  faint: string;
  grid: string;
  back: string;
  channel: string;
  edge: string;
  limit: string;
  marker: string;
  traces: Record<TraceKind, string>;
  verdicts: Record<'PASS' | 'MARGIN' | 'FAIL' | 'INVALID', string>;
}

let kept: Palette | undefined;

/** The theme's colours as the style sheet says them, looked up once a theme. */
export function palette(): Palette {
  return (kept ??= readPalette());
}

export function forgetPalette(): void {
  kept = undefined;
}

function readPalette(): Palette {
  const style = getComputedStyle(document.documentElement);
  const of = (name: string) => style.getPropertyValue(`--${name}`).trim();
  return {
    text: of('text'),
    faint: of('faint'),
    grid: of('grid'),
    back: of('plot'),
    channel: of('channel'),
    edge: of('edge'),
    limit: of('limit'),
    marker: of('marker'),
    traces: {
      live: of('live'),
      maxHold: of('max-hold'),
      average: of('average'),
      reference: of('reference'),
      difference: of('difference'),
      minHold: of('min-hold'),
    },
    verdicts: { PASS: of('pass'), MARGIN: of('margin'), FAIL: of('fail'), INVALID: of('invalid') },
  };
}

/** Line dashes in CSS pixels: beside its colour, a trace is known by its line. */
export const dashes: Record<TraceKind, number[]> = {
  live: [],
  maxHold: [],
  average: [],
  reference: [8, 4],
  difference: [2, 3],
  minHold: [1, 3],
};
export const widths: Record<TraceKind, number> = {
  live: 1,
  maxHold: 1.25,
  average: 2,
  reference: 1.5,
  difference: 1.5,
  minHold: 1.25,
};

/** Offers a text or a blob as a download. */
export function download(name: string, content: Blob): void {
  const address = URL.createObjectURL(content);
  const link = el('a', { href: address, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(address), 10_000);
}
