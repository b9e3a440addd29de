import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const UpNext = 'playlists:upnext';

const list = (me) => me.page.locator('.upnext');

const row = (me, title) => list(me).locator('.row:not([hidden])').filter({ has: me.page.getByText(title, { exact: true }) });

const titles = (me) => list(me).locator('.rows').evaluate((rows) => [...rows.querySelectorAll('.row:not([hidden])')]
  .sort((a, b) => Number(a.dataset.index) - Number(b.dataset.index))
  .map((one) => one.querySelector('.row-title').textContent));

async function showUpNext(me) {
  await me.control('Up next');
  await list(me).waitFor();
}

const playing = async (device) => (await device.value('player:data'))?.trackRoles?.title;

story('what comes next is seen, a track of it is removed and put back, another played at once', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const tracks = `playlists:pl/items/${plid}`;
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await showUpNext(me);
  await eventually(() => titles(me), Lanterns.slice(1));
  await eventually(() => list(me).locator('.upnext-count').textContent(), '4 tracks');

  await me.press(row(me, Lanterns[1]).getByRole('button', { name: `Remove ${Lanterns[1]}` }));
  await eventually(() => device.titles(tracks), [Lanterns[0], ...Lanterns.slice(2)]);
  await eventually(() => titles(me), Lanterns.slice(2));
  await me.undo();
  await eventually(() => device.titles(tracks), Lanterns);
  await eventually(() => titles(me), Lanterns.slice(1));

  const title = row(me, Lanterns[3]).locator('.row-title');
  await (me.touch ? title.tap() : title.dblclick());
  await eventually(() => playing(device), Lanterns[3]);
  await eventually(() => titles(me), [Lanterns[4]]);
  await me.control('Next');
  await list(me).getByText('Nothing comes next.').waitFor();

  await me.press(list(me).getByRole('button', { name: 'Hide what comes next' }));
  await eventually(() => list(me).count(), 0);
}, { player: true });

story('what comes next follows the shuffle order, and is removed from a list that is not on screen', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns, Albums.ferry);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await me.openList('Other');
  await showUpNext(me);
  await me.control('Shuffle');
  await eventually(async () => (await device.value('player:playMode')).string, 'shuffle');
  const order = await device.titles(UpNext);
  assert.equal(order.length, 8);
  await eventually(() => titles(me), order);

  await me.press(row(me, order[2]).getByRole('button', { name: `Remove ${order[2]}` }));
  const left = order.filter((title) => title !== order[2]);
  await eventually(() => titles(me), left);
  assert.deepEqual(await device.titles(UpNext), left);
  assert.equal((await device.titles(`playlists:pl/items/${plid}`)).includes(order[2]), false);
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid + 1}`), Hours);
  await me.undo();
  await eventually(async () => (await device.titles(UpNext)).length, 8);
  await eventually(async () => titles(me), await device.titles(UpNext));

  // Another list comes next when it is played.
  await device.send('playlists:pl/play', { plid: plid + 1 });
  await eventually(() => titles(me), Hours.slice(1));
  await me.press(row(me, Hours[1]).getByRole('button', { name: `Remove ${Hours[1]}` }));
  await eventually(() => device.titles(`playlists:pl/items/${plid + 1}`), [Hours[0], ...Hours.slice(2)]);
  await eventually(() => titles(me), Hours.slice(2));

  await device.send('player:stop', {});
  await eventually(() => list(me).count(), 0);
}, { player: true });

story('a track further down in a long list of what comes next is reached, and few rows exist', async ({ device, open }) => {
  const plid = await device.playlist('Party', ...Array.from({ length: 60 }, () => Albums.lanterns));
  const me = await open();
  await device.send('playlists:pl/play', { plid });
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await showUpNext(me);
  await eventually(() => list(me).locator('.upnext-count').textContent(), '299 tracks');
  await list(me).locator('.scroller').evaluate((scroller) => scroller.scrollTo(0, scroller.scrollHeight));
  await eventually(() => list(me).locator('.row[data-index="298"] .row-title').textContent(), Lanterns[4]);
  assert.ok(await list(me).locator('.row').count() < 60);
}, { player: true });
