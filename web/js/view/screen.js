// One list, as people see it: its head, its rows, finding, choosing and reordering. Made by a pane,
// which owns it.

import { RowRoles } from '../core/device.js';
import { AddMode, isDestructive } from '../model/commands.js';
import { ListStore, RowType, isMenu, isSignpost, isSwitch, isUsable, metaData, position } from '../model/rows.js';
import { attempt, busy, el, icon, setAttribute, setText, tellUnlessOffline } from './dom.js';
import { Hero, amount, heading, ownPictures } from './hero.js';
import { ListView } from './listview.js';

const HeadAgainMs = 250;
// From here on, in pixels, rows pass below the bar.
const Lifted = 4;

export class Screen {
  // kind: 'nav' (the root beside everything), 'main' or 'side'.
  constructor(app, pane, { path, row = null, lead = null }) {
    Object.assign(this, { app, pane, path, row, knownLead: lead });
    this.store = this.makeStore(path);
    this.target = app.commands.targetOf(path);
    this.plays = app.isCurrent({ type: RowType.Container, path });
    this.build();
    this.wire();
    this.showLoading();
    this.store.want(0, 30);
  }

  makeStore(path) {
    return new ListStore(path);
  }

  // Until the first rows are there, or it is known that there are none.
  showLoading() {
    const { store } = this;
    const answered = new Promise((done) => {
      this.endLoading = done;
      for (const name of ['reset', 'error', 'closed']) store.on(name, done);
    });
    busy(answered, this.element);
  }

  build() {
    const { app, pane } = this;
    this.scroller = el('div.scroller', { tabindex: '-1' });
    this.list = new ListView({
      store: this.store,
      scroller: this.scroller,
      label: this.row?.title ?? 'List',
      look: {
        selectable: pane.kind !== 'nav',
        letterKeys: () => app.settings.letterKeys,
        current: (row) => app.isCurrent(row),
        opened: (row) => pane.kind === 'nav' && app.main.stack[0]?.path === row.path,
        playing: () => app.player.isPlaying,
        cover: (row, found) => this.coverOf(row, found),
        action: (row) => (pane.kind === 'side' && !isMenu(row) && !isSignpost(row) && (row.type === RowType.Audio || row.type === RowType.Container) ? 'add' : null),
      },
    });
    this.hero = new Hero({
      level: pane.kind === 'main' ? 'h1' : 'h2',
      on: {
        play: (anchor) => this.playWhole(anchor),
        goOn: (anchor) => attempt(this.goOn(), anchor),
        add: (anchor) => this.addRows([this.asContainer()], anchor),
        music: () => app.showSide(true),
        lists: (anchor) => app.withMenus((menus) => menus.openCollect(this, anchor)),
      },
    });
    this.bar = this.buildBar();
    this.empty = el('div.empty', { hidden: true }, icon('note'), el('p'));
    this.scroller.append(this.bar, this.hero.element, this.list.body, this.empty);
    this.element = el('section.screen', { 'data-kind': pane.kind }, this.scroller);
    app.parts.then(({ Editing }) => (this.editing = new Editing(this)));
  }

  buildBar() {
    const button = (name, label, run) =>
      el('button.icon-button', { type: 'button', 'aria-label': label, title: label, onclick: run }, icon(name));
    const { app, pane } = this;
    this.backButton = button('back', 'Back', () => pane.back());
    this.barTitle = el('span.bar-title', { 'aria-hidden': 'true', dir: 'auto' });
    this.menuButton = button('more', 'Menu of this list', () => this.openOwnMenu());
    this.selectButton = button('select', 'Choose several', () => this.list.selection.setMode(true));
    this.importButton = button('import', 'Import playlist files', () => app.files.choose(this.importButton));
    this.importButton.hidden = true;
    app.parts.then(() => (this.importButton.hidden = !app.files.isPossible));
    this.closeButton = button('close', 'Close', () => this.app.showSide(false));
    this.closeButton.classList.add('close-side');
    this.closeButton.hidden = pane.kind !== 'side';
    this.plainBar = el('div.bar-tools', {}, this.backButton, this.barTitle,
      button('search', 'Find in this list', () => this.find()),
      pane.kind === 'nav' ? this.importButton : this.selectButton,
      this.menuButton,
      this.closeButton);
    this.chosenCount = el('span.bar-title.shown', { role: 'status' });
    this.removeButton = el('button.pill.small', { type: 'button', 'aria-label': 'Remove', hidden: !this.target, onclick: () => this.editing?.removeChosen() }, icon('trash'), el('span', {}, 'Remove'));
    this.addButton = el('button.pill.small', { type: 'button', 'aria-label': 'Add to…', onclick: (event) => this.addChosen(event.currentTarget) }, icon('plus'), el('span', {}, 'Add to…'));
    this.moveButton = el('button.pill.small', { type: 'button', 'aria-label': 'Move to…', hidden: !this.target, onclick: (event) => this.moveChosen(event.currentTarget) }, icon('forward'), el('span', {}, 'Move to…'));
    this.chooseBar = el('div.bar-tools', { hidden: true },
      button('close', 'End choosing', () => this.list.selection.clear()), this.chosenCount,
      this.addButton, this.moveButton, this.removeButton);
    // The second click on what is gone by now is none on what stands there instead.
    for (const tools of [this.plainBar, this.chooseBar]) {
      tools.addEventListener('click', (event) => event.detail > 1 && event.stopPropagation(), { capture: true });
    }
    return el('div.pane-bar', {}, this.plainBar, this.chooseBar);
  }

  wire() {
    const { store, list, app } = this;
    store.on('title', () => this.showHead());
    store.on('count', () => this.showHead());
    store.on('rows', () => {
      this.showHead();
      this.onRows();
    });
    store.on('error', (error) => this.onError(error));
    store.on('closed', () => this.pane.remove(this));
    list.selection.on('change', () => this.showBar());
    list.on('open', (what) => this.open(what));
    list.on('menu', ({ row, index, anchor }) => this.openMenu(row, index, anchor));
    list.on('rename', ({ row, anchor }) => app.withMenus((menus) => menus.rename(row, anchor)));
    list.on('back', () => this.pane.back());
    list.on('selectAll', () => attempt(list.selection.all(), this.element));
    this.scroller.addEventListener('scroll', () => this.showBarTitle(), { passive: true });
    // Read when it has changed, not while scrolling, where it would cost a layout.
    this.headSize = new ResizeObserver(() => {
      this.titleEnd = this.hero.title.offsetTop + this.hero.title.offsetHeight - this.bar.offsetHeight;
      this.showBarTitle();
    });
    for (const element of [this.hero.element, this.hero.title, this.bar]) this.headSize.observe(element);
    this.stopPlayer = app.player.on('change', (what) => {
      if (what === 'position' || what === 'duration' || what === 'volume') return;
      this.list.refresh();
      if (what === 'present' || what === 'stop') this.showHead();
      this.followPlaying();
    });
    this.stopCovers = app.covers.on('change', () => this.list.refresh());
  }

  // What was opened from these rows follows them.
  onRows() {
    this.pane.followFrom(this);
  }

  // Whether "back" is something of its own here.
  stepBack() {
    return false;
  }

  dispose() {
    this.endLoading();
    this.headSize.disconnect();
    clearTimeout(this.headTimer);
    this.stopPlayer();
    this.stopCovers();
    this.list.dispose();
    this.store.dispose();
    this.element.remove();
  }

  // Shown and hidden by the pane; the place is kept meanwhile.
  show() {
    this.element.hidden = false;
    this.list.measure();
    if (this.savedTop) this.scroller.scrollTop = this.savedTop;
    this.showHead();
    this.list.refresh();
  }

  hide() {
    this.savedTop = this.scroller.scrollTop;
    this.element.hidden = true;
  }

  focus() {
    if (this.list.active >= 0) this.list.setActive(this.list.active, { scroll: false });
    else this.hero.title.focus({ preventScroll: true });
  }

  // The head.
  showHead() {
    const { store, app, pane } = this;
    const { lead, title } = heading(app.music?.titleOf(this.path) ?? store.title, this.row?.title, this.knownLead);
    if (lead) this.knownLead = lead;
    this.title = title;
    const canAdd = pane.kind === 'side' && store.count > 0 && !app.music.isPlace(this.path);
    const canPlay = store.count > 0 && app.player.present && (canAdd || Boolean(this.playLogicPath()));
    this.hero.show({
      lead: pane.kind === 'nav' ? '' : lead,
      title,
      meta: pane.kind === 'nav' ? '' : this.metaText(),
      urls: this.pictures(),
      can: {
        play: canPlay,
        goOn: canPlay && this.isLeftInside(),
        add: canAdd,
        music: Boolean(this.target) && app.hasMusic,
        lists: pane.kind === 'main' && app.commands.collectionOf(this.path) !== null,
      },
      isPlaying: this.plays && app.player.isPlaying,
      isLive: app.player.online,
    });
    this.element.classList.toggle('brief', pane.kind === 'side' && app.music.isBrief(this.path));
    setText(this.barTitle, title);
    setAttribute(this.hero.title, 'aria-level', app.isNarrow ? 1 : null);
    this.list.body.setAttribute('aria-label', title);
    this.element.setAttribute('aria-label', title);
    this.element.setAttribute('role', 'region');
    this.backButton.hidden = !pane.canGoBack;
    this.menuButton.hidden = !this.row?.context?.path;
    this.selectButton.hidden = !(store.count > 0);
    this.showEmpty();
    if (this.isTop) app.onHead(this);
  }

  metaText() {
    const { music } = this.app;
    if (this.pane.kind !== 'side') return amount(this.store, this.app.commands.collectionOf(this.path) === null ? undefined : 'playlist');
    return [amount(this.store, music.nounOf(this.path)), music.progress].filter(Boolean).join(' · ');
  }

  // What there is to do about it.
  async showEmpty() {
    this.empty.hidden = this.store.count !== 0;
    if (!this.empty.hidden) setText(this.empty.lastChild, await this.app.parts.then(({ emptyText }) => emptyText(this.app, this)) ?? '');
  }

  // Where it was left can be read when it plays no more.
  followPlaying() {
    const plays = this.app.isCurrent({ type: RowType.Container, path: this.path });
    const stopped = this.plays && !plays;
    if (plays || stopped) {
      this.plays = plays;
      this.showHead();
    }
    if (stopped && this.target) this.headSoon();
  }

  // It was left neither in its first track nor by playing to its end, and can be gone on with.
  isLeftInside() {
    const { resumeIndex, count } = this.store;
    if (!this.target || this.plays || !(resumeIndex > 0 && resumeIndex < count)) return false;
    return resumeIndex < count - 1 || this.app.player.lastStop.mediaPath === this.path;
  }

  // Its own, or those of its rows, or of what its rows hold.
  pictures() {
    if (this.pane.kind === 'nav') return [];
    const own = ownPictures(this.store);
    if (own.length || this.store.row(0)?.type !== RowType.Container) return own;
    return this.app.covers.of(this.path, () => this.showHead()) ?? [];
  }

  get isTop() {
    return this.pane.top === this;
  }

  showBarTitle() {
    const { scrollTop } = this.scroller;
    const past = scrollTop > Math.max(Lifted, this.titleEnd ?? 0);
    this.bar.classList.toggle('past', past);
    // The root's title stands behind the bar itself.
    this.bar.classList.toggle('over', this.pane.kind === 'nav' ? past : scrollTop > Lifted);
  }

  showBar() {
    const { selection } = this.list;
    const choosing = selection.mode || selection.size > 1;
    const finding = Boolean(this.finder?.isOpen);
    this.plainBar.hidden = choosing || finding;
    this.chooseBar.hidden = !choosing || finding;
    this.element.classList.toggle('choosing', selection.mode);
    setText(this.chosenCount, `${selection.size.toLocaleString()} chosen`);
    this.removeButton.disabled = this.addButton.disabled = this.moveButton.disabled = selection.size === 0;
  }

  async find() {
    const { Finder } = await this.app.parts;
    if (!this.finder) {
      this.finder = new Finder(this.list, { onClose: () => this.showBar() });
      this.bar.append(this.finder.element);
    }
    this.finder.open();
    this.showBar();
  }

  coverOf(row, found) {
    if (!row.path || row.type !== RowType.Container || isMenu(row) || isSignpost(row)) return null;
    return metaData(row).artworkUrl ? null : this.app.covers.of(row.path, found);
  }

  // Events.
  apply(event) {
    this.store.apply(event);
    // A title may say what another list changed: a playlist's name, for one.
    const concernsModule = event.kind !== 'value' && event.path.split(':')[0] === this.path.split(':')[0];
    if (concernsModule && !this.store.closed && !this.element.hidden) this.headSoon();
  }

  headSoon() {
    clearTimeout(this.headTimer);
    this.headTimer = setTimeout(async () => {
      if (this.store.closed || this.store.held || this.store.requests.size) return;
      try {
        const answer = await this.store.read(this.path, 0, 0, ['title']);
        if (this.store.closed || this.store.held) return;
        this.store.setTitle(answer);
        if (answer.rowsCount !== this.store.count) this.store.invalidate();
      } catch {
        // Only a second look.
      }
    }, HeadAgainMs);
  }

  onError(error) {
    if (error.status === 404) this.pane.remove(this, error);
    else tellUnlessOffline(error);
  }

  // The row that led here, as it is now; gone when its list no longer has it.
  followRow(parentStore) {
    if (!this.row || !parentStore.isCurrent) return;
    for (let i = 0; i < parentStore.count; i += 1) {
      const row = parentStore.row(i);
      if (row?.path === this.path) {
        this.row = row;
        this.showHead();
        return;
      }
    }
    this.pane.remove(this);
  }

  // What can be done with the rows.
  async open({ row, index, anchor, goIn = false }) {
    const { app } = this;
    if (!isUsable(row)) return;
    if (row.type === RowType.Audio) this.playFrom(row, index, anchor);
    else if (row.type === RowType.Container && isMenu(row)) app.openPublishedMenu(row, anchor, row);
    else if (row.type === RowType.Container) this.pane.open(row, { goIn });
    else if (row.type === RowType.Editable && !isSwitch(row)) app.editRow(row, anchor);
    else if (isDestructive(row)) app.askFor(row);
    else if (row.type === RowType.Action || isSwitch(row)) await attempt(app.carryOut(row), anchor);
  }

  playLogicPath() {
    return metaData(this.store.roles).playLogicPath ?? metaData(this.row).playLogicPath;
  }

  playFrom(row, index, anchor) {
    const { app } = this;
    const isMusic = this.pane.kind === 'side';
    if (!app.player.present || !(isMusic || this.playLogicPath())) {
      if (row) this.openMenu(row, index, anchor);
      return;
    }
    if (row && app.isCurrent(row)) {
      attempt(app.player.toggle(), anchor);
      return;
    }
    if (isMusic) {
      app.playMusic([row], AddMode.Now, anchor);
      return;
    }
    const place = position(row) >= 0 ? position(row) : index;
    attempt(app.player.playContainer(this.asContainer(), row, place), anchor);
  }

  playWhole(anchor) {
    if (this.pane.kind === 'side') this.app.playMusic([this.asContainer()], AddMode.Now, anchor);
    else attempt(this.playOrPause(), anchor);
  }

  // The whole list; a shuffled one begins anywhere.
  async playOrPause() {
    const { app, store } = this;
    if (this.plays) {
      await app.player.toggle();
      return;
    }
    const isShuffled = this.target && await app.commands.isShuffled(this.target);
    const index = isShuffled ? Math.floor(Math.random() * store.count) : 0;
    const track = store.row(index) ?? (await store.read(this.path, index, index, RowRoles)).rows[0];
    await app.player.playContainer(this.asContainer(), track, index);
  }

  asContainer() {
    return { mediaData: this.row?.mediaData, title: this.title, ...this.store.roles, path: this.path, type: RowType.Container };
  }

  // At the track that was played last, from where playback was stopped in it.
  async goOn() {
    const { player } = this.app;
    const { resumeIndex: index = 0 } = await this.store.read(this.path, 0, 0, ['path']);
    const { rows: [track] } = await this.store.read(this.path, index, index, RowRoles);
    const { mediaPath, trackPath, position: stoppedAt } = player.lastStop;
    const isThere = mediaPath === this.path && trackPath === track.path;
    await player.playContainer(this.asContainer(), track, index, isThere ? stoppedAt : 0);
  }

  openMenu(row, index, anchor) {
    const revision = this.store.revisionOf([index]);
    if (row.context?.path) this.app.openPublishedMenu(atRevision(row.context, revision), anchor, row, this.coverOf(row, () => {}));
    else if (this.pane.kind === 'side') this.app.openMusicMenu(row, anchor, this);
  }

  openOwnMenu() {
    const urls = this.pictures();
    this.app.openPublishedMenu(this.row.context, this.menuButton, { ...this.row, title: this.title }, urls);
  }

  addRows(rows, anchor) {
    this.app.openAddMenu(rows, anchor, this);
  }

  async addChosen(anchor) {
    const entries = await attempt(this.list.selection.resolve(), this.element);
    if (!entries?.length) return;
    this.addRows(entries.map((entry) => entry.row), anchor);
  }

  async moveChosen(anchor) {
    const entries = await attempt(this.list.selection.resolve(), this.element);
    if (entries?.length) this.app.withMenus((menus) => menus.openMove(entries.map(({ row }) => row), anchor, this));
  }

  jumpTo(index) {
    if (this.store.isLoaded) this.list.jumpTo(index);
    else {
      const end = this.store.on('reset', () => {
        end();
        requestAnimationFrame(() => this.list.jumpTo(index));
      });
    }
  }
}

// The menu of a row as it was then: numbers of rows that are gone are given again.
function atRevision(context, revision) {
  return revision === undefined ? context : { ...context, path: `${context.path}&revision=${revision}` };
}
