import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

story('create a playlist and rename it', async ({ device, open, size }) => {
  const me = await open();
  const other = await open();
  await me.createFromRoot('Create New Playlist', 'Party');
  assert.deepEqual(await device.titles('playlists:pl/list'), ['Create new playlist', 'Party']);
  await other.row('nav', 'Party').waitFor();

  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Rename');
  await me.enter('Summer Party');
  // Renaming keeps the menu open; it shows the new name.
  await eventually(() => me.entry('Rename').locator('.menu-detail').textContent(), 'Summer Party');
  assert.equal(await me.sheet.locator('.sheet-title').textContent(), 'Summer Party');
  await me.closeSheet();
  await me.row('nav', 'Summer Party').waitFor();
  await other.row('nav', 'Summer Party').waitFor();
  if (size === 'desktop') await eventually(() => me.heading().textContent(), 'Summer Party');
});

story('a list that another client makes is not taken for the one thought better of', async ({ device, open, size }) => {
  await device.playlist('Quiet');
  const me = await open();
  await me.openList('Quiet');
  await me.toLists();
  await me.press(me.row('nav', 'Create New Playlist').locator('.row-title'));
  await me.press(me.sheet.getByRole('button', { name: 'Cancel' }));
  await me.sheetCloses();
  await device.playlist('Loud');
  await me.row('nav', 'Loud').waitFor();
  if (size === 'desktop') assert.equal(await me.heading().textContent(), 'Quiet');
  else assert.equal(await me.row('nav', 'Loud').isVisible(), true); // still among the lists
});

story('an error shows the command\'s own text', async ({ device, open, allow }) => {
  await device.playlist('Party');
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Rename');
  const answer = me.page.waitForResponse((response) => response.status() === 422);
  await me.enter('');
  const { error } = await (await answer).json();
  assert.match(error.message, /^Could not /);
  allow(/status 422|status of 422/);
  await eventually(() => me.sheet.locator('.field-problem').textContent(), error.message);
  // Where it was entered it can be entered again.
  const input = me.sheet.locator('input');
  assert.equal(await input.evaluate((field) => field === document.activeElement), true);
  assert.equal(await input.getAttribute('aria-invalid'), 'true');
  await me.enter('Late Party');
  await me.row('nav', 'Late Party').waitFor();
});

story('an error is read, and put away, over an open menu', async ({ device, open, allow }) => {
  await device.playlist('Party');
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  allow(/status 422|status of 422/);
  await me.choose('Play');
  const toast = me.toast('Could not start playback on playlist. There are no items in the playlist.');
  await toast.waitFor();
  await me.entry('Rename').waitFor(); // a command that failed leaves the menu as it is
  await me.press(toast.getByRole('button', { name: 'Dismiss' }));
  await toast.waitFor({ state: 'detached' });
  await me.closeSheet();
  // The next message is seen without a menu.
  await device.playlist('Other');
  await me.row('nav', 'Other').waitFor();
  await me.openList('Party');
  await device.send('playlists:pl/delete', { plid: 1 });
  await me.toast('“Party” is gone.').waitFor();
});

story('delete a playlist open in another window: that view closes', async ({ device, open, size }) => {
  await device.playlist('Party', Albums.hours);
  await device.playlist('Other', Albums.lanterns);
  const me = await open();
  const other = await open();
  await other.openList('Party');
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Delete playlist');
  await me.answer('Delete');
  await other.toast('“Party” is gone.').waitFor();
  if (size === 'phone') await other.page.locator('#nav').waitFor();
  else await eventually(() => other.heading().textContent(), 'PlayQueue');
  await eventually(() => other.page.locator('#nav .row.opens:not([hidden]) .row-title').allTextContents(), ['PlayQueue', 'Other']);
});

story('clear a playlist, and the queue: both stay, without tracks', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  await device.send('playlists:pl/addItems', { plid: 0, items: [`files:tree/${Albums.tides.split('/').map(encodeURIComponent).join('/')}`] });
  const me = await open();
  const other = await open();
  for (const [list, entry, path] of [['Party', 'Clear playlist', `playlists:pl/items/${plid}`], ['PlayQueue', 'Clear', 'playlists:pq/items']]) {
    await other.openList(list);
    await eventually(async () => (await other.titles('main')).length, 4);
    await me.toLists();
    await me.menuOf('nav', list);
    await me.choose(entry);
    await me.answer('Clear');
    await eventually(() => other.meta().textContent(), 'Empty');
    assert.deepEqual(await device.titles(path), []);
    await me.row('nav', list).waitFor();
  }
});

story('a track is added to another list, and to the queue, by its menu', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const other = await device.playlist('Other', Albums.tides);
  const me = await open();
  await me.openList('Party');
  await me.menuOf('main', 'Two Kettles');
  await me.choose('Add to playlist', 'Other', 'Append');
  await me.sheetCloses();
  await eventually(() => device.titles(`playlists:pl/items/${other}`), [...Tides, 'Two Kettles']);
  await me.menuOf('main', 'Almost Morning');
  await me.choose('Add to playqueue', 'Append');
  await me.sheetCloses();
  await eventually(() => device.titles('playlists:pq/items'), ['Almost Morning']);
  assert.deepEqual(await me.titles('main'), Hours); // the tracks themselves stay
});

story('merge two playlists', async ({ device, open }) => {
  const target = await device.playlist('Evening', Albums.hours);
  await device.playlist('Canal', Albums.lanterns);
  const me = await open();
  await me.openList('Evening');
  await me.toLists();
  await me.menuOf('nav', 'Canal');
  await me.choose('Merge with playlist', 'Evening', 'Append');
  await me.answer('Merge');
  await eventually(() => device.titles(`playlists:pl/items/${target}`), [...Hours, ...Lanterns]);
  await me.row('nav', 'Canal').waitFor({ state: 'hidden' });
  await me.openList('Evening');
  await eventually(() => me.titles('main'), [...Hours, ...Lanterns]);
});

story("a switch in a menu shows what holds, also after another client's change", async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  const shuffle = me.entry('Set shuffle mode');
  assert.equal(await shuffle.getAttribute('aria-checked'), 'false');
  await me.press(shuffle);
  await eventually(() => shuffle.getAttribute('aria-checked'), 'true');
  await device.send('playlists:pl/setShuffle', { plid, mode: 0 });
  await eventually(() => shuffle.getAttribute('aria-checked'), 'false');
  const repeat = me.entry('Set repeat mode');
  await me.press(repeat);
  await eventually(() => repeat.getAttribute('aria-checked'), 'true');
});

story('several tracks are chosen and removed, and added to another list', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const target = await device.playlist('Best');
  const me = await open();
  await me.openList('Party');
  await me.press(me.page.locator('#main .screen:not([hidden]) [aria-label="Choose several"]'));
  for (const title of ['Seven Bridges', 'Last Light Out']) await me.press(me.row('main', title).locator('.row-title'));
  await me.press(me.page.locator('#main').getByRole('button', { name: 'Add to…' }));
  await me.choose('Best', 'Append');
  await eventually(() => device.titles(`playlists:pl/items/${target}`), ['Seven Bridges', 'Last Light Out']);

  await me.press(me.page.locator('#main .screen:not([hidden]) [aria-label="Choose several"]'));
  for (const title of ['Towpath at Dusk', 'Paper Boats']) await me.press(me.row('main', title).locator('.row-title'));
  await eventually(() => me.page.locator('#main .bar-title.shown').textContent(), '2 chosen');
  await me.press(me.page.locator('#main').getByRole('button', { name: 'Remove' }));
  const left = ['Seven Bridges', "The Lockkeeper's Daughter", 'Last Light Out'];
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), left);
  await eventually(() => me.titles('main'), left);
});

story('names are texts, whatever they hold', async ({ device, open }) => {
  const name = '<img src=x onerror=document.title="owned"><b>&amp;</b>';
  await device.playlist(name, Albums.hours);
  const me = await open();
  await me.openList(name);
  assert.equal(await me.heading().textContent(), name);
  await me.toLists();
  await me.menuOf('nav', name);
  assert.equal(await me.sheet.locator('.sheet-title').textContent(), name);
  assert.equal(await me.page.locator('#nav img[src="x"], #main img[src="x"], dialog img[src="x"]').count(), 0);
  assert.doesNotMatch(await me.page.title(), /^owned$/);
});

story('the address keeps the place: reload and back', async ({ device, open, size }) => {
  await device.playlist('Party', Albums.hours);
  await device.playlist('Other', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.toLists();
  await me.openList('Other');
  await me.window.reload();
  await eventually(() => me.heading().textContent(), 'Other');
  await eventually(() => me.titles('main'), Lanterns);
  await me.page.goBack();
  if (size === 'phone') await me.page.locator('#nav').waitFor();
  else await eventually(() => me.heading().textContent(), 'Party');
});
