// The keys that work inside a list.

import { RowType } from '../model/rows.js';

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
