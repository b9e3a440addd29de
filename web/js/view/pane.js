// A place on the page that shows one list at a time and the way back: a stack of screens.

import { Screen } from './screen.js';
import { tell, tellError } from './toast.js';

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
    if (error) tellError(error);
    else if (wasShown) tell(`“${wasShown}” is gone.`);
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
    for (const screen of this.stack) screen.store.invalidate();
  }
}
