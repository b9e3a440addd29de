// The settings of this browser.

import { el, icon, showDialog } from './dom.js';

const Switches = [
  { name: 'letterKeys', title: 'Keys of one letter', text: 'N, P, S and others. Off, they do nothing: for those who dictate, or press keys by accident.' },
];

export function showSettings(settings) {
  if (document.querySelector('dialog.settings')) return;
  const rows = Switches.map(({ name, title, text }) => {
    const button = el('button.menu-entry', { type: 'button', role: 'switch', 'aria-checked': String(settings[name]), 'aria-describedby': `about-${name}`, onclick: () => {
      settings.set(name, !settings[name]);
      button.setAttribute('aria-checked', String(settings[name]));
    } }, el('span.menu-text', {}, title), el('span.switch-face', { 'aria-hidden': 'true' }));
    return [button, el('p.setting-text', { id: `about-${name}` }, text)];
  });
  const dialog = el('dialog.card.settings', { 'aria-labelledby': 'settings-title' },
    el('header.sheet-head', {}, el('h2.sheet-title', { id: 'settings-title' }, 'Settings of this browser'),
      el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => dialog.close() }, icon('close'))),
    el('div.menu-entries', {}, ...rows.flat()));
  dialog.addEventListener('close', () => dialog.remove());
  dialog.addEventListener('click', (event) => event.target === dialog && dialog.close());
  document.body.append(dialog);
  showDialog(dialog);
}
