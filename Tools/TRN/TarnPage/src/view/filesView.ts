// Saving, loading and downloading: the server's data folder, and what the page itself can write.
import { csvText, settingsText, svgText } from '../model/exports';
import { quoteToken } from '../model/keys';
import { Model } from '../model/model';
import { isCaptureName, isFileName, stamp, utcTime } from '../model/text';
import { levelRange } from '../model/view';
import { api, FileEntry } from '../net/api';
import { Actions } from './actions';
import { download, el, palette } from './dom';

/** The values that a snapshot keeps for a front-end; the page keeps its own state elsewhere. */
const frontEndValues = ',0,0,0,0,0,0,0,0,0,0,0,0,0,0';

/** Draws the traces over the waterfall into one picture with the settings on top. */
export type PictureSource = () => { spectrum: HTMLCanvasElement[]; waterfall: HTMLCanvasElement | undefined };

export function filesView(
  model: Model,
  actions: Actions,
  picture: PictureSource,
): { root: HTMLElement; refresh(): void } {
  const name = el('input', { type: 'text', id: 'file_name', value: 'snapshot', 'aria-label': 'File name' });
  const body = el('tbody');
  const pick = el('input', {
    type: 'file',
    multiple: true,
    'aria-label': 'Upload files',
    onchange: () => void take(pick.files),
  });

  function fileName(ending: string): string {
    const typed = name.value.trim();
    const full = /\.[A-Za-z0-9]+$/.test(typed) ? typed : typed + ending;
    if (!isFileName(full))
      model.note('error', 'A file name is made of letters, digits, "-", "_" and ".", 64 at the most.');
    return isFileName(full) ? full : '';
  }
  async function save(key: string, ending: string, values = ''): Promise<void> {
    const full = fileName(ending);
    if (!full) return;
    if (key === '-save_all' && !model.host?.settings['-channel_average_sweep_val'])
      await actions.line('-channel_average_sweep_val 25'); // a snapshot without a count can't be loaded again
    await actions.line(`${key} ${quoteToken(full + values)}`);
    refresh();
  }
  const saver = (label: string, key: string, ending: string, values?: string) => {
    const button = el('button', { id: `save${key}`, title: key, onclick: () => void save(key, ending, values) }, label);
    const show = () => (button.hidden = !model.keys.some((row) => row.name === key));
    model.on(['vocabulary'], show);
    show();
    return button;
  };
  const own = (label: string, work: () => void) => el('button', { onclick: work }, label);

  async function take(files: FileList | null): Promise<void> {
    for (const file of Array.from(files ?? [])) await actions.upload(file);
    refresh();
  }
  function refresh(): void {
    void actions.guarded(async () => show(await api.files()));
  }
  function show(files: FileEntry[]): void {
    body.replaceChildren(
      ...(files.length
        ? files.map((file) =>
            el(
              'tr',
              { 'data-file': file.name },
              el('td', {}, file.name),
              el('td', { class: 'number' }, `${file.bytes.toLocaleString('en')} B`),
              el('td', {}, `${file.utc.slice(0, 10)} ${utcTime(file.utc)}`),
              el(
                'td',
                {},
                isCaptureName(file.name)
                  ? el(
                      'button',
                      { class: 'small', title: `Analyse ${file.name}`, onclick: () => void actions.analyse(file.name) },
                      'Analyse',
                    )
                  : el(
                      'button',
                      { class: 'small', title: `-load_all ${file.name}`, onclick: () => void actions.load(file.name) },
                      'Load',
                    ),
                el(
                  'a',
                  { class: 'button small', href: `/api/files/${encodeURIComponent(file.name)}`, download: file.name },
                  'Download',
                ),
                el(
                  'button',
                  {
                    class: 'small',
                    title: `Remove ${file.name}`,
                    onclick: () =>
                      void actions.guarded(async () => {
                        await api.remove(file.name);
                        refresh();
                      }),
                  },
                  'Remove',
                ),
              ),
            ),
          )
        : [
            el(
              'tr',
              {},
              el(
                'td',
                { colspan: 4, class: 'empty' },
                'The data folder is empty: save a snapshot, or drop files here.',
              ),
            ),
          ]),
    );
  }
  const root = el(
    'div',
    { class: 'view scroll' },
    el('h3', {}, 'In the server’s data folder'),
    el(
      'div',
      { class: 'bar' },
      el('label', { class: 'check' }, 'Name ', name),
      saver('Snapshot', '-save_all', '.csv', frontEndValues),
      saver('Channel powers', '-export_freq_power', '-powers.csv'),
      saver('Bins by RBW', '-save_rbw_power', '-bins.csv'),
      saver('Spectrum', '-save_spectrum', '-spectrum.txt'),
      saver('Max hold', '-save_maxhold', '-maxhold.txt'),
      saver('I/Q', '-save_IQ', '-iq.txt'),
      own('Refresh', refresh),
    ),
    el(
      'table',
      { class: 'files' },
      el('thead', {}, el('tr', {}, ...['Name', 'Size', 'UTC', ''].map((title) => el('th', {}, title)))),
      body,
    ),
    el('h3', {}, 'From a file on this computer'),
    el(
      'p',
      {},
      'Choose snapshots, gain files or captures: they go into the data folder. Dropped anywhere on the page, ' +
        'a snapshot or a capture is also shown. ',
      pick,
    ),
    el('h3', {}, 'What the page shows, on this computer'),
    el(
      'div',
      { class: 'bar' },
      own('CSV of the traces', () =>
        download(`tarn-${stamp(new Date())}.csv`, new Blob([csvText(model.traces)], { type: 'text/csv' })),
      ),
      own('PNG', () => savePng(model, picture)),
      own('SVG', () => saveSvg(model)),
      own('Session as a script', () =>
        download(`tarn-${stamp(new Date())}.txt`, new Blob([model.sent.join('\n') + '\n'], { type: 'text/plain' })),
      ),
    ),
  );
  return { root, refresh };
}

function saveSvg(model: Model): void {
  const reference = model.traces.referenceMismatch();
  const notes = reference ? [`The reference differs: ${reference}`] : [];
  const options = {
    zoom: model.zoom(),
    levels: levelRange(model.view),
    shown: model.view.shown,
    colours: palette().traces,
    notes,
  };
  download(`tarn-${stamp(new Date())}.svg`, new Blob([svgText(model.traces, options)], { type: 'image/svg+xml' }));
}

export function savePng(model: Model, picture: PictureSource): void {
  const { spectrum, waterfall } = picture();
  if (!spectrum.length) return;
  const ratio = devicePixelRatio;
  const width = Math.max(...spectrum.map((canvas) => canvas.width));
  const top = 28 * ratio;
  const height = spectrum.reduce((sum, canvas) => sum + canvas.height, 0);
  const out = el('canvas', { width, height: top + height + (waterfall ? waterfall.height * ratio + 8 : 0) });
  const context = out.getContext('2d')!;
  context.fillStyle = palette().back;
  context.fillRect(0, 0, out.width, out.height);
  context.fillStyle = palette().text;
  context.font = `${13 * ratio}px system-ui, sans-serif`;
  context.fillText(settingsText(model.traces), 12 * ratio, 19 * ratio);
  let y = top;
  for (const canvas of spectrum) {
    context.drawImage(canvas, 0, y);
    y += canvas.height;
  }
  if (waterfall) context.drawImage(waterfall, 64 * ratio, y + 8, waterfall.width * ratio, waterfall.height * ratio);
  out.toBlob((blob) => blob && download(`tarn-${stamp(new Date())}.png`, blob));
}
