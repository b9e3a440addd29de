// What the keys do.

import { el, icon } from './dom.js';

const Keys = [
  ['Move in a list', '↑ ↓ Home End'],
  ['Open, or play from here', 'Enter'],
  ['Open and go in', '→'],
  ['Play or pause', 'Space'],
  ['Next, previous track', 'N  P'],
  ['Back, or to the list beside', '← Backspace'],
  ['Menu of a row', 'M'],
  ['Choose a row, several', 'X  Shift ↑ ↓'],
  ['Choose all', 'Ctrl A'],
  ['Move a track', 'Alt ↑ ↓'],
  ['Remove tracks', 'Delete'],
  ['Take back', 'Ctrl Z'],
  ['Find in the list', '/'],
  ['Jump to what plays', 'J'],
  ['This help', '?'],
];

export function showHelp() {
  const open = document.querySelector('dialog.help');
  if (open) return;
  const dialog = el('dialog.card.help', { 'aria-labelledby': 'help-title' },
    el('header.sheet-head', {}, el('h2.sheet-title', { id: 'help-title' }, 'Keys'),
      el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => dialog.close() }, icon('close'))),
    el('dl.keys', {}, Keys.flatMap(([what, keys]) => [
      el('dt', {}, what),
      el('dd', {}, keys.split(/\s+/).map((key) => el('kbd', {}, key))),
    ])));
  dialog.addEventListener('close', () => dialog.remove());
  dialog.addEventListener('click', (event) => event.target === dialog && dialog.close());
  document.body.append(dialog);
  dialog.showModal();
}
