import assert from 'node:assert/strict';
import { Albums, Hours } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

story('make a collection, add and remove a playlist', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open();
  const other = await open();
  await me.createFromRoot('Create New Collection', 'Weekend');
  await other.openList('Weekend');

  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Add to collection', 'Weekend');
  await me.sheetCloses();
  await other.row('main', 'Party').waitFor();
  await eventually(() => other.meta().textContent(), '1 playlist');
  assert.deepEqual(await device.titles('playlists:cl/items?clid=1'), ['Party']);

  await me.openList('Weekend');
  await me.menuOf('main', 'Party');
  await me.choose('Remove from collection - Weekend');
  await me.sheetCloses();
  await eventually(() => me.titles('main'), []);
  await eventually(() => other.meta().textContent(), 'Empty');
  await me.toLists();
  await me.row('nav', 'Party').waitFor(); // the playlist itself stays
});

story('a collection that is made while adding to one gets the playlist', async ({ device, open }) => {
  await device.playlist('Party');
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Add to collection', 'Create new collection');
  await me.enter('Weekend');
  await me.sheetCloses();
  await eventually(() => device.titles('playlists:cl/items?clid=1'), ['Party']);
});

story('a playlist is opened from a collection; a deleted collection closes its view', async ({ device, open, size }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const { i32: clid } = await device.send('playlists:cl/create', { name: 'Weekend' });
  await device.send('playlists:cl/addItem', { clid, plid });
  const me = await open();
  await me.openList('Weekend');
  await me.press(me.row('main', 'Party').locator('.row-title'));
  await eventually(() => me.heading().textContent(), 'Party');
  await me.press(me.page.locator('#main .screen:not([hidden]) [aria-label="Back"]'));
  await eventually(() => me.heading().textContent(), 'Weekend');
  await device.send('playlists:cl/delete', { clid });
  await me.toast('“Weekend” is gone.').waitFor();
  if (size === 'phone') await me.page.locator('#nav').waitFor();
  else await eventually(() => me.heading().textContent(), 'PlayQueue');
});

story('a collection is deleted by its menu; its playlists stay', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const { i32: clid } = await device.send('playlists:cl/create', { name: 'Weekend' });
  await device.send('playlists:cl/addItem', { clid, plid });
  const me = await open();
  const other = await open();
  await other.openList('Weekend');
  await me.toLists();
  await me.menuOf('nav', 'Weekend');
  await me.choose('Delete collection');
  await me.answer('Delete');
  await me.row('nav', 'Weekend').waitFor({ state: 'hidden' });
  await other.toast('“Weekend” is gone.').waitFor();
  await me.row('nav', 'Party').waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), Hours);
});
