// What the keys do.

import { el, icon, showDialog } from './dom.js';
import { PageKeys, RowKeys } from './keys.js';

export function showHelp(settings) {
  if (document.querySelector('dialog.help')) return;
  const lines = [...RowKeys, ...PageKeys].filter(({ title }) => title);
  const dialog = el('dialog.card.help', { 'aria-labelledby': 'help-title' },
    el('header.sheet-head', {}, el('h2.sheet-title', { id: 'help-title' }, 'Keys'),
      el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => dialog.close() }, icon('close'))),
    settings.letterKeys ? null : el('p.setting-text', {}, 'Keys of one letter are switched off in the settings.'),
    el('dl.keys', {}, lines.flatMap(({ title, shown }) => [
      el('dt', {}, title),
      el('dd', {}, shown.split(' ').map((key) => el('kbd', {}, key))),
    ])));
  dialog.addEventListener('close', () => dialog.remove());
  dialog.addEventListener('click', (event) => event.target === dialog && dialog.close());
  document.body.append(dialog);
  showDialog(dialog);
}
