// The one place that knows commands by name: those that take several rows at once, and adding
// from one tree to another. Everything else comes from the rows themselves.

import { RowRoles, basePart, components, getRows, params, sendData } from '../core/device.js';

export const AddMode = { Now: 0, Next: 1, Append: 2 };

// Menu actions that cannot be taken back: they ask twice.
const Irrevocable = new Set(['clearPl', 'delPL', 'delete']);

export const asksTwice = (row) => Irrevocable.has(params(row.path ?? '').action);

export class Commands {
  constructor(paths) {
    this.paths = paths;
  }

  // The playlist that a list shows, null when tracks cannot be added to it.
  targetOf(listPath) {
    const base = basePart(listPath);
    if (base === this.paths.OrvoPlayListPqGetItemsPath) return { plid: 0, path: base };
    if (!base.startsWith(`${this.paths.OrvoPlayListPlGetItemsPath}/`)) return null;
    const plid = Number(components(base).at(-1));
    return Number.isInteger(plid) ? { plid, path: base } : null;
  }

  addItems(plid, items, mode) {
    return sendData(this.paths.OrvoPlayListPlAddItemsPath, { plid, items, mode });
  }

  // What the menu of a track offers: {move, remove}, each the menu's row or null.
  async trackActions(track) {
    if (!track?.context?.path) return { move: null, remove: null };
    const { rows } = await getRows(track.context.path, 0, 100, RowRoles);
    const find = (action) => rows.find((row) => params(row.path ?? '').action === action) ?? null;
    return { move: find('moveTr'), remove: find('removeTr') };
  }

  // `at`: ascending positions. They come to stand in front of what is at `gap` now.
  async move(offer, at, gap) {
    const before = at.filter((i) => i < gap).length;
    const to = before > 0 ? gap - 1 : gap;
    const { action, ...rest } = params(offer.path);
    if (at.length === 1 && Number(rest.from) === at[0]) {
      await sendData(offer.path, { string: String(to) });
      return;
    }
    await sendData(this.paths.OrvoPlayListPlMoveItemspath, { plid: Number(rest.plid), items: at, to });
  }

  async remove(offer, at) {
    await this.removeItems(Number(params(offer.path).fromplid), at);
  }

  removeItems(plid, items) {
    return sendData(this.paths.OrvoPlayListPlRemoveItemsPath, { plid, items });
  }
}
