// The tests that the data folder keeps: their verdicts and their files.
import { api, DesenseEntry } from '../net/api';
import { Actions } from './actions';
import { el } from './dom';

export function desenseFiles(actions: Actions): { root: HTMLElement; refresh(): void } {
  const body = el('tbody');
  const root = el('div', { class: 'desense_files' }, el('h2', {}, 'Results in the data folder'), el('table', {}, body));

  function refresh(): void {
    void actions.guarded(async () => {
      const tests = await api.desenseTests();
      root.hidden = !tests.length;
      body.replaceChildren(...tests.map(row));
    });
  }
  function row(test: DesenseEntry): HTMLElement {
    return el(
      'tr',
      { 'data-test': test.name },
      el('td', {}, test.name),
      el('td', { class: test.verdict }, test.verdict || 'no verdict'),
      el(
        'td',
        {},
        ...test.files.map((file) =>
          file.name === 'report.html'
            ? el('a', { class: 'button small', href: api.desenseFile(test.name, file.name), target: '_blank' }, 'Report')
            : el(
                'a',
                { class: 'button small', href: api.desenseFile(test.name, file.name), download: `${test.name}-${file.name}` },
                file.name,
              ),
        ),
        ...removal(test.name),
      ),
    );
  }
  /** A whole test doesn't go at one click: the button gives way to the question. */
  function removal(name: string): HTMLElement[] {
    const remove = async () => {
      await api.removeDesense(name);
      refresh();
    };
    const button = (label: string, onclick: () => void) =>
      el('button', { class: 'small', title: `${label} the files of ${name}`, onclick }, label);
    const ask = (asks: boolean) => {
      first.hidden = asks;
      question.hidden = !asks;
      (asks ? keep : first).focus();
    };
    const keep = button('Keep', () => ask(false));
    const first = button('Remove', () => ask(true));
    const question = el('span', { hidden: true }, 'Remove all of it? ', keep, button('Remove', () => void actions.guarded(remove)));
    return [first, question];
  }
  return { root, refresh };
}
