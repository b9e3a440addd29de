// The keys: those that work anywhere on the page and those that work inside a list.

import { RowType } from '../model/rows.js';
import { attempt } from './dom.js';

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
    if ((event.ctrlKey || event.metaKey) && event.key === 'z' && !event.shiftKey && !isTyping(event.target) && !document.querySelector('dialog[open]')) {
      app.undoBar?.undoLast();
      event.preventDefault();
      return;
    }
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

// Inside a list.

const Moves = {
  ArrowDown: (list) => list.step(list.active, 1),
  ArrowUp: (list) => list.step(list.active, -1),
  PageDown: (list) => list.step(list.active, list.pageStep()),
  PageUp: (list) => list.step(list.active, -list.pageStep()),
  Home: (list) => list.step(0, 0),
  End: (list) => list.store.count - 1,
};

const Actions = {
  Enter: (list, row) => list.emit('open', { row, index: list.active, anchor: list.views.get(list.active)?.element }),
  ArrowRight: (list, row) => row.type === RowType.Container && list.emit('open', { row, index: list.active, goIn: true }),
  ArrowLeft: (list) => list.emit('back'),
  Backspace: (list) => list.emit('back'),
  m: (list) => list.openMenu(list.active),
  ContextMenu: (list) => list.openMenu(list.active),
  x: (list) => list.look.selectable && list.selection.toggle(list.active),
  Delete: (list) => list.emit('remove'),
};

export function handleListKey(list, event) {
  const { key } = event;
  const row = list.store.row(list.active);
  // A control inside a row keeps its own keys.
  if (event.target.closest('[data-role]') && (key === 'Enter' || key === ' ')) return;
  if ((event.ctrlKey || event.metaKey) && key === 'a' && list.look.selectable) {
    list.emit('selectAll');
  } else if (event.altKey && (key === 'ArrowUp' || key === 'ArrowDown')) {
    list.emit('move', { by: key === 'ArrowDown' ? 1 : -1 });
  } else if (event.ctrlKey || event.metaKey || event.altKey) {
    return;
  } else if (key === 'F10' && event.shiftKey) {
    list.openMenu(list.active);
  } else if (Moves[key]) {
    const index = Moves[key](list);
    if (event.shiftKey && list.look.selectable) list.selection.extendTo(index, list.active);
    list.setActive(index);
  } else if (key === 'Escape' && (list.selection.mode || list.selection.size)) {
    list.selection.clear();
  } else if (Actions[key] && row) {
    Actions[key](list, row);
  } else {
    return;
  }
  event.preventDefault();
  event.stopPropagation();
}
