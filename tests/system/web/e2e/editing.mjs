// Edits on a slow wire, and beside others who edit the same list: they hit what was meant, or nothing.

import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const [first, second, third, fourth, fifth] = Lanterns;

// A playlist on a slow wire, open and with its rows on screen.
async function slowly({ device, open, lay }, thereAndBack, ...items) {
  const plid = await device.playlist('Party', ...items);
  const wire = await lay();
  const me = await open({ at: wire.url });
  await me.openList('Party');
  await me.page.locator('#main .row.movable').first().waitFor();
  wire.slow(thereAndBack);
  return { me, order: () => device.titles(`playlists:pl/items/${plid}`), path: `playlists:pl/items/${plid}`, plid };
}

story('"Remove" pressed twice removes what was chosen, once', async (t) => {
  const { me, order } = await slowly(t, 150, Albums.lanterns, Albums.hours);
  await me.chooseRows('main', second, third, fourth);
  await me.pressTwice(me.page.locator('#main').getByRole('button', { name: 'Remove' }));
  const left = [first, fifth, ...Hours];
  await eventually(order, left);
  await eventually(() => me.titles('main'), left);
  await new Promise((done) => setTimeout(done, 600)); // a second removal would have come by now
  assert.deepEqual(await order(), left);
  assert.equal(await me.page.locator('dialog[open]').count(), 0);
});

story('a track moved by five key presses on a slow wire goes five places', async (t) => {
  const { me, order } = await slowly(t, 200, Albums.lanterns, Albums.hours);
  await me.row('main', second).focus();
  for (let press = 0; press < 5; press += 1) {
    await me.page.keyboard.press('Alt+ArrowDown');
    await new Promise((done) => setTimeout(done, 200));
  }
  const moved = [first, third, fourth, fifth, Hours[0], Hours[1], second, Hours[2], Hours[3]];
  await eventually(order, moved);
  await eventually(() => me.titles('main'), moved);
  await eventually(() => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), second);
}, { sizes: ['desktop'] });

story('what is removed is what was on screen, though others moved it meanwhile', async (t) => {
  const { device, allow } = t;
  const { me, order, plid } = await slowly(t, 300, Albums.lanterns, Albums.hours);
  allow(/409/);
  await me.row('main', third).focus();
  await device.send('playlists:pl/moveItems', { plid, items: [8], to: 0 });
  await me.page.keyboard.press('Delete'); // before the page can know
  const left = [Hours[3], first, second, fourth, fifth, Hours[0], Hours[1], Hours[2]];
  await eventually(order, left);
  await eventually(() => me.titles('main'), left);
}, { sizes: ['desktop'] });

story('a menu that stays open acts on its own track', async (t) => {
  const { device, allow } = t;
  const { me, order, plid } = await slowly(t, 0, Albums.lanterns);
  allow(/409/);
  await me.menuOf('main', fourth);
  await device.send('playlists:pl/removeItems', { plid, items: [0] });
  await me.choose('Remove track');
  await me.sheetCloses();
  await eventually(order, [second, third, fifth]);
  await eventually(() => me.titles('main'), [second, third, fifth]);
});

story('a track that is removed by its menu leaves at once, as by its key', async (t) => {
  const { me, order } = await slowly(t, 1000, Albums.lanterns);
  await me.menuOf('main', third);
  await me.choose('Remove track');
  await me.sheetCloses();
  const left = [first, second, fourth, fifth];
  assert.deepEqual(await me.titles('main'), left);
  assert.deepEqual(await order(), Lanterns); // the device has not heard of it yet
  await eventually(order, left);
  await me.undoBar.filter({ hasText: `“${third}” removed` }).waitFor();
  assert.equal(await me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), fourth);
});

story('the second of two presses on "Remove track" is none on what is beneath', async (t) => {
  const { me, order } = await slowly(t, 300, Albums.lanterns, Albums.hours);
  await me.menuOf('main', second);
  await me.pressTwice(me.entry('Remove track'));
  const left = [first, third, fourth, fifth, ...Hours];
  await eventually(order, left);
  await eventually(() => me.titles('main'), left);
  // A finger's second press is on a button that is disabled: where the page is late the browser takes the focus for it.
  if (!me.touch) assert.equal(await me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), third);
  assert.equal(await me.page.locator('#main .row.selected:not([hidden])').count(), 0);
  assert.equal(await me.nowTitle(), 'Nothing is playing');
  assert.equal(await me.page.locator('dialog[open]').count(), 0);
});

story('a track that is moved by its menu stands there at once', async (t) => {
  const { me, order } = await slowly(t, 1000, Albums.lanterns);
  await me.menuOf('main', fourth);
  await me.choose('Move track');
  await me.enter('2');
  await me.sheetCloses();
  const moved = [first, fourth, second, third, fifth];
  assert.deepEqual(await me.titles('main'), moved);
  await eventually(order, moved);
  await eventually(() => me.titles('main'), moved);
});

story('a late answer closes its own menu only', async (t) => {
  const { me, order } = await slowly(t, 600, Albums.lanterns);
  await me.menuOf('main', second);
  await me.choose('Add to playlist', 'Party', 'Append');
  await me.closeSheet();
  await me.menuOf('main', third);
  await eventually(order, [...Lanterns, second]);
  await eventually(() => me.titles('main'), [...Lanterns, second]);
  assert.equal(await me.sheet.locator('.sheet-title').textContent(), third);
});

story('the menu of a track whose number is another one by now offers nothing', async (t) => {
  const { device } = t;
  const { me, plid } = await slowly(t, 1500, Albums.lanterns);
  await device.send('playlists:pl/removeItems', { plid, items: [4] });
  const [kitchen] = (await device.rows(`files:tree/${Albums.hours.split('/').map(encodeURIComponent).join('/')}`)).rows;
  await device.send('playlists:pl/addItems', { plid, items: [kitchen.path] });
  await me.menuOf('main', fifth); // before the page can know
  assert.equal(await me.sheet.locator('.sheet-title').textContent(), fifth);
  assert.equal(await me.sheet.locator('.menu-entry').count(), 0);
  assert.equal(await me.sheet.locator('.menu-empty').textContent(), 'This track is gone already.');
});

story('a track is not added to a list that has the number of the chosen one', async (t) => {
  const { device, allow } = t;
  allow(/409/);
  const { me } = await slowly(t, 0, Albums.lanterns);
  const other = await device.playlist('Other');
  await me.menuOf('main', second);
  await me.choose('Add to playlist', 'Other');
  await me.entry('Append').waitFor();
  await device.send('playlists:pl/delete', { plid: other });
  assert.equal(await device.playlist('Another'), other);
  await me.choose('Append');
  await me.toast('Could not add items to playlist. The playlist has changed meanwhile.').waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${other}`), []);
}, { sizes: ['desktop'] });

story('after several tracks are removed the focus stands on the one behind them', async (t) => {
  const { me } = await slowly(t, 0, Albums.lanterns, Albums.hours);
  await me.row('main', second).locator('.row-title').click();
  await me.page.keyboard.press('Shift+ArrowDown');
  await me.page.keyboard.press('Shift+ArrowDown');
  await me.page.keyboard.press('Delete');
  await eventually(() => me.titles('main'), [first, fifth, ...Hours]);
  await eventually(() => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), fifth);
}, { sizes: ['desktop'] });

story('equal messages are read out each time', async (t) => {
  const { device } = t;
  const { me } = await slowly(t, 0, Albums.lanterns);
  await me.page.evaluate(() => {
    window.heard = [];
    new MutationObserver((changes) => {
      for (const { target, addedNodes, type } of changes) {
        if (!target.parentElement?.closest('[aria-live], [role=status], [role=alert]') && !target.matches?.('[aria-live], [role=status], [role=alert]')) continue;
        if (type === 'characterData') window.heard.push(target.data);
        for (const node of addedNodes) window.heard.push(node.textContent);
      }
    }).observe(document.body, { subtree: true, childList: true, characterData: true });
  });
  const heard = () => me.page.evaluate(() => window.heard.filter((text) => /Last Light Out|1 row removed/.test(text)).length);
  for (const press of [1, 2]) {
    const plid = 1;
    await me.row('main', fifth).focus();
    await me.page.keyboard.press('Delete');
    await me.row('main', fifth).waitFor({ state: 'detached' });
    await eventually(heard, press);
    if (press === 1) await device.send('playlists:pl/addItems', { plid, items: [`files:tree/${Albums.lanterns.split('/').map(encodeURIComponent).join('/')}/05%20Last%20Light%20Out.flac`] });
    await me.row('main', fifth).waitFor({ state: press === 1 ? 'visible' : 'detached' });
  }
}, { sizes: ['desktop'] });

story('clearing, deleting and merging ask by a dialog; a list is not offered to itself', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  await device.playlist('Other', Albums.lanterns);
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.choose('Merge with playlist');
  await me.entry('Other').waitFor();
  assert.equal(await me.entry('Party').count(), 0);
  await me.choose('Other', 'Append');
  assert.equal(await me.question.locator('h2').textContent(), 'Merge “Party” into “Other”?');
  await me.answer('Cancel');
  for (const [entry, title] of [['Clear playlist', 'Clear “Party”?'], ['Delete playlist', 'Delete “Party”?']]) {
    await me.menuOf('nav', 'Party');
    await me.choose(entry);
    await eventually(() => me.question.locator('h2').textContent(), title);
    // The key that opened it does not answer it.
    assert.equal(await me.question.getByRole('button', { name: 'Cancel' }).evaluate((button) => button === document.activeElement), true);
    await me.answer('Cancel');
  }
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), Hours);
});

story('removing more than ten tracks asks first', async (t) => {
  const { me, order } = await slowly(t, 300, Albums.lanterns, Albums.hours, Albums.tides);
  await me.row('main', first).focus();
  await me.page.keyboard.press('Control+a');
  await me.page.keyboard.press('Delete'); // before the page can have read them all
  assert.equal(await me.question.locator('h2').textContent(), 'Remove 13 tracks?');
  await me.answer('Cancel');
  assert.equal((await order()).length, 13);
  await me.page.keyboard.press('Delete');
  await me.answer('Remove');
  await eventually(order, []);
}, { sizes: ['desktop'] });

story('names of blanks alone are refused', async ({ device, open }) => {
  await device.playlist('Party');
  const me = await open();
  await me.toLists();
  for (const [begin, names] of [
    [() => me.press(me.row('nav', 'Create New Playlist').locator('.row-title')), ['   ', '\u00a0\u3000', '\u200b']],
    [async () => { await me.menuOf('nav', 'Party'); await me.choose('Rename'); }, ['  ']],
  ]) {
    await begin();
    for (const name of names) {
      await me.enter(name);
      await eventually(() => me.sheet.locator('.field-problem').textContent(), 'A name needs something that can be seen.');
    }
    await me.closeSheet();
  }
  assert.deepEqual(await device.titles('playlists:pl/list'), ['Create new playlist', 'Party']);
});
