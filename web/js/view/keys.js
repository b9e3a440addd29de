// The keys that work anywhere on the page.

import { attempt } from './toast.js';

const isTyping = (target) => target.matches?.('input:not([type=range]), textarea, [contenteditable]');
const hasOwnSpace = (target) => target.matches?.('button, a, input, summary');

// From the head of a list and from nowhere the arrows lead into its rows.
const leadsToRows = (target) =>
  target === document.body || (target.closest?.('.screen') && !target.closest('.rows') && !isTyping(target));

const Navigation = new Set(['ArrowUp', 'ArrowDown', 'Home', 'End', 'PageUp', 'PageDown']);

function press(button) {
  if (!button.disabled) button.click();
}

export function wireKeys(app) {
  const onBar = (button) => app.bar && press(app.bar.transport[button]);
  const keys = {
    '/': () => app.shownScreen.find(),
    '?': () => app.showHelp(),
    n: () => onBar('next'),
    p: () => onBar('previous'),
    j: () => attempt(app.jumpToCurrent(), null),
    ' ': (event) => {
      if (hasOwnSpace(event.target)) return false;
      onBar('play');
      return true;
    },
  };
  document.addEventListener('pointerdown', (event) => app.workIn(event.target), true);
  document.addEventListener('keydown', (event) => {
    if (Navigation.has(event.key)) app.workIn(document.activeElement);
  }, true);
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || isTyping(event.target)) return;
    if (document.querySelector('dialog[open]')) return;
    const run = keys[event.key];
    if (run && run(event) !== false) event.preventDefault();
    else if ((event.key === 'ArrowDown' || event.key === 'ArrowUp') && leadsToRows(event.target)) {
      const { list } = app.shownScreen;
      list.setActive(list.active >= 0 ? list.active : list.step(0, 0));
      event.preventDefault();
    }
  });
}
