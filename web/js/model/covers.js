// The pictures that stand for a list: its own, or those of what it holds. Looked up only for what
// is on screen, kept, and forgotten when the list changes.
//
// Emits: change (the path whose pictures may be others now).

import { Emitter, artworkUrl, getRows, isAtOrBelow, samePlace } from '../core/device.js';
import { RowType, isMenu, metaData } from './rows.js';

const LookAt = 24;
const MaxPictures = 4;
const Depth = 2;
const Roles = ['mediaData', 'path', 'type', 'containerType'];
const MaxRequests = 2;
const MaxKept = 600;

export class Covers extends Emitter {
  constructor() {
    super();
    this.known = new Map(); // path → urls
    this.queue = new Map(); // path → callbacks; the newest is looked up first
    this.running = new Map(); // path → {callbacks, stale}
    this.gone = new Set();
  }

  // The pictures, null while they are not known; `found` is called once then.
  of(path, found) {
    const urls = this.known.get(path);
    if (urls) return urls;
    if (this.gone.has(path)) return [];
    const running = this.running.get(path);
    if (running) {
      running.callbacks.add(found);
      return null;
    }
    const callbacks = this.queue.get(path) ?? new Set();
    this.queue.delete(path);
    this.queue.set(path, callbacks.add(found));
    this.pump();
    return null;
  }

  pump() {
    while (this.running.size < MaxRequests && this.queue.size) {
      const [path, callbacks] = [...this.queue].at(-1);
      this.queue.delete(path);
      const entry = { callbacks, stale: false };
      this.running.set(path, entry);
      this.look(path).then((urls) => this.onLooked(path, entry, urls));
    }
  }

  onLooked(path, { callbacks, stale }, urls) {
    this.running.delete(path);
    if (stale) {
      this.queue.set(path, callbacks);
    } else if (urls) {
      this.known.set(path, urls);
      if (this.known.size > MaxKept) this.known.delete(this.known.keys().next().value);
      for (const callback of callbacks) callback(urls);
    }
    this.pump();
  }

  async look(path) {
    try {
      const urls = new Set();
      await this.gather(path, urls, Depth);
      return [...urls].slice(0, MaxPictures);
    } catch {
      return null; // a picture is not worth a message
    }
  }

  // A folder of folders has its pictures one step further down.
  async gather(path, urls, depth) {
    const { rows } = await getRows(path, 0, LookAt - 1, Roles);
    for (const row of rows) {
      const url = artworkUrl(metaData(row).artworkUrl);
      if (url) urls.add(url);
    }
    if (urls.size || depth === 1) return;
    const inner = rows.filter((row) => row.type === RowType.Container && !isMenu(row)).slice(0, MaxPictures);
    for (const row of inner) await this.gather(row.path, urls, depth - 1);
  }

  apply(event) {
    if (event.kind === 'value') return;
    const hit = event.kind === 'startingWith' ? isAtOrBelow : samePlace;
    if (event.changes.includes('close')) this.gone.add(event.path);
    for (const [path, entry] of this.running) if (hit(path, event.path)) entry.stale = true;
    for (const path of this.known.keys()) {
      if (!hit(path, event.path)) continue;
      this.known.delete(path);
      this.emit('change', path);
    }
  }

  forgetAll() {
    this.known.clear();
    for (const entry of this.running.values()) entry.stale = true;
    this.gone.clear();
    this.emit('change', null);
  }
}
