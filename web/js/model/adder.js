// Adds tracks and whole folders to a playlist, however many: finds the tracks first, then adds them
// in portions, so that it can be watched and stopped between any two.
//
// Emits: change. phase: 'finding', 'adding', 'done', 'stopped' or 'failed'.

import { Emitter, getRows } from '../core/device.js';
import { AddMode } from './commands.js';
import { RowType, isMenu } from './rows.js';

const FindPage = 500;
const Portion = 250;

export class Adding extends Emitter {
  // `gap`: the place in front of which they stand in the end, instead of at the end.
  constructor({ edits, target, mode, rows, title, gap }) {
    super();
    Object.assign(this, { edits, target, mode, rows, title, gap });
    this.phase = 'finding';
    this.found = 0;
    this.added = 0;
    this.error = null;
    this.stopping = false;
  }

  stop() {
    this.stopping = true;
    this.emit('change');
  }

  async run() {
    try {
      const tracks = [];
      await this.find(this.rows, tracks);
      if (!this.stopping) await this.add(tracks);
      if (this.gap !== undefined && this.added) await this.edits.placeLast(this.target, this.added, this.gap);
      this.enter(this.stopping ? 'stopped' : 'done');
    } catch (error) {
      this.error = error;
      this.enter('failed');
    }
  }

  enter(phase) {
    this.phase = phase;
    this.emit('change');
  }

  // In the order of listing, folders where they stand.
  async find(rows, tracks) {
    for (const row of rows) {
      if (this.stopping) return;
      if (row.type === RowType.Audio) {
        tracks.push(row.path);
        this.found = tracks.length;
      } else if (row.type === RowType.Container && !isMenu(row)) {
        await this.findIn(row.path, tracks);
      }
    }
    this.emit('change');
  }

  async findIn(path, tracks) {
    for (let from = 0, count = 1; from < count && !this.stopping; from += FindPage) {
      const answer = await getRows(path, from, from + FindPage - 1, ['path', 'type', 'containerType']);
      count = answer.rowsCount;
      await this.find(answer.rows, tracks);
    }
  }

  async add(tracks) {
    this.enter('adding');
    for (const portion of await this.portions(tracks)) {
      if (this.stopping) return;
      await this.edits.add(this.target, portion.items, portion.mode);
      this.count(portion.items);
    }
  }

  count(items) {
    this.added += items.length;
    this.emit('change');
  }

  // What to add, and how, one after the other, so that in the end the tracks stand in their order.
  async portions(tracks) {
    const cut = Array.from({ length: Math.ceil(tracks.length / Portion) }, (_, i) =>
      ({ items: tracks.slice(i * Portion, (i + 1) * Portion), mode: AddMode.Append }));
    if (cut.length > 1 && this.mode !== AddMode.Append && (await this.isNextInside())) {
      // Each portion stands in front of the one before; the first one comes last and starts then.
      cut.reverse().forEach((portion, i) => (portion.mode = i < cut.length - 1 ? AddMode.Next : this.mode));
    } else if (cut.length) {
      // From the end of the list on there is nothing to stand in front of.
      cut[0].mode = this.mode;
    }
    return cut;
  }

  async isNextInside() {
    const { rowsCount, lastPlayedIndex } = await getRows(this.target.path, 0, 0, ['path']);
    return lastPlayedIndex >= 0 && lastPlayedIndex < rowsCount - 1;
  }
}
