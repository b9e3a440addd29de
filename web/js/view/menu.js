// Menus: what the device publishes for a row, and the page's own choices, on a sheet that rises
// from below on a phone and stands beside its row elsewhere. One at a time, with pages to go back
// from.

import { samePlace } from '../core/device.js';
import { isBlank, isGrave } from '../model/commands.js';
import { ListStore, RowType, isCreate, isSwitch, isUsable } from '../model/rows.js';
import { Artwork, attempt, busy, clamp, el, icon, setAttribute } from './dom.js';

const AllRows = 1000000;
const Gap = 8;

// The second of two presses finds the menu gone: it is none on what stands there instead.
const SecondPressMs = 400;

function ignoreSecondPress() {
  const ignoring = new AbortController();
  const ignore = (event) => {
    if (event.detail < 2) return;
    event.preventDefault();
    event.stopPropagation();
  };
  for (const name of ['mousedown', 'click', 'dblclick'])
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
    this.page = el('div.sheet-page');
    this.dialog.append(this.page);
    document.body.append(this.dialog);
  }

  get isOpen() {
    return this.dialog.open;
  }

  // page: {path, pick?} for a published menu, {title, items: [{title, icon, run}]} for the page's
  // own. head: {title, subtitle, urls, row}; the row that a published menu belongs to.
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
    page.rows = answer.rows.filter((row) => this.app.commands.isOffered(row));
    this.show(page);
  }

  show(page) {
    const focused = this.isOpen ? [...this.entries()].indexOf(document.activeElement) : -1;
    const content = page.field ? this.fieldContent(page) : this.listContent(page);
    this.page.replaceChildren(this.header(page), content);
    this.dialog.setAttribute('aria-label', page.title ?? '');
    if (!this.isOpen) this.dialog.showModal();
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
    artwork.set({ urls: this.head?.urls ?? [], title: this.head?.title ?? '' });
    const back = this.pages.length > 1
      ? el('button.icon-button', { type: 'button', 'aria-label': 'Back', onclick: () => this.back() }, icon('back'))
      : artwork.element;
    const title = this.head?.title ?? page.title ?? '';
    return el('header.sheet-head', {}, back,
      el('div.sheet-texts', {}, el('h2.sheet-title', {}, title),
        page.title && page.title !== title ? el('p.sheet-subtitle', {}, page.title) : null),
      el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => this.close() }, icon('close')));
  }

  listContent(page) {
    const content = el('div.menu-entries');
    const rows = page.items ?? page.rows;
    for (const row of rows) content.append(page.items ? this.ownEntry(row) : this.entry(row, page));
    const extras = page.items ? [] : this.app.menuEdits.extrasOf(page.path).map((extra) => this.ownEntry(extra));
    const line = content.querySelector('.menu-line');
    if (line) line.before(...extras);
    else content.append(...extras);
    const isTrack = this.head?.row?.type === RowType.Audio;
    if (!rows.length) content.append(el('p.menu-empty', {}, isTrack ? 'This track is gone already.' : 'Nothing to choose here.'));
    return content;
  }

  ownEntry({ title, icon: name, run, opens, isOn }) {
    const button = el('button.menu-entry', { type: 'button', onclick: run }, name ? icon(name) : null, el('span.menu-text', {}, title),
      opens ? icon('forward') : null);
    if (isOn) this.makeSwitch(button, isOn());
    return button;
  }

  makeSwitch(button, isOn) {
    button.setAttribute('role', 'switch');
    button.setAttribute('aria-checked', String(isOn));
    button.append(el('span.switch-face', { 'aria-hidden': 'true' }));
  }

  entry(row, page) {
    if (row.type === RowType.Separator) return el('hr.menu-line');
    if (row.type === RowType.Header) return el('h3.menu-heading', {}, row.title ?? '');
    const button = el('button.menu-entry', { type: 'button', disabled: !isUsable(row) || row.type === RowType.Audio },
      el('span.menu-text', {}, row.title ?? ''));
    button.addEventListener('click', () => this.choose(row, page, button));
    if (isSwitch(row)) {
      this.makeSwitch(button, row.value.bool);
    } else if (isCreate(row)) {
      button.prepend(icon('plus'));
    } else if (row.type === RowType.Editable) {
      button.append(el('span.menu-detail', {}, row.value?.string ?? ''));
    } else if (row.type === RowType.Container) {
      button.append(icon('forward'));
    }
    if (isGrave(row)) button.classList.add('grave');
    return button;
  }

  async choose(row, page, button) {
    if (row.type === RowType.Container) {
      if (page.pick) page.pick(row);
      else if (row.containerType) this.push({ path: row.path });
      else {
        this.close();
        this.app.openList(row);
      }
    } else if (row.type === RowType.Editable && !isSwitch(row)) {
      this.push({ title: row.title, field: row });
    } else if (isGrave(row) && !this.app.menuEdits.of(row)) {
      const { title } = this.head;
      this.close();
      this.app.askFor(row, title);
    } else {
      await attempt(this.app.carryOut(row), button);
    }
  }

  // A text to be entered or changed.
  fieldContent(page) {
    const row = page.field;
    const input = el('input', { type: 'text', value: row.value?.string ?? '', 'aria-label': row.title, autocomplete: 'off', enterkeyhint: 'done', maxlength: '500' });
    const save = el('button.pill.primary', { type: 'submit' }, isCreate(row) ? 'Create' : 'Save');
    const problem = el('p.field-problem', { id: 'field-problem', role: 'alert' });
    const send = async (event) => {
      event.preventDefault();
      try {
        if (isBlank(input.value) && !this.app.menuEdits.of(row)) throw new Error('A name needs something that can be seen.');
        const done = this.app.carryOut(row, { string: input.value }, { openMade: page.openMade });
        if (!done) return;
        await busy(done, save);
      } catch (error) {
        problem.replaceChildren(error.message); // another text, even an equal one, is read out
        setAttribute(input, 'aria-invalid', 'true');
        setAttribute(input, 'aria-describedby', problem.id);
        input.select();
        return;
      }
      // The head names what the menu belongs to, under its new name now.
      if (this.head && this.head.title === row.value?.string) this.head.title = input.value;
      if (this.pages.at(-1) === page) this.back();
    };
    return el('form.field', { onsubmit: send }, input, problem, el('div.field-buttons', {},
      el('button.pill', { type: 'button', onclick: () => this.back() }, 'Cancel'), save));
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
      ignoreSecondPress();
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
