// The burn-in desense test's view. The server has no driver for the test yet; the view says so instead of pretending.
import { el } from './dom';

export function desenseView(): HTMLElement {
  return el(
    'div',
    { class: 'view' },
    el(
      'p',
      { class: 'empty' },
      'The desense test can’t be driven from the page yet. Run it with the -vesper keys in the command line.',
    ),
  );
}
