// Keeps the page's own files in the browser, so that it opens without the device; only where the browser allows it: on
// this machine and over TLS.

const isOfPage = (url) => url.origin === location.origin && !url.pathname.startsWith('/api/');

export async function keepPage() {
  if (!window.isSecureContext || !navigator.serviceWorker) return;
  await navigator.serviceWorker.register('/sw.js').catch(() => {}); // it works without
  const { active } = await navigator.serviceWorker.ready;
  const urls = performance.getEntriesByType('resource').map(({ name }) => new URL(name)).filter(isOfPage);
  active.postMessage({ keep: ['/', ...new Set(urls.map(({ pathname }) => pathname))] });
}
