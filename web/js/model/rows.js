// Rows: what one is, from its roles alone, and the store of those of one list.

import { Emitter, PageSize, RowRoles, getRows, isAtOrBelow, samePlace } from '../core/device.js';

export const RowType = {
  Container: 1, // opens
  Audio: 3, // plays
  Editable: 101, // a text or a switch
  Action: 102,
  Header: 103,
  Separator: 105,
};

const ContextMenu = 100; // container type

export const isFocusable = (row) =>
  !row || (row.type !== RowType.Header && row.type !== RowType.Separator);

export const isMenu = (row) => row.type === RowType.Container && row.containerType === ContextMenu;

// A row of the page's own, with an icon of its own, that leads to a list: there is nothing in it to be added or chosen.
export const isSignpost = (row) => Boolean(row?.symbol);

export const metaData = (row) => row?.mediaData?.metaData ?? {};

export const isSwitch = (row) => row.type === RowType.Editable && typeof row.value?.bool === 'boolean';

// What something can be done with: what is shown only, or of a type that is not known here, is not.
export const isUsable = (row) => {
  if (row.type === RowType.Editable) return row.modifiable === true;
  return [RowType.Container, RowType.Audio, RowType.Action].includes(row.type);
};

// An editable text without a text yet makes something new.
export const isCreate = (row) => row.type === RowType.Editable && row.value?.string === '';

// What identifies a row across changes of its list.
export const rowKey = (row) => row?.path ?? null;

export const position = (row) => (Number.isInteger(row?.value?.i32) ? row.value.i32 : -1);

export function duration(milliseconds) {
  if (!(milliseconds > 0)) return '';
  const seconds = Math.round(milliseconds / 1000);
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor(seconds / 60) % 60;
  const rest = String(seconds % 60).padStart(2, '0');
  return hours ? `${hours}:${String(minutes).padStart(2, '0')}:${rest}` : `${minutes}:${rest}`;
}

export const plural = (count, word) => `${count.toLocaleString()} ${word}${count === 1 ? '' : 's'}`;

export function clock(milliseconds) {
  return duration(milliseconds) || '0:00';
}

// Letters that are no others with an accent, as people type them who have them not on their keys.
const Typed = { æ: 'ae', đ: 'd', ð: 'd', ł: 'l', ø: 'o', œ: 'oe', ß: 'ss', þ: 'th' };

// Letters without accents and case, for finding.
export const searchText = (text) =>
  text.normalize('NFD').replace(/\p{Mn}/gu, '').toLocaleLowerCase().replace(/[æđðłøœßþ]/g, (letter) => Typed[letter]);

// The rows of one list, however long: read by pages as they come into view, kept while they are
// near, and brought up to date by the device's events without losing the place.
//
// A row that may be out of date stays on screen until its successor is there.
//
// Emits: rows {from, to} (to: exclusive) · inserted {at, count} · count · title (or the last played track) · reset · stale · closed ·
// error (an ApiError).

const ScanPageSize = 500;
const MaxRequests = 2;
const MaxKept = 4000;
const KeepAround = 1200;

// "+4", "+5", "+9" as runs of neighbours: [{at: 4, count: 2}, {at: 9, count: 1}].
export function insertedRuns(changes) {
  const runs = [];
  for (const change of changes) {
    const at = Number(change.slice(1));
    const last = runs[runs.length - 1];
    if (last && at === last.at + last.count) last.count += 1;
    else runs.push({ at, count: 1 });
  }
  return runs;
}

// Every row of a list, read in large pages and not kept.
export async function allRows(path) {
  const rows = [];
  for (;;) {
    const answer = await getRows(path, rows.length, rows.length + ScanPageSize - 1, RowRoles);
    rows.push(...answer.rows);
    if (answer.rows.length === 0 || rows.length >= answer.rowsCount) return rows;
  }
}

export class ListStore extends Emitter {
  constructor(path, { read = getRows } = {}) {
    super();
    this.path = path;
    this.read = read;
    this.title = null;
    this.roles = {};
    this.resumeIndex = -1; // of the track to go on with
    this.count = -1;
    this.closed = false;
    this.revision = undefined; // of the list whose places the rows have that are fresh
    this.held = 0;
    this.missed = 0; // the last revision that was told of while held
    this.rows = [];
    this.generations = [];
    this.generation = 1;
    this.kept = 0;
    this.wanted = [0, 0];
    this.requests = new Map(); // page → {cancelled}
  }

  row(index) {
    return this.rows[index];
  }

  get isLoaded() {
    return this.count >= 0;
  }

  get isComplete() {
    return this.isLoaded && this.kept === this.count;
  }

  // All rows are here as they are now.
  get isCurrent() {
    if (!this.isComplete) return false;
    for (let i = 0; i < this.count; i += 1) if (!this.isFresh(i)) return false;
    return true;
  }

  isFresh(index) {
    return this.generations[index] === this.generation;
  }

  // Rows from..to (exclusive) are in view.
  want(from, to) {
    this.wanted = [Math.max(0, from), Math.max(to, from + 1)];
    this.pump();
  }

  pump() {
    if (this.closed || this.held) return;
    for (const page of this.missingPages()) {
      if (this.requests.size >= MaxRequests) return;
      if (!this.requests.has(page)) this.fetchPage(page);
    }
  }

  // Those nearest to the middle of the view first.
  missingPages() {
    const [from, to] = this.wanted;
    const last = this.isLoaded ? Math.max(0, this.count - 1) : PageSize - 1;
    const first = Math.floor(Math.min(from, last) / PageSize);
    const end = Math.floor(Math.min(to - 1, last) / PageSize);
    const pages = [];
    for (let page = first; page <= end; page += 1) {
      if (!this.isPageFresh(page)) pages.push(page);
    }
    const middle = (from + to) / 2;
    const distance = (page) => Math.abs((page + 0.5) * PageSize - middle);
    return pages.sort((a, b) => distance(a) - distance(b));
  }

  isPageFresh(page) {
    if (!this.isLoaded) return false;
    const end = Math.min(this.count, (page + 1) * PageSize);
    for (let i = page * PageSize; i < end; i += 1) if (!this.isFresh(i)) return false;
    return !(this.count === 0 && this.emptyGeneration !== this.generation);
  }

  async fetchPage(page) {
    const ticket = { cancelled: false };
    this.requests.set(page, ticket);
    const from = page * PageSize;
    try {
      const answer = await this.read(this.path, from, from + PageSize - 1, RowRoles);
      if (!ticket.cancelled && !this.closed) this.take(from, answer);
    } catch (error) {
      if (this.requests.get(page) === ticket) this.requests.delete(page);
      if (!ticket.cancelled && !this.closed) this.emit('error', error);
      return; // asked again with the next change of view, event or reconnection
    }
    if (this.requests.get(page) === ticket) this.requests.delete(page);
    this.pump();
  }

  take(from, answer) {
    this.setTitle(answer);
    const isFirst = !this.isLoaded;
    this.compareRevision(answer.revision);
    if (answer.rowsCount !== this.count) this.setCount(answer.rowsCount);
    if (answer.rowsCount === 0) this.emptyGeneration = this.generation;
    // A list that shrank meanwhile answers with its end instead.
    if (from < this.count || from === 0) this.put(from, answer.rows);
    if (isFirst) this.emit('reset');
    this.emit('rows', { from, to: from + answer.rows.length });
    this.forgetFarRows();
  }

  // An answer may be ahead of the events: then nothing that is kept is sure.
  compareRevision(revision) {
    if (!(revision > (this.revision ?? -1))) return;
    if (this.isLoaded && this.revision !== undefined) this.generation += 1;
    this.revision = revision;
  }

  put(from, rows) {
    rows.forEach((row, i) => {
      if (!this.rows[from + i]) this.kept += 1;
      this.rows[from + i] = row;
      this.generations[from + i] = this.generation;
    });
  }

  setTitle(answer) {
    this.roles = answer.roles ?? {};
    const resumeIndex = answer.resumeIndex ?? -1;
    if (answer.title === this.title && resumeIndex === this.resumeIndex) return;
    this.title = answer.title;
    this.resumeIndex = resumeIndex;
    this.emit('title');
  }

  setCount(count) {
    const known = this.isLoaded;
    for (let i = count; i < this.rows.length; i += 1) if (this.rows[i]) this.kept -= 1;
    this.count = count;
    this.rows.length = count;
    this.generations.length = count;
    if (known) this.generation += 1; // where is not said: everything may have shifted
    this.emit('count');
  }

  forgetFarRows() {
    if (this.kept <= MaxKept) return;
    const middle = (this.wanted[0] + this.wanted[1]) / 2;
    for (let i = 0; i < this.rows.length; i += 1) {
      if (!this.rows[i] || Math.abs(i - middle) <= KeepAround) continue;
      this.rows[i] = undefined;
      this.generations[i] = 0;
      this.kept -= 1;
    }
  }

  // Events of the device.
  apply(event) {
    if (this.closed) return;
    const concerns = event.kind === 'startingWith'
      ? isAtOrBelow(this.path, event.path)
      : event.kind === 'rows' && samePlace(this.path, event.path);
    if (!concerns) return;
    if (event.changes.includes('close')) this.close();
    else if (this.held) this.missed = Math.max(this.missed, event.revision ?? Infinity);
    else if (!(event.revision <= this.revision)) this.follow(event); // else it is known already
  }

  follow({ changes, revision }) {
    const inserted = changes.filter((change) => change.startsWith('+'));
    if (inserted.length) {
      this.insert(insertedRuns(inserted));
      this.revision = revision;
    }
    if (changes.includes('reset')) this.invalidate();
  }

  insert(runs) {
    if (!this.isLoaded) {
      this.invalidate();
      return;
    }
    for (const { at, count } of runs) {
      const place = Math.min(at, this.count);
      this.cancelFrom(place);
      spliceEmpty(this.rows, place, count, this.count);
      spliceEmpty(this.generations, place, count, this.count);
      this.count += count;
      // Those behind carry their position: it is another one now.
      for (let i = place; i < this.count; i += 1) if (this.generations[i]) this.generations[i] = 0;
      this.emit('inserted', { at: place, count });
    }
    this.emit('count');
    this.pump();
  }

  invalidate() {
    this.generation += 1;
    this.cancelFrom(0);
    this.emit('stale');
    this.pump();
  }

  // Another list is shown in its place. The rows stay until those of the other one are there.
  moveTo(path) {
    this.path = path;
    this.reread();
  }

  // What was missed meanwhile is not known, nor whether the device counts its revisions anew.
  reread() {
    this.revision = undefined;
    this.invalidate();
  }

  cancelFrom(index) {
    for (const [page, ticket] of this.requests) {
      if ((page + 1) * PageSize <= index) continue;
      ticket.cancelled = true;
      this.requests.delete(page);
    }
  }

  close() {
    this.closed = true;
    this.cancelFrom(0);
    this.emit('closed');
  }

  // No screen shows it any more.
  dispose() {
    this.closed = true;
    this.cancelFrom(0);
    this.handlers.clear();
  }

  // While edits of the page are on their way it shows what they lead to, and reads nothing that may be older.
  hold() {
    this.held += 1;
    this.cancelFrom(0);
  }

  // `revision`: what is shown is the list of that revision; undefined where it may be another one.
  release(revision) {
    this.held -= 1;
    if (this.held) return;
    const { missed } = this;
    this.missed = 0;
    if (revision === undefined || missed > revision) {
      this.invalidate();
      return;
    }
    this.revision = revision;
    this.pump();
  }

  // The revision at which these places hold; undefined where they may be out of date.
  revisionOf(indices) {
    return indices.every((index) => this.isFresh(index)) ? this.revision : undefined;
  }

  // Every row in order, read in large pages and not kept. `visit(row, index)` ends it with false.
  async scan(visit, { from = 0, signal } = {}) {
    for (let start = from; start < this.count; start += ScanPageSize) {
      const answer = await this.read(this.path, start, start + ScanPageSize - 1, RowRoles);
      if (signal?.aborted) return;
      for (let i = 0; i < answer.rows.length; i += 1) {
        if (visit(answer.rows[i], start + i) === false) return;
      }
      if (answer.rows.length === 0) return;
    }
  }
}

function spliceEmpty(list, at, count, length) {
  list.length = length;
  if (count < 1000) {
    list.splice(at, 0, ...new Array(count).fill(undefined));
    return;
  }
  const behind = list.slice(at);
  list.length = at;
  list.length = at + count;
  for (const entry of behind) list.push(entry);
}
