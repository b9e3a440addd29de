// The page as an app of its own, and the device that it belongs to.

import assert from 'node:assert/strict';
import { Albums } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const Outage = /ERR_CONNECTION_REFUSED|ERR_CONNECTION_RESET|ERR_EMPTY_RESPONSE|ERR_INCOMPLETE_CHUNKED_ENCODING|ERR_SOCKET_NOT_CONNECTED|ERR_FAILED|ERR_ABORTED/;

story('the browser takes the manifest, and every icon has the size that it names', async ({ open }) => {
  const me = await open();
  const session = await me.window.context.newCDPSession(me.page);
  const { errors, data } = await session.send('Page.getAppManifest');
  assert.deepEqual(errors, []);
  const { installabilityErrors } = await session.send('Page.getInstallabilityErrors');
  assert.deepEqual(installabilityErrors.filter(({ errorId }) => errorId !== 'in-incognito'), []);
  const icons = JSON.parse(data).icons.filter(({ type }) => type === 'image/png');
  assert.equal(icons.length, 3);
  const sizes = await me.page.evaluate((sources) => Promise.all(sources.map(async (src) => {
    const image = new Image();
    image.src = src;
    await image.decode();
    return `${image.naturalWidth}x${image.naturalHeight}`;
  })), icons.map(({ src }) => src));
  assert.deepEqual(sizes, icons.map((icon) => icon.sizes));
}, { sizes: ['desktop'] });

story('the page opens without the device, says that it looks for it, and goes on when it is there', async ({ device, open, allow }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.row('nav', 'Party').waitFor();
  // All that the page is made of is kept.
  await eventually(() => me.page.evaluate(async () => {
    const cache = await caches.open('orvo-page');
    const kept = new Set((await cache.keys()).map(({ url }) => new URL(url).pathname));
    return ['/', '/js/app.js', '/js/later.js', '/css/later.css'].every((path) => kept.has(path));
  }), true);
  allow(Outage);
  await device.kill();
  await me.window.reload();
  const banner = me.page.locator('#banner');
  await banner.filter({ hasText: 'Looking for the device.' }).waitFor();
  await device.start();
  await me.row('nav', 'Party').waitFor();
  await banner.waitFor({ state: 'hidden' });
}, { sizes: ['desktop'] });

story("the title of the page is the list and the device's name", async ({ device, open }) => {
  await device.kill('SIGTERM');
  device.more = ['--config', 'gateway/name=Kitchen'];
  await device.start();
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await eventually(() => me.page.title(), 'Party – Kitchen');
});

story('the sleep timer of the device is set, shown by every window, and pauses', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  const other = await open();
  await me.openList('Party');
  await me.playRow('Seven Bridges');
  await eventually(() => me.nowTitle(), 'Seven Bridges');
  const shown = async (window) => (await window.controls()).locator('.sleep-button').getAttribute('aria-label');
  await eventually(() => shown(other), 'Sleep timer: off');
  await me.openSleep();
  await me.choose('15 minutes');
  await me.toast('Playback pauses in 15 minutes.').waitFor();
  await eventually(() => shown(other), 'Sleep timer: in 15 min');
  await me.openSleep();
  await me.choose('At the end of this track');
  await eventually(() => shown(other), 'Sleep timer: at the end of this track');
  await device.send('player:seekTime', { time: (await device.value('player:duration')).i64 - 1000 });
  await eventually(async () => (await device.value('player:state')).string, 'paused');
  await eventually(() => me.nowTitle(), "The Lockkeeper's Daughter");
  await eventually(() => shown(other), 'Sleep timer: off');
}, { player: true, sizes: ['desktop'] });
