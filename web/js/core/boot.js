// Begun before anything else is loaded: the stream of events, so that whatever is read later can be
// kept up to date without being read twice, and the two answers that every page needs first.

const Kinds = ['rows', 'startingWith', 'value', 'resync'];

// The play position has events only while somebody asks for them.
export const Watched = ['player:position'];

export function openStream(lastId = null) {
  const query = new URLSearchParams(Watched.map((path) => ['watch', path]));
  if (lastId !== null) query.append('lastEventId', lastId);
  return new EventSource(`/api/events?${query}`);
}

const ask = async (url) => {
  const response = await fetch(url);
  if (!response.ok) throw Object.assign(new Error(`${url}: ${response.status}`), { status: response.status });
  return response.json();
};

const early = { source: openStream(), events: [] };
for (const kind of Kinds) early.source.addEventListener(kind, (event) => early.events?.push(event));

const first = { '/api/paths': ask('/api/paths'), '/api/modules': ask('/api/modules') };
// A failure is for whoever takes the answer, and is tried again by asking properly.
for (const promise of Object.values(first)) promise.catch(() => {});

// The early answer, once.
export function takeFirst(url) {
  const promise = first[url];
  delete first[url];
  return promise;
}

// The early stream, once, with the events that it brought already.
export function takeStream() {
  const { source, events } = early;
  early.source = null;
  early.events = null;
  return source ? { source, events } : null;
}
