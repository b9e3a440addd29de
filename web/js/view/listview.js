// A list on screen: only the rows in view exist, whatever the list's length. Keeps the place, the
// focus and the choice while rows come, go and are read again.
//
// Emits: open {row, index} (Enter, tap) · menu {row, index, anchor} · remove ({row, index} by a row's button) · back ·
// move {by}.

import { Emitter } from '../core/device.js';
import { RowType, isFocusable, rowKey } from '../model/rows.js';
import { clamp, el, prefersStill, setAttribute } from './dom.js';
import { handleListKey } from './keys.js';
import { RowMetrics, RowView } from './rowview.js';
import { Selection } from './selection.js';

const Overscan = 6;
// Faster than this, in screens per second, rows fly by and pictures wait.
const FlyingBy = 4;
// Faster than this rows cannot be read: their places are shown, and nothing is asked for.
const Blurred = 25;
const SettleMs = 110;
// So many rows are given their texts in one frame, the others in the next ones.
const FillPerFrame = 8;
// What a recycled row shows: neither a row nor one that is on its way.
const Nothing = Symbol('nothing');

export class ListView extends Emitter {
  // `look`: what the surroundings know about a row: {current(row), playing(), cover(row, found),
  // action, selectable, removable}.
  constructor({ store, scroller, look, label }) {
    super();
    Object.assign(this, { store, scroller, look });
    this.body = el('div.rows', { role: 'grid', 'aria-label': label, 'aria-busy': 'true' });
    if (look.selectable) this.body.setAttribute('aria-multiselectable', 'true');
    this.metrics = new RowMetrics();
    this.selection = new Selection(store);
    this.views = new Map(); // index → RowView
    this.free = [];
    this.active = -1;
    this.activeKey = null;
    this.shift = null; // while dragging: index → pixels
    this.pinned = -1; // the row that is dragged stays
    this.lastTop = 0;
    this.lastTime = 0;
    this.wire();
  }

  wire() {
    const { store } = this;
    this.unwire = [
      store.on('rows', ({ from, to }) => this.onRows(from, to)),
      store.on('inserted', (change) => this.onInserted(change)),
      store.on('removed', (indices) => this.onRemoved(indices)),
      store.on('count', () => this.onCount()),
      store.on('stale', () => this.rememberPlace()),
      this.selection.on('change', () => this.refresh()),
    ];
    this.onScroll = () => this.schedule();
    this.scroller.addEventListener('scroll', this.onScroll, { passive: true });
    this.resizer = new ResizeObserver(() => {
      this.measure();
      this.schedule();
    });
    this.resizer.observe(this.scroller);
    this.body.addEventListener('click', (event) => this.onClick(event));
    this.body.addEventListener('dblclick', (event) => this.onDoubleClick(event));
    this.body.addEventListener('keydown', (event) => handleListKey(this, event));
    this.body.addEventListener('focusin', (event) => this.onFocusIn(event));
    this.body.addEventListener('pointerover', (event) => this.rowOf(event.target)?.hover());
    this.body.addEventListener('contextmenu', (event) => this.onContextMenu(event));
  }

  dispose() {
    for (const end of this.unwire) end();
    this.scroller.removeEventListener('scroll', this.onScroll);
    this.resizer.disconnect();
    cancelAnimationFrame(this.frame);
    clearTimeout(this.settling);
    this.body.remove();
  }

  // Row heights follow the style sheet, which follows the size of the screen.
  measure() {
    const style = getComputedStyle(this.body.isConnected ? this.body : document.documentElement);
    const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
    const size = (name) => Math.round(parseFloat(style.getPropertyValue(name) || '4') * rem);
    const height = size('--row-height');
    this.heights = { [RowType.Header]: size('--header-height'), [RowType.Separator]: size('--separator-height') };
    if (height === this.metrics.height) return;
    this.metrics.setHeight(height);
    this.noteHeights(0, this.store.rows.length);
    this.resize();
  }

  noteHeights(from, to) {
    const heights = [];
    for (let i = from; i < to; i += 1) {
      const row = this.store.row(i);
      if (row) heights.push([i, this.heights[row.type] ?? null]);
    }
    return this.metrics.set(heights);
  }

  resize() {
    const count = Math.max(0, this.store.count);
    this.body.style.height = `${this.metrics.topOf(count)}px`;
    setAttribute(this.body, 'aria-rowcount', this.store.isLoaded ? count : null);
  }

  // Changes of the list.
  onRows(from, to) {
    if (this.noteHeights(from, Math.min(to, this.store.count))) this.resize();
    this.body.removeAttribute('aria-busy');
    this.keepPlace();
    this.refresh();
  }

  onInserted({ at, count }) {
    const first = this.firstInView();
    this.metrics.shift(at, count);
    if (this.active >= at) this.active += count;
    if (this.place && this.place.index >= at) this.place.index += count;
    this.resize();
    if (at < first) this.scroller.scrollTop += count * this.metrics.height;
    this.moveViews(at, count);
    this.refresh();
  }

  // Row elements go along with their rows, so that the focus stays in its row.
  moveViews(at, count) {
    const moved = new Map();
    for (const [index, view] of this.views) moved.set(index >= at ? index + count : index, view);
    this.views = moved;
  }

  // The page's own removal. Where the user is goes on to the row behind.
  onRemoved(indices) {
    const gone = new Set(indices);
    const before = (index) => indices.filter((one) => one < index).length;
    const hadFocus = this.body.contains(document.activeElement);
    const first = this.firstInView();
    const moved = new Map();
    for (const [index, view] of this.views) {
      if (gone.has(index)) this.free.push(view);
      else moved.set(index - before(index), view);
    }
    this.views = moved;
    while (gone.has(this.active)) this.active += 1;
    this.active = Math.min(this.active - before(this.active), this.store.count - 1);
    this.activeKey = null;
    this.resize();
    if (before(first)) this.scroller.scrollTop -= before(first) * this.metrics.height;
    this.refresh();
    if (hadFocus && this.active >= 0) this.setActive(this.active);
  }

  onCount() {
    this.metrics.cut(Math.max(0, this.store.count));
    this.resize();
    if (this.store.count === 0) {
      if (this.body.contains(document.activeElement)) this.scroller.focus({ preventScroll: true });
      this.active = -1;
      this.activeKey = null;
    }
    this.schedule();
  }

  // Before the list is read again: what stands at the top now shall stand there afterwards.
  rememberPlace() {
    const first = this.firstInView();
    const row = this.store.row(first);
    if (!this.place && first > 0 && row) this.place = { key: rowKey(row), index: first };
    const active = this.store.row(this.active);
    if (active) this.activeKey = rowKey(active);
  }

  // Another list will be shown, from its beginning.
  forgetPlace() {
    this.scroller.scrollTop = 0;
    Object.assign(this, { active: -1, activeKey: null, place: null });
  }

  keepPlace() {
    const find = (key, near) => {
      for (let distance = 0; distance <= 200; distance += 1) {
        for (const i of [near - distance, near + distance]) {
          if (this.store.isFresh(i) && rowKey(this.store.row(i)) === key) return i;
        }
      }
      return -1;
    };
    if (this.place && this.store.isFresh(this.place.index)) {
      const index = find(this.place.key, this.place.index);
      if (index >= 0 && index !== this.place.index)
        this.scroller.scrollTop += this.metrics.topOf(index) - this.metrics.topOf(this.place.index);
      this.place = null;
    }
    const near = Math.min(this.active, this.store.count - 1);
    if (this.activeKey && this.store.isFresh(near)) {
      const index = find(this.activeKey, near);
      this.activeKey = null;
      this.follow(index >= 0 ? index : near); // its neighbour, when it is gone
    }
  }

  // The user went elsewhere while the list is being read again.
  moveTo(index) {
    this.active = index;
    if (this.activeKey) this.activeKey = rowKey(this.store.row(index));
  }

  follow(index) {
    const hadFocus = this.body.contains(document.activeElement);
    this.active = index;
    if (hadFocus && !this.views.get(index)?.element.contains(document.activeElement)) {
      this.render();
      this.views.get(index)?.element.focus({ preventScroll: true });
    }
  }

  // Showing.
  firstInView() {
    const y = this.scroller.scrollTop - this.body.offsetTop;
    return y <= 0 ? 0 : this.metrics.indexAt(y, this.store.count);
  }

  schedule() {
    if (!this.frame) {
      this.frame = requestAnimationFrame((now) => {
        this.frame = 0;
        this.render(now, this.views.size ? FillPerFrame : Infinity);
      });
    }
  }

  refresh() {
    this.stale = true;
    this.schedule();
  }

  // `fill`: how many rows may be given other texts; without a limit all are shown at once.
  render(now = performance.now(), fill = Infinity) {
    const { scroller, store, metrics } = this;
    const height = scroller.clientHeight;
    if (!height || !store.isLoaded) {
      if (!store.isLoaded) store.want(0, 30);
      return;
    }
    const scrolled = scroller.scrollTop;
    const speed = Math.abs(scrolled - this.lastTop) / Math.max(1, now - this.lastTime) * 1000 / height;
    this.plain = now - this.lastTime < 100 && speed > FlyingBy;
    this.blurred = this.plain && speed > Blurred && fill !== Infinity;
    this.fill = fill;
    this.lastTop = scrolled;
    this.lastTime = now;
    if (this.plain) {
      clearTimeout(this.settling);
      this.settling = setTimeout(() => this.refresh(), SettleMs);
    }
    const y = scrolled - this.body.offsetTop;
    const first = metrics.indexAt(Math.max(0, y), store.count);
    const last = metrics.indexAt(Math.max(0, y + height), store.count);
    // What flies by is gone before its neighbours could be seen.
    const beyond = this.plain ? 1 : Overscan;
    const from = Math.max(0, first - beyond);
    const to = Math.min(store.count, last + 1 + beyond);
    this.showRange(from, to, first);
    if (!this.blurred) store.want(from, to);
    this.stale = false;
    if (this.fill < 0) this.schedule();
  }

  // Those in view first, from the top.
  showRange(from, to, first) {
    const kept = this.views.get(this.active);
    const keepActive = kept && this.active < this.store.count && kept.element.contains(document.activeElement);
    for (const [index, view] of this.views) {
      if ((index >= from && index < to) || (keepActive && index === this.active) || index === this.pinned) continue;
      this.views.delete(index);
      this.free.push(view);
    }
    for (let i = first; i < to; i += 1) this.showRow(i);
    for (let i = first - 1; i >= from; i -= 1) this.showRow(i);
    if (keepActive && (this.active < from || this.active >= to)) this.showRow(this.active);
    if (this.pinned >= 0 && (this.pinned < from || this.pinned >= to)) this.showRow(this.pinned);
    this.putAway();
    // Somewhere the Tab key must lead to.
    if (!this.views.has(this.active)) this.tabStop(this.firstFocusable(Math.max(from, 0), to));
    else this.tabStop(this.active);
  }

  // Hiding and showing costs a layout: while rows fly by those without a place are only moved away.
  putAway() {
    for (const view of this.free) {
      if (view.index >= 0) view.park();
      if (!this.plain) view.element.hidden = true;
    }
  }

  firstFocusable(from, to) {
    for (let i = from; i < to; i += 1) if (isFocusable(this.store.row(i))) return i;
    return -1;
  }

  tabStop(index) {
    const view = this.views.get(index);
    if (this.stop === view?.element) return;
    this.stop?.setAttribute('tabindex', '-1');
    this.stop = view?.element ?? null;
    this.stop?.setAttribute('tabindex', '0');
  }

  showRow(index) {
    let view = this.views.get(index);
    if (!view) {
      view = this.free.pop() ?? this.makeView();
      if (view.element.hidden) view.element.hidden = false;
      // Every row that is on its way looks the same.
      if (view.shownRow) view.shownRow = Nothing;
      this.views.set(index, view);
    }
    const top = this.metrics.topOf(index) + (this.shift ? this.shift(index) : 0);
    view.place(index, top, this.metrics.heightOf(index));
    const row = this.rowToShow(index, view);
    const plain = this.plain && view.shownRow !== row;
    if (!this.stale && view.shownRow === row && !view.wasPlain) return;
    view.shownRow = row;
    view.wasPlain = plain;
    const { look } = this;
    view.show(row, {
      plain,
      selectable: look.selectable && Selection.canChoose(row),
      selected: this.selection.has(row),
      selecting: this.selection.mode,
      current: row ? look.current(row) : false,
      playing: look.playing(),
      opened: row && look.opened ? look.opened(row) : false,
      removable: look.removable,
      movable: this.movable && row?.type === RowType.Audio,
      found: this.foundIndex === index,
      action: row ? look.action?.(row) : null,
      urls: row && !plain ? look.cover(row, () => this.refresh()) : null,
    });
  }

  rowToShow(index, view) {
    const row = this.store.row(index);
    if (!row || view.shownRow === row) return row;
    if (!this.blurred) {
      this.fill -= 1;
      if (this.fill >= 0) return row;
    }
    return view.shownRow === Nothing ? undefined : view.shownRow;
  }

  makeView() {
    const view = new RowView();
    view.shownRow = Nothing;
    this.body.append(view.element);
    return view;
  }

  // Where the user is.
  setActive(index, { focus = true, scroll = true } = {}) {
    if (!(this.store.count > 0)) return;
    this.moveTo(clamp(index, 0, this.store.count - 1));
    if (scroll) this.reveal(this.active);
    this.render();
    if (focus) this.views.get(this.active)?.element.focus({ preventScroll: true });
  }

  // The next row in that direction that can be used.
  step(from, by) {
    let index = clamp(from + by, 0, this.store.count - 1);
    const direction = Math.sign(by) || 1;
    while (index >= 0 && index < this.store.count && !isFocusable(this.store.row(index))) index += direction;
    return index < 0 || index >= this.store.count ? from : index;
  }

  reveal(index) {
    const top = this.body.offsetTop + this.metrics.topOf(index);
    const bottom = top + this.metrics.heightOf(index);
    const head = this.scroller.querySelector('.pane-bar')?.offsetHeight ?? 0;
    const { scrollTop, clientHeight } = this.scroller;
    if (top - head < scrollTop) this.scroller.scrollTop = index <= 1 ? 0 : top - head;
    else if (bottom > scrollTop + clientHeight) this.scroller.scrollTop = bottom - clientHeight;
  }

  jumpTo(index, { focus = true } = {}) {
    const { scroller } = this;
    const target = this.body.offsetTop + this.metrics.topOf(index) - (scroller.clientHeight - this.metrics.height) / 2;
    const near = Math.abs(target - scroller.scrollTop) < scroller.clientHeight * 3;
    this.moveTo(index);
    scroller.scrollTo({ top: target, behavior: near && !prefersStill() ? 'smooth' : 'instant' });
    this.render();
    if (focus) this.views.get(index)?.element.focus({ preventScroll: true });
  }

  pageStep() {
    return Math.max(1, Math.floor(this.scroller.clientHeight / this.metrics.height) - 2);
  }

  rowOf(target) {
    const element = target.closest?.('.row');
    return element && this.body.contains(element) ? this.views.get(Number(element.dataset.index)) ?? null : null;
  }

  // The gap between rows that is nearest to there.
  gapAt(clientY) {
    if (!(this.store.count > 0)) return 0;
    const y = clientY - this.body.getBoundingClientRect().top;
    const over = this.metrics.indexAt(Math.max(0, y), this.store.count);
    return y > this.metrics.topOf(over) + this.metrics.heightOf(over) / 2 ? over + 1 : over;
  }

  // What the user does.
  onFocusIn(event) {
    const view = this.rowOf(event.target);
    if (view) {
      this.moveTo(view.index);
      this.tabStop(view.index);
    }
  }

  onClick(event) {
    const view = this.rowOf(event.target);
    // A press that lifted the row ends in a click that may come late; one without a pointer (detail 0) is another.
    if (!view?.row || (this.suppressClick && event.detail > 0) || !isFocusable(view.row)) return;
    const { index, row } = view;
    const control = event.target.closest('[data-role]')?.dataset.role;
    if (control === 'more') this.emit('menu', { row, index, anchor: view.more });
    else if (control === 'remove') {
      // The second click on what is gone by now is none on what stands there instead.
      if (event.detail < 2) this.emit('remove', { row, index });
    } else if (control === 'switch') this.emit('open', { row, index, anchor: view.switch });
    else this.onRowClick(event, view);
  }

  onRowClick(event, { index, row, element }) {
    const chooses = this.look.selectable && Selection.canChoose(row);
    const from = this.active;
    this.setActive(index, { scroll: false });
    if (chooses && event.shiftKey) this.selection.extendTo(index, from);
    else if (chooses && (event.ctrlKey || event.metaKey || this.selection.mode)) this.selection.toggle(index);
    else if (row.type === RowType.Audio && event.pointerType === 'mouse' && !event.target.closest('.art')) {
      // A mouse points first and plays with the second click, or on the picture.
      if (chooses) this.selection.only(index);
    } else this.emit('open', { row, index, anchor: element });
  }

  onDoubleClick(event) {
    const view = this.rowOf(event.target);
    if (!view?.row || view.row.type !== RowType.Audio || event.target.closest('[data-role], .art')) return;
    if (!this.selection.mode) this.emit('open', { row: view.row, index: view.index, anchor: view.element });
  }

  onContextMenu(event) {
    const view = this.rowOf(event.target);
    if (!view?.row || (!view.row.context && this.look.action?.(view.row) !== 'add')) return;
    event.preventDefault();
    if (event.pointerType !== 'touch') this.openMenu(view.index);
  }

  openMenu(index) {
    const view = this.views.get(index);
    if (view?.row) this.emit('menu', { row: view.row, index, anchor: view.more.hidden ? view.element : view.more });
  }
}
