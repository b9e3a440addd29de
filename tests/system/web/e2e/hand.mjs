// What a remote says back: what plays and what does not, what is empty, and that the device is out of reach.

import assert from 'node:assert/strict';
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { Albums, Hours, Lanterns, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const Outage = /ERR_CONNECTION_REFUSED|ERR_CONNECTION_RESET|ERR_EMPTY_RESPONSE|ERR_INCOMPLETE_CHUNKED_ENCODING|ERR_SOCKET_NOT_CONNECTED/;

const state = async (device) => (await device.value('player:state')).string;
const position = async (device) => (await device.value('player:position')).i64;
const head = (me) => me.page.locator('#main .screen:not([hidden]) .hero');
const empty = (me, pane = 'main') => me.page.locator(`#${pane} .screen:not([hidden]) .empty`);

story('"Play" of the list that plays is "Pause", and goes on where it was', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  const button = (name) => head(me).getByRole('button', { name, exact: true });
  await me.press(button('Play'));
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await device.send('player:seekTime', { time: 20000 });
  await me.press(button('Pause'));
  await eventually(() => state(device), 'paused');
  await me.press(button('Play'));
  await eventually(() => state(device), 'playing');
  assert.ok(await position(device) >= 20000);
  await me.openList('Other');
  await me.row('main', Hours[0]).waitFor();
  assert.equal(await button('Pause').count(), 0);
}, { player: true });

story('the picture of the playing row pauses it and does not begin it again', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[1]);
  await eventually(() => me.nowTitle(), Lanterns[1]);
  await eventually(() => state(device), 'playing');
  await device.send('player:seekTime', { time: 20000 });
  await me.press(me.row('main', Lanterns[1]).locator('.art'));
  await eventually(() => state(device), 'paused');
  assert.ok(await position(device) >= 20000);
  await me.press(me.row('main', Lanterns[1]).locator('.art'));
  await eventually(() => state(device), 'playing');
  assert.ok(await position(device) >= 20000);
}, { player: true });

story('a shuffled list does not always begin with its first track', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns, Albums.hours);
  await device.send('playlists:pl/setShuffle', { plid, mode: 1 });
  const me = await open();
  // Where chance stands: not in the first row.
  await me.page.evaluate(() => (Math.random = () => 0.7));
  await me.openList('Party');
  await me.press(head(me).getByRole('button', { name: 'Play', exact: true }));
  await eventually(() => me.nowTitle(), Hours[1]);
  assert.equal((await device.value('player:playMode')).string, 'shuffle');
}, { player: true });

story('without a connection the clock rests, and no control looks as if it did anything', async ({ device, open, allow }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  const bar = await me.controls();
  const controls = bar.locator('.transport button, .seek .range, .volume .range, .volume button');
  await eventually(() => bar.locator('.play-button').isEnabled(), true);
  allow(Outage);
  await device.kill();
  await me.page.locator('#banner').waitFor();
  await eventually(() => controls.evaluateAll((all) => all.filter((one) => !one.disabled).map((one) => one.ariaLabel)), []);
  const time = bar.locator('.seek .time').first();
  const before = await time.textContent();
  // By the page's own clock.
  await me.page.evaluate(() => new Promise((done) => setTimeout(done, 2200)));
  assert.equal(await time.textContent(), before);
  await me.closeControls();
  assert.equal(await head(me).getByRole('button', { name: 'Pause', exact: true }).isDisabled(), true);
  await me.press(me.row('main', Lanterns[2]).locator('.row-more'));
  await me.toast('The device cannot be reached.').first().waitFor();
  await device.start();
  await me.page.locator('#banner').waitFor({ state: 'hidden' });
}, { player: true, sizes: ['desktop'] });

story('an empty list says what there is to do about it', async ({ device, open }) => {
  await device.playlist('Party');
  const { i32: clid } = await device.send('playlists:cl/create', { name: 'Weekend' });
  const me = await open();
  await me.openList('Party');
  // A phone shows one of the two at a time.
  const dragging = me.touch ? '' : ', or drag it here';
  await eventually(() => empty(me).textContent(), `No tracks yet. In Music, press + beside a track or folder${dragging}.`);
  await me.openList('Weekend');
  await eventually(() => empty(me).textContent(), 'No playlists in this collection yet. Add some here, or by the menu of a playlist.');
  await me.press(head(me).getByRole('button', { name: 'Add playlists' }));
  await me.choose('Party');
  await me.toast('“Party” added to “Weekend”.').waitFor();
  await me.row('main', 'Party').waitFor();
  assert.deepEqual(await device.titles(`playlists:cl/items?clid=${clid}`), ['Party']);
});

story('an empty music folder is named', async ({ device, open }) => {
  await device.kill('SIGTERM');
  device.music = join(device.folder, 'no-music');
  mkdirSync(device.music);
  await device.start();
  await device.ready();
  const me = await open();
  await me.toMusic();
  await eventually(() => empty(me, 'side').textContent(), `There is no music in ${device.music} yet. Put audio files there: they appear here by themselves.`);
}, { sizes: ['desktop'] });

story('a playlist that is made while choosing where to add gets the tracks', async ({ device, open }) => {
  await device.playlist('Party');
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Quillmarsh Ensemble');
  await me.menuOf('side', 'Tides and Clockwork');
  await me.choose('To another list');
  await me.entry('Create New Playlist').waitFor();
  assert.equal(await me.entry('Create New Collection').count(), 0);
  await me.choose('Create New Playlist');
  await me.enter('Chamber');
  await me.toast('4 tracks added to Chamber.').waitFor();
  await me.sheetCloses();
  const made = (await device.rows('playlists:pl/list')).rows.find((row) => row.title === 'Chamber');
  assert.deepEqual(await device.titles(made.path), Tides);
});

story('a playlist that is made in the menu of a track gets that track', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.menuOf('main', Lanterns[2]);
  await me.choose('Add to playlist', 'Create new playlist');
  await me.enter('Best');
  await me.toast(`“${Lanterns[2]}” added to “Best”.`).waitFor();
  await me.sheetCloses();
  const made = (await device.rows('playlists:pl/list')).rows.find((row) => row.title === 'Best');
  await eventually(() => device.titles(made.path), [Lanterns[2]]);
});

story('"Move track" counts from 1 and refuses what is no place', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.menuOf('main', Lanterns[0]);
  assert.equal(await me.entry('Move track').locator('.menu-detail').textContent(), 'Position 1');
  await me.choose('Move track');
  const input = me.sheet.getByRole('textbox', { name: 'New position, 1 to 5' });
  await eventually(() => input.inputValue(), '1');
  for (const text of ['abc', '0', '6', '-1', '']) {
    await me.enter(text);
    await eventually(() => me.sheet.locator('.field-problem').textContent(), 'Enter a number from 1 to 5.');
  }
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), Lanterns);
  await me.enter('5');
  await me.sheetCloses();
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), [...Lanterns.slice(1), Lanterns[0]]);
});

for (const [width, height] of [[1024, 768], [768, 1024]]) {
  story(`the lists stay beside the music at ${width} × ${height}`, async ({ device, open }) => {
    await device.playlist('Party', Albums.lanterns);
    const me = await open({ viewport: { width, height } });
    await me.openList('Party');
    await me.toMusic();
    for (const pane of ['#nav', '#main', '#side']) assert.ok((await me.page.locator(pane).boundingBox())?.width > 150, pane);
    await me.row('nav', 'Party').waitFor();
    await me.row('main', Lanterns[0]).waitFor();
  }, { sizes: ['desktop'] });
}

story('on a tablet what plays is named in full, the volume can be set and a menu is seen whole', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open({ viewport: { width: 1024, height: 768 }, hasTouch: true });
  await me.openList('Party');
  await me.toMusic();
  await me.playRow(Hours[2]);
  await eventually(() => me.nowTitle(), Hours[2]);
  const isCut = (name) => me.page.locator(name).evaluate((one) => one.scrollWidth > one.clientWidth || one.scrollHeight > one.clientHeight);
  assert.deepEqual([await isCut('#player .now-title'), await isCut('#player .now-line')], [false, false]);
  assert.ok((await me.page.locator('#player .volume .range').boundingBox()).width > 60);
  await me.menuOf('nav', 'Party');
  await me.entry('Delete playlist').waitFor();
  assert.equal(await isCut('dialog.sheet .menu-entries'), false);
}, { player: true, sizes: ['desktop'] });

for (const [width, height] of [[1440, 900], [1024, 768]]) {
  story(`the title above the lists stands in the line of its tools at ${width} × ${height}`, async ({ open }) => {
    const me = await open({ viewport: { width, height } });
    await me.toMusic();
    const middle = (locator) => locator.evaluate((element) => {
      const range = document.createRange();
      range.selectNodeContents(element);
      const box = range.getBoundingClientRect();
      return box.y + box.height / 2;
    });
    const tools = await middle(me.page.locator('#nav [aria-label="Find in this list"]'));
    assert.ok(Math.abs(await middle(me.heading('nav')) - tools) < 2);
  }, { sizes: ['desktop'] });
}

story('capital letters keep their accents in titles', async ({ device, open }) => {
  await device.playlist('Årstider', Albums.ferry);
  const me = await open();
  await me.openList('Årstider');
  // Nothing of a title lies where it is cut off.
  const isWhole = async (texts, title) => {
    await me.still();
    const [cut, whole] = [await texts.screenshot(), await title.evaluate((one) => (one.style.overflow = 'visible')).then(() => texts.screenshot())];
    return cut.equals(whole);
  };
  assert.equal(await isWhole(head(me).locator('.hero-texts'), me.heading()), true);
  await me.playRow('Über dem Maschinenraum');
  await eventually(() => me.nowTitle(), 'Über dem Maschinenraum');
  await device.send('player:pause', {});
  await me.page.locator('#player .now').click();
  const large = me.page.locator('dialog.large[open]');
  await large.waitFor();
  assert.equal(await isWhole(large.locator('.large-texts'), large.locator('.large-title')), true);
}, { player: true });

story('a menu is headed by what it belongs to', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  const head = () => me.sheet.locator('.sheet-texts > *').allTextContents();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  await me.entry('Rename').waitFor();
  assert.deepEqual(await head(), ['Party']);
  await me.choose('Rename');
  await eventually(head, ['Party', 'Rename']);
  await me.closeSheet();
  await me.openList('Party');
  await me.menuOf('main', Lanterns[1]);
  await me.entry('Remove track').waitFor();
  assert.deepEqual(await head(), [Lanterns[1], 'Velka Torrin']);
});

story('the picture on the button to play is seen', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open({ colorScheme: 'light' });
  await me.openList('Party');
  await me.playRow(Lanterns[1]);
  await eventually(() => me.nowTitle(), Lanterns[1]);
  const button = me.page.locator('#player .play-button');
  await eventually(() => button.isEnabled(), true);
  // Its colours change by and by.
  await eventually(() => button.evaluate((one) => getComputedStyle(one).color), 'rgb(255, 255, 255)');
}, { player: true });

story('names that run from right to left keep their beginning', async ({ device, open }) => {
  const name = 'רשימת השמעה ארוכה מאוד שאין לה מקום בשום מסך ובשום חלון שהוא ולכן היא נחתכת בסופה';
  await device.playlist(name, Albums.hours);
  const me = await open();
  await me.toLists();
  const title = me.page.locator('#nav .row:not([hidden]) .row-title', { hasText: name }).first();
  await title.waitFor();
  const isInside = await title.evaluate((element) => {
    const range = document.createRange();
    range.setStart(element.firstChild, 0);
    range.setEnd(element.firstChild, 3);
    const [letters, box] = [range.getBoundingClientRect(), element.getBoundingClientRect()];
    return letters.left >= box.left - 1 && letters.right <= box.right + 1;
  });
  assert.equal(isInside, true);
});

story('keys of one letter can be switched off, and stay off', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[1]);
  await eventually(() => me.nowTitle(), Lanterns[1]);
  await me.page.getByRole('button', { name: 'Settings' }).click();
  const letters = me.page.getByRole('switch', { name: 'Keys of one letter' });
  assert.equal(await letters.getAttribute('aria-checked'), 'true');
  await letters.click();
  await me.page.keyboard.press('Escape');
  await me.window.reload();
  await me.row('main', Lanterns[1]).waitFor();
  await eventually(() => me.nowTitle(), Lanterns[1]);
  await me.row('main', Lanterns[1]).focus();
  for (const key of ['n', 'p', 's', 'm', 'x', '?', '/', 'f', 'j']) await me.page.keyboard.press(key);
  await me.page.keyboard.press('ArrowDown');
  assert.equal(await me.page.locator('dialog[open]').count(), 0);
  assert.equal(await me.page.locator('#main .row.selected').count(), 0);
  assert.equal(await me.page.locator('#main .find:visible').count(), 0);
  assert.equal((await device.value('player:playMode')).string, 'normal');
  assert.equal(await me.nowTitle(), Lanterns[1]);
}, { player: true, sizes: ['desktop'] });

story('what can be pressed is 44 pixels high', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  const low = () => me.page.locator('button:visible').evaluateAll((buttons) => buttons
    .map((button) => [button.ariaLabel ?? button.textContent, button.offsetHeight])
    .filter(([, height]) => height < 44).map(String));
  assert.deepEqual(await low(), []);
  await me.openList('Party');
  await me.row('main', Lanterns[1]).waitFor();
  assert.deepEqual(await low(), []);
  await me.chooseRows('main', Lanterns[1], Lanterns[2]);
  assert.deepEqual(await low(), []);
  await me.page.keyboard.press('Escape');
  await me.menuOf('main', Lanterns[1]);
  await me.entry('Remove track').waitFor();
  assert.deepEqual(await low(), []);
});
