// Asks for the device's token, once: what stays is a cookie that the page itself cannot read.

import { login } from '../core/device.js';
import { el, setText } from './dom.js';

// Resolves when the device has taken the token.
export function askToken() {
  return new Promise((done) => {
    const input = el('input', {
      type: 'password', name: 'token', 'aria-labelledby': 'token-title', autocomplete: 'current-password', required: true,
    });
    const said = el('p.field-problem', { role: 'alert' });
    const send = async (event) => {
      event.preventDefault();
      try {
        await login(input.value.trim());
      } catch (error) {
        setText(said, error.message);
        input.select();
        return;
      }
      dialog.remove();
      done();
    };
    const dialog = el('dialog.card', { 'aria-labelledby': 'token-title' },
      el('header.sheet-head', {}, el('h2.sheet-title', { id: 'token-title' }, 'Token of this device')),
      el('form.field', { onsubmit: send }, input, said,
        el('div.field-buttons', {}, el('button.pill', { type: 'submit' }, 'OK'))));
    // There is nothing behind it to go back to.
    dialog.addEventListener('cancel', (event) => event.preventDefault());
    document.body.append(dialog);
    dialog.showModal();
    input.focus();
  });
}
