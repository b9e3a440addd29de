// axe-core finds nothing on any screen, in any state of it, however the page is shown.

import assert from 'node:assert/strict';
import { findings } from '../support/axe.mjs';
import { Albums, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const side = (me) => me.page.locator('#side .screen:not([hidden])');
const main = (me) => me.page.locator('#main .screen:not([hidden])');

// The screens in the order in which they are gone through: each leads from the one before to a state, and `end` out of it.
const States = [
  { name: 'the lists', go: (me) => me.toLists() },
  { name: 'the menu of a list', go: async (me) => { await me.menuOf('nav', 'Party'); await me.entry('Rename').waitFor(); } },
  { name: 'a name', go: (me) => me.choose('Rename') },
  { name: 'a name that is refused', go: async (me) => { await me.enter('  '); await me.sheet.locator('.field-problem:not(:empty)').waitFor(); }, end: async (me) => {
    await me.page.keyboard.press('Escape');
    await me.entry('Rename').waitFor();
    await me.page.keyboard.press('Escape');
    await me.sheetCloses();
  } },
  { name: 'a question', go: async (me) => { await me.menuOf('nav', 'Party'); await me.choose('Clear playlist'); await me.question.waitFor(); }, end: (me) => me.answer('Cancel') },
  { name: 'an empty list', go: (me) => me.openList('Nothing') },
  { name: 'an empty collection', go: (me) => me.openList('Weekend') },
  { name: 'a list', go: async (me) => { await me.openList('Party'); await me.row('main', Lanterns[1]).waitFor(); } },
  { name: 'a list that plays', go: async (me) => { await me.playRow(Lanterns[1]); await eventually(() => me.nowTitle(), Lanterns[1]); } },
  { name: 'the menu of a track', go: async (me) => { await me.menuOf('main', Lanterns[2]); await me.entry('Move track').waitFor(); } },
  { name: 'a place', go: (me) => me.choose('Move track'), end: (me) => me.closeSheet() },
  { name: 'choosing', go: (me) => me.chooseRows('main', Lanterns[2], Lanterns[3]), end: async (me) => {
    if (me.touch) await me.press(main(me).locator('[aria-label="End choosing"]'));
    else await me.page.keyboard.press('Escape');
  } },
  { name: 'finding', go: async (me) => {
    await me.press(main(me).locator('[aria-label="Find in this list"]').first());
    await me.page.keyboard.type('boats');
    await eventually(() => main(me).locator('.find-count').textContent(), '1 of 1');
  }, end: (me) => me.page.keyboard.press('Escape') },
  { name: 'what can be undone', go: async (me) => { await me.menuOf('main', Lanterns[4]); await me.choose('Remove track'); await me.undoBar.waitFor(); }, end: (me) => me.undo() },
  { name: 'the places of the music', go: (me) => me.toMusic() },
  { name: 'what is found', go: async (me) => { await me.search('e'); await me.row('side', 'Artists · 3').waitFor(); } },
  { name: 'what is found, being chosen', go: async (me) => {
    await me.press(side(me).locator('[aria-label="Choose several"]'));
    await me.press(me.row('side', 'Velka Torrin').locator('.row-title'));
  }, end: (me) => me.press(side(me).locator('[aria-label="End choosing"]')) },
  { name: 'the menu of what is found', go: async (me) => { await me.menuOf('side', 'Velka Torrin'); await me.entry('Play next').waitFor(); }, end: (me) => me.closeSheet() },
  { name: 'all that is found', go: async (me) => {
    await side(me).locator('.scroller').evaluate((scroller) => scroller.scrollTo(0, scroller.scrollHeight));
    await me.press(me.row('side', 'Show all 17 tracks').locator('.row-title'));
    await me.heading('side').filter({ hasText: 'Tracks for “e”' }).waitFor();
  }, end: (me) => me.back('side') },
  { name: 'nothing found', go: async (me) => { await me.search('no such music'); await side(me).locator('.empty').waitFor(); } },
  { name: 'a text that is refused', go: async (me) => { await me.search('a b c d e f g h i j k l m'); await side(me).locator('.empty', { hasText: 'too many' }).waitFor(); }, end: (me) => me.search('') },
  ...['Artists', 'Albums', 'Genres', 'Recently added'].map((place) => ({ name: place, go: async (me) => {
    await me.toMusic(place);
    await side(me).locator('.row:not([hidden]) .row-more').first().waitFor();
  }, end: (me) => me.page.keyboard.press('/') })),
  { name: 'an album', go: async (me) => { await me.toMusic('Albums', 'Nachtfähre'); await me.row('side', 'Ablegen').waitFor(); }, end: (me) => me.page.keyboard.press('/') },
  { name: 'the folders', go: (me) => me.toFolders('Velka Torrin') },
  { name: 'where to add', go: (me) => me.menuOf('side', 'Small Hours'), end: (me) => me.closeSheet() },
  { name: 'the large view', go: async (me) => { await me.page.locator('#player .now').click(); await me.page.locator('dialog.large[open]').waitFor(); } },
  { name: 'what comes next', go: async (me) => {
    await me.page.locator('dialog.large .upnext-button').click();
    await me.page.locator('.upnext').getByText(Lanterns[3]).waitFor();
  }, end: async (me) => { await me.press(me.page.locator('dialog.large .large-head [aria-label="Close"]')); } },
  { name: 'the sleep timer', go: async (me) => { await me.openSleep(); await me.entry('15 minutes').waitFor(); }, end: async (me) => {
    await me.choose('15 minutes');
    await me.sheetCloses();
    await me.closeControls();
  } },
  { name: 'what was imported', go: async (me) => {
    await me.toLists();
    const chooser = me.page.waitForEvent('filechooser');
    await me.press(me.page.getByRole('button', { name: 'Import playlist files' }));
    await (await chooser).setFiles({ name: 'Sunday.m3u', mimeType: 'audio/x-mpegurl', buffer: Buffer.from('#EXTM3U\nno/such.flac\n') });
    await me.page.locator('dialog.report').waitFor();
  }, end: (me) => me.page.keyboard.press('Escape') },
  { name: 'the settings', go: async (me) => { await me.page.evaluate(() => document.getElementById('settings').click()); await me.page.locator('dialog.settings').waitFor(); }, end: (me) => me.page.keyboard.press('Escape') },
  { name: 'the keys', go: async (me) => { await me.page.evaluate(() => document.getElementById('help').click()); await me.page.locator('dialog.help').waitFor(); }, end: (me) => me.page.keyboard.press('Escape') },
];

const phone = { viewport: { width: 320, height: 640 }, hasTouch: true, isMobile: true };
// Twice as large: half as many of the page's pixels on the same screen.
const zoomed = { viewport: { width: 720, height: 450 }, deviceScaleFactor: 2, hasTouch: true };

for (const [look, options, sizes] of [
  ['light', { colorScheme: 'light' }],
  ['dark', { colorScheme: 'dark' }],
  ['forced colours', { forcedColors: 'active' }],
  ['200 %', zoomed, ['desktop']],
  ['320 pixels wide', phone, ['phone']],
]) {
  story(`axe finds nothing on any screen: ${look}`, async ({ device, open, allow }) => {
    allow(/422.*search|422 .*search/); // a text that is refused
    allow(/409/); // what plays counts as a change of its list; the edit is sent again
    await device.playlist('Party', Albums.lanterns);
    await device.playlist('Nothing');
    await device.send('playlists:cl/create', { name: 'Weekend' });
    const me = await open(options);
    if (look === '200 %') me.touch = true; // one pane at a time, as on a phone
    const found = [];
    for (const { name, go, end } of States) {
      await go(me);
      for (const finding of await findings(me)) found.push(`${name}: ${finding}`);
      await end?.(me);
    }
    assert.deepEqual(found, []);
  }, { player: true, sizes });
}
