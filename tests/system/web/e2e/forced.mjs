// Where the system sets the colours, everything that a colour says is said by a line or by the system's own.

import assert from 'node:assert/strict';
import { Albums, Lanterns } from '../support/device.mjs';
import { coloursAlong, pixelsOf } from '../support/picture.mjs';
import { eventually, story } from '../support/story.mjs';

const forced = { forcedColors: 'active' };

story('in forced colours the chosen rows alone have a tick', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.openList('Party');
  await me.press(me.page.locator('#main .screen:not([hidden]) [aria-label="Choose several"]'));
  await me.press(me.row('main', Lanterns[1]).locator('.row-title'));
  const inside = async (title) => {
    const pixels = await pixelsOf(me.row('main', title).locator('.check'));
    return coloursAlong(pixels.map((line) => line.slice(7, -7)), 0.55);
  };
  assert.equal(await inside(Lanterns[0]), 1);
  assert.ok(await inside(Lanterns[1]) > 1);
});

story('in forced colours a chosen row differs from the others', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.openList('Party');
  await me.chooseRows('main', Lanterns[1], Lanterns[2]);
  await me.page.mouse.move(2, 2);
  const edge = async (title) => coloursAlong((await pixelsOf(me.row('main', title))).map((line) => line.slice(0, 40)), 0.5);
  assert.ok(await edge(Lanterns[1]) > await edge(Lanterns[4]));
}, { sizes: ['desktop'] });

story('in forced colours the sliders show how far they are', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await device.send('player:setVolume', { volume: 50 });
  await device.send('player:pause', {});
  const slider = me.page.locator('#player .volume .range');
  await eventually(() => slider.inputValue(), '50');
  const [line] = [await pixelsOf(slider)].map((pixels) => pixels[Math.floor(pixels.length / 2)].map(String));
  const at = (share) => line[Math.floor(line.length * share)];
  assert.notEqual(at(0.25), at(0.75));
  const canvas = String((await pixelsOf(slider))[1][1]);
  assert.notEqual(at(0.25), canvas);
  assert.notEqual(at(0.75), canvas);
}, { player: true, sizes: ['desktop'] });

story('in forced colours a switch shows whether it is on, and a menu where it ends', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.toLists();
  await me.menuOf('nav', 'Party');
  const [shuffle, repeat] = ['Set shuffle mode', 'Set repeat mode'].map((title) => me.entry(title));
  await me.press(shuffle);
  await eventually(() => shuffle.getAttribute('aria-checked'), 'true');
  const face = async (entry) => pixelsOf(entry.locator('.switch-face'));
  for (const entry of [shuffle, repeat]) assert.ok(coloursAlong(await face(entry), 0.5) > 1);
  assert.notDeepEqual(await face(shuffle), await face(repeat));
  const border = await me.sheet.evaluate((sheet) => getComputedStyle(sheet).borderTopWidth);
  assert.equal(border, '1px');
  const line = me.sheet.locator('.menu-line').first();
  assert.notDeepEqual((await pixelsOf(line))[0][20], (await pixelsOf(me.entry('Rename')))[1][1]);
});

story('in forced colours the lists end where the open one begins', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.openList('Party');
  for (const part of ['#nav', '#tabs'])
    assert.equal(await me.page.locator(part).evaluate((one) => getComputedStyle(one).borderInlineEndWidth), '1px', part);
}, { sizes: ['desktop'] });

story('in forced colours no picture lies behind what plays', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open(forced);
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await me.page.locator('#player .now').click();
  const large = me.page.locator('dialog.large[open]');
  await large.waitFor();
  assert.equal(await large.locator('.glow').isVisible(), false);
}, { player: true });
