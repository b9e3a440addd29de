import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const [first, second, third, fourth, fifth] = Lanterns;

story('reorder by drag; the second window follows without a reload', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  const other = await open();
  await me.openList('Party');
  await other.openList('Party');
  await other.page.evaluate(() => (window.stayed = true));
  await me.page.locator('#main .row.movable').first().waitFor();

  const down = [second, third, fourth, first, fifth];
  await me.drag(first, fourth);
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), down);
  await eventually(() => me.titles('main'), down);
  await eventually(() => other.titles('main'), down);
  await me.dismiss();

  const up = [fifth, second, third, fourth, first];
  await me.drag(fifth, second);
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), up);
  await eventually(() => other.titles('main'), up);
  await me.dismiss();

  const last = [second, third, fourth, first, fifth];
  await me.drag(fifth, first);
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), last);
  await eventually(() => other.titles('main'), last);
  assert.equal(await other.page.evaluate(() => window.stayed), true);
});

story('a drag follows what others insert, and ends when they take something away', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const order = () => device.titles(`playlists:pl/items/${plid}`);
  const me = await open();
  await me.openList('Party');
  await me.playRow(first);
  await eventually(() => me.nowTitle(), first);
  await device.send('player:pause', {});
  await me.page.locator('#main .row.movable').first().waitFor();

  let drop = await me.lift(fourth, third);
  await device.send('playlists:pl/addItems', { plid, mode: 1, items: ['files:tree/Velka%20Torrin/Small%20Hours'] });
  await eventually(() => me.titles('main'), [first, ...Hours, second, third, fourth, fifth]);
  await drop(fifth);
  const longer = [first, ...Hours, second, third, fifth, fourth];
  await eventually(order, longer);
  await eventually(() => me.titles('main'), longer);

  drop = await me.lift(second, third);
  await device.send('playlists:pl/removeItems', { plid, items: [1] });
  const shorter = longer.filter((title) => title !== Hours[0]);
  await eventually(() => me.titles('main'), shorter);
  await eventually(() => me.page.locator('#main .rows.dragging').count(), 0);
  await drop(fourth);
  assert.deepEqual(await order(), shorter);
}, { player: true });

story('Escape lets a lifted track go where it was', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  const drop = await me.lift(first, fourth);
  await me.page.keyboard.press('Escape');
  await me.page.locator('#main .rows.dragging').waitFor({ state: 'detached' });
  await drop(fourth);
  await eventually(() => me.titles('main'), Lanterns);
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), Lanterns);
}, { sizes: ['desktop'] });

story('several tracks are moved at once', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  await me.chooseRows('main', first, third);
  await me.drag(first, fourth);
  const moved = [second, fourth, first, third, fifth];
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), moved);
  await eventually(() => me.titles('main'), moved);
});

story('a track is moved by its menu, by the keys, and removed', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.menuOf('main', first);
  await me.choose('Move track');
  await me.enter('3');
  await me.sheetCloses();
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), [second, third, first, fourth, fifth]);
  await me.menuOf('main', fifth);
  await me.choose('Remove track');
  await me.sheetCloses();
  await eventually(() => me.titles('main'), [second, third, first, fourth]);

  await me.page.locator('#main .row.movable').first().waitFor();
  await me.row('main', second).focus();
  await me.page.keyboard.press('Alt+ArrowDown');
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), [third, second, first, fourth]);
  // The focus goes along with the track.
  await eventually(() => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), second);
});

story('the focus stays in its row while others insert and remove', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(first);
  await eventually(() => me.nowTitle(), first);
  await device.send('player:pause', {});
  await me.row('main', fourth).focus();
  const focused = () => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent);
  const element = await me.page.evaluateHandle(() => document.activeElement);
  await device.send('playlists:pl/addItems', { plid, mode: 1, items: ['files:tree/Velka%20Torrin/Small%20Hours'] });
  const longer = [first, ...Hours, second, third, fourth, fifth];
  await eventually(() => me.titles('main'), longer);
  await eventually(focused, fourth);
  // Not only a row of the same name: screen readers stay with the element.
  assert.equal(await element.evaluate((node) => node === document.activeElement), true);
  await device.send('playlists:pl/removeItems', { plid, items: [1, 2, 3, 4, 5] });
  await eventually(() => me.titles('main'), [first, third, fourth, fifth]);
  await eventually(focused, fourth);
}, { player: true, sizes: ['desktop'] });
