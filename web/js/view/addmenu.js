// Where rows of the music folder are added, and how.

import { artworkUrl } from '../core/device.js';
import { Adding } from '../model/adder.js';
import { AddMode } from '../model/commands.js';
import { metaData } from '../model/rows.js';
import { watchAdding } from './progress.js';

export class AddMenu {
  // `screen`: the list that the rows were chosen in.
  constructor(app, rows, screen) {
    Object.assign(this, { app, rows, screen });
  }

  open(anchor) {
    const { rows } = this;
    const urls = rows.map((row) => artworkUrl(metaData(row).artworkUrl)).filter(Boolean).slice(0, 1);
    const title = rows.length === 1 ? rows[0].title : `${rows.length} chosen`;
    const target = this.target();
    this.app.openMenu(target ? this.modePage(target) : this.targetPage(), { anchor, head: { title, urls } });
  }

  // Where music goes unless another list is chosen: what is open beside it.
  target() {
    const open = this.app.main.top;
    if (open && open !== this.screen && open.target) return { ...open.target, title: open.title };
    return null;
  }

  modePage(target) {
    const add = (mode) => () => this.add(target, mode);
    return {
      title: `Add to ${target.title}`,
      items: [
        ...(this.app.player.present ? [{ title: 'Now', icon: 'play', run: add(AddMode.Now) }] : []),
        { title: 'Next', icon: 'next', run: add(AddMode.Next) },
        { title: 'Append', icon: 'list', run: add(AddMode.Append) },
        { title: 'To another list', icon: 'forward', run: () => this.app.menu.push(this.targetPage()) },
      ],
    };
  }

  // Playlists stand in the list of lists, and in the collections there.
  targetPage(path = this.app.paths.OrvoPlayListsRootPath) {
    const { menu, commands } = this.app;
    return {
      path,
      offers: (row) => !commands.isForCollections(row),
      onMade: (row) => this.add({ ...commands.targetOf(row.path), title: row.title }, AddMode.Append),
      pick: (row) => {
        const target = commands.targetOf(row.path);
        menu.push(target ? this.modePage({ ...target, title: row.title }) : this.targetPage(row.path));
      },
    };
  }

  add(target, mode) {
    this.app.menu.close();
    this.screen.list.selection.clear();
    const adding = new Adding({ edits: this.app.edits, target, mode, rows: this.rows, title: target.title });
    watchAdding(adding, document.getElementById('progress'));
    adding.run();
  }
}
