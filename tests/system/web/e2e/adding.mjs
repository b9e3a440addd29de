import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, Tides, hasPlayer } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

story('add an album from the files tree', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Velka Torrin');
  await me.menuOf('side', 'Lanterns on the Canal');
  await me.sheet.getByRole('heading', { name: 'Add to Party' }).waitFor();
  await me.choose('Append');
  await me.toast('5 tracks added to Party.').waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), [...Hours, ...Lanterns]);
  await me.toLists();
  await me.openList('Party');
  await eventually(() => me.titles('main'), [...Hours, ...Lanterns]);
});

story('add what is chosen, next', async ({ device, open }) => {
  const plid = await device.playlist('Party');
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Quillmarsh Ensemble', 'Tides and Clockwork');
  await me.press(me.page.locator('#side .screen:not([hidden]) [aria-label="Choose several"]'));
  for (const title of ['Ebb', 'Escapement']) await me.press(me.row('side', title).locator('.row-title'));
  await me.press(me.page.locator('#side').getByRole('button', { name: 'Add to…' }));
  await me.choose('Next');
  // In the order of the list, not of choosing.
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), ['Escapement', 'Ebb']);
});

story('another list can be chosen while adding', async ({ device, open }) => {
  await device.playlist('Party');
  const other = await device.playlist('Chamber');
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Quillmarsh Ensemble');
  await me.menuOf('side', 'Tides and Clockwork');
  await me.choose('To another list', 'Chamber', 'Append');
  await me.toast('4 tracks added to Chamber.').waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${other}`), Tides);
});

story('adding many shows how far it is and can be stopped', async ({ device, open }) => {
  const plid = await device.playlist('Everything');
  const me = await open();
  await me.openList('Everything');
  // From the second portion on the line waits until a person has changed their mind.
  let portions = 0;
  let goOn;
  const stopped = new Promise((done) => (goOn = done));
  await me.page.route('**/api/data', async (route) => {
    if (/pl.add/.test(route.request().postDataJSON().path)) portions += 1;
    if (portions > 1) await stopped;
    await route.continue();
  });
  await me.toFolders();
  await me.menuOf('side', 'Artist 000');
  await me.choose('Append');
  const card = me.page.locator('.progress-card');
  await card.locator('.progress-text', { hasText: /^Adding to Everything: \d/ }).waitFor();
  await eventually(() => card.locator('progress').evaluate((bar) => bar.value > 0 && bar.value < bar.max), true);
  await me.press(card.getByRole('button', { name: 'Stop' }));
  goOn();
  await me.toast(/^Stopped: [\d,]+ tracks of 1,000 added to Everything\.$/).waitFor();
  const said = await me.toast('Stopped').locator('p').textContent();
  const { rowsCount } = await device.rows(`playlists:pl/items/${plid}`, 0, 0);
  assert.ok(rowsCount > 0 && rowsCount < 1000, `${rowsCount} tracks were added`);
  assert.equal(said, `Stopped: ${rowsCount.toLocaleString('en')} tracks of 1,000 added to Everything.`);
}, { device: { music: 'many-tracks' } });

const tracks = (from, count) => Array.from({ length: count }, (_, i) => `Track ${from + i}`);

story('many added next keep their order, inside a list that was played and behind one that was not', async ({ device, open }) => {
  const plid = await device.playlist('Everything', 'Artist 000/Album 0000');
  const me = await open();
  await me.openList('Everything');
  await me.toFolders();
  await me.menuOf('side', 'Artist 001');
  await me.choose('Next');
  await me.toast('1,000 tracks added to Everything.').waitFor();
  const behind = [...tracks(1, 100), ...tracks(1001, 1000)];
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), behind);
  await eventually(() => me.meta('main').textContent().then((text) => /^1,100 tracks/.test(text)), true);

  if (!hasPlayer) return;
  await me.playRow('Track 3');
  await eventually(() => device.value('player:data').then((data) => data?.trackRoles?.value?.i32 >= 2), true);
  await me.control('Pause');
  await eventually(() => device.value('player:state').then((state) => state?.string), 'paused');
  const { i32: current } = (await device.value('player:data')).trackRoles.value;
  await me.menuOf('side', 'Artist 002');
  await me.choose('Next');
  await eventually(() => device.rows(`playlists:pl/items/${plid}`, 0, 0).then(({ rowsCount }) => rowsCount), 2100);
  const inside = [...behind.slice(0, current + 1), ...tracks(2001, 1000), ...behind.slice(current + 1)];
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), inside);
}, { device: { music: 'many-tracks' }, sizes: ['desktop'] });
