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

  push(what) {
    this.top?.hide();
    const screen = new Screen(this.app, this, what);
    this.stack.push(screen);
    this.element.append(screen.element);
    screen.show();
    return screen;
  }

  begin(row) {
    while (this.depth) this.stack.pop().dispose();
    this.push({ path: row.path, row });
  }

  back() {
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

  // What was opened from these rows follows them.
  onRows(screen) {
    this.stack[this.stack.indexOf(screen) + 1]?.followRow(screen.store);
  }

  // As it was when the address was written.
  restore(paths, rowOf) {
    const wanted = paths;
    while (this.depth && !wanted.slice(0, this.depth).every((path, i) => path === this.stack[i]?.path))
      this.stack.pop().dispose();
    if (this.top) this.top.show();
    for (const path of wanted.slice(this.depth)) this.push({ path, row: rowOf?.(path) ?? null });
  }

  apply(event) {
    for (const screen of [...this.stack]) screen.apply(event);
  }

  reread() {
    for (const screen of this.stack) screen.store.reread();
  }
}

// What is open stands in the address, so that the browser's own back and reload do what people
// expect.

const Places = ['nav', 'main', 'side'];

//
// A dialog that opens has an entry of the history of its own, which "back" takes away together with the dialog. A dialog
// that was closed otherwise leaves its entry to the next dialog or place; "back" passes over it.

export class Address {
  constructor(app) {
    this.app = app;
    this.entry = history.state ?? { index: 0 };
    window.addEventListener('popstate', () => this.onPop());
    document.addEventListener('dialogshown', () => this.ofDialog() || this.push({ isDialog: true }));
  }

  ofDialog() {
    return Boolean(this.entry.isDialog);
  }

  push(what, text = location.hash) {
    this.entry = { ...what, index: this.entry.index + 1 };
    history.pushState(this.entry, '', text || location.pathname);
  }

  replace(text) {
    this.entry = { index: this.entry.index };
    history.replaceState(this.entry, '', text);
  }

  onPop() {
    const from = this.entry;
    this.entry = history.state ?? { index: 0 };
    const dialog = openDialog();
    if (dialog) this.closeDialog(dialog);
    else if (from.isDialog && this.entry.index < from.index) history.back();
    else this.apply();
  }

  // As by Escape: a menu goes back a page.
  closeDialog(dialog) {
    if (dialog.dispatchEvent(new Event('cancel', { cancelable: true }))) dialog.close();
    if (openDialog()) this.push({ isDialog: true });
    if (this.text() !== location.hash) this.apply();
  }

  read() {
    const query = new URLSearchParams(location.hash.slice(1));
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
    for (const path of app.side.paths().slice(1)) query.append('music', path);
    return `#${query}`;
  }

  write() {
    const text = this.text();
    if (text === location.hash) return;
    if (this.ofDialog()) this.replace(text);
    else this.push({}, text);
  }

  apply(sideOpenFirst = false) {
    const { app } = this;
    const { place, main, side, sideOpen } = this.read();
    const rows = () => app.nav.top.store.rows;
    app.main.restore(main, (path) => rows().find((row) => row?.path === path));
    app.side.restore([app.side.stack[0].path, ...side]);
    document.body.classList.toggle('side-open', place ? sideOpen : sideOpenFirst && app.hasMusic);
    if (!app.main.top && !app.isNarrow && app.nav.top.store.isLoaded) app.openFirst();
    app.setPlace(place ?? (app.main.top ? 'main' : 'nav'));
    if (!place) this.replace(this.text());
  }
}
