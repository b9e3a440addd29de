// The device's changes as they happen, and whether there is a connection at all.
//
// The browser reconnects by itself and names the last event it saw, so nothing is missed. Where it
// gives up, or the device answers that it cannot go on from there ("resync"), everything open is
// read again.

import { onReachable } from './api.js';

const RetryMs = 1500;
const ShowLossAfterMs = 400;

export class EventFeed {
  constructor({ watch = [] } = {}) {
    this.watch = watch;
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
    const query = new URLSearchParams(this.watch.map((path) => ['watch', path]));
    if (this.lastId !== null) query.append('lastEventId', this.lastId);
    const source = new EventSource(`/api/events?${query}`);
    const resumes = this.lastId !== null;
    let opened = false;
    this.source = source;
    for (const kind of ['rows', 'startingWith', 'value']) {
      source.addEventListener(kind, (event) => {
        this.lastId = event.lastEventId;
        this.tell({ kind, ...JSON.parse(event.data) });
      });
    }
    source.addEventListener('resync', (event) => {
      this.lastId = event.lastEventId;
      for (const listener of this.resyncListeners) listener();
    });
    source.addEventListener('open', () => {
      this.found();
      // What was read before the stream stood may be out of date already.
      if (!opened && !resumes) for (const listener of this.resyncListeners) listener();
      opened = true;
    });
    source.addEventListener('error', () => {
      this.lost();
      if (source.readyState === EventSource.CLOSED && source === this.source)
        this.retryTimer = setTimeout(() => this.connect(), RetryMs);
    });
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
