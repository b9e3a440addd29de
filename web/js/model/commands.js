// The one place that knows commands by name: those that take several rows at once, and adding
// from one tree to another. Everything else comes from the rows themselves.

import { RowRoles, basePart, components, getRows, params, sendData } from '../core/device.js';

export const AddMode = { Now: 0, Next: 1, Append: 2 };

const Repeat = { Off: 0, All: 2 };
const AllRows = 1000000;
// Items in one request: their answers and bodies stay far below the gateway's limits.
const Portion = 2000;

// Menu actions that change much at once: they are asked about first.
const Destructive = new Set(['clearPl', 'delPL', 'delete']);

export const isDestructive = (row) => Destructive.has(params(row.path ?? '').action);

// Blanks and what cannot be seen.
export const isBlank = (name) => name !== '' && /^[\s\p{C}]*$/u.test(name);

const portionsOf = (list) =>
  Array.from({ length: Math.ceil(list.length / Portion) }, (_, i) => list.slice(i * Portion, (i + 1) * Portion));

export class Commands {
  constructor(paths) {
    this.paths = paths;
  }

  // A device that sets no orders does not put tracks at places either.
  get canArrange() {
    return Boolean(this.paths.OrvoPlayListPlSetOrderPath);
  }

  // The playlist that a list shows, null when tracks cannot be added to it.
  targetOf(listPath) {
    const base = basePart(listPath);
    if (base === this.paths.OrvoPlayListPqGetItemsPath) return this.listOf(0);
    if (!base.startsWith(`${this.paths.OrvoPlayListPlGetItemsPath}/`)) return null;
    const plid = Number(components(base).at(-1));
    return Number.isInteger(plid) ? this.listOf(plid) : null;
  }

  listOf(plid) {
    const { OrvoPlayListPqGetItemsPath: queue, OrvoPlayListPlGetItemsPath: lists } = this.paths;
    return { plid, path: plid === 0 ? queue : `${lists}/${plid}` };
  }

  // The collection that a list shows, null for any other list.
  collectionOf(listPath) {
    return basePart(listPath) === this.paths.OrvoPlayListClGetItemsPath ? Number(params(listPath).clid) : null;
  }

  // The list that a menu belongs to, null for any other menu.
  targetOfMenu(menuPath) {
    const base = basePart(menuPath);
    if (base === this.paths.OrvoPlayListPqContextPath) return this.listOf(0);
    return base === this.paths.OrvoPlayListPlContextPath ? this.listOf(Number(params(menuPath).plid)) : null;
  }

  // The playlist of a track's row, which the path of its menu names.
  targetOfTrack(row) {
    return this.listOf(Number(params(row.context.path).plid));
  }

  // What tells an entry for choosing a list from the others, whatever revision it carries.
  keyOfChoice(row) {
    const { action, plid, clid } = row.path ? params(row.path) : {};
    return row.path ? `${basePart(row.path)} ${action} ${plid} ${clid}` : '';
  }

  isAppending(row) {
    return basePart(row.path ?? '') === this.paths.OrvoPlayListPlSelectAddModePath && params(row.path).mode === String(AddMode.Append);
  }

  // An entry that makes a collection, which no track can be added to.
  isForCollections(row) {
    return params(row.path ?? '').action === 'createCl';
  }

  isRename(row) {
    return params(row.path ?? '').action === 'rename';
  }

  // Where "Move track" finds its track now, null for any other entry.
  placeToMove(row) {
    const { action, from } = params(row.path ?? '');
    return action === 'moveTr' ? Number(from) : null;
  }

  // The edit behind an entry of a menu: {kind, target, …}, null when it is none that is known here.
  editOf(row) {
    const base = basePart(row.path);
    const { action, plid, fromplid, itemid, mode } = params(row.path);
    const { paths } = this;
    if (base === paths.OrvoPlayListPlTrackContextPath) {
      const item = `${paths.OrvoPlayListItemPath}/${itemid}`;
      if (action === 'removeTr') return { kind: 'remove', target: this.listOf(Number(fromplid)), item };
      if (action === 'moveTr') return { kind: 'move', target: this.listOf(Number(plid)), item };
    }
    if (action === 'clearPl') return { kind: 'clear', target: this.listOf(Number(plid)) };
    if (action === 'delPL') return { kind: 'delete', target: this.listOf(Number(plid)) };
    if (base !== paths.OrvoPlayListPlSelectAddModePath) return null;
    const target = this.listOf(Number(plid));
    if (itemid) return { kind: 'add', target };
    return { kind: 'merge', target, source: this.listOf(Number(fromplid)), mode: Number(mode) };
  }

  // Merging a list with itself would double it: who chooses it from a menu does not mean that.
  isOffered(row) {
    if (!row.path || basePart(row.path) !== this.paths.OrvoPlayListPlSelectAddModePath) return true;
    const { itemid, fromplid, plid } = params(row.path);
    return Boolean(itemid) || fromplid !== plid;
  }

  addItems(plid, items, mode) {
    return sendData(this.paths.OrvoPlayListPlAddItemsPath, { plid, items, mode });
  }

  merge(fromPlid, plid, mode, revision) {
    return sendData(this.paths.OrvoPlayListPlAddItemsPath, { plid, fromPlid, items: [], mode, revision });
  }

  // `at`: ascending positions. They come to stand in front of what is at `gap` now.
  async move(plid, at, gap, revision) {
    const to = at.some((i) => i < gap) ? gap - 1 : gap;
    await sendData(this.paths.OrvoPlayListPlMoveItemspath, { plid, items: at, to, revision });
  }

  removeItems(plid, items, revision) {
    return sendData(this.paths.OrvoPlayListPlRemoveItemsPath, { plid, items, revision });
  }

  setOrder(plid, order, revision) {
    return sendData(this.paths.OrvoPlayListPlSetOrderPath, { plid, order, revision });
  }

  clear(plid, revision) {
    return sendData(this.paths.OrvoPlayListPlClearPath, { plid, revision });
  }

  deleteList(plid, revision) {
    return sendData(this.paths.OrvoPlayListPlDeletePath, { plid, revision });
  }

  async create(name) {
    const { result } = await sendData(this.paths.OrvoPlayListPlCreatePath, { name });
    return result.value.i32;
  }

  setShuffle(plid, on) {
    return sendData(this.paths.OrvoPlayListPlSetShufflePath, { plid, mode: Number(on) });
  }

  setRepeat(plid, on) {
    return sendData(this.paths.OrvoPlayListPlSetRepeatPath, { plid, mode: on ? Repeat.All : Repeat.Off });
  }

  addToCollection(clid, plid) {
    return sendData(this.paths.OrvoPlayListClAddItemPath, { clid, plid });
  }

  // The items behind the paths of tracks, as addBack takes them: path → item. Those that are gone are left out.
  async prepare(paths) {
    const found = new Map();
    for (const portion of portionsOf(paths)) {
      for (const { uid, sequenceNumber, ...item } of await sendData(this.paths.OrvoPlayListPlPrepareItemsPath, portion))
        found.set(`${this.paths.OrvoPlayListItemPath}/${uid}`, item);
    }
    return found;
  }

  // `at`: where each will stand, ascending; without it they stand at the end.
  async addBack(plid, items, at = null, revision = undefined) {
    let from = 0;
    for (const portion of portionsOf(items)) {
      await sendData(this.paths.OrvoPlayListPlAddExternalItemsPath, {
        plid,
        items: portion,
        mode: 'append',
        ...(at ? { at: at.slice(from, from + portion.length) } : {}),
        ...(from === 0 ? { revision } : {}),
      });
      from += portion.length;
    }
  }

  async isShuffled({ plid }) {
    const { OrvoPlayListPqContextPath: queue, OrvoPlayListPlContextPath: lists } = this.paths;
    const { rows } = await getRows(plid === 0 ? queue : `${lists}?plid=${plid}`, 0, AllRows, RowRoles);
    return Boolean(rows.find((row) => row.path && params(row.path).action === 'shuffle')?.value?.bool);
  }

  // What a playlist is besides its tracks: {name, shuffle, repeat, collections: [{clid, title}]}.
  async describe(plid) {
    const { rows } = await getRows(`${this.paths.OrvoPlayListPlContextPath}?plid=${plid}`, 0, AllRows, RowRoles);
    const valueOf = (action) => rows.find((row) => row.path && params(row.path).action === action)?.value;
    const { path } = this.listOf(plid);
    const collections = [];
    for (const row of (await getRows(this.paths.OrvoPlayListsRootPath, 0, AllRows, RowRoles)).rows) {
      if (!row.path || basePart(row.path) !== this.paths.OrvoPlayListClGetItemsPath) continue;
      const members = await getRows(row.path, 0, AllRows, ['path']);
      if (members.rows.some((member) => member.path && basePart(member.path) === path))
        collections.push({ clid: Number(params(row.path).clid), title: row.title });
    }
    return {
      name: valueOf('rename')?.string ?? '',
      shuffle: Boolean(valueOf('shuffle')?.bool),
      repeat: Boolean(valueOf('repeat')?.bool),
      collections,
    };
  }
}
