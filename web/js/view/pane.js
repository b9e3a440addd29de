// A place on the page that shows one list at a time and the way back: a stack of screens; and the
// address, which says what all of them show.

import { openDialog, tell, tellUnlessOffline } from './dom.js';
import { Screen } from './screen.js';

export class Pane {
  // `parent`: the pane whose list the first screen was opened from, if any.
  constructor(app, kind, element, parent = null) {
    Object.assign(this, { app, kind, element, parent });
    this.stack = [];
  }

  get top() {
    return this.stack.at(-1) ?? null;
  }

  get depth() {
    return this.stack.length;
  }

  get canGoBack() {
    return this.kind !== 'nav' && (this.depth > 1 || this.app.isNarrow && this.kind === 'main');
  }

  // What stands to the left of it.
  get neighbour() {
    if (this.app.isNarrow) return null;
    return { main: this.app.nav, side: this.app.main }[this.kind] ?? null;
  }

  paths() {
    return this.stack.map((screen) => screen.path);
  }

  // A row was chosen. Beside a parent, that begins anew.
  // `goIn`: the focus goes along, even where both are in view.
  open(row, { goIn = false } = {}) {
    if (this.kind === 'nav') {
      this.app.openInMain(row, goIn);
      return;
    }
    if (this.top?.path === row.path) return;
    this.push({ path: row.path, row });
    this.app.remember();
    this.top.focus();
  }

  // `Kind`: the class of the screen.
  push(what, Kind = Screen) {
    this.top?.hide();
    const screen = new Kind(this.app, this, what);
    this.stack.push(screen);
    this.element.append(screen.element);
    screen.show();
    return screen;
  }

  begin(row, Kind) {
    while (this.depth) this.stack.pop().dispose();
    this.push({ path: row.path, row }, Kind);
  }

  back() {
    if (this.top.stepBack()) return;
    if (!this.canGoBack) {
      this.neighbour?.top?.focus();
      return;
    }
    if (this.depth > 1) this.pop();
    else this.app.showNav();
    this.app.remember();
    this.top?.focus();
  }

  pop() {
    this.stack.pop().dispose();
    this.top.show();
  }

  popTo(screen) {
    while (this.top !== screen) this.pop();
  }

  // The list is gone: its screen goes, and with it everything that was opened from it.
  remove(screen, error = null) {
    const at = this.stack.indexOf(screen);
    if (at < 0) return;
    const wasShown = screen.title;
    while (this.depth > at) this.stack.pop().dispose();
    if (this.top) this.top.show();
    else this.app.onPaneEmpty(this);
    this.app.remember();
    if (error) tellUnlessOffline(error);
    else if (wasShown && !this.app.edits?.ending.has(screen.path)) tell(`“${wasShown}” is gone.`); // else it is told there
  }

  // What was opened from the rows of this screen.
  followFrom(screen) {
    this.stack[this.stack.indexOf(screen) + 1]?.followRow(screen.store);
  }

  // As it was when the address was written.
  restore(paths, rowOf) {
    while (!this.stack.every((screen, i) => screen.path === paths[i])) this.stack.pop().dispose();
    if (this.top) this.top.show();
    for (const path of paths.slice(this.depth)) this.push({ path, row: rowOf?.(path) ?? null });
  }

  apply(event) {
    for (const screen of [...this.stack]) screen.apply(event);
  }

  reread() {
    for (const screen of this.stack) screen.store.reread();
  }
}

// The pane of the music, whose first screen comes with the parts that are loaded later.
export class MusicPane extends Pane {
  asked = []; // what is to be shown then

  // Whether there is music. Also asked for when a device that was lost comes back.
  async beginMusic() {
    const { app } = this;
    const { Music, MusicScreen } = await app.parts;
    if (!app.hasMusic) return false;
    if (!app.music) {
      app.music = new Music();
      this.begin({}, MusicScreen);
      this.stack[0].restore(this.asked);
    }
    app.music.refresh().catch(tellUnlessOffline);
    return true;
  }

  restoreMusic(paths) {
    this.asked = paths;
    this.stack[0]?.restore(paths);
  }

  // What the address says of it.
  shownPaths() {
    return this.stack[0]?.shownPaths() ?? this.asked;
  }

  // Over all of it, from anywhere. At once, if possible: a phone shows its keys only for what a finger does.
  async search() {
    const { app } = this;
    if (app.music || await this.beginMusic()) this.stack[0].ask();
    else app.shownScreen.find();
  }
}

// What is open stands in the address, so that the browser's own back and reload do what people
// expect.

const Places = ['nav', 'main', 'side'];

// A dialog that opens has an entry of the history of its own, which "back" takes away together with the dialog. A dialog
// that was closed otherwise leaves a spare entry to the next dialog or place; "back" passes over it. So does a search
// without a text; all texts of one search share an entry.

export class Address {
  constructor(app) {
    this.app = app;
    this.entry = history.state ?? { index: 0 };
    this.shown = location.hash;
    window.addEventListener('popstate', () => this.onPop());
    document.addEventListener('dialogshown', () => this.isSpare || this.push({ isSpare: true }));
  }

  get isSpare() {
    return Boolean(this.entry.isSpare);
  }

  push(what, text = location.hash) {
    this.entry = { ...what, index: this.entry.index + 1 };
    history.pushState(this.entry, '', text || location.pathname);
    this.shown = text;
  }

  replace(text, what = {}) {
    this.entry = { ...what, index: this.entry.index };
    history.replaceState(this.entry, '', text);
    this.shown = text;
  }

  onPop() {
    const from = { ...this.entry, text: this.shown };
    this.entry = history.state ?? { index: 0 };
    this.shown = location.hash;
    const dialog = openDialog();
    if (dialog) this.closeDialog(dialog);
    else if (from.isSpare && from.text === this.shown && this.entry.index < from.index) history.back();
    else this.apply();
  }

  // As by Escape: a menu goes back a page.
  closeDialog(dialog) {
    if (dialog.dispatchEvent(new Event('cancel', { cancelable: true }))) dialog.close();
    if (openDialog()) this.push({ isSpare: true });
    if (this.text() !== location.hash) this.apply();
  }

  read(text = location.hash) {
    const query = new URLSearchParams(text.slice(1));
    return {
      place: Places.includes(query.get('at')) ? query.get('at') : null,
      main: query.getAll('list'),
      side: query.getAll('music'),
      sideOpen: query.get('beside') === '1',
    };
  }

  text() {
    const { app } = this;
    const query = new URLSearchParams();
    query.append('at', document.body.dataset.place);
    if (document.body.classList.contains('side-open')) query.append('beside', '1');
    for (const path of app.main.paths()) query.append('list', path);
    for (const path of app.side.shownPaths()) query.append('music', path);
    return `#${query}`;
  }

  // `replaces`: in the entry of the place before. `isSpare`: in one that the next place takes over.
  write({ replaces = false, isSpare = false } = {}) {
    const text = this.text();
    if (text === location.hash) return;
    if (this.isSpare || replaces) this.replace(text, { isSpare });
    else this.push({ isSpare }, text);
  }

  // `text`: what the address says, or said.
  apply({ sideOpenFirst = false, text = location.hash } = {}) {
    const { app } = this;
    const { place, main, side, sideOpen } = this.read(text);
    const rows = () => app.nav.top.store.rows;
    if (main.length) app.main.restore(main, (path) => rows().find((row) => row?.path === path));
    app.side.restoreMusic(side);
    document.body.classList.toggle('side-open', place ? sideOpen : sideOpenFirst && app.hasMusic);
    if (!app.main.top && !app.isNarrow && app.nav.top.store.isLoaded) app.openFirst();
    app.setPlace(place ?? (app.main.top ? 'main' : 'nav'));
    if (!place) this.replace(this.text());
  }
}
