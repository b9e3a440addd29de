// The device over HTTP. Every failure is an ApiError whose message is what the device said.

import { rowsUrl, takeFirst } from './boot.js';

export class ApiError extends Error {
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
export function onReachable(listener) {
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

export async function getRows(path, from, to, roles) {
  const url = rowsUrl(path, from, to, roles);
  return (await takeFirst(url)?.catch(() => null)) ?? request(url);
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
export const probe = () => request('/api/paths').catch(() => {});

export function artworkUrl(uri) {
  return uri?.startsWith('file:') ? `/api/artwork?${query({ uri })}` : null;
}
