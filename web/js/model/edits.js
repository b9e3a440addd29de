// What people do to playlists: each edit goes through the queue of its list, and says afterwards what it did and how
// that is undone.
//
// Emits: done (a step: {text, key, undo}) · ended (the path of a list that is no more).

import { Emitter, getRows } from '../core/device.js';
import { EditQueue, isChanged } from './editQueue.js';
import { Order, trackKey } from './order.js';
import { plural } from './rows.js';
import { duplicates, sorted } from './sorting.js';
import { Undo, twice } from './undo.js';

const nothingDone = (what) => new Error(`${what} Nothing was done.`);

const gone = (entries) => (entries.length === 1 ? `“${entries[0].row.title}” is gone already.` : 'The tracks are gone already.');

// What stands on both sides and stays, from these two rows outwards: keys, null for an end of the list, undefined when
// it is not known.
function between(after, before, taken, count, rowAt) {
  while (taken.has(after)) after -= 1;
  while (taken.has(before)) before += 1;
  const key = (index) => (index < 0 || index >= count ? null : rowAt(index) && trackKey(rowAt(index)));
  return { after: key(after), before: key(before) };
}

function neighboursOf(indices, count, rowAt) {
  const taken = new Set(indices);
  return indices.map((index) => between(index - 1, index + 1, taken, count, rowAt));
}

export class Edits extends Emitter {
  // `lock`: what is under way, shared with everything else that can be pressed.
  constructor(commands, lock) {
    super();
    Object.assign(this, { commands, lock });
    this.queues = new Map(); // path → EditQueue
    this.underWay = new Set(); // promises
    this.ending = new Set(); // paths of lists that are being deleted
    this.undo = new Undo(this);
  }

  queueOf({ path }) {
    if (!this.queues.has(path)) this.queues.set(path, new EditQueue(() => Order.read(path)));
    return this.queues.get(path);
  }

  // Null when something of what it locks is under way already, otherwise a promise of what it did. `told` says it.
  run(target, { locks = [], told = (done) => done, ...edit }) {
    const done = this.lock.during(locks, () => this.queueOf(target).add(edit))?.then(told);
    if (!done) return null;
    const settled = done.catch(() => {}).then(() => this.underWay.delete(settled));
    this.underWay.add(settled);
    return done;
  }

  // When all that is under way now has been done and told.
  settled() {
    return Promise.all(this.underWay);
  }

  tell(step) {
    this.emit('done', this.commands.canArrange ? step : { text: step.text });
  }

  // `entries`: {row, index}, ascending. `rows(index)`: what the page shows there, of `count`.
  // `isOnTop`: the page shows the edits that are on their way, and this one is made on top of them.
  remove(target, entries, { revision, rows, count, isShown = false, isOnTop = false }) {
    const locks = entries.map(({ row }) => trackKey(row));
    if (this.lock.isHeld(locks)) return null;
    const known = rows && neighboursOf(entries.map(({ index }) => index), count, rows);
    const items = this.commands.prepare(entries.map(({ row }) => row.path));
    items.catch(() => {}); // told in its turn
    const send = async (order) => {
      let [there, neighbours] = [entries, known];
      if (order.rows) {
        there = order.find(entries);
        if (!there.length) throw new Error(gone(entries));
        neighbours = neighboursOf(there.map(({ index }) => index), order.size, (index) => order.rows[index]);
      }
      const kept = await items;
      await this.commands.removeItems(target.plid, there.map(({ index }) => index), order.revision);
      return there.map(({ row, index }, i) => ({ row, index, item: kept.get(row.path), ...neighbours[i] }));
    };
    const told = (removed) => this.toldRemoved(target, removed);
    return this.run(target, { locks, revision, isShown, isLater: !isOnTop, send, told });
  }

  toldRemoved(target, removed) {
    const text = removed.length === 1 ? `“${removed[0].row.title}” removed` : `${plural(removed.length, 'track')} removed`;
    this.tell({ text, undo: this.undo.ofRemoval(target, removed) });
  }

  // They come to stand in front of what is at `gap` now, in their order.
  move(target, entries, gap, { revision, rows, count, isShown = false, isOnTop = false }) {
    const indices = entries.map(({ index }) => index);
    const origins = rows && neighboursOf(indices, count, rows);
    const place = rows && between(gap - 1, gap, new Set(indices), count, rows);
    const send = async (order) => {
      let moved = { entries, gap, size: count, origins };
      if (order.rows) {
        const found = order.find(entries);
        if (!found.length) throw new Error(gone(entries));
        const to = place ? order.placeBetween(place) : gap;
        if (to < 0) throw nothingDone('The tracks beside it are gone.');
        const now = found.map(({ index }) => index);
        moved = { entries: found, gap: to, size: order.size, origins: neighboursOf(now, order.size, (i) => order.rows[i]) };
      }
      await this.commands.move(target.plid, moved.entries.map(({ index }) => index), moved.gap, order.revision);
      return moved;
    };
    const told = (moved) => this.toldMoved(target, moved);
    return this.run(target, { revision, isShown, isLater: !isOnTop, send, told });
  }

  toldMoved(target, { entries, gap, size, origins }) {
    const to = gap - entries.filter(({ index }) => index < gap).length;
    const what = entries.length === 1 ? `“${entries[0].row.title}”` : plural(entries.length, 'track');
    this.tell({
      text: `${what} moved to ${to + 1} of ${size}`,
      key: `${target.path} ${entries.map(({ row }) => row.path)}`,
      undo: this.undo.ofMove(target, { entries, to, size, origins }),
    });
  }

  // The menu's own "Move track": `to` is the place that it shall have.
  async moveTo(target, row, to) {
    const order = await Order.read(target.path);
    const index = order.indexOf(trackKey(row));
    if (index < 0) throw new Error('The track is gone already.');
    const rows = (i) => order.rows[i];
    await this.move(target, [{ row: order.rows[index], index }], to > index ? to + 1 : to,
      { revision: order.revision, rows, count: order.size });
  }

  async removeOne(target, row) {
    const order = await Order.read(target.path);
    const index = order.indexOf(trackKey(row));
    if (index < 0) throw new Error('The track is gone already.');
    await this.remove(target, [{ row: order.rows[index], index }],
      { revision: order.revision, rows: (i) => order.rows[i], count: order.size });
  }

  // Sorted when its turn comes, and again when others were quicker: what is asked for is an order.
  async sort(target, { by, reverse }) {
    await this.run(target, { locks: [target.path], isPlain: true, send: () => twice(async () => {
      const { rows, revision } = await Order.readWhole(target.path);
      const wanted = sorted(rows, { by, reverse });
      if (wanted.every((from, to) => from === to)) {
        this.tell({ text: 'The tracks are in this order already.' });
        return;
      }
      await this.commands.setOrder(target.plid, wanted, revision);
      this.tell({ text: `Sorted by ${by}`, undo: this.undo.ofOrder(target, rows) });
    }) });
  }

  // Those that are there a second time, entries with what stands around them.
  async findDuplicates(target) {
    const order = await Order.readWhole(target.path);
    const entries = duplicates(order.rows).map((index) => ({ row: order.rows[index], index }));
    return { entries, around: { revision: order.revision, rows: (i) => order.rows[i], count: order.size } };
  }

  // How long the list is, and at which revision: what people are asked about.
  async lookAt(target) {
    const { rowsCount, revision } = await getRows(target.path, 0, 0, ['path']);
    return { count: rowsCount, revision };
  }

  // Done to the list as it was when people were asked, or not at all.
  whole(target, edit) {
    return this.run(target, { locks: [target.path], isPlain: true, send: edit })?.catch((error) => {
      throw isChanged(error) ? nothingDone('The playlist has changed meanwhile.') : error;
    });
  }

  // Its tracks, as they are added again.
  async itemsOf(target, revision) {
    const order = await Order.read(target.path);
    if (order.revision !== revision) throw nothingDone('The playlist has changed meanwhile.');
    const items = await this.commands.prepare(order.rows.map((row) => row.path));
    return order.rows.map((row, index) => ({ row, index, item: items.get(row.path), after: null, before: undefined }));
  }

  clear(target, title, { revision }) {
    return this.whole(target, async () => {
      const removed = await this.itemsOf(target, revision);
      await this.commands.clear(target.plid, revision);
      this.tell({ text: `“${title}” cleared`, undo: this.undo.ofRemoval(target, removed) });
    });
  }

  deleteList(target, title, { revision }) {
    return this.whole(target, async () => {
      const list = await this.commands.describe(target.plid);
      const removed = await this.itemsOf(target, revision);
      await this.endList(target, () => this.commands.deleteList(target.plid, revision));
      this.tell({ text: `“${title}” deleted`, undo: this.undo.ofDeletion(list, removed) });
    });
  }

  // The device may tell of the end before it answers.
  async endList({ path }, work) {
    this.ending.add(path);
    try {
      await work();
      this.emit('ended', path);
    } finally {
      this.ending.delete(path);
    }
  }

  // `source` and `into`: {plid, path, title}. The source goes, unless it is the play queue.
  merge(source, into, mode, { revision }) {
    return this.whole(into, async () => {
      const list = source.plid === 0 ? null : await this.commands.describe(source.plid);
      const moved = await this.itemsOf(source, revision);
      const before = await Order.read(into.path);
      const merge = () => this.commands.merge(source.plid, into.plid, mode, before.revision);
      await (list ? this.endList(source, merge) : merge());
      this.tell({ text: `“${source.title}” merged into “${into.title}”`, undo: this.undo.ofMerge(list, moved, into, before) });
    });
  }

  // The tracks at the end come to stand in front of a place. Where others were quicker they stay where they are.
  placeLast(target, count, gap) {
    return this.run(target, { isPlain: true, send: async () => {
      const { rowsCount, revision } = await getRows(target.path, 0, 0, ['path']);
      const from = rowsCount - count;
      if (from <= gap) return;
      await this.commands.move(target.plid, Array.from({ length: count }, (_, i) => from + i), gap, revision);
    } });
  }

  // Tracks go from one list to a place of another one, or to its end; taken back, they stand where they stood.
  moveToList(source, rows, into, gap = undefined) {
    return this.run(into, { locks: rows.map(trackKey), isPlain: true, send: () => twice(async () => {
      const order = await Order.read(source.path);
      const entries = order.find(rows.map((row) => ({ row })));
      if (!entries.length) throw new Error(gone(rows.map((row) => ({ row }))));
      const kept = await this.commands.prepare(entries.map(({ row }) => row.path));
      const items = entries.map(({ row }) => kept.get(row.path)).filter(Boolean);
      const around = neighboursOf(entries.map(({ index }) => index), order.size, (i) => order.rows[i]);
      const removed = entries.map((entry, i) => ({ ...entry, item: kept.get(entry.row.path), ...around[i] }));
      const before = await Order.read(into.path);
      const at = gap === undefined ? null : items.map((_, i) => Math.min(gap, before.size) + i);
      await this.commands.addBack(into.plid, items, at, at ? before.revision : undefined);
      try {
        await this.commands.removeItems(source.plid, entries.map(({ index }) => index), order.revision);
      } catch (error) {
        // Others were quicker: they must not stand in both lists.
        await this.undo.takeOut(into, removed, before);
        throw error;
      }
      const what = entries.length === 1 ? `“${entries[0].row.title}”` : plural(entries.length, 'track');
      this.tell({ text: `${what} moved to “${into.title}”`, undo: this.undo.ofMoveToList(source, removed, into, before) });
    }) });
  }

  // Adding has no positions, and goes in its turn.
  add(target, paths, mode) {
    return this.inTurn(target, () => this.commands.addItems(target.plid, paths, mode));
  }

  inTurn(target, send) {
    return this.run(target, { isPlain: true, send });
  }
}
