// Adds tracks and whole folders to a playlist, however many: finds the tracks first, then adds them
// in portions, so that it can be watched and stopped between any two.
//
// Emits: change. phase: 'finding', 'adding', 'done', 'stopped' or 'failed'.

import { Emitter } from '../core/emitter.js';
import { getRows } from '../core/api.js';
import { RowType, isMenu } from './rows.js';
import { AddMode } from './commands.js';

const FindPage = 500;
const Portion = 250;

export class Adding extends Emitter {
  constructor({ commands, plid, mode, rows, title }) {
    super();
    Object.assign(this, { commands, plid, mode, rows, title });
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

  get isRunning() {
    return this.phase === 'finding' || this.phase === 'adding';
  }

  async run() {
    try {
      const tracks = [];
      await this.find(this.rows, tracks);
      if (!this.stopping) await this.add(tracks);
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
    for (const portion of this.portions(tracks)) {
      if (this.stopping) return;
      await this.commands.addItems(this.plid, portion.items, portion.mode);
      this.added += portion.items.length;
      this.emit('change');
    }
  }

  // What is added next stands before what was added next earlier, so those portions go backwards;
  // the first one comes last then, and starts when it should.
  portions(tracks) {
    const portions = [];
    for (let i = 0; i < tracks.length; i += Portion)
      portions.push({ items: tracks.slice(i, i + Portion), mode: this.mode });
    if (this.mode === AddMode.Append) return portions;
    portions.reverse();
    portions.forEach((portion, i) => {
      portion.mode = i === portions.length - 1 ? this.mode : AddMode.Next;
    });
    return portions;
  }
}
