// The places of the music: artists, albums, genres, what is new, folders.

import assert from 'node:assert/strict';
import { mkdirSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { silence } from '../support/silence.mjs';
import { eventually, story } from '../support/story.mjs';

const Places = ['Artists', 'Albums', 'Genres', 'Recently added', 'Folders'];
const side = (me) => me.page.locator('#side .screen:not([hidden])');

story('the music has places, each a list like any other', async ({ device, open }) => {
  const me = await open();
  await me.toMusic();
  await eventually(() => me.titles('side'), Places);
  await eventually(() => me.meta('side').textContent(), '17 tracks');
  for (const [place, path, meta] of [
    ['Artists', 'files:artists', '3 artists'], ['Albums', 'files:albums', '4 albums'], ['Genres', 'files:genres', '3 genres'],
    ['Recently added', 'files:recent', '4 albums'], ['Folders', 'files:tree', '3 folders'],
  ]) {
    await me.toMusic(place);
    await eventually(() => me.heading('side').textContent(), place);
    await eventually(() => me.meta('side').textContent(), meta);
    await eventually(async () => me.titles('side'), await device.titles(path));
    await me.back('side');
    await eventually(() => me.titles('side'), Places);
  }
});

story('an album has its picture, its artist and its year', async ({ open }) => {
  const me = await open();
  await me.toMusic('Albums');
  const album = me.row('side', 'Small Hours');
  await album.waitFor();
  assert.deepEqual(await album.locator('.row-subtitle span').allTextContents(), ['Velka Torrin', '2022']);
  await eventually(() => album.locator('.art img.loaded').count(), 1);
});

story('from a genre to its albums and their tracks; reload and back', async ({ open }) => {
  const me = await open();
  await me.toMusic('Genres', 'Folk', 'Small Hours');
  const tracks = ['Kitchen Radio', 'Two Kettles', 'Rain Counts to Ten', 'Almost Morning'];
  await eventually(() => me.titles('side'), tracks);
  await me.window.reload();
  await eventually(() => me.titles('side'), tracks);
  const goBack = () => me.page.evaluate(() => history.back());
  await goBack();
  await eventually(() => me.titles('side'), ['Lanterns on the Canal', 'Small Hours']);
  await goBack();
  await eventually(() => me.titles('side'), ['Ambient', 'Chamber', 'Folk']);
  await goBack();
  await eventually(() => me.titles('side'), Places);
});

story('a long list of artists is read by pages', async ({ device, open }) => {
  const me = await open();
  await me.toMusic('Albums');
  const { rowsCount, rows } = await device.rows('files:albums', 0, 999);
  assert.ok(rowsCount > 25);
  await eventually(() => me.meta('side').textContent(), `${rowsCount} albums`);
  await side(me).locator('.scroller').evaluate((scroller) => scroller.scrollTo(0, scroller.scrollHeight));
  await me.row('side', rows.at(-1).title).waitFor();
}, { device: { music: 'many-tracks' } });

story('while the device still reads the music the page says how far it is', async ({ open }) => {
  const me = await open({ prepare: (page) => page.route('**/api/value?path=files%3Ascan', (route) =>
    route.fulfill({ json: { value: { state: 'scanning', folders: 10, tracks: 3000, done: 1200 } } })) });
  await me.toMusic();
  await eventually(() => me.meta('side').textContent(), 'Reading 1,200 of 3,000 tracks');
  await me.search('no such music');
  await eventually(() => side(me).locator('.empty').innerText(),
    'Nothing found for “no such music”. Not all music is known yet: reading 1,200 of 3,000 tracks. What is new appears here by itself.');
  await me.search('');
  await me.toMusic('Albums');
  await eventually(() => me.meta('side').textContent(), '4 albums · reading 1,200 of 3,000 tracks');
});

story('music that comes into an empty folder shows by itself, and leaves it again', async ({ device, open }) => {
  await device.kill('SIGTERM');
  device.music = join(device.folder, 'music');
  mkdirSync(device.music);
  await device.start();
  await device.ready();
  const me = await open();
  await me.toMusic();
  const text = `There is no music in ${device.music} yet. Put audio files there: they appear here by themselves.`;
  await eventually(() => side(me).locator('.empty').innerText(), text);
  silence(device.music, 'Album/One song');
  await eventually(() => me.titles('side'), Places);
  await eventually(() => me.meta('side').textContent(), '1 track');
  await me.toMusic('Albums');
  await eventually(() => me.titles('side'), ['Unknown album']);
  rmSync(join(device.music, 'Album'), { recursive: true });
  await eventually(() => side(me).locator('.empty').innerText(), text);
  await me.back('side');
  await eventually(() => side(me).locator('.empty').innerText(), text);
});
