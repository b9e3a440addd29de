import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';
import { Wire } from '../support/wire.mjs';

const Outage = /ERR_CONNECTION_REFUSED|ERR_CONNECTION_RESET|ERR_EMPTY_RESPONSE|ERR_INCOMPLETE_CHUNKED_ENCODING|ERR_SOCKET_NOT_CONNECTED/;

story('kill and restart the host: the page recovers', async ({ device, open, allow }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.row('main', 'Two Kettles').waitFor();
  await me.page.evaluate(() => (window.stayed = true));
  allow(Outage);
  await device.kill();
  const banner = me.page.locator('#banner');
  await banner.waitFor();
  assert.match(await banner.textContent(), /No connection/);
  await device.start();
  await device.send('playlists:pl/removeItems', { plid, items: [0] });
  await banner.waitFor({ state: 'hidden' });
  // What changed while the page did not listen is there, and what changes now comes at once.
  await eventually(() => me.titles('main'), Hours.slice(1));
  await device.send('playlists:pl/setName', { plid, name: 'After Party' });
  await eventually(() => me.heading().textContent(), 'After Party');
  await eventually(() => me.nowTitle().then((title) => title !== ''), true);
  assert.equal(await me.page.evaluate(() => window.stayed), true);
});

story('a short break of the network loses no event', async ({ device, open, allow }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const wire = new Wire(device);
  await wire.lay();
  try {
    const me = await open({ at: wire.url });
    await me.openList('Party');
    await eventually(() => me.titles('main'), Hours);
    await device.send('playlists:pl/removeItems', { plid, items: [3] });
    await eventually(() => me.titles('main'), Hours.slice(0, 3));
    allow(Outage);
    wire.cut();
    await me.page.locator('#banner').waitFor();
    await device.send('playlists:pl/addItems', { plid, items: ['files:tree/Velka%20Torrin/Lanterns%20on%20the%20Canal'] });
    wire.mend();
    await me.page.locator('#banner').waitFor({ state: 'hidden' });
    await eventually(() => me.titles('main'), [...Hours.slice(0, 3), ...Lanterns]);
    // It went on from the last event it saw, without reading everything again.
    assert.match(wire.asked, /last-event-id: \d+|lastEventId=\d+/i);
    assert.doesNotMatch(wire.asked, /GET \/api\/modules/);
  } finally {
    wire.end();
  }
});

story('a list that is long in coming shows that it is on its way', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open();
  let release;
  const held = new Promise((done) => (release = done));
  await me.page.route('**/api/rows?path=playlists%3Apl%2Fitems*', async (route) => {
    await held;
    await route.continue();
  });
  const busy = () => me.page.evaluate(() => document.body.classList.contains('busy'));
  // What was begun with the page may have taken that long, too.
  await eventually(busy, false);
  await me.openList('Party');
  await me.page.locator('body.busy').waitFor();
  release();
  await eventually(() => me.titles('main'), Hours);
  await eventually(busy, false);
});

story('what takes longer than a moment shows that it works', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.toLists();
  let release;
  const held = new Promise((done) => (release = done));
  await me.page.route('**/api/rows?path=playlists%3Apl%2Fcontext*', async (route) => {
    await held;
    await route.continue();
  });
  // What was begun with the page may have taken that long, too.
  await eventually(() => me.page.evaluate(() => document.body.classList.contains('busy')), false);
  // By the page's own clock: not at once, where it would flicker, but after 150 ms.
  await me.page.evaluate(() => {
    document.addEventListener('click', () => (window.pressedAt = performance.now()), { capture: true, once: true });
    new MutationObserver(() => {
      if (window.pressedAt && document.body.classList.contains('busy')) window.busyAt ??= performance.now();
    }).observe(document.body, { attributeFilter: ['class'] });
  });
  await me.press(me.row('nav', 'Party').locator('.row-more'));
  await me.page.locator('body.busy').waitFor();
  const delay = await me.page.evaluate(() => window.busyAt - window.pressedAt);
  assert.ok(delay >= 145, `after ${delay} ms`);
  release();
  await me.entry('Rename').waitFor();
  await eventually(() => me.page.evaluate(() => document.body.classList.contains('busy')), false);
});
