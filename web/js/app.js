// Puts the page together: what the device has, where things are shown, and what the parts ask of
// each other.

import { EventFeed, artworkUrl, getModules, getPaths, getValue, samePlace, sendData } from './core/device.js';
import { Commands } from './model/commands.js';
import { Covers } from './model/covers.js';
import { Lock } from './model/lock.js';
import { Player } from './model/player.js';
import { Settings } from './model/settings.js';
import { RowType, allRows, isCreate, isSwitch, metaData } from './model/rows.js';
import { attempt, el, icon, setAttribute, tellError, tellUnlessOffline } from './view/dom.js';
import { wireKeys } from './view/keys.js';
import { Address, MusicPane, Pane } from './view/pane.js';

const DeviceName = 'gateway:name';
const MusicPrefix = 'files:';
const Narrow = '(max-width: 47.49rem)';
const Wide = '(min-width: 75rem)';
const LaterStyle = '/css/later.css';
const Landmarks = { nav: 'navigation', main: 'main', side: 'complementary' };
const RetryMs = 1500;

const after = (ms) => new Promise((done) => setTimeout(done, ms));

// With the beginning of the second frame the first one is on its way to the screen. A hidden page has none.
async function painted() {
  for (let frame = 0; frame < 2 && !document.hidden; frame += 1) await new Promise(requestAnimationFrame);
  await after(0);
}

// Behind the style sheet that stands at the end of the page, whose rules it refines.
const addStyle = (href) => new Promise((done) =>
  document.body.append(el('link', { rel: 'stylesheet', href, onload: done, onerror: done })));

async function loadParts() {
  for (;;) {
    try {
      return await import('./later.js');
    } catch {
      await after(RetryMs);
    }
  }
}

class App {
  constructor(paths, modules) {
    this.paths = paths;
    this.lock = new Lock();
    this.commands = new Commands(paths);
    this.covers = new Covers();
    this.player = new Player(paths);
    this.settings = new Settings();
    this.narrow = matchMedia(Narrow);
    this.feed = new EventFeed();
    this.setModules(modules);
    this.name = 'Orvo'; // until the device has told its own
    this.parts = new Promise((done) => (this.takeParts = done)); // what later.js has
    this.nav = new Pane(this, 'nav', document.getElementById('nav'));
    this.main = new Pane(this, 'main', document.getElementById('main'), this.nav);
    this.side = new MusicPane(this, 'side', document.getElementById('side'));
    this.music = null; // until its parts are there, and where the device has none
    this.panes = [this.nav, this.main, this.side];
    this.player.on('failed', (message) => tellError({ message }));
    this.address = new Address(this);
  }

  setModules(modules) {
    this.modules = new Set(modules);
    this.hasMusic = this.modules.has('files');
    document.body.classList.toggle('no-music', !this.hasMusic);
  }

  start() {
    this.nav.begin({ path: this.paths.OrvoPlayListsRootPath });
    this.wireFeed();
    this.afterFirstRows();
    if (location.hash) this.openPlaces();
    wireKeys(this);
    for (const place of document.querySelectorAll('.tab-icon')) place.append(icon(place.dataset.icon));
    document.getElementById('tab-lists').addEventListener('click', () => this.showLists());
    document.getElementById('tab-music').addEventListener('click', () => this.showSide(true));
    document.getElementById('tab-search').addEventListener('click', () => this.side.search());
    document.getElementById('help').addEventListener('click', () => this.showHelp());
    document.getElementById('settings').addEventListener('click', () => this.showSettings());
    this.narrow.addEventListener('change', () => {
      this.showLandmarks();
      this.showHeads();
    });
  }

  // The lists are on screen before anything else is begun.
  async afterFirstRows() {
    const { store } = this.nav.top;
    await new Promise((done) => {
      for (const name of ['rows', 'error', 'closed']) store.on(name, done);
    });
    document.querySelector('.early')?.remove();
    requestAnimationFrame(() => performance.mark('first-rows'));
    await painted();
    const loading = Promise.all([loadParts(), addStyle(LaterStyle)]);
    if (!this.isPlaced) this.openPlaces();
    const [parts] = await loading;
    this.edits = new parts.Edits(this.commands, this.lock);
    this.edits.on('ended', (path) => this.closePlace(path));
    this.menuEdits = new parts.MenuEdits(this);
    this.menu = new parts.Menu(this);
    this.files = new parts.PlaylistFiles(this);
    this.undoBar = new parts.UndoBar(document.getElementById('undo'), this.edits, { onLeft: () => this.shownScreen.focus() });
    this.upNext = new parts.UpNext(this);
    this.bar = new parts.PlayerBar(document.getElementById('player'), this.player, { upNext: this.upNext, menu: this.menu, onJump: () => this.jumpToCurrent() });
    this.takeParts(parts);
    this.side.beginMusic();
    this.takeName();
    parts.keepPage();
  }

  async takeName() {
    this.name = Object.values((await getValue(DeviceName).catch(() => null)) ?? {})[0] || this.name;
    this.showHeads();
  }

  // What stands beside the lists.
  openPlaces() {
    this.isPlaced = true;
    this.nav.top.store.on('rows', () => this.followParents());
    this.address.apply({ sideOpenFirst: matchMedia(Wide).matches });
    this.followParents();
    this.refreshPlayer();
  }

  get isNarrow() {
    return this.narrow.matches;
  }

  // The device.
  wireFeed() {
    this.feed.on('event', (event) => {
      this.player.apply(event);
      this.covers.apply(event);
      this.music?.apply(event);
      for (const pane of this.panes) pane.apply(event);
      this.menu?.apply(event);
      this.upNext?.apply(event);
    });
    this.feed.on('resync', () => this.readEverythingAgain());
    this.feed.on('online', (online) => {
      document.body.classList.toggle('offline', !online);
      document.getElementById('banner').hidden = online;
      this.player.setOnline(online);
      if (online) this.retry();
    });
    this.feed.connect();
  }

  async readEverythingAgain() {
    this.covers.forgetAll();
    for (const pane of this.panes) pane.reread();
    this.menu?.reread();
    this.upNext?.reread();
    try {
      this.setModules(await getModules());
    } catch {
      return; // the next connection brings another resync
    }
    await Promise.all([this.refreshPlayer(), this.side.beginMusic()]);
    this.showHeads();
  }

  // What was asked for while there was no connection was not answered.
  retry() {
    for (const pane of this.panes) for (const screen of pane.stack) screen.store.pump();
    this.refreshPlayer();
  }

  async refreshPlayer() {
    try {
      await this.player.refresh(this.modules.has('player'));
    } catch (error) {
      tellUnlessOffline(error);
    }
  }

  // A text or a switch is set, an action is carried out; then what the reply says happens. A second press does nothing.
  carryOut(row, value, { openMade = false } = {}) {
    return this.lock.during([row.path], async () => {
      const edit = this.menuEdits?.of(row);
      if (edit) {
        await edit(value);
        return;
      }
      const known = openMade ? await this.listPaths() : null;
      await this.send(row, value);
      if (known) await this.openMade(known);
    });
  }

  async send(row, value) {
    const { head } = this.menu ?? {};
    const sent = row.type === RowType.Editable && isSwitch(row) ? { bool: !row.value.bool } : value ?? {};
    const reply = await sendData(row.path, sent);
    for (const event of reply?.events ?? []) if (event.rowsType === 1) this.closePlace(event.path, head);
  }

  closePlace(path, head) {
    this.menu?.closePlace(path, head);
    for (const pane of this.panes) {
      for (const screen of [...pane.stack]) {
        if (pane !== this.nav && samePlace(screen.path, path)) pane.remove(screen);
      }
    }
  }

  // Menus.
  async openMenu(page, how) {
    await this.parts;
    this.menu.open(page, how);
  }

  openPublishedMenu({ path }, anchor, row, urls) {
    const own = artworkUrl(metaData(row).artworkUrl);
    const { artist } = metaData(row);
    this.openMenu({ path }, { anchor, head: { title: row.title, subtitle: artist, urls: own ? [own] : urls ?? [], row } });
  }

  async editRow(row, anchor) {
    await this.parts;
    const form = await attempt(this.menuEdits.formOf(row), anchor);
    if (form) this.openMenu({ title: row.title, field: row, form, openMade: isCreate(row) }, { anchor, head: { title: row.title, urls: [] } });
  }

  async ask(what, run) {
    const { ask } = await this.parts;
    ask(what, run);
  }

  askFor(row, named = '') {
    this.ask({ title: `${row.title}${named ? ` “${named}”` : ''}?`, text: 'This cannot be taken back.', button: row.title.split(' ')[0] },
      () => attempt(this.send(row, {}), null));
  }

  // What was just made is what people want to see: the list that was not there before.
  async openMade(known) {
    const made = (await allRows(this.nav.top.path))
      .find((row) => row.type === RowType.Container && !known.has(row.path));
    if (made) this.openInMain(made);
  }

  async listPaths() {
    return new Set((await allRows(this.nav.top.path)).map((row) => row.path));
  }

  async openAddMenu(rows, anchor, screen) {
    const { AddMenu } = await this.parts;
    new AddMenu(this, rows, screen).open(anchor);
  }

  async openMusicMenu(row, anchor, screen) {
    const { AddMenu } = await this.parts;
    new AddMenu(this, [row], screen).openForRow(anchor);
  }

  async playMusic(rows, mode, anchor) {
    const { playMusic } = await this.parts;
    playMusic(this, rows, mode, anchor);
  }

  // Menus of the page's own: what MenuEdits is asked to do.
  async withMenus(run) {
    await this.parts;
    run(this.menuEdits);
  }

  // Places.
  openList(row) {
    this.openInMain(row);
  }

  openInMain(row, goIn = false) {
    this.main.begin(row);
    this.showMain();
    this.remember();
    this.nav.top.list.refresh();
    if (goIn || this.isNarrow) this.main.top.focus();
  }

  setPlace(place) {
    this.workedIn = this[place];
    document.body.dataset.place = place;
    for (const [id, is] of [['tab-lists', place !== 'side'], ['tab-music', place === 'side']]) {
      const tab = document.getElementById(id);
      if (is) tab.setAttribute('aria-current', 'page');
      else tab.removeAttribute('aria-current');
    }
    this.showLandmarks();
    this.showHeads();
    for (const pane of this.panes) pane.top?.list.refresh();
  }

  // A phone shows one pane, which is all of the page then.
  showLandmarks() {
    for (const pane of this.panes) {
      const isAll = this.isNarrow && pane.kind === document.body.dataset.place;
      setAttribute(pane.element, 'role', isAll ? 'main' : Landmarks[pane.kind]);
    }
  }

  showNav() {
    this.setPlace('nav');
  }

  showMain() {
    this.setPlace('main');
  }

  showLists() {
    if (document.body.dataset.place === 'side' && this.main.top) this.showMain();
    else this.showNav();
    this.remember();
  }

  // `how`: that of the address.
  showMusic(how) {
    document.body.classList.add('side-open');
    this.setPlace('side');
    this.remember(how);
  }

  showSide(shown) {
    if (shown) {
      this.showMusic();
      this.side.top?.focus();
      return;
    }
    document.body.classList.remove('side-open');
    this.setPlace(this.main.top ? 'main' : 'nav');
    this.remember();
  }

  showHeads() {
    for (const pane of this.panes) pane.top?.showHead();
  }

  onPaneEmpty(pane) {
    if (pane === this.main) {
      if (this.isNarrow) this.showNav();
      else this.openFirst();
    } else if (pane === this.side) {
      this.music = null;
      pane.beginMusic();
    }
  }

  // Beside the root there is always a list.
  openFirst() {
    const { store } = this.nav.top;
    const row = store.rows.find((found) => found?.type === RowType.Container);
    if (row) {
      this.main.begin(row);
      this.nav.top.list.refresh();
    }
  }

  // Lists follow the rows that they were opened from.
  followParents() {
    const { store } = this.nav.top;
    if (!store.isCurrent) return;
    const first = this.main.stack[0];
    if (first) {
      first.row ??= store.rows.find((row) => row?.path === first.path) ?? null;
      first.followRow(store);
    } else if (!this.isNarrow) this.openFirst();
  }

  isCurrent(row) {
    if (row.type === RowType.Audio) return this.player.isCurrent(row) || this.isSounding(row);
    if (row.type !== RowType.Container) return false;
    return Boolean(this.player.track) && this.player.container?.path === row.path;
  }

  // A track of the music plays by way of a playlist, where it is another row.
  isSounding(row) {
    const fileOf = (track) => track?.mediaData?.resources?.[0]?.uri;
    return row.path.startsWith(MusicPrefix) && Boolean(fileOf(row)) && fileOf(row) === fileOf(this.player.track);
  }

  // Called whenever the head of a shown list may have changed.
  onHead(screen) {
    if (screen.pane === this.main) document.title = [screen.title, this.name].filter(Boolean).join(' – ');
  }

  async jumpToCurrent() {
    const { track, container } = this.player;
    if (!track || !container?.path) return;
    const index = track.value?.i32 ?? 0;
    if (this.main.top?.path !== container.path) {
      const row = this.nav.top.store.rows.find((found) => found?.path === container.path);
      this.main.begin(row ?? container);
    }
    this.showMain();
    this.remember();
    this.main.top.jumpTo(index);
  }

  get shownScreen() {
    const pane = this.workedIn?.element.offsetParent ? this.workedIn : this[document.body.dataset.place];
    return pane.top ?? this.nav.top;
  }

  // The pane that keys mean: where people pointed or moved last, or what they opened there.
  workIn(target) {
    this.workedIn = this.panes.find((pane) => pane.element.contains(target)) ?? this.workedIn;
  }

  remember(how) {
    this.address.write(how);
  }

  async showHelp() {
    const { showHelp } = await this.parts;
    showHelp(this.settings);
  }

  async showSettings() {
    const { showSettings } = await this.parts;
    showSettings(this.settings);
  }
}

async function startApp() {
  const begin = async () => {
    const [paths, modules] = await Promise.all([getPaths(), getModules()]);
    return new App(paths, modules);
  };
  const banner = document.getElementById('banner');
  const text = document.getElementById('banner-text');
  const lost = text.textContent;
  let app = null;
  while (!app) {
    try {
      app = await begin();
    } catch (error) {
      if (error.status === 401) {
        await addStyle(LaterStyle);
        const { askToken } = await import('./view/tokencard.js');
        await askToken();
        location.reload();
        return null;
      }
      text.textContent = 'Looking for the device.';
      banner.hidden = false;
      await after(RetryMs);
    }
  }
  banner.hidden = true;
  text.textContent = lost;
  app.start();
  return app;
}

startApp();
