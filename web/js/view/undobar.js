// Says what was done and offers to take it back, for a while; longer while it has the focus.
//
// What was done before it can be taken back after it, as long as the bar is there.

import { isChanged } from '../model/editQueue.js';
import { announce, busy, el, icon, setText, tell, tellError } from './dom.js';

const ShowMs = 10000;
const MaxSteps = 50;

export class UndoBar {
  // `onLeft`: the focus was on it and it is gone.
  constructor(region, edits, { onLeft }) {
    Object.assign(this, { region, edits, onLeft });
    this.steps = [];
    this.text = el('p');
    this.button = el('button.pill.small.undo', { type: 'button', title: 'Undo (Ctrl+Z)', onclick: () => this.undo() }, 'Undo');
    const close = el('button.icon-button.small', { type: 'button', 'aria-label': 'Dismiss', onclick: () => this.forget() }, icon('close'));
    this.bar = el('div.toast.undo-bar', { role: 'group', 'aria-label': 'What was done' }, this.text, this.button, close);
    this.bar.addEventListener('focusin', () => clearTimeout(this.timer));
    this.bar.addEventListener('focusout', () => this.wait());
    this.bar.addEventListener('pointerenter', () => clearTimeout(this.timer));
    this.bar.addEventListener('pointerleave', () => this.wait());
    edits.on('done', (step) => this.add(step));
    document.addEventListener('close', () => this.bringHome(), { capture: true });
  }

  add(step) {
    if (!step.undo) {
      tell(step.text);
      return;
    }
    const last = this.steps.at(-1);
    // The same tracks moved on are one step: taken back, they stand where they stood at first.
    if (step.key && last?.key === step.key) last.text = step.text;
    else this.steps.push(step);
    if (this.steps.length > MaxSteps) this.steps.shift();
    this.show();
    announce(step.text);
  }

  show() {
    setText(this.text, this.steps.at(-1).text);
    // What lies outside the large view can be neither seen nor pressed.
    (document.querySelector('dialog.large[open]') ?? this.region).append(this.bar);
    this.wait();
  }

  // With a dialog that closes it would be gone.
  bringHome() {
    if (this.bar.isConnected && this.bar.parentElement !== this.region) this.region.append(this.bar);
  }

  wait() {
    clearTimeout(this.timer);
    if (!this.bar.isConnected || this.bar.contains(document.activeElement)) return;
    this.timer = setTimeout(() => this.forget(), ShowMs);
  }

  forget() {
    this.steps = [];
    this.leave();
  }

  leave() {
    const hadFocus = this.bar.contains(document.activeElement);
    this.bar.remove();
    if (hadFocus) this.onLeft();
  }

  // By its keys, which mean what was done last, be it on its way still.
  async undoLast() {
    clearTimeout(this.timer);
    await this.edits.settled();
    this.wait();
    await this.undo();
  }

  async undo() {
    const step = this.steps.pop();
    if (!step) return;
    if (this.steps.length) this.show();
    else this.leave();
    try {
      tell(await busy(step.undo()));
    } catch (error) {
      tellError({ message: `Not undone: ${step.text}. ${error.message}` });
      // Others were quicker, and nothing was done: it can be tried again.
      if (isChanged(error)) this.add(step);
    }
  }
}
