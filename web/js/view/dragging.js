// Reordering, and carrying to other lists, by drag: with a mouse from anywhere in the row, with a finger from the grip or after a
// long press. A long press that does not move opens the menu.

import { rowKey } from '../model/rows.js';
import { clamp } from './dom.js';

const LongPressMs = 430;
const Slop = 7; // pixels of a hand that does not mean to move
const EdgeSize = 64;
const EdgeSpeed = 14; // pixels per frame at the very edge

export class Dragging {
  // `canMove()` tells whether rows can be moved; `drop(indices, gap)` carries it out. `dropping`: what takes rows that
  // are dragged out of the list.
  constructor(list, { canMove, drop, dropping }) {
    Object.assign(this, { list, canMove, drop, dropping });
    const { body } = list;
    body.addEventListener('pointerdown', (event) => this.onDown(event));
    body.addEventListener('pointermove', (event) => this.onMove(event));
    body.addEventListener('pointerup', (event) => this.onUp(event));
    body.addEventListener('pointercancel', () => this.end(false));
    body.addEventListener('lostpointercapture', () => this.end(false));
    // Once a row is lifted the finger moves it, not the page.
    body.addEventListener('touchmove', (event) => this.lifted && event.preventDefault(), { passive: false });
    // Nor is its end a tap, on the row or on the menu that has just opened under the finger.
    body.addEventListener('touchend', (event) => list.suppressClick && event.cancelable && event.preventDefault(), { passive: false });
    body.addEventListener('dragstart', (event) => event.preventDefault());
    this.onKey = (event) => {
      if (event.key !== 'Escape') return;
      event.preventDefault();
      event.stopPropagation();
      this.end(false);
    };
    list.store.on('inserted', (change) => this.followInsertion(change));
    list.store.on('rows', () => this.checkRows());
  }

  onDown(event) {
    this.list.suppressClick = false;
    const view = this.list.rowOf(event.target);
    const role = event.target.closest('[data-role]')?.dataset.role;
    if (!view?.row || event.button !== 0 || role === 'more' || role === 'switch') return;
    this.press = { view, index: view.index, x: event.clientX, y: event.clientY, id: event.pointerId, type: event.pointerType, role };
    if (event.pointerType === 'mouse') return;
    if (role === 'grip') this.lift();
    else this.timer = setTimeout(() => this.lift(), LongPressMs);
  }

  onMove(event) {
    if (!this.press || event.pointerId !== this.press.id) return;
    this.pointerX = event.clientX;
    this.pointerY = event.clientY;
    if (!this.lifted) {
      const distance = Math.hypot(event.clientX - this.press.x, event.clientY - this.press.y);
      if (distance < Slop) return;
      if (this.press.type !== 'mouse') {
        this.cancelPress(); // the page scrolls
        return;
      }
      if ((!this.canMove() && !this.dropping.canCarry(this.press.view.row)) || event.buttons !== 1) return;
      this.lift();
    }
    if (this.lifted && (this.movable || this.carries)) this.drag();
  }

  lift() {
    clearTimeout(this.timer);
    const { press, list } = this;
    if (!press) return;
    this.lifted = true;
    this.movable = this.canMove() && list.store.row(press.index)?.type === 3;
    this.carries = this.dropping.canCarry(list.store.row(press.index));
    list.suppressClick = true;
    list.pinned = press.index;
    press.row = list.store.row(press.index);
    document.addEventListener('keydown', this.onKey, { capture: true });
    press.view.element.classList.add('lifted');
    list.body.setPointerCapture?.(press.id);
    if (press.type !== 'mouse') navigator.vibrate?.(8);
  }

  drag() {
    const { list, press } = this;
    if (!this.dragging) {
      if (Math.abs(this.pointerY - press.y) < Slop && press.type !== 'mouse') return;
      this.dragging = true;
      const chosen = list.selection.has(list.store.row(press.index)) && list.selection.size > 1;
      this.indices = chosen
        ? [...list.selection.chosen.values()].map((entry) => entry.index).sort((a, b) => a - b)
        : [press.index];
      this.keys = this.indices.map((index) => rowKey(list.store.row(index)));
      this.grabbed = press.y - press.view.element.getBoundingClientRect().top;
      list.body.classList.add('dragging');
      list.shift = (index) => this.shiftOf(index);
      press.view.element.dataset.count = this.indices.length > 1 ? this.indices.length : '';
      this.autoScroll();
    }
    this.place = this.carries ? this.dropping.at(this.pointerX, this.pointerY) : null;
    this.away = Boolean(this.place) || this.dropping.isBeside(this.pointerX);
    if (this.away || !this.movable) this.aimElsewhere();
    else {
      this.dropping.hide();
      this.aim();
    }
  }

  // The list is as it was, and what is dragged is shown beside the pointer.
  aimElsewhere() {
    const { store } = this.list;
    const text = this.indices.length > 1 ? `${this.indices.length} chosen` : store.row(this.press.index)?.title ?? '';
    this.dropping.show(this.place, this.pointerX, this.pointerY, text);
    this.gap = this.press.index;
    this.liftedTop = this.list.metrics.topOf(this.press.index);
    this.list.render();
  }

  // Others may change the list meanwhile. An insertion carries along what is held …
  followInsertion({ at, count }) {
    if (!this.lifted) return;
    const moved = (index) => (index >= at ? index + count : index);
    this.press.index = moved(this.press.index);
    this.list.pinned = this.press.index;
    if (!this.dragging) return;
    this.indices = this.indices.map(moved);
    this.aim();
  }

  // … after anything else it may have other neighbours or be gone: then nothing is moved.
  checkRows() {
    if (!this.lifted) return;
    const { store } = this.list;
    const isThere = (index, key) => !store.row(index) || rowKey(store.row(index)) === key;
    const same = isThere(this.press.index, rowKey(this.press.row))
      && (!this.dragging || this.indices.every((index, i) => isThere(index, this.keys[i])));
    if (!same) this.end(false);
  }

  // The gap between rows that the lifted row's middle is nearest to.
  aim() {
    const { list } = this;
    const bodyTop = list.body.getBoundingClientRect().top;
    this.liftedTop = clamp(this.pointerY - bodyTop - this.grabbed, 0, list.metrics.topOf(list.store.count) - list.metrics.height);
    const middle = this.liftedTop + list.metrics.height / 2;
    const over = list.metrics.indexAt(middle, list.store.count);
    const center = list.metrics.topOf(over) + list.metrics.heightOf(over) / 2;
    const from = this.press.index;
    // At the very ends the lifted row cannot get farther than the middle of the last and the first row.
    if (over > from) this.gap = middle >= center ? over + 1 : over;
    else if (over < from) this.gap = middle > center ? over + 1 : over;
    else this.gap = from;
    list.render();
  }

  shiftOf(index) {
    const from = this.press.index;
    const { metrics } = this.list;
    if (index === from) return this.liftedTop - metrics.topOf(from);
    if (index > from && index < this.gap) return -metrics.height;
    if (index < from && index >= this.gap) return metrics.height;
    return 0;
  }

  autoScroll() {
    if (!this.dragging) return;
    if (this.away || !this.movable) {
      requestAnimationFrame(() => this.autoScroll());
      return;
    }
    const { scroller } = this.list;
    const { top, bottom } = scroller.getBoundingClientRect();
    const near = (distance) => clamp((EdgeSize - distance) / EdgeSize, 0, 1);
    const speed = near(bottom - this.pointerY) - near(this.pointerY - top);
    if (speed) {
      scroller.scrollTop += speed * EdgeSpeed;
      this.aim();
    }
    requestAnimationFrame(() => this.autoScroll());
  }

  onUp(event) {
    if (!this.press || event.pointerId !== this.press.id) return;
    const opensMenu = this.lifted && !this.dragging && this.press.type !== 'mouse' && this.press.role !== 'grip';
    const { index } = this.press;
    this.end(true);
    if (opensMenu) this.list.openMenu(index);
  }

  cancelPress() {
    clearTimeout(this.timer);
    this.press = null;
  }

  end(dropped) {
    if (!this.press) return;
    const { press, list, dragging, gap, indices, place } = this;
    const isHere = this.movable && !this.away;
    const rows = dragging ? indices.map((index) => list.store.row(index)).filter(Boolean) : [];
    this.dropping.hide();
    this.away = false;
    this.place = null;
    clearTimeout(this.timer);
    press.view.element.classList.remove('lifted');
    delete press.view.element.dataset.count;
    this.press = null;
    this.lifted = false;
    this.dragging = false;
    document.removeEventListener('keydown', this.onKey, { capture: true });
    list.shift = null;
    list.pinned = -1;
    list.body.classList.remove('dragging');
    list.refresh();
    if (dragging && dropped && !isHere && place && rows.length) this.dropping.drop(place, rows);
    const moves = dragging && dropped && isHere && !(indices.length === 1 && (gap === indices[0] || gap === indices[0] + 1));
    if (moves) this.drop(indices, gap);
  }
}
