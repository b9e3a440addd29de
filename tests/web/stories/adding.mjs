import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

story('add an album from the files tree', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.toMusic('Velka Torrin');
  await me.menuOf('side', 'Lanterns on the Canal');
  assert.equal(await me.sheet.locator('.sheet-subtitle').textContent(), 'Add to Party');
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
  await me.toMusic('Quillmarsh Ensemble', 'Tides and Clockwork');
  await me.press(me.page.locator('#side .screen:not([hidden]) [aria-label="Choose several"]'));
  for (const title of ['Ebb', 'Escapement']) await me.press(me.row('side', title).locator('.row-title'));
  await me.press(me.page.locator('#side').getByRole('button', { name: 'Add to…' }));
  await me.choose('Next');
  // In the order of the list, not of choosing.
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), ['Escapement', 'Ebb']);
});

story('another list can be chosen, and made, while adding', async ({ device, open }) => {
  await device.playlist('Party');
  const me = await open();
  await me.openList('Party');
  await me.toMusic('Quillmarsh Ensemble');
  await me.menuOf('side', 'Tides and Clockwork');
  await me.choose('To another list', 'Create New Playlist');
  await me.enter('Chamber');
  await me.choose('Chamber', 'Append');
  await me.toast('4 tracks added to Chamber.').waitFor();
  const made = (await device.rows('playlists:pl/list')).rows.find((row) => row.title === 'Chamber');
  assert.deepEqual(await device.titles(made.path), Tides);
});

story('adding many shows how far it is and can be stopped', async ({ device, open }) => {
  const plid = await device.playlist('Everything');
  const me = await open();
  await me.openList('Everything');
  // Slowly enough for a person to change their mind.
  await me.page.route('**/api/data', async (route) => {
    await new Promise((done) => setTimeout(done, 250));
    await route.continue();
  });
  await me.toMusic();
  await me.menuOf('side', 'Artist 000');
  await me.choose('Append');
  const card = me.page.locator('.progress-card');
  await card.locator('.progress-text', { hasText: /^Adding to Everything: \d/ }).waitFor();
  await eventually(() => card.locator('progress').evaluate((bar) => bar.value > 0 && bar.value < bar.max), true);
  await me.press(card.getByRole('button', { name: 'Stop' }));
  await me.toast(/^Stopped: [\d,]+ tracks of 1,000 added to Everything\.$/).waitFor();
  const said = await me.toast('Stopped').locator('p').textContent();
  const { rowsCount } = await device.rows(`playlists:pl/items/${plid}`, 0, 0);
  assert.ok(rowsCount > 0 && rowsCount < 1000, `${rowsCount} tracks were added`);
  assert.equal(said, `Stopped: ${rowsCount.toLocaleString('en')} tracks of 1,000 added to Everything.`);
}, { device: { music: 'many-tracks' } });

story('many added next keep their order', async ({ device, open }) => {
  const plid = await device.playlist('Everything');
  const me = await open();
  await me.openList('Everything');
  await me.toMusic();
  await me.menuOf('side', 'Artist 001');
  await me.choose('Next');
  await me.toast('1,000 tracks added to Everything.').waitFor({ timeout: 15000 });
  const titles = await device.titles(`playlists:pl/items/${plid}`);
  assert.deepEqual(titles, Array.from({ length: 1000 }, (_, i) => `Track ${1001 + i}`));
  assert.match(await me.meta('main').textContent(), /^1,000 tracks/);
}, { device: { music: 'many-tracks' }, sizes: ['desktop'] });
