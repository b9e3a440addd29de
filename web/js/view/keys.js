// The keys: those that work anywhere on the page and those that work inside a list. A row of these tables is a line of
// the help and what the keys do: `keys` as the browser names them, `shown` as people know them. The help shows the first
// of several rows that belong together.

import { RowType } from '../model/rows.js';
import { attempt, clamp, openDialog, tell } from './dom.js';

const isTyping = (target) => target.matches?.('input:not([type=range]), textarea, [contenteditable]');
const hasOwnSpace = (target) => target.matches?.('button, a, input, summary');

// From the head of a list and from nowhere the arrows lead into its rows.
const leadsToRows = (target) =>
  target === document.body || (target.closest?.('.screen') && !target.closest('.rows') && !isTyping(target));

const Navigation = new Set(['ArrowUp', 'ArrowDown', 'Home', 'End', 'PageUp', 'PageDown']);

const SeekMs = 10000;
const VolumeStep = 5;

const isLetter = (key) => key.length === 1 && key !== ' ';

function press({ bar }, name) {
  const button = bar?.transport[name];
  if (button && !button.disabled) button.click();
  return button;
}

// What the large view or the bar would show, for those who see neither change.
function pressAndTell(app, name, said) {
  const button = press(app, name);
  if (button && !button.disabled) app.player.once('mode', () => tell(said(app.player)));
}

function seekBy({ player, bar }, by) {
  if (bar && !bar.transport.slider.disabled) attempt(player.seek(clamp(player.position + by, 0, player.duration)), null);
}

function changeVolume({ player }, by) {
  if (!player.isUsable) return;
  attempt(player.setVolume(clamp(player.volume + by, 0, 100)), null);
  tell(`Volume ${player.volume} %`);
}

const RepeatWords = ['off', 'this track', 'all'];

export const PageKeys = [
  { title: 'Play or pause', shown: 'Space', keys: [' '], run: (app, event) => {
    if (hasOwnSpace(event.target)) return false;
    press(app, 'play');
    return true;
  } },
  { title: 'Next, previous track', shown: 'N P', keys: ['n'], run: (app) => press(app, 'next') },
  { keys: ['p'], run: (app) => press(app, 'previous') },
  { title: 'Back, forward by ten seconds', shown: ', .', keys: [','], run: (app) => seekBy(app, -SeekMs) },
  { keys: ['.'], run: (app) => seekBy(app, SeekMs) },
  { title: 'Softer, louder', shown: '- +', keys: ['-'], run: (app) => changeVolume(app, -VolumeStep) },
  { keys: ['+', '='], run: (app) => changeVolume(app, VolumeStep) },
  { title: 'Shuffle', shown: 'S', keys: ['s'], run: (app) => pressAndTell(app, 'shuffle', (player) => `Shuffle: ${player.isShuffled ? 'on' : 'off'}`) },
  { title: 'Repeat', shown: 'R', keys: ['r'], run: (app) => pressAndTell(app, 'repeat', (player) => `Repeat: ${RepeatWords[player.repeat]}`) },
  { title: 'Jump to what plays', shown: 'J', keys: ['j'], run: (app) => attempt(app.jumpToCurrent(), null) },
  { title: 'Search the music', shown: '/', keys: ['/'], run: (app) => app.side.search() },
  { title: 'Find in the list', shown: 'F', keys: ['f'], run: (app) => app.shownScreen.find() },
  { title: 'Undo', shown: 'Ctrl Z', keys: ['z'], control: true, run: (app) => app.undoBar?.undoLast() },
  { title: 'This help', shown: '?', keys: ['?'], run: (app) => app.showHelp() },
];

export function wireKeys(app) {
  document.addEventListener('pointerdown', (event) => app.workIn(event.target), true);
  document.addEventListener('keydown', (event) => {
    if (Navigation.has(event.key)) app.workIn(document.activeElement);
  }, true);
  document.addEventListener('keydown', (event) => {
    if (isTyping(event.target) || event.altKey || openDialog()) return;
    const control = event.ctrlKey || event.metaKey;
    if (control && event.shiftKey) return;
    const row = PageKeys.find(({ keys, control: needs = false }) => needs === control && keys.includes(event.key));
    const isOff = !control && isLetter(event.key) && !app.settings.letterKeys;
    if (row && !isOff) {
      if (row.run(app, event) !== false) event.preventDefault();
    } else if (!control && (event.key === 'ArrowDown' || event.key === 'ArrowUp') && leadsToRows(event.target)) {
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

const isMove = (key) => Boolean(Moves[key]);

// `run(list, row, event)`; row may be missing while it is on its way. False leaves the key to others.
export const RowKeys = [
  { title: 'Move in a list', shown: '↑ ↓ Home End', keys: Object.keys(Moves), run: (list, row, event) => {
    const index = Moves[event.key](list);
    if (event.shiftKey && list.look.selectable) list.selection.extendTo(index, list.active);
    list.setActive(index);
  } },
  { title: 'Open, or play from here', shown: 'Enter', keys: ['Enter'], needsRow: true,
    run: (list, row) => list.emit('open', { row, index: list.active, anchor: list.views.get(list.active)?.element }) },
  { title: 'Open and go in', shown: '→', keys: ['ArrowRight'], needsRow: true,
    run: (list, row) => { if (row.type === RowType.Container) list.emit('open', { row, index: list.active, goIn: true }); } },
  { title: 'Back, or to the list beside', shown: '← Backspace', keys: ['ArrowLeft', 'Backspace'], run: (list) => list.emit('back') },
  { title: 'Menu of a row', shown: 'M', keys: ['m', 'ContextMenu'], needsRow: true, run: (list) => list.openMenu(list.active) },
  { keys: ['F10'], shift: true, needsRow: true, run: (list) => list.openMenu(list.active) },
  { title: 'Rename a list', shown: 'F2', keys: ['F2'], needsRow: true, run: (list, row) => list.emit('rename', { row, anchor: list.views.get(list.active)?.element }) },
  { title: 'Choose a row, several', shown: 'X Shift ↑ ↓', keys: ['x'], needsRow: true, run: (list) => { if (list.look.selectable) list.selection.toggle(list.active); } },
  { title: 'Choose all', shown: 'Ctrl A', keys: ['a'], control: true, run: (list) => (list.look.selectable ? list.emit('selectAll') : false) },
  { title: 'Move a track', shown: 'Alt ↑ ↓', keys: ['ArrowUp', 'ArrowDown'], alt: true, run: (list, row, event) => list.emit('move', { by: event.key === 'ArrowDown' ? 1 : -1 }) },
  { title: 'Remove tracks', shown: 'Delete', keys: ['Delete'], needsRow: true, run: (list) => list.emit('remove') },
  { keys: ['Escape'], run: (list) => (list.selection.mode || list.selection.size ? list.selection.clear() : false) },
];

export function handleListKey(list, event) {
  const { key } = event;
  const row = list.store.row(list.active);
  // A control inside a row keeps its own keys.
  if (event.target.closest('[data-role]') && (key === 'Enter' || key === ' ')) return;
  const control = event.ctrlKey || event.metaKey;
  if (isLetter(key) && !control && !list.look.letterKeys?.()) return;
  const found = RowKeys.find(({ keys, control: needsControl = false, alt = false, shift = false }) => keys.includes(key)
    && needsControl === control && alt === event.altKey && (shift === event.shiftKey || isMove(key)));
  if (!found || (found.needsRow && !row) || found.run(list, row, event) === false) return;
  event.preventDefault();
  event.stopPropagation();
}
