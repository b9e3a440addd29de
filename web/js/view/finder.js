// Finding in a list: the whole list is searched, also what was never on screen, and the next match
// is shown. Nothing is filtered away, so the place of a match in its list stays visible.

import { metaData, searchText } from '../model/rows.js';
import { attempt, el, icon, setText } from './dom.js';

const WaitMs = 180;

export class Finder {
  constructor(list, { onClose }) {
    this.list = list;
    this.onClose = onClose;
    this.matches = [];
    this.at = -1;
    this.input = el('input.find-input', { type: 'search', placeholder: 'Find in this list', 'aria-label': 'Find in this list', autocomplete: 'off', spellcheck: 'false' });
    this.count = el('span.find-count', { role: 'status' });
    const button = (name, label, run) =>
      el('button.icon-button', { type: 'button', 'aria-label': label, onclick: run }, icon(name));
    this.element = el('div.find', { role: 'search', hidden: true }, icon('search'), this.input, this.count,
      button('up', 'Previous match', () => this.step(-1)), button('down', 'Next match', () => this.step(1)),
      button('close', 'Close finding', () => this.close()));
    this.input.addEventListener('input', () => {
      clearTimeout(this.timer);
      this.timer = setTimeout(() => this.search(), WaitMs);
    });
    this.input.addEventListener('keydown', (event) => this.onKey(event));
    for (const change of ['inserted', 'moved', 'removed', 'stale']) list.store.on(change, () => (this.texts = null));
  }

  get isOpen() {
    return !this.element.hidden;
  }

  open() {
    this.element.hidden = false;
    this.input.focus();
    this.input.select();
  }

  close() {
    this.element.hidden = true;
    this.abort?.abort();
    this.mark(-1);
    this.onClose();
    if (this.list.active >= 0) this.list.setActive(this.list.active);
  }

  onKey(event) {
    if (event.key === 'Escape') this.close();
    else if (event.key === 'Enter') this.step(event.shiftKey ? -1 : 1);
    else if (event.key === 'ArrowDown') {
      this.element.hidden = true;
      this.onClose();
      this.list.setActive(this.at >= 0 ? this.matches[this.at] : this.list.firstInView());
    } else return;
    event.preventDefault();
    event.stopPropagation();
  }

  // What is searched of each row, read once per state of the list.
  async load(signal) {
    if (this.texts) return;
    const texts = [];
    await this.list.store.scan((row, index) => {
      const { artist, album } = metaData(row);
      texts[index] = searchText([row.title, artist, album].filter(Boolean).join('\n'));
    }, { signal });
    if (!signal.aborted) this.texts = texts;
  }

  async search() {
    this.abort?.abort();
    this.abort = new AbortController();
    const { signal } = this.abort;
    const wanted = searchText(this.input.value.trim());
    this.matches = [];
    this.at = -1;
    if (!wanted) {
      setText(this.count, '');
      this.mark(-1);
      return;
    }
    if (!this.texts) setText(this.count, 'Searching');
    await attempt(this.load(signal), this.element);
    if (signal.aborted || !this.texts) return;
    this.texts.forEach((text, index) => text.includes(wanted) && this.matches.push(index));
    const from = this.list.firstInView();
    this.at = this.matches.findIndex((index) => index >= from) - 1;
    this.step(1);
  }

  step(by) {
    const { length } = this.matches;
    if (!length) {
      setText(this.count, this.input.value.trim() ? 'None' : '');
      this.mark(-1);
      return;
    }
    this.at = (this.at + by + length) % length;
    setText(this.count, `${this.at + 1} of ${length.toLocaleString()}`);
    this.mark(this.matches[this.at]);
    this.list.jumpTo(this.matches[this.at], { focus: false });
  }

  mark(index) {
    this.list.foundIndex = index;
    this.list.refresh();
  }
}
