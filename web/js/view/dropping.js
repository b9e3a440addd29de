// Rows that are dragged out of their list: into the list that is open beside it, at a place of it, or onto a list among
// the lists, at its end. From a playlist they move, from the music they are added.

import { AddMode } from '../model/commands.js';
import { RowType, isMenu, isSignpost } from '../model/rows.js';
import { addMusic } from './addmenu.js';
import { attempt, el, setText } from './dom.js';

const GhostOffset = 14; // pixels beside the pointer

export class Dropping {
  constructor(screen) {
    Object.assign(this, { app: screen.app, screen });
    this.ghost = el('div.drag-ghost', { 'aria-hidden': 'true' });
    this.line = el('div.drop-line', { 'aria-hidden': 'true' });
  }

  canCarry(row) {
    if (row?.type === RowType.Audio) return Boolean(this.screen.target) || this.screen.pane === this.app.side;
    return this.screen.pane === this.app.side && row?.type === RowType.Container && !isMenu(row) && !isSignpost(row);
  }

  // Above and below it the list scrolls.
  isBeside(x) {
    const { left, right } = this.screen.scroller.getBoundingClientRect();
    return x < left || x > right;
  }

  // What takes the rows there: {target, gap, list} or {target, element}, null where nothing does.
  at(x, y) {
    const element = document.elementFromPoint(x, y);
    const pane = element && this.app.panes.find((one) => one.element.contains(element));
    if (!pane || pane === this.screen.pane) return null;
    const { list, target, title } = pane.top;
    if (target) return { target: { ...target, title }, list, gap: list.gapAt(y) };
    const view = list.rowOf(element);
    const onto = view?.row?.path ? this.app.commands.targetOf(view.row.path) : null;
    return onto && onto.path !== this.screen.path ? { target: { ...onto, title: view.row.title }, element: view.element } : null;
  }

  show(place, x, y, text) {
    this.hide();
    setText(this.ghost, place ? `${text} → ${place.target.title}` : text);
    document.body.append(this.ghost);
    this.ghost.style.transform = `translate(${Math.min(x + GhostOffset, innerWidth - this.ghost.offsetWidth - 8)}px, ${y + GhostOffset}px)`;
    this.ghost.classList.toggle('nowhere', !place);
    place?.element?.classList.add('drop-here');
    this.marked = place?.element;
    if (place?.list) {
      this.line.style.transform = `translateY(${place.list.metrics.topOf(place.gap) - 1}px)`;
      place.list.body.append(this.line);
    }
  }

  hide() {
    this.ghost.remove();
    this.line.remove();
    this.marked?.classList.remove('drop-here');
    this.marked = null;
  }

  drop({ target, gap }, rows) {
    const { app, screen } = this;
    screen.list.selection.clear();
    if (screen.target) {
      attempt(app.edits.moveToList(screen.target, rows, target, gap), null);
      return;
    }
    addMusic(app, { target, mode: AddMode.Append, rows, gap });
  }
}
