// The first screen of the music: its places, with a field above them that searches all of it. What is found takes the
// place of the places.

import { MaxLetters, MusicPath, isSearch, searchPath, searchedText } from '../model/music.js';
import { ListStore, plural } from '../model/rows.js';
import { announce, el, icon } from './dom.js';
import { Screen } from './screen.js';

const WaitMs = 180;
const Label = 'Search the music';

export class MusicScreen extends Screen {
  constructor(app, pane) {
    super(app, pane, { path: MusicPath });
    this.element.classList.add('music');
    this.element.addEventListener('keydown', (event) => this.onKey(event), { capture: true });
    this.stopMusic = app.music.on('change', () => this.onScan());
  }

  dispose() {
    clearTimeout(this.timer);
    this.stopMusic();
    super.dispose();
  }

  makeStore(path) {
    return new ListStore(path, { read: (...what) => this.app.music.read(...what) });
  }

  buildBar() {
    const bar = super.buildBar();
    this.input = el('input.find-input', { type: 'search', placeholder: Label, 'aria-label': Label, autocomplete: 'off', spellcheck: 'false', enterkeyhint: 'search', maxlength: MaxLetters });
    this.input.addEventListener('input', () => this.onInput());
    this.clearButton = el('button.icon-button', { type: 'button', 'aria-label': 'Clear the search', hidden: true, onclick: () => this.clear() }, icon('close'));
    this.field = el('div.find', { role: 'search', 'aria-label': 'Music' }, icon('search'), this.input, this.clearButton);
    this.plainBar.replaceChildren(this.backButton, this.field, this.selectButton, this.closeButton);
    return bar;
  }

  // What is searched for.
  get isSearching() {
    return isSearch(this.path);
  }

  // Whether the rows are those of what the field says.
  get isAnswered() {
    return this.store.roles.path === this.path;
  }

  onInput() {
    clearTimeout(this.timer);
    this.clearButton.hidden = !this.input.value;
    if (this.input.value) this.timer = setTimeout(() => this.search(), WaitMs);
    else this.search();
  }

  search() {
    clearTimeout(this.timer);
    const replaces = this.isSearching;
    if (this.goTo(searchPath(this.input.value))) this.app.remember({ replaces, isSpare: !this.isSearching });
  }

  // Whether that is another place than before. Answers to what was asked before come to nothing.
  goTo(path) {
    if (path === this.path) return false;
    this.path = path;
    this.app.music.abandon();
    this.list.selection.clear();
    this.list.forgetPlace();
    this.store.moveTo(path);
    this.showHead();
    return true;
  }

  clear() {
    this.input.value = '';
    this.onInput();
    this.input.focus();
  }

  // From anywhere on the page; Escape leads back to there.
  ask() {
    const { app, pane } = this;
    this.before = { text: app.address.text(), focus: document.activeElement };
    pane.popTo(this);
    app.showMusic({ isSpare: true });
    this.input.focus();
    this.input.select();
  }

  leave() {
    const { before, app } = this;
    this.before = null;
    if (!before) {
      this.focus();
      return;
    }
    app.address.apply({ text: before.text });
    app.remember({ isSpare: true });
    if (before.focus?.isConnected && before.focus !== document.body) before.focus.focus({ preventScroll: true });
    else app.shownScreen.focus();
  }

  stepBack() {
    if (!this.isSearching) return false;
    this.clear();
    return true;
  }

  hide() {
    super.hide();
    this.before = null;
  }

  // What the address says: a search or nothing, and what was opened from there.
  shownPaths() {
    return this.pane.paths().filter((path) => path !== MusicPath);
  }

  restore(paths) {
    const first = isSearch(paths[0]) ? searchPath(searchedText(paths[0])) : MusicPath;
    const others = isSearch(paths[0]) ? paths.slice(1) : paths;
    clearTimeout(this.timer);
    this.goTo(first);
    if (searchPath(this.input.value) !== first) this.input.value = searchedText(first);
    this.pane.restore([this.path, ...others]);
    this.showHead();
  }

  find() {
    this.input.focus();
  }

  onKey(event) {
    const { key, target } = event;
    if (this.list.selection.mode || this.list.selection.size) return;
    const isField = target === this.input;
    const isFirstRow = this.list.body.contains(target) && this.list.active === this.firstRow();
    if (key === 'Escape') {
      if (this.input.value) this.clear();
      else this.leave();
    } else if (key === 'ArrowUp' && isFirstRow && !event.altKey && !event.shiftKey) this.input.focus();
    else if ((key === 'Enter' || key === 'ArrowDown') && isField && !event.isComposing) this.goToRows();
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  firstRow() {
    return this.list.step(0, 0);
  }

  // Into what is found, when it is there.
  async goToRows() {
    this.search();
    const { path } = this;
    while (!this.isAnswered && this.path === path) await new Promise((done) => this.store.once('rows', done));
    if (this.path === path && document.activeElement === this.input && this.store.count > 0) this.list.setActive(this.firstRow());
  }

  // The head.
  showHead() {
    super.showHead();
    this.element.classList.toggle('searching', this.isSearching);
    this.backButton.hidden = !this.isSearching;
    this.selectButton.hidden = !this.isSearching || !(this.store.count > 0);
    this.clearButton.hidden = !this.input.value;
  }

  pictures() {
    return [];
  }

  metaText() {
    return this.isSearching ? this.foundText() : this.app.music.summary;
  }

  foundText() {
    if (!this.isAnswered) return 'Searching …';
    const { counts, problem } = this.store.roles.found;
    if (problem) return '';
    return counts.filter(([count]) => count).map((found) => plural(...found)).join(' · ') || 'Nothing found';
  }

  // Told to those who do not see it, once for each text.
  onRows() {
    if (!this.isSearching || !this.isAnswered || this.announced === this.path) return;
    this.announced = this.path;
    announce(this.foundText() || this.store.roles.found.problem);
  }

  // Without any music there are no places.
  onScan() {
    if (!this.isSearching && (this.store.count === 0) !== this.app.music.isEmpty) this.store.reread();
    this.pane.top.showHead();
  }
}

// What an empty list of the music says, when it is known.
export function emptyMusic({ music }, screen) {
  const { path, found } = screen.store.roles;
  if (found?.problem) return found.problem;
  const reading = music.isScanning ? `Not all music is known yet: ${music.progress}. What is new appears here by itself.` : '';
  if (isSearch(path)) {
    const advice = reading || 'Try fewer words, or only the beginning of one.';
    return `Nothing found for “${searchedText(path)}”. ${advice}`;
  }
  return reading;
}
