import assert from 'node:assert/strict';
import { Albums, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const goBack = (me) => me.page.evaluate(() => history.back());

story("the browser's back closes a menu, page by page, and leaves the list as it is", async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Other');
  await me.toLists();
  await me.openList('Party');
  await me.menuOf('main', Lanterns[1]);
  await me.choose('Add to playlist');
  await me.entry('Other').waitFor();
  await goBack(me);
  await me.entry('Remove track').waitFor();
  await goBack(me);
  await me.sheetCloses();
  assert.equal(await me.heading().textContent(), 'Party');
  // A menu that was closed otherwise costs no press of "back".
  await me.menuOf('main', Lanterns[1]);
  await me.closeSheet();
  await goBack(me);
  if (me.touch) await me.row('nav', 'Other').waitFor();
  else await eventually(() => me.heading().textContent(), 'Other');
});

story("the browser's back closes the large view, and what is asked", async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[1]);
  await eventually(() => me.nowTitle(), Lanterns[1]);
  await me.page.locator('#player .now').click();
  const large = me.page.locator('dialog.large[open]');
  await large.waitFor();
  await goBack(me);
  await large.waitFor({ state: 'detached' });
  assert.equal(await me.heading().textContent(), 'Party');
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Clear playlist');
  await me.question.waitFor();
  await goBack(me);
  await me.question.waitFor({ state: 'detached' });
  assert.equal((await device.titles('playlists:pl/items/1')).length, Lanterns.length);
}, { player: true });

story('a list that is opened from a menu is gone back from', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.createFromRoot('Create New Playlist', 'Third');
  await goBack(me);
  if (me.touch) await me.row('nav', 'Third').waitFor();
  else await eventually(() => me.heading().textContent(), 'Party');
});
