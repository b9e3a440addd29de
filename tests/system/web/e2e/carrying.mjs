import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const [first, second, third, fourth, fifth] = Lanterns;

// Takes a row of one pane to a point of another one; letting go is left to the caller.
async function carry(me, [pane, title], [toPane, toTitle], { below = false } = {}) {
  const { mouse } = me.page;
  const from = await me.row(pane, title).locator('.row-title').boundingBox();
  await mouse.move(from.x + 20, from.y + 8);
  await mouse.down();
  await mouse.move(from.x + 40, from.y + 30, { steps: 4 });
  const to = await me.row(toPane, toTitle).boundingBox();
  await mouse.move(to.x + 90, to.y + to.height * (below ? 0.9 : 0.1), { steps: 8 });
  await me.page.locator('.drag-ghost').waitFor();
}

story('music is dragged into a list, to the place that is shown', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.row('main', second).waitFor();
  await me.toFolders('Velka Torrin', 'Small Hours');
  await carry(me, ['side', Hours[1]], ['main', second], { below: true });
  const line = await me.page.locator('#main .drop-line').boundingBox();
  const row = await me.row('main', second).boundingBox();
  assert.ok(Math.abs(line.y - (row.y + row.height)) < 4, `${line.y} below ${row.y}`);
  assert.equal(await me.page.locator('.drag-ghost').textContent(), `${Hours[1]} → Party`);
  await me.page.mouse.up();
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), [first, second, Hours[1], third, fourth, fifth]);
  await me.toast('1 track added to Party.').waitFor();
  assert.equal(await me.page.locator('.drag-ghost, .drop-line').count(), 0);
}, { sizes: ['desktop'] });

story('a folder is dragged onto a list among the lists', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const other = await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Quillmarsh Ensemble');
  await carry(me, ['side', 'Tides and Clockwork'], ['nav', 'Other']);
  await me.page.locator('#nav .row.drop-here').waitFor();
  await me.page.mouse.up();
  await eventually(() => device.titles(`playlists:pl/items/${other}`), [...Hours, ...Tides]);
  assert.deepEqual(await device.titles('playlists:pl/items/1'), Lanterns);
}, { sizes: ['desktop'] });

story('a track is dragged from its list to another one, and back by undo; Escape lets it go', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const other = await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  await carry(me, ['main', third], ['nav', 'Other']);
  await me.page.keyboard.press('Escape');
  await me.page.locator('.drag-ghost').waitFor({ state: 'detached' });
  await me.page.mouse.up();
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), Lanterns);
  await carry(me, ['main', third], ['nav', 'Other']);
  await me.page.mouse.up();
  await me.undoBar.filter({ hasText: `“${third}” moved to “Other”` }).waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${other}`), [...Hours, third]);
  await eventually(() => me.titles('main'), [first, second, fourth, fifth]);
  await me.undo();
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), Lanterns);
  await eventually(() => device.titles(`playlists:pl/items/${other}`), Hours);
}, { sizes: ['desktop'] });
