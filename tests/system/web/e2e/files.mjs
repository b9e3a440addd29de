// Playlist files come in by a file chooser or dropped on the lists, and go out as downloads.

import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { findings } from '../support/axe.mjs';
import { Albums, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const track = (name) => `Velka Torrin/Lanterns on the Canal/${name}.flac`;
const Found = ['01 Towpath at Dusk', '04 Paper Boats'].map(track);

const report = (me) => me.page.locator('dialog.report[open]');

async function chooseFiles(me, ...files) {
  await me.toLists();
  const chooser = me.page.waitForEvent('filechooser');
  await me.press(me.page.getByRole('button', { name: 'Import playlist files' }));
  await (await chooser).setFiles(files);
}

const file = (name, text) => ({ name, mimeType: 'audio/x-mpegurl', buffer: Buffer.from(text) });

story('a playlist file becomes a playlist, and what was not found is told by line', async ({ device, open }) => {
  const me = await open();
  await chooseFiles(me, file('Sunday.m3u8', `#EXTM3U\n${Found[0]}\nBen/02 <b>Two</b>.flac\n${Found[1]}\n`));
  await report(me).waitFor();
  assert.deepEqual(await report(me).locator('p, li').allTextContents(),
    ['“Sunday”: 2 tracks imported, 1 line not found in the music.', 'Line 3 Ben/02 <b>Two</b>.flac']);
  assert.deepEqual(await findings(me), []);
  await me.press(report(me).getByRole('button', { name: 'Close' }));
  await eventually(() => me.heading().textContent(), 'Sunday');
  await eventually(() => me.titles('main'), [Lanterns[0], Lanterns[3]]);
  assert.deepEqual(await device.titles('playlists:pl/items/1'), [Lanterns[0], Lanterns[3]]);
});

story('several files are imported, and one that is refused does not keep the others', async ({ device, open, allow }) => {
  allow(/422/);
  const me = await open();
  await chooseFiles(me, file('One.m3u', Found[0]), file('Empty.m3u', ' \n'), file('Other.pls', `[playlist]\nFile1=${Found[1]}\n`), file('Gone.m3u', 'no/such.flac\n'));
  await me.toast('The file is empty.').waitFor();
  await report(me).waitFor();
  assert.deepEqual(await report(me).locator('p, li').allTextContents(), [
    '“One”: 1 track imported.', '“Other”: 1 track imported.',
    'Nothing of Gone.m3u was found in the music. No playlist was made.', 'Line 1 no/such.flac',
  ]);
  await me.page.keyboard.press('Escape');
  await report(me).waitFor({ state: 'detached' });
  await eventually(() => me.heading().textContent(), 'Other');
  const lists = (await device.rows('playlists:pl/list')).rows.map((row) => row.title);
  assert.deepEqual(lists.filter((title) => ['One', 'Empty', 'Other', 'Gone'].includes(title)).sort(), ['One', 'Other']);
});

story('an exported playlist is the same when it is imported again', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.toLists();
  await me.menuOf('nav', 'Party');
  const downloaded = me.page.waitForEvent('download');
  await me.choose('Export');
  const download = await downloaded;
  assert.equal(download.suggestedFilename(), 'Party.m3u8');
  await me.sheetCloses();
  await me.toast('“Party” exported with 5 tracks.').waitFor();
  const text = readFileSync(await download.path(), 'utf8');
  assert.ok(text.startsWith('#EXTM3U\n#PLAYLIST:Party\n'), text);
  const kept = join(device.folder, 'Kept.m3u8');
  writeFileSync(kept, text.replace('#PLAYLIST:Party\n', ''));
  await chooseFiles(me, kept);
  await me.toast('“Kept”: 5 tracks imported.').waitFor();
  assert.deepEqual(await device.titles('playlists:pl/items/2'), Lanterns);
});

story('a file that is dropped on the lists is imported, and nowhere else', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.openList('Party');
  const drop = (pane) => me.page.locator(`#${pane}`).evaluate((element, text) => {
    const dataTransfer = new DataTransfer();
    dataTransfer.items.add(new File([text], 'Dropped.m3u'));
    const send = (name) => element.dispatchEvent(new DragEvent(name, { bubbles: true, cancelable: true, dataTransfer }));
    const isLeft = send('dragover');
    const isShown = document.getElementById('nav').classList.contains('takes-files');
    return { isShown, isTaken: !isLeft && !send('drop') };
  }, Found[0]);
  assert.deepEqual(await drop('main'), { isShown: false, isTaken: true }); // the browser does not leave the page for it
  assert.deepEqual(await drop('nav'), { isShown: true, isTaken: true });
  await me.toast('“Dropped”: 1 track imported.').waitFor();
  await eventually(() => me.titles('main'), [Lanterns[0]]);
  assert.deepEqual((await device.rows('playlists:pl/list')).rows.filter((row) => row.title === 'Dropped').length, 1);
}, { sizes: ['desktop'] });
