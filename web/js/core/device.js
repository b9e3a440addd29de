// The device over HTTP: requests, the stream of its changes, and paths of its data model as text;
// and how all parts of the page say that something changed.

// Begun as soon as this file is there, before the page: the stream of events, so that whatever is
// read later can be kept up to date without being read twice, and the answers that every page needs
// first.

const Kinds = ['rows', 'startingWith', 'value', 'resync'];

// The gateway sends events of the play position only to clients that ask for them.
const Watched = ['player:position'];

function openStream(lastId = null) {
  const asked = new URLSearchParams(Watched.map((path) => ['watch', path]));
  if (lastId !== null) asked.append('lastEventId', lastId);
  return new EventSource(`/api/events?${asked}`);
}

const ask = async (url) => {
  const response = await fetch(url);
  if (!response.ok) throw Object.assign(new Error(`${url}: ${response.status}`), { status: response.status });
  return response.json();
};

// What a list is read with, page by page.
export const PageSize = 100;
export const RowRoles = [
  'title', 'path', 'type', 'containerType', 'value', 'modifiable', 'id', 'context', 'mediaData',
];

function rowsUrl(path, from, to, roles) {
  const asked = new URLSearchParams({ path, from, to });
  if (roles) asked.append('roles', roles.join(','));
  return `/api/rows?${asked}`;
}

const early = { source: openStream(), events: [], isSure: true };
for (const kind of Kinds) early.source.addEventListener(kind, (event) => early.events?.push(event));

const first = { '/api/paths': ask('/api/paths'), '/api/modules': ask('/api/modules') };
// The module that takes the answer meets the failure and asks again.
for (const promise of Object.values(first)) promise.catch(() => {});

// The list of lists, once the stream stands: what changes after it was read comes as an event. The
// list must be there when the events are gone through. On a slow line it is asked for at once, and
// everything is read again when the stream stands.
const StreamSoonMs = 60;

const stands = new Promise((done) => early.source.addEventListener('open', done, { once: true }));

let askedEarly;
// Resolves when the list of lists is asked for, or not to be had early.
export const earlyAsked = new Promise((done) => (askedEarly = done));

async function askEarly() {
  const paths = await first['/api/paths']?.catch(() => null);
  if (!paths?.OrvoPlayListsRootPath) return null;
  await Promise.race([stands, new Promise((done) => setTimeout(done, StreamSoonMs))]);
  if (!early.source) return null;
  early.isSure = early.source.readyState === EventSource.OPEN;
  const url = rowsUrl(paths.OrvoPlayListsRootPath, 0, PageSize - 1, RowRoles);
  first[url] = ask(url);
  askedEarly();
  return first[url].catch(() => null);
}

export const earlyRows = askEarly().finally(askedEarly);

// The early answer, once.
function takeFirst(url) {
  const promise = first[url];
  delete first[url];
  return promise;
}

// The early stream, once, with the events that it brought already. From here on early answers are old.
function takeStream() {
  const { source, events, isSure } = early;
  early.source = null;
  early.events = null;
  for (const url of Object.keys(first)) delete first[url];
  return source ? { source, events, isSure } : null;
}

// How a request fails, but those that were begun early: the message is what the device said.
class ApiError extends Error {
  constructor(message, { name = 'Error', title = 'Error', status = 0 } = {}) {
    super(message);
    this.code = name;
    this.title = title;
    this.status = status;
  }

  get isOffline() {
    return this.code === 'Offline';
  }
}

const listeners = new Set();

// Called with true after a request that reached the device and with false after one that did not.
function onReachable(listener) {
  listeners.add(listener);
}

function tell(reached) {
  for (const listener of listeners) listener(reached);
}

let admitted = false;

async function request(url, options) {
  let response;
  try {
    response = await fetch(url, { cache: 'no-store', ...options });
  } catch (cause) {
    if (cause?.name === 'AbortError') throw cause;
    tell(false);
    throw new ApiError('The device cannot be reached.', { name: 'Offline', title: 'No connection' });
  }
  tell(true);
  let body = {};
  try {
    body = await response.json();
  } catch {
    throw new ApiError('The answer of the device cannot be read.', { status: response.status });
  }
  if (response.ok) admitted = true;
  // The device wants another token than before: the page begins anew and asks for it.
  else if (response.status === 401 && admitted) location.reload();
  if (!response.ok) {
    const error = body.error ?? {};
    throw new ApiError(error.message || `The device answered ${response.status}.`, {
      name: error.name,
      title: error.title,
      status: response.status,
    });
  }
  return body;
}

const query = (values) => new URLSearchParams(values).toString();

export async function getRows(path, from, to, roles, signal) {
  const url = rowsUrl(path, from, to, roles);
  return (await takeFirst(url)?.catch(() => null)) ?? request(url, { signal });
}

export async function getValue(path) {
  return (await request(`/api/value?${query({ path })}`)).value;
}

export async function sendData(path, value = {}) {
  const body = JSON.stringify({ path, value });
  const answer = await request('/api/data', {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body,
  });
  return answer.result ?? {};
}

export const getPaths = () => takeFirst('/api/paths') ?? request('/api/paths');

export async function getModules() {
  return (await (takeFirst('/api/modules') ?? request('/api/modules'))).modules;
}

// Trades the token for a cookie, which pictures and the stream of events carry as well.
export function login(token) {
  return request('/api/login', {
    method: 'POST',
    headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify({ token }),
  });
}

// Notices what a stream that was refused does not say.
const probe = () => request('/api/paths').catch(() => {});

export function artworkUrl(uri) {
  return uri?.startsWith('file:') ? `/api/artwork?${query({ uri })}` : null;
}

// Paths of the data model as text: prefix:component/component?name=value&name=value.
// Names and values are percent-encoded, so a path may be carried inside a parameter.

export function basePart(path) {
  const question = path.indexOf('?');
  return question < 0 ? path : path.slice(0, question);
}

export function components(path) {
  const base = basePart(path);
  return base.slice(base.indexOf(':') + 1).split('/').filter(Boolean).map(decodeURIComponent);
}

export function params(path) {
  const result = {};
  const question = path.indexOf('?');
  if (question < 0) return result;
  for (const pair of path.slice(question + 1).split('&')) {
    if (!pair) continue;
    const equals = pair.indexOf('=');
    const name = decodeURIComponent(equals < 0 ? pair : pair.slice(0, equals));
    result[name] = equals < 0 ? '' : decodeURIComponent(pair.slice(equals + 1));
  }
  return result;
}

export function samePlace(a, b) {
  return basePart(a) === basePart(b);
}

// Whole components, parameters aside: a/1 is at or below a, and no start of a/10.
export function isAtOrBelow(path, start) {
  const base = basePart(path);
  const of = basePart(start);
  return base === of || base.startsWith(of.endsWith(':') ? of : `${of}/`);
}

// The smallest way to say that something changed.
export class Emitter {
  constructor() {
    this.handlers = new Map();
  }

  // Returns what ends the subscription.
  on(name, handler) {
    if (!this.handlers.has(name)) this.handlers.set(name, new Set());
    this.handlers.get(name).add(handler);
    return () => this.handlers.get(name).delete(handler);
  }

  // The next time only.
  once(name, handler) {
    const end = this.on(name, (detail) => {
      end();
      handler(detail);
    });
  }

  emit(name, detail) {
    for (const handler of [...(this.handlers.get(name) ?? [])]) handler(detail);
  }
}

// The device's changes as they happen, and whether there is a connection at all.
//
// The browser reconnects by itself and names the last event it saw, so nothing is missed. Where it
// gives up, or the device answers that it cannot go on from there ("resync"), everything open is
// read again.
//
// Emits: event {kind, path, …} · resync · online (whether there is a connection).

const RetryMs = 1500;
const ShowLossAfterMs = 400;

export class EventFeed extends Emitter {
  constructor() {
    super();
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

  connect() {
    clearTimeout(this.retryTimer);
    this.source?.close();
    const begun = this.source ? null : takeStream();
    const source = begun?.source ?? openStream(this.lastId);
    this.source = source;
    // What was read before the stream stood may be out of date already, unless the stream goes on
    // where the last one was lost.
    const stood = source.readyState === EventSource.OPEN;
    let mayHaveMissed = this.lastId === null && !stood;
    for (const kind of Kinds) source.addEventListener(kind, (event) => this.take(event));
    source.addEventListener('open', () => {
      this.found();
      if (mayHaveMissed) this.emit('resync');
      mayHaveMissed = false;
    });
    source.addEventListener('error', () => {
      this.lost();
      if (source.readyState !== EventSource.CLOSED || source !== this.source) return;
      this.retryTimer = setTimeout(() => this.connect(), RetryMs);
      probe();
    });
    for (const event of begun?.events ?? []) this.take(event);
    if (stood && begun && !begun.isSure) this.emit('resync');
  }

  take(event) {
    this.lastId = event.lastEventId;
    if (event.type === 'resync') this.emit('resync');
    else this.emit('event', { kind: event.type, ...JSON.parse(event.data) });
  }

  lost() {
    // A short interruption is not shown.
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
    this.emit('online', online);
  }
}
