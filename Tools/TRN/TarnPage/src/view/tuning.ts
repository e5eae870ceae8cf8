// The controls on the left. They show what the device took, not what was asked for.
import { isActive } from '../model/desense';
import { lineOf } from '../model/keys';
import { Model } from '../model/model';
import { Preset } from '../model/view';
import { api } from '../net/api';
import { Actions } from './actions';
import { el, labelled, offer, section, show } from './dom';

const rbws = ['39.0625', '78.125', '156.25', '312.5'];

export function tuningPanel(model: Model, actions: Actions): HTMLElement {
  const root = el('aside', { class: 'left', 'aria-label': 'Settings' });
  const device = [tuningSection, sweepSection, gainSection, presetSection].map((make) => make(model, actions));
  root.append(...device.slice(0, 3), limitSection(model, actions), device[3]);
  model.on(['state'], () => {
    for (const part of device) part.inert = isActive(model.host?.desense?.phase); // the test has the adapter
  });
  return root;
}

function setting(model: Model, key: string): string {
  return model.host?.settings[key] ?? '';
}

/** A select that sends "-key value" and shows the value that the server reports. */
function keySelect(model: Model, actions: Actions, key: string, options: string[], label?: (value: string) => string) {
  const select = el('select', { id: key.slice(1), title: key, onchange: () => void actions.set([key, select.value]) });
  model.on(['state'], () => {
    offer(
      select,
      options.map((value) => ({ value, label: label?.(value) })),
      setting(model, key),
    );
  });
  return select;
}

function keyCheck(model: Model, actions: Actions, key: string, label: string): HTMLElement {
  const box = el('input', {
    type: 'checkbox',
    id: key.slice(1),
    onchange: () => void actions.set([key, String(box.checked)]),
  });
  model.on(['state'], () => (box.checked = setting(model, key) === 'true'));
  return el('label', { class: 'check', title: key }, box, label);
}

function keyText(model: Model, actions: Actions, key: string, hint: string): HTMLInputElement {
  const input = el('input', {
    type: 'text',
    id: key.slice(1),
    title: key,
    placeholder: hint,
    autocomplete: 'off',
    onchange: () => void actions.set([key, input.value.trim()]),
  });
  model.on(['state'], () => {
    show(input, setting(model, key));
  });
  return input;
}

/** Band, width and channel, each offered as far as the device has it. */
function tuningSection(model: Model, actions: Actions): HTMLElement {
  const band = el('select', {
    id: 'band',
    title: '-band',
    onchange: () => tuneTo(band.value, width.value, channel.value),
  });
  const width = el('select', {
    id: 'bandwidth',
    title: '-bandwidth',
    onchange: () => tuneTo(band.value, width.value, channel.value),
  });
  const channel = el('select', {
    id: 'channel',
    title: '-channel',
    onchange: () => void actions.set(['-channel', channel.value]),
  });
  const chain = el('select', {
    id: 'chain',
    title: '-chain',
    onchange: () => void actions.set(['-chain', chain.value]),
  });
  const widthsOf = (name: string) => model.supported.find((entry) => sameBand(entry.band, name))?.bandwidths ?? [];
  const channelsOf = (name: string, mhz: string) =>
    (widthsOf(name).find((entry) => entry.bandwidth === mhz)?.channels ?? []).filter(
      (entry) => entry.frequency !== 'NA',
    );

  /** Band and width together with a channel that they have: the kept one, or the first. */
  function tuneTo(bandName: string, mhz: string, number: string): void {
    const widths = widthsOf(bandName).map((entry) => entry.bandwidth);
    const chosen = widths.includes(mhz) ? mhz : (widths[0] ?? mhz);
    const numbers = channelsOf(bandName, chosen).map((entry) => entry.value);
    const kept = numbers.includes(number) ? number : numbers[0];
    void actions.set(
      ['-band', bandName],
      ['-bandwidth', chosen],
      ...(kept ? [['-channel', kept] as [string, string]] : []),
    );
  }

  model.on(['state', 'vocabulary'], () => {
    const bandName =
      model.supported.find((entry) => sameBand(entry.band, setting(model, '-band')))?.band ?? setting(model, '-band');
    offer(
      band,
      model.supported.map((entry) => ({ value: entry.band, label: `${entry.band} GHz` })),
      bandName,
    );
    const mhz = setting(model, '-bandwidth');
    offer(
      width,
      widthsOf(bandName).map((entry) => ({ value: entry.bandwidth, label: `${entry.bandwidth} MHz` })),
      mhz,
    );
    const channels = channelsOf(bandName, mhz).map(({ value, frequency }) => ({
      value,
      label: `${value} · ${frequency}`,
    }));
    offer(channel, channels, setting(model, '-channel'));
    offer(
      chain,
      model.chains.map((value) => ({ value })),
      setting(model, '-chain'),
    );
  });
  const step = (by: number) => () => {
    const numbers = channelsOf(band.value, width.value).map((entry) => entry.value);
    const next = numbers[numbers.indexOf(channel.value) + by];
    if (next) void actions.set(['-channel', next]);
  };
  const steps = el(
    'span',
    { class: 'steps' },
    el('button', { title: 'Channel below', onclick: step(-1) }, '◀'),
    el('button', { title: 'Channel above', onclick: step(1) }, '▶'),
  );
  const rbw = keySelect(model, actions, '-rbw', rbws, (value) => value);
  return section(
    'Tuning',
    labelled('Band', band),
    labelled('Width', width),
    labelled('Channel', channel),
    steps,
    labelled('Chain', chain),
    labelled('RBW, kHz', rbw),
  );
}

function sameBand(a: string, b: string): boolean {
  const plain = (band: string) => (band === '5.2' ? '5' : band);
  return plain(a) === plain(b);
}

function sweepSection(model: Model, actions: Actions): HTMLElement {
  const count = el('input', {
    type: 'number',
    id: 'average_sweeps',
    min: 1,
    max: 100,
    title: '-channel_average_sweep_val',
    onchange: () => void actions.set(['-channel_average_sweep_val', count.value]),
  });
  model.on(['state'], () => {
    show(count, setting(model, '-channel_average_sweep_val') || '25');
  });
  const reference = el('input', {
    type: 'number',
    id: 'reference_level',
    step: 5,
    onchange: () => setLevels(Number(reference.value), model.view.perDivision_db),
  });
  const scale = el('select', {
    id: 'per_division',
    onchange: () => setLevels(model.view.reference_dbm, Number(scale.value)),
  });
  function setLevels(reference_dbm: number, perDivision_db: number): void {
    if (Number.isFinite(reference_dbm)) Object.assign(model.view, { reference_dbm, perDivision_db });
    model.tell('view');
  }
  const showLevels = () => {
    show(reference, String(model.view.reference_dbm));
    offer(
      scale,
      [1, 2, 5, 10, 15, 20].map((value) => ({ value: String(value), label: `${value} dB` })),
      String(model.view.perDivision_db),
    );
  };
  model.on(['view'], showLevels);
  showLevels();
  return section(
    'Sweep',
    labelled('Ref, dBm', reference),
    labelled('Division', scale),
    el(
      'button',
      { id: 'auto_levels', title: 'Fit the levels once (A)', onclick: () => actions.autoLevels() },
      'Fit levels',
    ),
    keyCheck(model, actions, '-maxhold', 'Max hold'),
    keyCheck(model, actions, '-channel_average', 'Average'),
    labelled('Sweeps', count),
    keyCheck(model, actions, '-histogram', 'Histogram'),
    el(
      'button',
      {
        id: 'clear_holds',
        title: 'Start max hold, min hold and average again (C)',
        onclick: () => actions.clearHolds(),
      },
      'Clear holds',
    ),
  );
}

function gainSection(model: Model, actions: Actions): HTMLElement {
  const gain = keySelect(
    model,
    actions,
    '-internal_gain',
    ['', '0', '1', '2', '3', '4', '5'],
    (value) => value || 'not set',
  );
  const country = el('input', {
    type: 'text',
    id: 'mcc',
    maxlength: 2,
    size: 3,
    title: '-mcc_profile, -set_mcc',
    placeholder: 'US',
  });
  const file = el('input', {
    type: 'text',
    id: 'gain_file',
    title: '-gain_file_name, -set_gain_from_file',
    placeholder: 'GainCSV.csv',
  });
  const details = el(
    'details',
    {},
    el('summary', {}, 'Corrections'),
    keyCheck(model, actions, '-preLNA_resistor', 'Resistor before the LNA'),
    keyCheck(model, actions, '-frequency_compensation', 'Lift the filter’s edges'),
    keyCheck(model, actions, '-power_deembedding', 'Take the floor off the power'),
    labelled('Floors, dBm', keyText(model, actions, '-noise_floor', '-100,-100,-100')),
    labelled('Gain file', file),
    el(
      'button',
      { onclick: () => void actions.set(['-gain_file_name', file.value.trim()], ['-set_gain_from_file']) },
      'Use gain file',
    ),
    labelled('Country', country),
    el(
      'button',
      { onclick: () => void actions.set(['-mcc_profile', country.value.trim().toUpperCase()], ['-set_mcc']) },
      'Set country',
    ),
    el('button', { onclick: () => void actions.line('-reset_config') }, 'Defaults'),
  );
  return section('Gain', labelled('Gain index', gain), details);
}

function limitSection(model: Model, actions: Actions): HTMLElement {
  const limit = el('input', {
    type: 'text',
    id: 'limit',
    placeholder: 'level or file',
    title: 'A level in dBm over the channel, or a CSV of the data folder',
  });
  const margin = el('input', { type: 'number', id: 'limit_margin', min: 0, step: 0.5, value: 3 });
  const send = () => void actions.guarded(() => api.limits(limit.value.trim(), Number(margin.value)));
  model.on(['state'], () => {
    const limits = model.host?.limits;
    show(limit, limits?.text ?? '');
    if (limits) show(margin, String(limits.margin_db));
  });
  return section(
    'Limits',
    labelled('Limit', limit),
    labelled('Margin, dB', margin),
    el('button', { id: 'set_limit', onclick: send }, 'Use limit'),
  );
}

/** Presets hold the settings as the line that makes them, so that a preset is also a lesson. */
function presetSection(model: Model, actions: Actions): HTMLElement {
  const list = el('ul', { class: 'presets' });
  const name = el('input', { type: 'text', placeholder: 'name', 'aria-label': 'Name of the preset' });
  const keys = ['-band', '-bandwidth', '-channel', '-chain', '-rbw', '-maxhold', '-channel_average', '-internal_gain'];
  function keep(): void {
    const pairs = keys.filter((key) => setting(model, key)).map((key): [string, string] => [key, setting(model, key)]);
    const { reference_dbm, perDivision_db } = model.view;
    const preset: Preset = {
      name: name.value.trim() || `Preset ${model.view.presets.length + 1}`,
      line: lineOf(pairs),
      reference_dbm,
      perDivision_db,
    };
    model.view.presets = [...model.view.presets.filter((other) => other.name !== preset.name), preset];
    name.value = '';
    model.tell('view');
  }
  function recall(preset: Preset): void {
    Object.assign(model.view, { reference_dbm: preset.reference_dbm, perDivision_db: preset.perDivision_db });
    model.tell('view');
    void actions.line(preset.line);
  }
  let shown: Preset[] | undefined;
  model.on(['view'], show);
  function show(): void {
    if (shown === model.view.presets) return;
    shown = model.view.presets;
    list.replaceChildren(
      ...shown.map((preset) =>
        el(
          'li',
          {},
          el('button', { title: preset.line, onclick: () => recall(preset) }, preset.name),
          el(
            'button',
            {
              title: `Forget ${preset.name}`,
              class: 'small',
              onclick: () => {
                model.view.presets = model.view.presets.filter((other) => other !== preset);
                model.tell('view');
              },
            },
            '×',
          ),
        ),
      ),
    );
  }
  show();
  return section('Presets', list, el('span', { class: 'row' }, name, el('button', { onclick: keep }, 'Keep')));
}
