// What a desense test is to do: a form, or a configuration file out of the data folder that fills it.
import {
  allChannels,
  channelKeys,
  channelList,
  configFromText,
  configText,
  DesenseConfig,
  DesenseOrder,
} from '../model/desense';
import { Model } from '../model/model';
import { isFileName } from '../model/text';
import { api } from '../net/api';
import { Actions } from './actions';
import { el, offer } from './dom';

export interface DesenseForm {
  root: HTMLElement;
  /** What Start sends. */
  order(): object;
  /** Shows what a test was started with. */
  show(order: DesenseOrder): void;
  /** Looks which configuration files there are. */
  refresh(): void;
}

const fields = {
  name: 'Name',
  bw: 'Width, MHz',
  rbw: 'RBW, kHz',
  chainMode: 'Chains',
  iterations: 'Iterations',
  bitcfg: 'Load file',
  limit: 'Limit, dBm/RBW or file',
  margin: 'Margin, dB',
} as const;
const usualRbws_khz = ['39.0625', '78.125', '156.25', '312.5'];

export function desenseForm(model: Model, actions: Actions): DesenseForm {
  const kept = model.view.desenseForm;
  const text = (key: string, start: string, more: Record<string, string> = {}) =>
    el('input', { type: 'text', id: `desense_${key}`, value: kept[key] ?? start, onchange: keep, ...more });
  const count = (key: string, start: string, high: string, step: string) =>
    el('input', {
      type: 'number',
      id: `desense_${key}`,
      value: kept[key] ?? start,
      min: key === 'iterations' ? '1' : '0',
      max: high,
      step,
      onchange: keep,
    });
  const choice = (key: string, values: string[], start: string) => {
    const select = el(
      'select',
      { id: `desense_${key}`, onchange: keep },
      ...values.map((value) => el('option', { value }, value)),
    );
    select.value = kept[key] ?? start;
    return select;
  };
  const box = (key: string, start: boolean) => {
    const input = el('input', { type: 'checkbox', id: `desense_${key}`, onchange: keep });
    input.checked = (kept[key] ?? String(start)) === 'true';
    return input;
  };
  const inputs = {
    name: text('name', '', { placeholder: 'by date and time' }),
    bw: choice('bw', ['20', '40', '80', '160', '320'], '20'),
    rbw: choice('rbw', usualRbws_khz, '39.0625'),
    chainMode: choice('chainMode', ['A', 'B', 'AB', 'A->B'], 'A->B'),
    iterations: count('iterations', '25', '100', '1'),
    bitcfg: text('bitcfg', 'Workload.bitcfg'),
    limit: text('limit', '', { placeholder: '3 dB over reference' }),
    margin: count('margin', '1', '100', '0.5'),
  };
  const load = box('load', true);
  const idle = box('idle', false);
  const channels = Object.fromEntries(
    Object.entries(channelKeys).map(([band, key]) => [
      band,
      text(key, '', { 'aria-label': `Channels in ${band} GHz`, placeholder: 'none', class: 'channel_list' }),
    ]),
  );
  let isFilled = Object.values(channelKeys).some((key) => kept[key]);

  function keep(): void {
    for (const [key, input] of Object.entries(inputs)) if (key !== 'name') kept[key] = input.value;
    for (const [band, input] of Object.entries(channels)) kept[channelKeys[band]] = input.value;
    Object.assign(kept, { load: String(load.checked), idle: String(idle.checked) });
    isFilled = true;
    model.tell('view');
  }
  function fillAll(band: string): void {
    channels[band].value = allChannels(model.supported, band, inputs.bw.value);
  }
  const row = (band: string) =>
    el(
      'div',
      { class: 'bar' },
      el('span', { class: 'band' }, `${band} GHz`),
      channels[band],
      el(
        'button',
        {
          class: 'small',
          type: 'button',
          title: `Every channel of ${band} GHz that the adapter has at this width`,
          onclick: () => {
            fillAll(band);
            keep();
          },
        },
        'All',
      ),
      el(
        'button',
        {
          class: 'small',
          type: 'button',
          title: `No channel of ${band} GHz`,
          onclick: () => {
            channels[band].value = '';
            keep();
          },
        },
        'None',
      ),
    );
  const files = el('select', { id: 'desense_file', 'aria-label': 'Configuration out of the data folder' });
  files.onchange = () => void use(files.value);

  function config(): DesenseConfig {
    const value = (key: keyof typeof inputs) => inputs[key].value.trim();
    return {
      bw: value('bw'),
      rbw: value('rbw'),
      chainMode: value('chainMode'),
      iterations: value('iterations'),
      bitcfg: value('bitcfg'),
      disableBit: String(!load.checked),
      LBChannels: channelList(channels['2.4'].value),
      HBChannels: channelList(channels['5.2'].value),
      UHBChannels: channelList(channels['6-7'].value),
    };
  }
  function fill(values: Partial<DesenseConfig>): void {
    const rbw = values.rbw;
    if (rbw && !Array.from(inputs.rbw.options).some((option) => option.value === rbw))
      inputs.rbw.append(el('option', { value: rbw }, rbw));
    for (const key of ['bw', 'rbw', 'chainMode', 'iterations', 'bitcfg'] as const)
      if (values[key] !== undefined) inputs[key].value = values[key];
    for (const [band, key] of Object.entries(channelKeys))
      if (values[key] !== undefined) channels[band].value = values[key];
    if (values.disableBit !== undefined) load.checked = values.disableBit !== 'true';
    keep();
  }
  async function use(name: string): Promise<void> {
    if (!name) return;
    await actions.guarded(async () => {
      const values = configFromText(await api.fileText(name));
      if (!Object.keys(values).length) throw new Error(`${name} is no configuration of a desense test`);
      fill(values);
    });
  }
  async function saveConfig(): Promise<void> {
    const typed = inputs.name.value.trim() || 'desense';
    const name = typed.endsWith('.cfg') ? typed : `${typed}.cfg`;
    if (!isFileName(name)) return model.note('error', `'${name}' is no file name.`);
    await actions.guarded(() => api.upload(name, new Blob([configText(config())])));
    model.note('note', `${name} is in the data folder.`);
    refresh();
  }
  function refresh(): void {
    void actions.guarded(async () => {
      const names = (await api.files()).map((file) => file.name).filter((name) => name.endsWith('.cfg'));
      offer(
        files,
        [{ value: '', label: names.length ? 'from a file …' : 'no *.cfg file yet' }, ...names.map((value) => ({ value }))],
        '',
      );
    });
  }
  model.on(['vocabulary'], () => {
    if (isFilled || !model.supported.length) return;
    isFilled = true; // once, for the vocabulary may come again behind what somebody types
    for (const band of Object.keys(channels)) fillAll(band);
  });

  const root = el(
    'form',
    { class: 'desense_form', 'aria-label': 'Configuration', onsubmit: (event: Event) => event.preventDefault() },
    el(
      'div',
      { class: 'fields' },
      ...Object.entries(fields).map(([key, label]) =>
        el('label', { class: 'field' }, el('span', {}, label), inputs[key as keyof typeof inputs]),
      ),
    ),
    ...Object.keys(channels).map(row),
    el(
      'div',
      { class: 'bar' },
      el('label', { class: 'check' }, load, 'load the machine'),
      el('label', { class: 'check', title: 'Sweep everything without load first, and show the rise' }, idle, 'idle baseline first'),
      el('span', { class: 'space' }),
      files,
      el('button', { type: 'button', title: 'Keep these values in the data folder under the name', onclick: () => void saveConfig() }, 'Save as file'),
    ),
  );
  return {
    root,
    order: () => ({
      name: inputs.name.value.trim(),
      config: config(),
      limit: inputs.limit.value.trim(),
      margin_db: Number(inputs.margin.value),
      idleBaseline: idle.checked,
    }),
    show: (order) => {
      inputs.limit.value = order.limit;
      inputs.margin.value = String(order.margin_db);
      idle.checked = order.idleBaseline;
      fill(order.config);
    },
    refresh,
  };
}
