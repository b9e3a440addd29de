// Where rows of the music are added, and how; and how they are played, which adds them to the play queue.

import { artworkUrl } from '../core/device.js';
import { Adding } from '../model/adder.js';
import { AddMode } from '../model/commands.js';
import { metaData } from '../model/rows.js';
import { busy } from './dom.js';
import { watchAdding } from './progress.js';

const QueueId = 0;

// `target`: {plid, path, title}. Settles when all is added, failed or stopped.
export function addMusic(app, { target, mode, rows, gap, isQuiet }) {
  const adding = new Adding({ edits: app.edits, target, mode, rows, title: target.title, gap });
  watchAdding(adding, document.getElementById('progress'), { isQuiet });
  return adding.run();
}

// Now or next, by way of the play queue. A second press while that is under way does nothing. What sounds at once says
// so by itself.
export function playMusic(app, rows, mode, anchor) {
  const queue = app.commands.listOf(QueueId);
  const title = app.nav.top.store.rows.find((row) => row?.path === queue.path)?.title ?? 'the play queue';
  const locks = rows.map(({ path }) => path);
  const done = app.lock.during(locks, () => addMusic(app, { target: { ...queue, title }, mode, rows, isQuiet: mode === AddMode.Now }));
  return busy(done, anchor);
}

export class AddMenu {
  // `screen`: the list that the rows were chosen in.
  constructor(app, rows, screen) {
    Object.assign(this, { app, rows, screen });
  }

  // For what was chosen to be added.
  open(anchor) {
    const target = this.target();
    this.openPage(target ? this.modePage(target) : this.targetPage(), anchor);
  }

  // For one row: what can be done with it.
  openForRow(anchor) {
    if (this.app.player.present) this.openPage(this.rowPage(), anchor);
    else this.open(anchor);
  }

  openPage(page, anchor) {
    const { rows } = this;
    const urls = rows.map((row) => artworkUrl(metaData(row).artworkUrl)).filter(Boolean).slice(0, 1);
    const title = rows.length === 1 ? rows[0].title : `${rows.length} chosen`;
    this.app.openMenu(page, { anchor, head: { title, urls } });
  }

  // Where music goes unless another list is chosen: what is open beside it.
  target() {
    const open = this.app.main.top;
    if (open && open !== this.screen && open.target) return { ...open.target, title: open.title };
    return null;
  }

  rowPage() {
    const target = this.target();
    const play = (mode) => () => this.play(mode);
    const isNamedAbove = ({ title }) => target.plid === QueueId && (title === 'Now' || title === 'Next');
    return {
      title: this.rows[0].title,
      items: [
        { title: 'Play', icon: 'play', run: play(AddMode.Now) },
        { title: 'Play next', icon: 'next', run: play(AddMode.Next) },
        ...(target
          ? [{ isHeading: true, title: `Add to ${target.title}` }, ...this.modeItems(target).filter((item) => !isNamedAbove(item))]
          : [{ title: 'Add to …', icon: 'plus', opens: true, run: () => this.app.menu.push(this.targetPage()) }]),
      ],
    };
  }

  modePage(target) {
    return { title: `Add to ${target.title}`, items: this.modeItems(target) };
  }

  modeItems(target) {
    const add = (mode) => () => this.add(target, mode);
    return [
      ...(this.app.player.present ? [{ title: 'Now', icon: 'play', run: add(AddMode.Now) }] : []),
      { title: 'Next', icon: 'next', run: add(AddMode.Next) },
      { title: 'Append', icon: 'list', run: add(AddMode.Append) },
      { title: 'To another list', icon: 'forward', run: () => this.app.menu.push(this.targetPage()) },
    ];
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

  close() {
    this.app.menu.close();
    this.screen.list.selection.clear();
  }

  play(mode) {
    this.close();
    playMusic(this.app, this.rows, mode, null);
  }

  add(target, mode) {
    this.close();
    addMusic(this.app, { target, mode, rows: this.rows });
  }
}
