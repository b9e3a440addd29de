// Asks before much is changed, by a dialog of its own: what answers it stands elsewhere than what led to it, and neither
// a second press nor the key that opened it is an answer.

import { el, showDialog } from './dom.js';

const SecondPressMs = 400;

// `button`: the word for doing it.
export function ask({ title, text, button }, run) {
  const act = el('button.pill.destructive', { type: 'button', disabled: true, onclick: () => {
    dialog.close();
    run();
  } }, button);
  const cancel = el('button.pill', { type: 'button', onclick: () => dialog.close() }, 'Cancel');
  const dialog = el('dialog.card.question', { role: 'alertdialog', 'aria-labelledby': 'question-title', 'aria-describedby': 'question-text' },
    el('h2.question-title', { id: 'question-title' }, title),
    el('p', { id: 'question-text' }, text),
    el('div.field-buttons', {}, cancel, act));
  dialog.addEventListener('close', () => dialog.remove());
  document.body.append(dialog);
  showDialog(dialog);
  cancel.focus();
  setTimeout(() => (act.disabled = false), SecondPressMs);
}
