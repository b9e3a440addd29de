// The device's changes as they happen, and whether there is a connection at all.
//
// The browser reconnects by itself and names the last event it saw, so nothing is missed. Where it
// gives up, or the device answers that it cannot go on from there ("resync"), everything open is
// read again.

import { onReachable, probe } from './api.js';
import { openStream, takeStream } from './boot.js';

const RetryMs = 1500;
const ShowLossAfterMs = 400;

export class EventFeed {
  constructor() {
    this.listeners = new Set();
    this.stateListeners = new Set();
    this.resyncListeners = new Set();
    this.online = true;
    this.lastId = null;
    this.source = null;
    this.retryTimer = 0;
    this.lossTimer = 0;
    onReachable((reached) => {
      if (!reached) this.lost();
      else if (this.source?.readyState === EventSource.OPEN) this.found();
    });
    window.addEventListener('online', () => this.connect());
    window.addEventListener('offline', () => this.lost());
  }

  onEvent(listener) {
    this.listeners.add(listener);
  }

  onOnline(listener) {
    this.stateListeners.add(listener);
  }

  onResync(listener) {
    this.resyncListeners.add(listener);
  }

  connect() {
    clearTimeout(this.retryTimer);
    this.source?.close();
    const early = this.source ? null : takeStream();
    const source = early?.source ?? openStream(this.lastId);
    this.source = source;
    // What was read before the stream stood may be out of date already, unless the stream goes on
    // where the last one was lost.
    let mayHaveMissed = this.lastId === null && source.readyState !== EventSource.OPEN;
    for (const kind of ['rows', 'startingWith', 'value', 'resync'])
      source.addEventListener(kind, (event) => this.take(event));
    source.addEventListener('open', () => {
      this.found();
      if (mayHaveMissed) this.resync();
      mayHaveMissed = false;
    });
    source.addEventListener('error', () => {
      this.lost();
      if (source.readyState !== EventSource.CLOSED || source !== this.source) return;
      this.retryTimer = setTimeout(() => this.connect(), RetryMs);
      probe();
    });
    for (const event of early?.events ?? []) this.take(event);
  }

  take(event) {
    this.lastId = event.lastEventId;
    if (event.type === 'resync') this.resync();
    else this.tell({ kind: event.type, ...JSON.parse(event.data) });
  }

  resync() {
    for (const listener of this.resyncListeners) listener();
  }

  tell(event) {
    for (const listener of this.listeners) listener(event);
  }

  lost() {
    // A blink of the connection is nobody's concern.
    if (!this.lossTimer && this.online) {
      this.lossTimer = setTimeout(() => {
        this.lossTimer = 0;
        this.setOnline(false);
      }, ShowLossAfterMs);
    }
  }

  found() {
    clearTimeout(this.lossTimer);
    this.lossTimer = 0;
    this.setOnline(true);
  }

  setOnline(online) {
    if (this.online === online) return;
    this.online = online;
    for (const listener of this.stateListeners) listener(online);
  }
}
