// All rows of a list in their order, at one revision.

import { RowRoles, getRows } from '../core/device.js';
import { rowKey } from './rows.js';

const PageSize = 1000;
const MaxTries = 3;

// A number that was given again is another track, so the title belongs to it.
export const trackKey = (row) => `${rowKey(row)} ${row.title}`;

export class Order {
  constructor(rows, revision) {
    Object.assign(this, { rows, revision });
    this.places = new Map(rows.map((row, index) => [trackKey(row), index]));
  }

  // Reads again from the start when the list changes between two pages.
  static async read(path, { roles = ['path', 'title'], read = getRows } = {}) {
    for (let tries = 0; tries < MaxTries; tries += 1) {
      const rows = [];
      let revision;
      for (;;) {
        const answer = await read(path, rows.length, rows.length + PageSize - 1, roles);
        if (rows.length && answer.revision !== revision) break;
        ({ revision } = answer);
        rows.push(...answer.rows);
        if (answer.rows.length === 0 || rows.length >= answer.rowsCount) return new Order(rows, revision);
      }
    }
    throw new Error('The list changes too quickly.');
  }

  static readWhole(path) {
    return Order.read(path, { roles: RowRoles });
  }

  get size() {
    return this.rows.length;
  }

  indexOf(key) {
    return this.places.get(key) ?? -1;
  }

  // Those of the entries {row, index} that are still there, where they are now, in the order of the list.
  find(entries) {
    return entries.map(({ row }) => ({ row, index: this.indexOf(trackKey(row)) }))
      .filter(({ index }) => index >= 0).sort((a, b) => a.index - b.index);
  }

  // The place in front of which something stands that stood between these two neighbours; -1 when both are gone.
  // `start` and `end` of a list are neighbours, too: null.
  placeBetween({ after, before }) {
    if (after === null) return 0;
    if (this.indexOf(after) >= 0) return this.indexOf(after) + 1;
    if (before === null) return this.size;
    return this.indexOf(before);
  }
}
