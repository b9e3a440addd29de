// Which rows are chosen. Rows are known by what identifies them, not by their place, so a choice
// survives what others do to the list.
//
// Emits: change.

import { Emitter } from '../core/device.js';
import { RowType, isSignpost, rowKey } from '../model/rows.js';

export class Selection extends Emitter {
  constructor(store) {
    super();
    this.store = store;
    this.chosen = new Map(); // key → {row, index}
    this.anchor = -1;
    this.mode = false; // a tap chooses instead of playing
    this.choosing = null;
    store.on('inserted', ({ at, count }) => {
      for (const entry of this.chosen.values()) if (entry.index >= at) entry.index += count;
    });
    store.on('rows', ({ from, to }) => this.follow(from, to));
  }

  follow(from, to) {
    if (!this.chosen.size) return;
    for (let i = from; i < to; i += 1) {
      const entry = this.chosen.get(rowKey(this.store.row(i)));
      if (entry) Object.assign(entry, { index: i, row: this.store.row(i) });
    }
  }

  get size() {
    return this.chosen.size;
  }

  has(row) {
    return this.chosen.size > 0 && this.chosen.has(rowKey(row));
  }

  static canChoose(row) {
    return Boolean(row?.path) && !isSignpost(row) && (row.type === RowType.Audio || row.type === RowType.Container);
  }

  setMode(mode) {
    this.mode = mode;
    if (!mode) this.chosen.clear();
    this.emit('change');
  }

  clear() {
    this.setMode(false);
  }

  add(index, row = this.store.row(index)) {
    if (Selection.canChoose(row)) this.chosen.set(rowKey(row), { row, index });
  }

  toggle(index) {
    const row = this.store.row(index);
    if (!Selection.canChoose(row)) return;
    if (!this.chosen.delete(rowKey(row))) this.add(index);
    this.anchor = index;
    this.emit('change');
  }

  forget(row) {
    if (this.chosen.delete(rowKey(row))) this.emit('change');
  }

  only(index) {
    this.chosen.clear();
    this.anchor = index;
    this.add(index);
    this.emit('change');
  }

  // From where choosing began, or from `start` when it begins now.
  extendTo(index, start = index) {
    if (!this.size || this.anchor < 0) this.anchor = start;
    this.chosen.clear();
    const [from, to] = [Math.min(this.anchor, index), Math.max(this.anchor, index)];
    for (let i = from; i <= to; i += 1) this.add(i);
    this.emit('change');
  }

  // `choosing` is a promise until all are chosen.
  all() {
    this.choosing = this.chooseAll().finally(() => (this.choosing = null));
    return this.choosing;
  }

  async chooseAll() {
    this.mode = true;
    await this.store.scan((row, index) => this.add(index, row));
    this.emit('change');
  }

  // The chosen rows in the order of the list, with their places as they are now. Those that are
  // gone are left out.
  async resolve() {
    const unsure = [...this.chosen].filter(
      ([key, { index }]) => rowKey(this.store.row(index)) !== key || !this.store.isFresh(index));
    if (unsure.length) {
      const missing = new Map(unsure);
      await this.store.scan((row, index) => {
        const entry = missing.get(rowKey(row));
        if (!entry) return true;
        Object.assign(entry, { index, row });
        missing.delete(rowKey(row));
        return missing.size > 0;
      });
      for (const key of missing.keys()) this.chosen.delete(key);
    }
    return [...this.chosen.values()].sort((a, b) => a.index - b.index);
  }
}
