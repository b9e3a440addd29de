// One row of a list on screen, whatever its type. Made once and given other rows as the list
// scrolls; says nothing to the device itself. And where each row stands.

import { artworkUrl } from '../core/device.js';
import { RowType, duration, isCreate, isFocusable, isMenu, isSignpost, isSwitch, isUsable, metaData } from '../model/rows.js';
import { Artwork, el, icon, setAttribute, setIcon, setText } from './dom.js';

const ClassOf = {
  [RowType.Container]: 'opens',
  [RowType.Audio]: 'plays',
  [RowType.Editable]: 'edits',
  [RowType.Action]: 'acts',
  [RowType.Header]: 'heads',
  [RowType.Separator]: 'separates',
};

function symbolOf(row) {
  if (isSignpost(row)) return row.symbol;
  if (isCreate(row)) return 'plus';
  if (row.type === RowType.Editable) return 'edit';
  if (row.type === RowType.Action) return 'forward';
  if (isMenu(row)) return 'more';
  return null;
}

// What stands below the title: of a track its artist and album, of an album its artist and year.
function linesOf(row) {
  const { artist = '', album = '', year = '' } = metaData(row);
  if (row.type === RowType.Audio) return [artist, album];
  return row.type === RowType.Container && album ? [artist, year] : ['', ''];
}

export class RowView {
  constructor() {
    this.artwork = new Artwork();
    this.title = el('span.row-title', { dir: 'auto' });
    this.artist = el('span.row-artist');
    this.album = el('span.row-album');
    this.subtitle = el('span.row-subtitle', { dir: 'auto' }, this.artist, this.album);
    this.detail = el('span.row-detail');
    this.moreIcon = icon('more');
    this.more = el('button.icon-button.row-more', { type: 'button', tabindex: '-1', 'data-role': 'more' }, this.moreIcon);
    this.main = el('div.row-main', { role: 'gridcell' }, this.artwork.element,
      el('span.row-texts', {}, this.title, this.subtitle));
    this.end = el('div.row-end', { role: 'gridcell' }, this.detail, this.more);
    this.element = el('div.row', { role: 'row', tabindex: '-1' }, this.main, this.end);
    this.index = -1;
  }

  // What few rows ever show is made when the first of them does.
  needSwitch() {
    if (this.switch) return;
    this.switch = el('button.switch', { type: 'button', role: 'switch', tabindex: '-1', 'data-role': 'switch' });
    this.more.before(this.switch);
  }

  needRemove() {
    if (this.remove) return;
    this.remove = el('button.icon-button.row-remove', { type: 'button', tabindex: '-1', 'data-role': 'remove' }, icon('trash'));
    this.end.append(this.remove);
  }

  needBars() {
    this.bars ??= this.artwork.element.appendChild(
      el('span.bars', { 'aria-hidden': 'true' }, el('i'), el('i'), el('i')));
  }

  needMarks() {
    if (this.check) return;
    this.check = el('span.check', { 'aria-hidden': 'true' }, icon('check'));
    this.grip = el('span.grip', { 'aria-hidden': 'true', 'data-role': 'grip' }, icon('grip'));
    this.main.prepend(this.check);
    this.end.append(this.grip);
  }

  // A mouse is above it.
  hover() {
    if (!this.playOffer) {
      this.playIcon = icon('play');
      this.playOffer = this.artwork.element.appendChild(el('span.art-play', {}, this.playIcon));
    }
    this.showOffer();
  }

  showOffer() {
    if (this.playOffer) setIcon(this.playIcon, this.plays ? 'pause' : 'play');
  }

  // Out of the way, until another row needs it.
  park() {
    this.index = -1;
    this.top = null;
    this.element.style.transform = 'translateY(-1000px)';
    delete this.element.dataset.index;
  }

  place(index, top, height) {
    if (this.index !== index) {
      setAttribute(this.element, 'aria-rowindex', index + 1);
      this.element.dataset.index = index;
    }
    this.index = index;
    if (this.top !== top) this.element.style.transform = `translateY(${top}px)`;
    if (this.height !== height) this.element.style.height = `${height}px`;
    this.top = top;
    this.height = height;
  }

  // `row` may be missing: it is on its way. `look`: {selected, selecting, current, playing, movable,
  // action, removable, urls, plain}; plain is for rows that fly by.
  show(row, look) {
    const type = row ? ClassOf[row.type] ?? 'unknown' : 'waits';
    const classes = ['row', type];
    if (look.selected) classes.push('selected');
    if (look.current) classes.push('current');
    if (look.current && look.playing) classes.push('playing');
    if (look.opened) classes.push('opened');
    if (look.movable) classes.push('movable');
    if (look.found) classes.push('found');
    const name = classes.join(' ');
    if (this.element.className !== name) this.element.className = name;
    setAttribute(this.element, 'aria-busy', row ? null : 'true');
    setAttribute(this.element, 'aria-selected', row && look.selectable ? String(Boolean(look.selected)) : null);
    setAttribute(this.element, 'aria-current', look.opened ? 'page' : look.current ? 'true' : null);
    this.row = row;
    this.plays = Boolean(look.current && look.playing);
    this.showOffer();
    if (look.current) this.needBars();
    if (look.selecting) this.needMarks();
    if (!row) {
      setText(this.title, '\u00a0');
      setText(this.artist, '');
      setText(this.album, '');
      setText(this.detail, '');
      this.artwork.set({});
      this.more.hidden = true;
      if (this.switch) this.switch.hidden = true;
      if (this.remove) this.remove.hidden = true;
      return;
    }
    setText(this.title, row.title ?? '');
    const [first, second] = linesOf(row);
    setText(this.artist, first);
    setText(this.album, second);
    const text = row.type === RowType.Editable && !isSwitch(row) ? row.value?.string ?? '' : '';
    setText(this.detail, (row.type === RowType.Audio ? duration(metaData(row).duration) : '') || text);
    this.showArtwork(row, look);
    this.showControls(row, look);
  }

  showArtwork(row, look) {
    if (row.type === RowType.Header || row.type === RowType.Separator) return;
    const own = artworkUrl(metaData(row).artworkUrl);
    const urls = look.plain ? this.artwork.urls.filter((url) => url === own) : own ? [own] : look.urls ?? [];
    const symbol = symbolOf(row);
    this.artwork.set({ urls, title: row.title ?? '', symbol });
  }

  showControls(row, look) {
    const flips = isSwitch(row);
    if (flips) this.needSwitch();
    if (this.switch) this.switch.hidden = !flips;
    if (flips) {
      setAttribute(this.switch, 'aria-checked', String(row.value.bool));
      setAttribute(this.switch, 'aria-label', row.title);
    }
    const hasMenu = Boolean(row.context?.path) || look.action === 'add';
    this.more.hidden = !hasMenu || look.selecting || look.removable;
    if (look.removable) this.showRemove(row);
    if (hasMenu) {
      setIcon(this.moreIcon, look.action === 'add' ? 'plus' : 'more');
      setAttribute(this.more, 'aria-label', `${look.action === 'add' ? 'Add' : 'Menu of'} ${row.title}`);
    }
    setAttribute(this.element, 'aria-disabled', isUsable(row) || !isFocusable(row) ? null : 'true');
  }

  showRemove(row) {
    this.needRemove();
    this.remove.hidden = false;
    setAttribute(this.remove, 'aria-label', `Remove ${row.title}`);
    setAttribute(this.remove, 'title', 'Remove from its playlist');
  }
}

// Where rows stand when all have the same height but a few: headers and separators. Costs as much
// as there are of those, not as there are rows.

export class RowMetrics {
  constructor() {
    this.height = 1;
    this.special = new Map(); // index → height
    this.sorted = [];
    this.before = []; // what the special ones in front add
  }

  setHeight(height) {
    this.height = height;
    this.rebuild();
  }

  // heights: [[index, height or null]]; null: as usual.
  set(heights) {
    let changed = false;
    for (const [index, height] of heights) {
      if (height === null) changed = this.special.delete(index) || changed;
      else if (this.special.get(index) !== height) {
        this.special.set(index, height);
        changed = true;
      }
    }
    if (changed) this.rebuild();
    return changed;
  }

  shift(at, count) {
    const moved = new Map();
    for (const [index, height] of this.special) moved.set(index >= at ? index + count : index, height);
    this.special = moved;
    this.rebuild();
  }

  cut(count) {
    for (const index of [...this.special.keys()]) if (index >= count) this.special.delete(index);
    this.rebuild();
  }

  rebuild() {
    this.sorted = [...this.special.keys()].sort((a, b) => a - b);
    let sum = 0;
    this.before = this.sorted.map((index) => {
      const mine = sum;
      sum += this.special.get(index) - this.height;
      return mine;
    });
    this.extra = sum;
  }

  heightOf(index) {
    return this.special.get(index) ?? this.height;
  }

  topOf(index) {
    let low = 0;
    let high = this.sorted.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.sorted[middle] < index) low = middle + 1;
      else high = middle;
    }
    return index * this.height + (low < this.sorted.length ? this.before[low] : this.extra ?? 0);
  }

  indexAt(y, count) {
    let low = 0;
    let high = Math.max(0, count - 1);
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (this.topOf(middle) <= y) low = middle;
      else high = middle - 1;
    }
    return low;
  }
}
