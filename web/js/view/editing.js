// What people do to the rows of a playlist on screen, by the keys, by dragging and by what is chosen: it is shown at
// once, and done by the device in its turn.

import { trackKey } from '../model/order.js';
import { plural, rowKey } from '../model/rows.js';
import { showMoved, showRemoved } from '../model/shown.js';
import { attempt } from './dom.js';
import { Dragging } from './dragging.js';
import { Dropping } from './dropping.js';

const AskFrom = 11; // so many rows are not removed without a question

export class Editing {
  constructor(screen) {
    this.screen = screen;
    const { list, target } = screen;
    new Dragging(list, { canMove: () => Boolean(target), drop: (indices, gap) => this.move(indices, gap), dropping: new Dropping(screen) });
    if (!target) return;
    list.movable = true;
    list.refresh();
    list.on('remove', () => this.removeActive());
    list.on('move', ({ by }) => this.moveActive(by));
  }

  move(indices, gap) {
    const { store, list } = this.screen;
    const entries = indices.map((index) => ({ index, row: store.row(index) }));
    if (entries.some(({ row }) => !row)) return;
    const active = rowKey(store.row(list.active));
    const done = this.begin((how) => this.edits.move(this.screen.target, entries, gap, how), indices);
    if (!done) return;
    showMoved(store, indices, gap);
    const place = store.rows.findIndex((row) => rowKey(row) === active);
    if (active && place >= 0) list.follow(place);
    this.end(done);
  }

  moveActive(by) {
    const { list, store } = this.screen;
    const from = list.active;
    const to = from + by;
    if (from < 0 || to < 0 || to >= store.count) return;
    this.move([from], by > 0 ? to + 1 : to);
    list.reveal(list.active);
  }

  // Whether the row and that place are among those that are here.
  holds(row, to = 0) {
    return this.placeOf(row) >= 0 && to < this.screen.store.count;
  }

  // By the row's menu.
  moveTrack(row, to) {
    const index = this.placeOf(row);
    this.move([index], to > index ? to + 1 : to);
  }

  removeTrack(row) {
    this.remove([{ row, index: this.placeOf(row) }]);
    this.screen.list.selection.forget(row);
  }

  placeOf(row) {
    return this.screen.store.rows.findIndex((one) => one && trackKey(one) === trackKey(row));
  }

  // By its key: what is chosen, or the row that has the focus. All that are being chosen are meant, or none.
  async removeActive() {
    const { list } = this.screen;
    const { choosing } = list.selection;
    if (choosing && !await choosing.then(() => true, () => false)) return;
    if (!list.selection.size && list.active >= 0) list.selection.only(list.active);
    this.removeChosen();
  }

  removeChosen() {
    const { list, app, title } = this.screen;
    const { size } = list.selection;
    if (size < AskFrom) this.removeSelection();
    else {
      app.ask({ title: `Remove ${plural(size, 'track')}?`, text: `They leave “${title}”.`, button: 'Remove' },
        () => this.removeSelection());
    }
  }

  removeSelection() {
    const { selection } = this.screen.list;
    const entries = [...selection.chosen.values()].sort((a, b) => a.index - b.index);
    if (entries.length && this.remove(entries)) selection.clear();
  }

  // Whether it was begun. `entries`: {row, index}, ascending.
  remove(entries) {
    const { store } = this.screen;
    // What is far from the view is not here: it is found when its turn comes.
    const areHere = entries.every(({ row, index }) => rowKey(store.row(index)) === rowKey(row));
    const indices = entries.map(({ index }) => index);
    const done = areHere
      ? this.begin((how) => this.edits.remove(this.screen.target, entries, how), indices)
      : this.edits.remove(this.screen.target, entries, {});
    if (!done) return false;
    if (areHere) showRemoved(store, indices);
    this.end(done);
    return true;
  }

  get edits() {
    return this.screen.app.edits;
  }

  begin(edit, indices) {
    const { store } = this.screen;
    const shown = [...store.rows];
    return edit({
      revision: store.revisionOf(indices),
      rows: (i) => shown[i],
      count: store.count,
      isShown: true,
      isOnTop: store.held > 0,
    });
  }

  async end(done) {
    const { store, target, element } = this.screen;
    store.hold();
    await attempt(done, element);
    if (!store.closed) store.release(this.edits.queueOf(target).revision);
  }
}
