// What the person set on the page itself. It survives a reload; the measurement's own settings live in the server.
import { Range } from './axis';
import { Marker } from './markers';
import { StoredTrace, TraceKind, traceKinds } from './traces';

export const tabs = ['spectrum', 'iq', 'histogram', 'channels', 'desense', 'files'] as const;
export type Tab = (typeof tabs)[number];

export const tabTitles: Record<Tab, string> = {
  spectrum: 'Spectrum',
  iq: 'I/Q',
  histogram: 'Histogram',
  channels: 'Channels',
  desense: 'Desense test',
  files: 'Files',
};

export interface Preset {
  name: string;
  line: string;
  reference_dbm: number;
  perDivision_db: number;
}

export interface ViewState {
  tab: Tab;
  theme: 'auto' | 'light' | 'dark';
  reference_dbm: number;
  perDivision_db: number;
  shown: Record<TraceKind, boolean>;
  chainLayout: 'overlaid' | 'side by side';
  waterfallChain: number;
  /** Part of the plot's height that the waterfall takes, 0 to 1. */
  waterfallShare: number;
  zoom: Range | null;
  markers: Marker[];
  selectedMarker: number;
  stored: StoredTrace | null;
  presets: Preset[];
  hintSeen: boolean;
  allBandsScan: boolean;
  /** Values of the desense test's form. */
  desenseForm: Record<string, string>;
}

export function defaultView(): ViewState {
  return {
    tab: 'spectrum',
    theme: 'auto',
    reference_dbm: -40,
    perDivision_db: 10,
    shown: { live: true, maxHold: true, average: true, reference: true, difference: false, minHold: false },
    chainLayout: 'overlaid',
    waterfallChain: 0,
    waterfallShare: 0.38,
    zoom: null,
    markers: [],
    selectedMarker: 0,
    stored: null,
    presets: [],
    hintSeen: false,
    allBandsScan: false,
    desenseForm: {},
  };
}

/** A stored state as far as it can be used; what is missing or of the wrong form keeps its default. */
export function viewFromText(text: string | null): ViewState {
  const view = defaultView();
  if (!text) return view;
  let stored: Partial<ViewState>;
  try {
    stored = JSON.parse(text) as Partial<ViewState>;
  } catch {
    return view;
  }
  if (typeof stored !== 'object' || stored === null) return view;
  const into = view as unknown as Record<string, unknown>;
  for (const [key, value] of Object.entries(stored)) {
    if (!(key in view)) continue;
    const now = into[key];
    const fits =
      now === null || value === null || (typeof now === typeof value && Array.isArray(now) === Array.isArray(value));
    if (fits) into[key] = value;
  }
  if (!(tabs as readonly string[]).includes(view.tab)) view.tab = 'spectrum';
  for (const kind of traceKinds) view.shown[kind] = Boolean(view.shown[kind]);
  if (!(view.perDivision_db > 0)) view.perDivision_db = 10;
  return view;
}

export const divisions = 10;

/** Levels at the plot's bottom and top, in dBm. */
export function levelRange(view: ViewState): Range {
  return { low: view.reference_dbm - divisions * view.perDivision_db, high: view.reference_dbm };
}

/** A reference level and a scale that hold these levels with some air, on the grid of 5 dB. */
export function fitLevels(lowest: number, highest: number): { reference_dbm: number; perDivision_db: number } {
  const reference_dbm = Math.ceil((highest + 3) / 5) * 5;
  const span = Math.max(10, reference_dbm - lowest + 3);
  const perDivision_db = [1, 2, 5, 10, 15, 20].find((step) => step * divisions >= span) ?? 20;
  return { reference_dbm, perDivision_db };
}
