// The installed page opens without the device: the page's own files are kept as they came last, and used when the device
// does not give them. Nothing of the device's interface passes through here.

const Name = 'orvo-page';

self.addEventListener('install', () => self.skipWaiting());
self.addEventListener('activate', (event) => event.waitUntil(self.clients.claim()));

// The page names what it is made of, once it is there.
self.addEventListener('message', (event) => {
  event.waitUntil(caches.open(Name).then((cache) => Promise.allSettled(event.data.keep.map((url) => cache.add(url)))));
});

const isOfPage = (url) => url.origin === location.origin && !url.pathname.startsWith('/api/');

async function answer(request, key) {
  const cache = await caches.open(Name);
  try {
    const response = await fetch(request);
    if (response.ok) cache.put(key, response.clone()).catch(() => {});
    return response;
  } catch (cause) {
    const kept = await cache.match(key);
    if (kept) return kept;
    throw cause;
  }
}

self.addEventListener('fetch', (event) => {
  const { request } = event;
  if (request.method !== 'GET' || !isOfPage(new URL(request.url))) return;
  event.respondWith(answer(request, request.mode === 'navigate' ? '/' : request.url));
});
