// Make a list, add to it, play, reorder, undo, find: once by the keyboard alone, once by what a screen reader is given.

import assert from 'node:assert/strict';
import { Lanterns } from '../support/device.mjs';
import { spokenOf } from '../support/spoken.mjs';
import { eventually, story } from '../support/story.mjs';

const [first, second, ...others] = Lanterns;

// The Tab key until the focus is where it is wanted.
async function tabTo(me, selector) {
  for (let press = 0; press < 80; press += 1) {
    if (await me.page.evaluate((wanted) => Boolean(document.activeElement?.matches(wanted)), selector)) return;
    await me.page.keyboard.press('Tab');
  }
  assert.fail(`the Tab key does not lead to ${selector}`);
}

async function keys(me, ...pressed) {
  for (const key of pressed) await me.page.keyboard.press(key);
}

const focused = (me) => me.page.evaluate(() => {
  const { activeElement: element } = document;
  return element.querySelector('.row-title, .menu-text')?.textContent ?? element.ariaLabel ?? element.textContent;
});

// The arrows until the focus is on what is called so.
async function arrowTo(me, title) {
  for (let press = 0; press < 20; press += 1) {
    if ((await focused(me)) === title) return;
    await keys(me, 'ArrowDown');
  }
  assert.fail(`the arrows do not lead to ${title}, but to ${await focused(me)}`);
}

async function makeAndFill(me) {
  await me.row('nav', 'Create New Playlist').waitFor();
  await tabTo(me, '#nav .row');
  await arrowTo(me, 'Create New Playlist');
  await keys(me, 'Enter');
  await me.sheet.locator('input').waitFor();
  await me.page.keyboard.type('Walk');
  await keys(me, 'Enter');
  await eventually(() => me.heading().textContent(), 'Walk');
  await me.sheetCloses();
  await me.row('side', 'Artists').waitFor();
  await tabTo(me, '#side .row');
  await arrowTo(me, 'Artists');
  await keys(me, 'Enter');
  await me.row('side', 'Velka Torrin').waitFor();
  await tabTo(me, '#side .screen:not([hidden]) .row');
  await arrowTo(me, 'Velka Torrin');
  await keys(me, 'Enter');
  await me.row('side', 'Lanterns on the Canal').waitFor();
  await tabTo(me, '#side .screen:not([hidden]) .row');
  await arrowTo(me, 'Lanterns on the Canal');
  await keys(me, 'm');
  await me.entry('Append').waitFor();
}

story('a list is made, filled, played, reordered and searched by the keyboard alone', async ({ device, open }) => {
  const me = await open();
  const tracks = () => device.titles('playlists:pl/items/1');
  await makeAndFill(me);
  await arrowTo(me, 'Append');
  await keys(me, 'Enter');
  await eventually(tracks, Lanterns);
  await me.row('main', first).waitFor();
  await tabTo(me, '#main .screen:not([hidden]) .row');
  await arrowTo(me, second);
  await keys(me, 'Enter');
  await eventually(() => me.nowTitle(), second);
  await keys(me, 'Alt+ArrowUp');
  await eventually(tracks, [second, first, ...others]);
  await keys(me, 'Control+z');
  await eventually(tracks, Lanterns);
  await keys(me, 'f');
  await me.page.keyboard.type('paper');
  await eventually(() => me.page.locator('#main .row.found .row-title').textContent(), 'Paper Boats');
  await keys(me, 'Escape');
  await eventually(async () => (await device.value('player:state')).string, 'playing');
  await tabTo(me, '#player .play-button');
  await keys(me, ' ');
  await eventually(async () => (await device.value('player:state')).string, 'paused');
}, { player: true, sizes: ['desktop'] });

story('the same is told to a screen reader', async ({ device, open }) => {
  const me = await open();
  await me.row('nav', 'Create New Playlist').waitFor();
  await tabTo(me, '#nav .row');
  await arrowTo(me, 'Create New Playlist');
  await keys(me, 'Enter');
  await me.sheet.locator('input').waitFor();
  assert.deepEqual(await spokenOf(me.sheet), [
    'dialog "Create New Playlist"', 'heading "Create New Playlist"', 'button "Close"',
    'textbox "Create New Playlist" focused', 'button "Cancel"', 'button "Create"',
  ]);
  await me.closeSheet();
  await makeAndFill(me);
  assert.deepEqual(await spokenOf(me.sheet), [
    'dialog "Lanterns on the Canal"', 'heading "Lanterns on the Canal"', 'button "Close"',
    'button "Play" focused', 'button "Play next"',
    'heading "Add to Walk"', 'button "Now"', 'button "Next"', 'button "Append"', 'button "To another list"',
  ]);
  await arrowTo(me, 'Append');
  await keys(me, 'Enter');
  await eventually(() => device.titles('playlists:pl/items/1'), Lanterns);
  await me.row('main', Lanterns[4]).waitFor();
  const rows = async () => (await spokenOf(me.page.locator('#main .screen:not([hidden]) .rows')))
    .filter((line) => line.startsWith('row ')).map((line) => [Lanterns.find((title) => line.includes(title)), line.endsWith('focused')]);
  await tabTo(me, '#main .screen:not([hidden]) .row');
  await arrowTo(me, second);
  const on = (order, focus) => order.map((title) => [title, title === focus]);
  const inOrder = async () => (await rows()).sort(([a], [b]) => Lanterns.indexOf(a) - Lanterns.indexOf(b));
  assert.deepEqual(await inOrder(), on(Lanterns, second));
  await keys(me, 'Enter');
  await eventually(() => me.nowTitle(), second);
  const player = async () => (await spokenOf(me.page.locator('#player'))).filter((line) => /^button "(Now playing|Pause|Play)/.test(line));
  await eventually(player, [`button "Now playing: ${second} Velka Torrin · Lanterns on the Canal"`, 'button "Pause"']);
  await keys(me, 'Alt+ArrowUp');
  await eventually(async () => (await spokenOf(me.page.locator('#undo'))).filter((line) => line.startsWith('button')), ['button "Undo"', 'button "Dismiss"']);
  await keys(me, 'Control+z');
  await eventually(() => device.titles('playlists:pl/items/1'), Lanterns);
  await keys(me, 'f');
  await me.page.keyboard.type('paper');
  await eventually(async () => (await spokenOf(me.page.locator('#main .find'))).filter((line) => !line.startsWith('status')), [
    'searchbox "Find in this list" focused', 'button "Previous match"', 'button "Next match"', 'button "Close finding"',
  ]);
}, { player: true, sizes: ['desktop'] });

story('tracks move to another list in one step, and back by undo', async ({ device, open }) => {
  const plid = await device.playlist('Party', 'Velka Torrin/Lanterns on the Canal');
  const other = await device.playlist('Other', 'Quillmarsh Ensemble/Tides and Clockwork');
  const before = await device.titles(`playlists:pl/items/${other}`);
  const me = await open();
  await me.openList('Party');
  await me.menuOf('main', second);
  await me.choose('Move to …', 'Other');
  await me.sheetCloses();
  await me.undoBar.filter({ hasText: `“${second}” moved to “Other”` }).waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${other}`), [...before, second]);
  await eventually(() => me.titles('main'), [first, ...others]);
  await me.undo();
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), Lanterns);
  await eventually(() => device.titles(`playlists:pl/items/${other}`), before);
  await me.chooseRows('main', first, others[0]);
  await me.press(me.page.locator('#main').getByRole('button', { name: 'Move to…' }));
  await me.choose('Create New Playlist');
  await me.enter('Third');
  await me.undoBar.filter({ hasText: '2 tracks moved to “Third”' }).waitFor();
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), [second, ...others.slice(1)]);
});

story('a list is renamed by F2, and what the keys change is said', async ({ device, open }) => {
  await device.playlist('Party', 'Velka Torrin/Lanterns on the Canal');
  const me = await open();
  await me.openList('Party');
  await me.playRow(second);
  await eventually(() => me.nowTitle(), second);
  await device.send('player:pause', {});
  await me.row('nav', 'Party').focus();
  await keys(me, 'F2');
  await eventually(() => me.sheet.locator('input').inputValue(), 'Party');
  await me.enter('Summer');
  await eventually(() => me.heading().textContent(), 'Summer');
  await me.sheetCloses();
  await device.send('player:seekTime', { time: 20000 });
  await device.send('player:setVolume', { volume: 50 });
  const value = async (name) => Object.values(await device.value(`player:${name}`))[0];
  await eventually(() => me.page.locator('#player .volume .range').inputValue(), '50');
  await keys(me, '+');
  await me.toast('Volume 55 %').waitFor();
  await eventually(() => value('volume'), 55);
  await eventually(() => me.page.locator('#player .time').first().textContent(), '0:20');
  await keys(me, '.');
  await eventually(() => value('position'), 30000);
  await keys(me, ',');
  await eventually(() => value('position'), 20000);
  await keys(me, 's');
  await me.toast('Shuffle: on').waitFor();
  await eventually(() => value('playMode'), 'shuffle');
  await keys(me, 'r');
  await me.toast('Repeat: all').waitFor();
  await eventually(() => value('playMode'), 'shuffleRepeatAll');
}, { player: true, sizes: ['desktop'] });
