// What entries of menus do to playlists. Their edits go through the queue of the list, are asked about where they change
// much, and can be taken back; everything else is the device's own.

import { plural } from '../model/rows.js';
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

  // What the page adds to the menu of a list.
  extrasOf(path) {
    const target = this.app.commands.targetOfMenu(path);
    if (!target) return [];
    return [
      ...(this.app.commands.canArrange
        ? [{ title: 'Sort by …', opens: true, run: () => this.app.menu.push(this.sortPage(target)) }] : []),
      { title: 'Remove duplicates', run: () => this.removeDuplicates(target) },
    ];
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
