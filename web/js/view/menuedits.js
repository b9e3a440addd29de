// What entries of menus do to playlists. Their edits go through the queue of the list, are asked about where they change
// much, and can be taken back; everything else is the device's own.

import { isBlank } from '../model/commands.js';
import { RowType, allRows, plural } from '../model/rows.js';
import { SortFields } from '../model/sorting.js';
import { attempt, tell } from './dom.js';

const AskFrom = 11;

export class MenuEdits {
  constructor(app) {
    this.app = app;
    this.edits = app.edits;
  }

  // Undefined when the entry is none of these.
  of(row) {
    const edit = this.app.commands.editOf(row);
    return edit && ((value) => this[edit.kind](edit, row, value));
  }

  // How a text is entered: {value, label, hint, inputmode, read(text)}; `read` refuses what cannot be meant.
  async formOf(row) {
    const from = this.app.commands.placeToMove(row);
    if (from === null) {
      const isOwn = Boolean(this.of(row));
      const read = (text) => {
        if (isBlank(text) && !isOwn) throw new Error('A name needs something that can be seen.');
        return text;
      };
      return { value: row.value?.string ?? '', label: row.title, read };
    }
    const { target } = this.app.commands.editOf(row);
    const { count } = await this.edits.lookAt(target);
    const places = `1 to ${count}`;
    const read = (text) => {
      const place = /^\s*\d+\s*$/.test(text) ? Number(text) : 0;
      if (place < 1 || place > count) throw new Error(`Enter a number from ${places}.`);
      return String(place - 1);
    };
    return { value: String(from + 1), label: `New position, ${places}`, hint: `New position, ${places}`, inputmode: 'numeric', read };
  }

  // The page counts from 1 everywhere.
  detailOf(row) {
    const from = this.app.commands.placeToMove(row);
    return from === null ? row.value?.string ?? '' : `Position ${from + 1}`;
  }

  // Where the list is on screen it is shown at once, as if the keys had done it.
  async remove({ target }) {
    const { menu } = this.app;
    const { head } = menu;
    const editing = this.editingOf(target);
    if (editing?.holds(head.row)) {
      menu.closeFor(head);
      editing.removeTrack(head.row);
      return;
    }
    await this.edits.removeOne(target, head.row);
    menu.closeFor(head);
  }

  // A place that is none is for the device to refuse.
  async move({ target }, row, value) {
    const { menu } = this.app;
    const { head } = menu;
    const to = /^\s*\d+\s*$/.test(value?.string ?? '') ? Number(value.string) : -1;
    const editing = this.editingOf(target);
    if (to >= 0 && editing?.holds(head.row, to)) {
      menu.closeFor(head);
      editing.moveTrack(head.row, to);
      return;
    }
    const { count } = await this.edits.lookAt(target);
    if (to < 0 || to >= count) await this.app.send(row, value);
    else await this.edits.moveTo(target, head.row, to);
    menu.closeFor(head);
  }

  editingOf({ path }) {
    return this.app.panes.flatMap(({ stack }) => stack).find((screen) => screen.path === path)?.editing;
  }

  add({ target }, row, value) {
    return this.edits.inTurn(target, () => this.app.send(row, value));
  }

  async clear({ target }) {
    const { head } = this.app.menu;
    const title = this.titleOf(target);
    const seen = await this.edits.lookAt(target);
    this.ask(head, { title: `Clear “${title}”?`, text: `${this.tracksOf(seen)} removed from it.`, button: 'Clear' },
      () => this.edits.clear(target, title, seen));
  }

  async delete({ target }) {
    const { head } = this.app.menu;
    const title = this.titleOf(target);
    const seen = await this.edits.lookAt(target);
    this.ask(head, { title: `Delete “${title}”?`, text: seen.count ? `${this.tracksOf(seen)} deleted with it.` : 'It is empty.', button: 'Delete' },
      () => this.edits.deleteList(target, title, seen));
  }

  async merge({ source, target, mode }) {
    const { head } = this.app.menu;
    const [from, into] = [source, target].map((list) => ({ ...list, title: this.titleOf(list) }));
    const seen = await this.edits.lookAt(source);
    const stays = source.plid === 0 ? 'The queue keeps them.' : `“${from.title}” is deleted then.`;
    this.ask(head, { title: `Merge “${from.title}” into “${into.title}”?`, text: `${this.tracksOf(seen)} added to it. ${stays}`, button: 'Merge' },
      () => this.edits.merge(from, into, mode, seen));
  }

  tracksOf({ count }) {
    return `${plural(count, 'track')} ${count === 1 ? 'is' : 'are'}`;
  }

  titleOf({ path }) {
    const { store } = this.app.nav.top;
    return store.rows.find((row) => row?.path === path)?.title ?? this.app.menu.head?.title ?? '';
  }

  // `head`: that of the menu which asks.
  ask(head, what, run) {
    this.app.menu.closeFor(head);
    this.app.ask(what, () => attempt(run(), null));
  }

  // What the page adds to the menu of a list, or of a track.
  extrasOf(path, row) {
    const { menu, commands } = this.app;
    if (row?.type === RowType.Audio && menu.pages.length === 1) {
      const source = commands.targetOfTrack(row);
      return [{ title: 'Move to …', opens: true, run: () => menu.push(this.moveToPage(source, [row])) }];
    }
    const target = commands.targetOfMenu(path);
    if (!target) return [];
    return [
      ...(this.app.commands.canArrange
        ? [{ title: 'Sort by …', opens: true, run: () => this.app.menu.push(this.sortPage(target)) }] : []),
      { title: 'Remove duplicates', run: () => this.removeDuplicates(target) },
      ...(this.app.files.isPossible ? [{ title: 'Export', run: () => this.export(target) }] : []),
    ];
  }

  // By the menu of the row, which says what a name may be.
  async rename(row, anchor) {
    if (!row.context?.path) return;
    const entry = (await attempt(allRows(row.context.path), anchor))?.find((one) => this.app.commands.isRename(one));
    if (entry) this.app.editRow(entry, anchor);
  }

  // The playlists that are not in a collection yet, to be added to it.
  async openCollect(screen, anchor) {
    const { app } = this;
    const { commands } = app;
    const clid = commands.collectionOf(screen.path);
    const held = new Set((await allRows(screen.path)).map((row) => row.path));
    const lists = (await allRows(app.nav.top.path)).filter((row) => commands.targetOf(row.path ?? '')?.plid && !held.has(row.path));
    const items = lists.map((row) => ({ title: row.title, icon: 'list', run: () => {
      app.menu.close();
      attempt(commands.addToCollection(clid, commands.targetOf(row.path).plid).then(() => tell(`“${row.title}” added to “${screen.title}”.`)), null);
    } }));
    app.openMenu({ title: `Add to ${screen.title}`, items }, { anchor, head: { title: screen.title, urls: [] } });
  }

  openMove(rows, anchor, screen) {
    const title = rows.length === 1 ? rows[0].title : `${rows.length} chosen`;
    this.app.openMenu(this.moveToPage(screen.target, rows), { anchor, head: { title, urls: [] } });
  }

  // The lists that tracks of another one can be moved to.
  moveToPage(source, rows, path = this.app.paths.OrvoPlayListsRootPath) {
    const { menu, commands } = this.app;
    const moveTo = (row) => {
      menu.close();
      attempt(this.edits.moveToList(source, rows, { ...commands.targetOf(row.path), title: row.title }), null);
    };
    return {
      path,
      offers: (row) => row.path !== source.path && !commands.isForCollections(row),
      pick: (row) => (commands.targetOf(row.path) ? moveTo(row) : menu.push(this.moveToPage(source, rows, row.path))),
      onMade: moveTo,
    };
  }

  sortPage(target, reverse = false) {
    const { menu } = this.app;
    const page = { title: 'Sort by …', items: SortFields.map((by) => ({
      title: by[0].toUpperCase() + by.slice(1),
      run: () => {
        menu.close();
        attempt(this.edits.sort(target, { by, reverse: page.reverse }), null);
      },
    })) };
    page.reverse = reverse;
    page.items.push({ title: 'Backwards', isOn: () => page.reverse, run: () => {
      page.reverse = !page.reverse;
      menu.show(page);
    } });
    return page;
  }

  async export(target) {
    const { menu, files } = this.app;
    const { head } = menu;
    await attempt(files.save(target), null);
    menu.closeFor(head);
  }

  async removeDuplicates(target) {
    const { menu } = this.app;
    const { head } = menu;
    const title = this.titleOf(target);
    const found = await attempt(this.edits.findDuplicates(target), null);
    menu.closeFor(head);
    if (!found) return;
    const { entries, around } = found;
    const run = () => attempt(this.edits.remove(target, entries, around), null);
    if (!entries.length) tell(`“${title}” has no duplicates.`);
    else if (entries.length < AskFrom) run();
    else this.ask(head, { title: `Remove ${plural(entries.length, 'duplicate')}?`, text: `The first of each stays in “${title}”.`, button: 'Remove' }, run);
  }
}
