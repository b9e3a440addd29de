// Menus: what the device publishes for a row, and the page's own choices, on a sheet that rises
// from below on a phone and stands beside its row elsewhere. One at a time, with pages to go back
// from.

import { samePlace } from '../core/device.js';
import { isDestructive } from '../model/commands.js';
import { ListStore, RowType, allRows, isCreate, isSwitch, isUsable } from '../model/rows.js';
import { Artwork, attempt, busy, clamp, el, icon, setAttribute, showDialog, tell } from './dom.js';

const AllRows = 1000000;
const Gap = 8;

const isText = (row) => row.type === RowType.Editable && !isSwitch(row);

// The kinds of published rows as entries, the first that fits: what it looks like, and what a press does.
const Kinds = [
  { is: (row) => row.type === RowType.Separator, look: () => ({ isLine: true }) },
  { is: (row) => row.type === RowType.Header, look: () => ({ isHeading: true }) },
  { is: (row) => row.type === RowType.Container, look: () => ({ opens: true }), run: (menu, row, page) => menu.openList(row, page) },
  { is: isCreate, look: () => ({ icon: 'plus' }), run: (menu, row, page, button) => menu.enter(row, page, button) },
  { is: isText, look: (row, { menuEdits }) => ({ detail: menuEdits.detailOf(row) }), run: (menu, row, page, button) => menu.enter(row, page, button) },
  { is: isSwitch, look: (row) => ({ isOn: () => row.value.bool }), run: (menu, row, page, button) => menu.act(row, page, button) },
  { is: () => true, run: (menu, row, page, button) => menu.act(row, page, button) },
];

// The element of an entry: {title, icon, detail, opens, isOn, isDestructive, isUsable, isLine, isHeading, run(button)}.
function entryOf({ title, icon: name, detail, opens, isOn, isDestructive: destructive, isUsable: usable = true, isLine, isHeading, run }) {
  if (isLine) return el('hr.menu-line');
  if (isHeading) return el('h3.menu-heading', {}, title);
  const button = el(`button.menu-entry${destructive ? '.destructive' : ''}`, { type: 'button', disabled: !usable, onclick: () => run(button) },
    name ? icon(name) : null, el('span.menu-text', { dir: 'auto' }, title),
    detail ? el('span.menu-detail', { dir: 'auto' }, detail) : null, opens ? icon('forward') : null);
  if (isOn) {
    button.setAttribute('role', 'switch');
    button.setAttribute('aria-checked', String(isOn()));
    button.append(el('span.switch-face', { 'aria-hidden': 'true' }));
  }
  return button;
}

// The second of two presses finds the menu gone: it is none on what stands there instead.
const SecondPressMs = 400;

const SamePlace = 24; // pixels; two taps of a finger are not always told as a double one

function ignoreSecondPress(first) {
  const ignoring = new AbortController();
  const isThere = ({ clientX, clientY }) => first && Math.hypot(clientX - first.x, clientY - first.y) < SamePlace;
  const ignore = (event) => {
    const isKey = event.detail === 0 && event.type !== 'pointerdown';
    if (isKey || (event.detail < 2 && !isThere(event))) return;
    event.preventDefault();
    event.stopPropagation();
  };
  for (const name of ['pointerdown', 'mousedown', 'click', 'dblclick'])
    document.addEventListener(name, ignore, { capture: true, signal: ignoring.signal });
  setTimeout(() => ignoring.abort(), SecondPressMs);
}

export class Menu {
  // `app`: feed events are passed on by it, rows are carried out by it.
  constructor(app) {
    this.app = app;
    this.pages = [];
    this.dialog = el('dialog.sheet', { 'aria-modal': 'true' });
    this.dialog.addEventListener('click', (event) => event.target === this.dialog && this.close());
    this.dialog.addEventListener('close', () => this.onClosed());
    this.dialog.addEventListener('cancel', (event) => {
      if (this.pages.length <= 1) return;
      event.preventDefault();
      this.back();
    });
    this.dialog.addEventListener('keydown', (event) => this.onKey(event));
    this.dialog.addEventListener('pointerdown', ({ pointerType, clientX: x, clientY: y }) => {
      this.pressed = pointerType === 'mouse' ? null : { x, y };
    });
    this.page = el('div.sheet-page');
    this.dialog.append(this.page);
    document.body.append(this.dialog);
  }

  get isOpen() {
    return this.dialog.open;
  }

  // page: {path, pick?} for a published menu, {title, items: [{title, icon, run}]} for the page's
  // own. head: {title, subtitle, urls, symbol, row}; the row that a published menu belongs to.
  open(page, { anchor, head }) {
    this.close();
    this.head = head;
    this.anchor = anchor;
    this.returnTo = document.activeElement;
    this.push(page);
  }

  push(page) {
    this.pages.at(-1)?.store?.dispose();
    this.pages.push(page);
    this.load(page);
  }

  back() {
    this.pages.pop().store?.dispose();
    const page = this.pages.at(-1);
    if (page) this.load(page);
    else this.close();
  }

  async load(page) {
    if (!page.path) {
      this.show(page);
      return;
    }
    page.store = new ListStore(page.path);
    const { store } = page;
    store.on('stale', () => this.read(page));
    store.on('closed', () => this.back());
    await this.read(page);
  }

  async read(page) {
    // A menu is short, and shown whole.
    const answer = await attempt(page.store.read(page.path, 0, AllRows), this.isOpen ? this.dialog : this.anchor);
    if (page !== this.pages.at(-1) || page.store.closed) return;
    if (!answer) {
      if (!this.isOpen) this.pages = [];
      return;
    }
    page.title = answer.title;
    page.rows = answer.rows.filter((row) => this.app.commands.isOffered(row) && (page.offers?.(row) ?? true));
    this.show(page);
  }

  show(page) {
    const focused = this.isOpen ? [...this.entries()].indexOf(document.activeElement) : -1;
    const content = page.field ? this.fieldContent(page) : this.listContent(page);
    this.page.replaceChildren(this.header(page), content);
    this.dialog.setAttribute('aria-label', page.title ?? '');
    if (!this.isOpen) showDialog(this.dialog);
    this.position();
    const entries = this.entries();
    const input = this.page.querySelector('input');
    if (input) input.select();
    (input ?? entries[Math.max(0, focused)] ?? this.page.querySelector('button'))?.focus();
  }

  entries() {
    return this.dialog.querySelectorAll('.menu-entry');
  }

  header(page) {
    const artwork = new Artwork('div.art.small');
    artwork.set({ urls: this.head?.urls ?? [], title: this.head?.title ?? '', symbol: this.head?.symbol ?? null });
    const back = this.pages.length > 1
      ? el('button.icon-button', { type: 'button', 'aria-label': 'Back', onclick: () => this.back() }, icon('back'))
      : artwork.element;
    const title = this.head?.title ?? page.title ?? '';
    // What a published menu is called says no more than that it is one.
    const subtitle = page.path && this.pages.length === 1 ? this.head?.subtitle : page.title;
    return el('header.sheet-head', {}, back,
      el('div.sheet-texts', {}, el('h2.sheet-title', { dir: 'auto' }, title),
        subtitle && subtitle !== title ? el('p.sheet-subtitle', { dir: 'auto' }, subtitle) : null),
      el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => this.close() }, icon('close')));
  }

  listContent(page) {
    const content = el('div.menu-entries');
    const items = page.items ?? page.rows.map((row) => this.itemOf(row, page));
    content.append(...items.map((item) => entryOf(item)));
    const extras = page.items ? [] : this.app.menuEdits.extrasOf(page.path, this.head?.row).map((extra) => entryOf(extra));
    const line = content.querySelector('.menu-line');
    if (line) line.before(...extras);
    else content.append(...extras);
    const isTrack = this.head?.row?.type === RowType.Audio;
    if (!items.length) content.replaceChildren(el('p.menu-empty', {}, isTrack ? 'This track is gone already.' : 'Nothing to choose here.'));
    return content;
  }

  // A published row as an entry: how it looks and what it does.
  itemOf(row, page) {
    const { look, run } = Kinds.find(({ is }) => is(row));
    return {
      title: row.title ?? '',
      isUsable: isUsable(row) && row.type !== RowType.Audio,
      isDestructive: isDestructive(row),
      ...look?.(row, this.app),
      run: (button) => run(this, row, page, button),
    };
  }

  openList(row, page) {
    if (page.pick) page.pick(row);
    else if (row.containerType) this.push({ path: row.path });
    else {
      this.close();
      this.app.openList(row);
    }
  }

  async enter(row, page, button) {
    const form = await attempt(this.app.menuEdits.formOf(row), button);
    if (form) this.push({ title: row.title, field: row, form, within: page });
  }

  async act(row, page, button) {
    if (isDestructive(row) && !this.app.menuEdits.of(row)) {
      const { title } = this.head;
      this.close();
      this.app.askFor(row, title);
    } else await attempt(this.app.carryOut(row), button);
  }

  // A text to be entered or changed. form: {value, label, hint, inputmode, read(text)}.
  fieldContent(page) {
    const { field: row, form } = page;
    const input = el('input', { type: 'text', value: form.value, 'aria-label': form.label, inputmode: form.inputmode, autocomplete: 'off', enterkeyhint: 'done', maxlength: '500' });
    const save = el('button.pill.primary', { type: 'submit' }, isCreate(row) ? 'Create' : 'Save');
    const problem = el('p.field-problem', { id: 'field-problem', role: 'alert' });
    const send = async (event) => {
      event.preventDefault();
      try {
        const known = isCreate(row) && page.within ? await this.keysOf(page.within) : null;
        const done = this.app.carryOut(row, { string: form.read(input.value) }, { openMade: page.openMade });
        if (!done) return;
        await busy(done, save);
        // The head names what the menu belongs to, under its new name now.
        if (this.head && this.head.title === row.value?.string) this.head.title = input.value;
        if (this.pages.at(-1) !== page) return;
        this.back();
        if (known) await this.goOnWithMade(page.within, known);
      } catch (error) {
        problem.replaceChildren(error.message); // another text, even an equal one, is read out
        setAttribute(input, 'aria-invalid', 'true');
        setAttribute(input, 'aria-describedby', problem.id);
        input.select();
      }
    };
    return el('form.field', { onsubmit: send, novalidate: true }, form.hint ? el('p.field-hint', {}, form.hint) : null, input, problem,
      el('div.field-buttons', {}, el('button.pill', { type: 'button', onclick: () => this.back() }, 'Cancel'), save));
  }

  async keysOf(page) {
    const { rows } = await page.store.read(page.path, 0, AllRows);
    return new Map(rows.map((row) => [this.app.commands.keyOfChoice(row), row]));
  }

  // What was made while choosing is chosen.
  async goOnWithMade(page, known) {
    for (const [key, row] of await this.keysOf(page)) {
      if (known.has(key) || !isUsable(row)) continue;
      if (page.onMade) page.onMade(row);
      else await this.chooseMade(row);
      return;
    }
  }

  // Tracks go to its end.
  async chooseMade(row) {
    const { head } = this;
    const action = row.type === RowType.Action ? row
      : (await allRows(row.path)).find((one) => this.app.commands.isAppending(one));
    if (!action || !await attempt(this.app.carryOut(action).then(() => true), this.dialog)) return;
    if (!this.isOpen || this.head !== head) return; // it asks first
    this.close();
    tell(`“${head.title}” added to “${row.title}”.`);
  }

  // Beside what it belongs to, inside the window. A phone's sheet ignores it.
  position() {
    const rect = this.anchor?.isConnected ? this.anchor.getBoundingClientRect() : null;
    const { offsetWidth: width, offsetHeight: height } = this.dialog;
    const x = rect ? clamp(rect.right - width, Gap, innerWidth - width - Gap) : (innerWidth - width) / 2;
    let y = rect ? rect.bottom + Gap : (innerHeight - height) / 2;
    if (rect && y + height > innerHeight - Gap) y = rect.top - height - Gap;
    this.dialog.style.setProperty('--x', `${x}px`);
    this.dialog.style.setProperty('--y', `${clamp(y, Gap, Math.max(Gap, innerHeight - height - Gap))}px`);
  }

  onKey(event) {
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!step || event.target.tagName === 'INPUT') return;
    const entries = [...this.entries()];
    const at = entries.indexOf(document.activeElement);
    entries[(at + step + entries.length) % entries.length]?.focus();
    event.preventDefault();
  }

  apply(event) {
    this.pages.at(-1)?.store?.apply(event);
  }

  reread() {
    this.pages.at(-1)?.store?.reread();
  }

  // The device says that this view is done with. `head`: that of the menu which asked for it.
  closePlace(path, head) {
    if (this.pages.some((page) => page.path && samePlace(page.path, path))) this.closeFor(head);
  }

  // An answer may be late: another menu that was opened meanwhile stays.
  closeFor(head) {
    if (this.head === head) this.close();
  }

  close() {
    if (this.isOpen) {
      this.dialog.close();
      ignoreSecondPress(this.pressed);
      this.pressed = null;
    }
    this.onClosed();
  }

  // Also told by the dialog itself, a moment later or when people close it.
  onClosed() {
    if (this.isOpen) return; // opened again meanwhile
    for (const page of this.pages) page.store?.dispose();
    this.pages = [];
    if (this.returnTo?.isConnected) this.returnTo.focus({ preventScroll: true });
    this.returnTo = null;
  }
}
