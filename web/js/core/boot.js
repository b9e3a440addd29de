// Begun before anything else is loaded: the stream of events, so that whatever is read later can be
// kept up to date without being read twice, and the answers that every page needs first.

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

// What a list is read with, page by page.
export const PageSize = 100;
export const RowRoles = [
  'title', 'path', 'type', 'containerType', 'value', 'modifiable', 'id', 'context', 'mediaData',
];

export function rowsUrl(path, from, to, roles) {
  const query = new URLSearchParams({ path, from, to });
  if (roles) query.append('roles', roles.join(','));
  return `/api/rows?${query}`;
}

const early = { source: openStream(), events: [] };
for (const kind of Kinds) early.source.addEventListener(kind, (event) => early.events?.push(event));

const first = { '/api/paths': ask('/api/paths'), '/api/modules': ask('/api/modules') };
// A failure is for whoever takes the answer, and is tried again by asking properly.
for (const promise of Object.values(first)) promise.catch(() => {});

// The list of lists, once the stream stands: what changes after it was read comes as an event. The
// list must be there when the events are gone through.
early.source.addEventListener('open', async () => {
  const paths = await first['/api/paths']?.catch(() => null);
  if (!paths?.OrvoPlayListsRootPath || !early.source) return;
  const url = rowsUrl(paths.OrvoPlayListsRootPath, 0, PageSize - 1, RowRoles);
  first[url] = ask(url);
  first[url].catch(() => {});
}, { once: true });

// The early answer, once.
export function takeFirst(url) {
  const promise = first[url];
  delete first[url];
  return promise;
}

// The early stream, once, with the events that it brought already. From here on early answers are old.
export function takeStream() {
  const { source, events } = early;
  early.source = null;
  early.events = null;
  for (const url of Object.keys(first)) delete first[url];
  return source ? { source, events } : null;
}
