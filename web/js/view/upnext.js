// What will be heard next, in that order: a list of its own, in the large view or above the bar. A track of it can be
// removed from its playlist or played at once.

import { ListStore, RowType, plural, position } from '../model/rows.js';
import { attempt, el, icon, setText } from './dom.js';
import { ListView } from './listview.js';

export class UpNext {
  constructor(app) {
    this.app = app;
    this.path = app.paths.OrvoPlayListUpNextPath; // missing where the device has no such list
    this.count = el('p.upnext-count');
    this.empty = el('p.upnext-empty', { hidden: true }, 'Nothing comes next.');
    this.scroller = el('div.scroller', { tabindex: '-1' });
    const close = el('button.icon-button', { type: 'button', 'aria-label': 'Hide what comes next', title: 'Close', onclick: () => this.hide() }, icon('close'));
    this.element = el('section.upnext', { 'aria-label': 'Up next' },
      el('header.upnext-head', {}, el('h3.upnext-title', {}, 'Up next'), this.count, close),
      el('div.upnext-list', {}, this.scroller));
    this.element.addEventListener('keydown', (event) => event.key === 'Escape' && this.hide());
  }

  get isShown() {
    return Boolean(this.store);
  }

  // `place(element)` puts it where it belongs; `onHidden` is called when it is gone from there.
  show(place, onHidden) {
    this.hide();
    this.onHidden = onHidden;
    this.build();
    place(this.element);
    this.list.measure();
    this.store.want(0, 30);
    this.element.querySelector('.icon-button').focus({ preventScroll: true });
  }

  build() {
    const { app, scroller } = this;
    const store = new ListStore(this.path);
    const list = new ListView({
      store,
      scroller,
      label: 'Up next',
      look: {
        removable: true,
        letterKeys: () => app.settings.letterKeys,
        current: (row) => app.isCurrent(row),
        playing: () => app.player.isPlaying,
        cover: () => null,
      },
    });
    scroller.replaceChildren(list.body, this.empty);
    Object.assign(this, { store, list });
    // The rows of another playlist may come next, whose revisions are not those of this one.
    store.on('stale', () => (store.revision = undefined));
    for (const name of ['rows', 'count']) store.on(name, () => this.showCount());
    store.on('error', (error) => attempt(Promise.reject(error), null));
    list.on('open', ({ row, anchor }) => this.play(row, anchor));
    list.on('remove', (what) => this.remove(what ?? { row: store.row(list.active), index: list.active }));
    list.on('menu', ({ row, anchor }) => app.openPublishedMenu(row.context, anchor, row));
  }

  hide() {
    if (!this.store) return;
    this.list.dispose();
    this.store.dispose();
    this.store = this.list = null;
    this.element.remove();
    this.onHidden?.();
  }

  showCount() {
    const { count } = this.store;
    setText(this.count, count > 0 ? plural(count, 'track') : '');
    this.empty.hidden = count !== 0;
  }

  play(row, anchor) {
    const { app } = this;
    const container = { ...app.player.container, path: app.commands.targetOfTrack(row).path, type: RowType.Container };
    attempt(app.player.playContainer(container, row, position(row)), anchor);
  }

  // Where the playlist is on screen the row goes at once, as if its own key had done it.
  remove({ row, index }) {
    if (!row) return;
    const { app, store } = this;
    const target = app.commands.targetOfTrack(row);
    const editing = app.menuEdits.editingOf(target);
    if (editing?.holds(row)) {
      editing.removeTrack(row);
      return;
    }
    // What stands beside it in the playlist is not known here.
    const around = { revision: store.revisionOf([index]), rows: () => undefined, count: Infinity };
    attempt(app.edits.remove(target, [{ row, index: position(row) }], around), this.element);
  }

  apply(event) {
    this.store?.apply(event);
  }

  reread() {
    this.store?.reread();
  }
}
