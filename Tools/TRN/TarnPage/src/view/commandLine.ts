// The command line: what the page just sent, and lines of the person's own with completion.
import { Completion, completions } from '../model/keys';
import { Model } from '../model/model';
import { Actions } from './actions';
import { el } from './dom';

export function commandLine(model: Model, actions: Actions): { root: HTMLElement; focus(): void } {
  const input = el('input', {
    type: 'text',
    id: 'command',
    autocomplete: 'off',
    spellcheck: 'false',
    maxlength: 4000,
    'aria-label': 'Command line',
    placeholder: '-band 2.4 -channel 6 -trigger_now',
    role: 'combobox',
    'aria-expanded': 'false',
    'aria-controls': 'completions',
  });
  const list = el('ul', { id: 'completions', role: 'listbox', hidden: true });
  const sent = el('output', { id: 'sent', 'aria-label': 'Last line sent' });
  const copy = el(
    'button',
    { class: 'small', title: 'Copy what this page sent, as a script for tarn run', onclick: () => void copySession() },
    'Copy session',
  );
  let offered: Completion[] = [];
  let chosen = -1;
  let past = -1;

  async function copySession(): Promise<void> {
    await navigator.clipboard.writeText(model.sent.join('\n') + '\n');
    model.note('note', `${model.sent.length} lines copied.`);
  }
  function complete(): void {
    offered = completions(input.value, model.keys).slice(0, 8);
    chosen = -1;
    showOffers();
  }
  function showOffers(): void {
    list.hidden = !offered.length;
    input.setAttribute('aria-expanded', String(offered.length > 0));
    list.replaceChildren(
      ...offered.map((offer, index) =>
        el(
          'li',
          {
            role: 'option',
            'aria-selected': String(index === chosen),
            onmousedown: (event: MouseEvent) => {
              event.preventDefault();
              accept(index);
            },
          },
          el('b', {}, offer.label),
          ' ',
          el('span', {}, offer.help),
        ),
      ),
    );
  }
  function accept(index: number): void {
    input.value = offered[index].line;
    input.focus();
    complete();
  }
  function hide(): void {
    offered = [];
    showOffers();
  }
  function recall(step: number): void {
    past = Math.min(model.sent.length - 1, Math.max(-1, past + step));
    input.value = past < 0 ? '' : model.sent[model.sent.length - 1 - past];
  }
  input.addEventListener('input', complete);
  input.addEventListener('blur', hide);
  input.addEventListener('keydown', (event) => {
    const isOpen = offered.length > 0;
    if (event.key === 'Tab' && isOpen && !event.shiftKey) accept(Math.max(0, chosen));
    else if (event.key === 'ArrowDown' && isOpen) chosen = (chosen + 1) % offered.length;
    else if (event.key === 'ArrowUp' && isOpen) chosen = (chosen + offered.length - 1) % offered.length;
    else if (event.key === 'ArrowUp') recall(1);
    else if (event.key === 'ArrowDown') recall(-1);
    else if (event.key === 'Escape' && isOpen) hide();
    else if (event.key === 'Escape') input.blur();
    else if (event.key === 'Enter' && isOpen && chosen >= 0) accept(chosen);
    else if (event.key === 'Enter') {
      void actions.line(input.value.trim());
      input.value = '';
      past = -1;
      hide();
    } else return;
    event.preventDefault();
    event.stopPropagation();
    if (isOpen) showOffers();
  });
  model.on(['messages'], () => (sent.textContent = model.sent.at(-1) ?? ''));
  const root = el(
    'div',
    { class: 'command' },
    el('label', { for: 'command' }, '>'),
    el('div', { class: 'typing' }, input, list),
    sent,
    copy,
  );
  return { root, focus: () => input.focus() };
}
