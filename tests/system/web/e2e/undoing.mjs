// What was done is taken back, also on a list that others have changed meanwhile.

import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const [first, second, third, fourth, fifth] = Lanterns;
const path = (plid) => `playlists:pl/items/${plid}`;

async function opened({ device, open, allow }, ...items) {
  const plid = await device.playlist('Party', ...items);
  allow(/409/);
  const me = await open();
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  return { me, plid, order: () => device.titles(path(plid)) };
}

// The tracks themselves, not only their names: all that their source stored with them.
const stored = async (device, plid) => (await device.rows(path(plid))).rows.map(({ title, mediaData, value }) => ({ title, mediaData, value }));

story('tracks that were removed come back to their places', async (t) => {
  const { device } = t;
  const { me, plid, order } = await opened(t, Albums.lanterns, Albums.hours);
  const before = await stored(device, plid);
  await me.chooseRows('main', second, fourth, Hours[1]);
  await me.press(me.page.locator('#main').getByRole('button', { name: 'Remove' }));
  await me.undoBar.filter({ hasText: '3 tracks removed' }).waitFor();
  assert.deepEqual(await order(), [first, third, fifth, Hours[0], Hours[2], Hours[3]]);
  await me.undo();
  await me.toast('3 tracks put back.').waitFor();
  assert.deepEqual(await stored(device, plid), before);
  await eventually(() => me.titles('main'), [...Lanterns, ...Hours]);
});

story('removals are taken back one after the other by Ctrl+Z', async (t) => {
  const { me, order } = await opened(t, Albums.lanterns);
  await me.row('main', second).focus();
  await me.page.keyboard.press('Delete');
  await me.page.keyboard.press('Delete');
  await eventually(order, [first, fourth, fifth]);
  await me.undoBar.filter({ hasText: `“${third}” removed` }).waitFor();
  await me.page.keyboard.press('Control+z');
  await eventually(order, [first, third, fourth, fifth]);
  await me.undoBar.filter({ hasText: `“${second}” removed` }).waitFor();
  await me.page.keyboard.press('Control+z');
  await eventually(order, Lanterns);
  await me.undoBar.waitFor({ state: 'detached' });
}, { sizes: ['desktop'] });

story('Ctrl+Z takes back what was pressed last, though its answer is still on its way', async (t) => {
  const { device, open, lay, allow } = t;
  allow(/409/);
  const plid = await device.playlist('Party', Albums.lanterns);
  const wire = await lay();
  const me = await open({ at: wire.url });
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  wire.slow(600);
  await me.row('main', second).focus();
  await me.page.keyboard.press('Delete');
  await me.undoBar.filter({ hasText: `“${second}” removed` }).waitFor();
  await me.row('main', first).focus();
  await me.page.keyboard.press('Alt+ArrowDown');
  await me.page.keyboard.press('Control+z');
  await me.toast('1 track moved back.').waitFor();
  assert.deepEqual(await device.titles(path(plid)), [first, third, fourth, fifth]);
  await me.page.keyboard.press('Control+z');
  await eventually(() => device.titles(path(plid)), Lanterns);
  await eventually(() => me.titles('main'), Lanterns);
}, { sizes: ['desktop'] });

story('tracks come back beside their neighbours when others changed the list', async (t) => {
  const { device } = t;
  const { me, plid, order } = await opened(t, Albums.lanterns, Albums.hours);
  await me.chooseRows('main', second, Hours[2]);
  await me.press(me.page.locator('#main').getByRole('button', { name: 'Remove' }));
  await me.undoBar.waitFor();
  // The last one goes to the front, and the neighbours of one are removed.
  await device.send('playlists:pl/moveItems', { plid, items: [6], to: 0 });
  await device.send('playlists:pl/removeItems', { plid, items: [6] });
  const changed = [Hours[3], first, third, fourth, fifth, Hours[0]];
  await eventually(order, changed);
  await me.undo();
  await eventually(order, [Hours[2], Hours[3], first, second, third, fourth, fifth, Hours[0]]);
  await me.toast('2 tracks put back.').waitFor();
});

story('a cleared playlist has its tracks again, in front of what others added', async (t) => {
  const { device } = t;
  const { me, plid } = await opened(t, Albums.lanterns);
  const before = await stored(device, plid);
  const clear = async () => {
    await me.toLists();
    await me.menuOf('nav', 'Party');
    await me.choose('Clear playlist');
    assert.equal(await me.question.locator('#question-text').textContent(), '5 tracks are removed from it.');
    await me.answer('Clear');
    await me.undoBar.filter({ hasText: '“Party” cleared' }).waitFor();
  };
  await clear();
  await me.undo();
  await eventually(() => stored(device, plid), before);
  await clear();
  await device.send('playlists:pl/addItems', { plid, items: ['files:tree/Velka%20Torrin/Small%20Hours'] });
  await me.undo();
  await eventually(() => device.titles(path(plid)), [...Lanterns, ...Hours]);
});

story('moved tracks go back, several presses of the keys as one', async (t) => {
  const { device, size } = t;
  const { me, plid, order } = await opened(t, Albums.lanterns, Albums.hours);
  const whole = [...Lanterns, ...Hours];
  if (size === 'desktop') {
    await me.row('main', second).focus();
    for (let press = 0; press < 3; press += 1) await me.page.keyboard.press('Alt+ArrowDown');
    await me.undoBar.filter({ hasText: `“${second}” moved to 5 of 9` }).waitFor();
    await me.page.keyboard.press('Control+z');
    await eventually(order, whole);
  }
  await me.chooseRows('main', first, third);
  await me.drag(first, fourth);
  await me.undoBar.filter({ hasText: '2 tracks moved' }).waitFor();
  assert.deepEqual(await order(), [second, fourth, first, third, fifth, ...Hours]);
  await me.undo();
  await eventually(order, whole);
  await eventually(() => me.titles('main'), whole);

  if (size === 'phone') await me.press(me.page.locator('#main [aria-label="End choosing"]'));
  else await me.page.keyboard.press('Escape');
  await me.drag(first, fourth);
  await me.undoBar.filter({ hasText: `“${first}” moved` }).waitFor();
  await device.send('playlists:pl/removeItems', { plid, items: [3] });
  await me.undo();
  await me.toast('The list has changed meanwhile: 1 track could not be moved back.').waitFor();
  assert.deepEqual(await order(), [second, third, fourth, fifth, ...Hours]);
});

story('a playlist is sorted, and has its former order again', async (t) => {
  const { device } = t;
  const { me, plid, order } = await opened(t, Albums.tides, Albums.lanterns);
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Sort by …', 'Title');
  const sorted = [...Tides, ...Lanterns].sort(new Intl.Collator('en').compare);
  await eventually(order, sorted);
  await me.undoBar.filter({ hasText: 'Sorted by title' }).waitFor();
  await device.send('playlists:pl/removeItems', { plid, items: [0] });
  const [kitchen] = (await device.rows(`files:tree/${Albums.hours.split('/').map(encodeURIComponent).join('/')}`)).rows;
  await device.send('playlists:pl/addItems', { plid, items: [kitchen.path] });
  await me.undo();
  const restored = [...Tides, ...Lanterns].filter((title) => title !== sorted[0]);
  // What came meanwhile stands where it came to: behind the track that was the last one.
  restored.splice(restored.indexOf(sorted.at(-1)) + 1, 0, 'Kitchen Radio');
  await eventually(order, restored);
  await me.toast('The former order is back. The list has changed meanwhile: 1 track had no former place.').waitFor();
});

story('duplicates are removed but for the first, and come back', async (t) => {
  const { device } = t;
  const { me, order } = await opened(t, Albums.hours, Albums.lanterns, Albums.hours);
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Remove duplicates');
  await eventually(order, [...Hours, ...Lanterns]);
  await me.undo();
  await eventually(order, [...Hours, ...Lanterns, ...Hours]);
  await device.playlist('Other', Albums.hours);
  await me.menuOf('nav', 'Other');
  await me.choose('Remove duplicates');
  await me.toast('“Other” has no duplicates.').waitFor();
}, { sizes: ['desktop'] });

story('a deleted playlist comes back with its name, its modes and its collections', async (t) => {
  const { device, open } = t;
  const plid = await device.playlist('Party', Albums.lanterns);
  const before = await stored(device, plid);
  const { i32: clid } = await device.send('playlists:cl/create', { name: 'Weekend' });
  const { i32: other } = await device.send('playlists:cl/create', { name: 'Weekdays' });
  for (const id of [clid, other]) await device.send('playlists:cl/addItem', { clid: id, plid });
  await device.send('playlists:pl/setShuffle', { plid, mode: 1 });
  await device.send('playlists:pl/setRepeat', { plid, mode: 2 });
  t.allow(/422/);
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Delete playlist');
  await me.answer('Delete');
  await me.undoBar.filter({ hasText: '“Party” deleted' }).waitFor();
  await device.send('playlists:cl/delete', { clid: other });
  await me.undo();
  await me.row('nav', 'Party').waitFor();
  await me.toast(/^“Party” is back\. “Weekdays”: /).waitFor();
  const again = (await device.rows('playlists:pl/list')).rows.find((row) => row.title === 'Party');
  const id = Number(again.path.split('/').at(-1));
  assert.deepEqual(await stored(device, id), before);
  assert.deepEqual(await device.titles(`playlists:cl/items?clid=${clid}`), ['Party']);
  const menu = (await device.rows(`playlists:pl/context?plid=${id}`)).rows;
  assert.deepEqual(menu.filter(({ value }) => typeof value?.bool === 'boolean').map(({ value }) => value.bool), [true, true]);
});

story('a merge is taken back: both lists are as they were', async (t) => {
  const { device, open, size } = t;
  const target = await device.playlist('Evening', Albums.hours);
  const source = await device.playlist('Canal', Albums.lanterns);
  const before = await stored(device, source);
  const me = await open();
  await me.openList('Canal');
  await me.toLists();
  await me.menuOf('nav', 'Canal');
  await me.choose('Merge with playlist', 'Evening', 'Append');
  await me.answer('Merge');
  await me.undoBar.filter({ hasText: '“Canal” merged into “Evening”' }).waitFor();
  // That it is gone needs no words of its own.
  if (size === 'desktop') await eventually(() => me.heading().textContent(), 'PlayQueue');
  assert.equal(await me.toast('is gone').count(), 0);
  assert.deepEqual(await device.titles(path(target)), [...Hours, ...Lanterns]);
  // One of those that came is removed by others.
  await device.send('playlists:pl/removeItems', { plid: target, items: [4] });
  await me.undo();
  await me.toast('“Canal” is back. The list has changed meanwhile: 1 track had left “Evening” already.').waitFor();
  assert.deepEqual(await device.titles(path(target)), Hours);
  const again = (await device.rows('playlists:pl/list')).rows.find((row) => row.title === 'Canal');
  assert.deepEqual(await stored(device, Number(again.path.split('/').at(-1))), before);
});

story('a list that others changed while the question stood is left as it is', async (t) => {
  const { device } = t;
  const { me, plid, order } = await opened(t, Albums.lanterns);
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Clear playlist');
  await me.question.waitFor();
  await device.send('playlists:pl/removeItems', { plid, items: [0] });
  await me.answer('Clear');
  await me.toast('The playlist has changed meanwhile. Nothing was done.').waitFor();
  assert.deepEqual(await order(), Lanterns.slice(1));
});

story('the offer to undo ends after ten seconds, later while it has the focus', async (t) => {
  const { open, device } = t;
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.page.clock.install();
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  await me.row('main', second).focus();
  await me.page.keyboard.press('Delete');
  await me.undoBar.waitFor();
  await me.undoBar.getByRole('button', { name: 'Undo' }).focus();
  await me.page.clock.fastForward(60000);
  assert.equal(await me.undoBar.count(), 1);
  await me.row('main', first).focus();
  await me.page.clock.fastForward(9000);
  assert.equal(await me.undoBar.count(), 1);
  await me.page.clock.fastForward(1500);
  await me.undoBar.waitFor({ state: 'detached' });
}, { sizes: ['desktop'] });
