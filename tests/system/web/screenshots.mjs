// Makes the pictures of docs/images: ORVO_HOST=… ORVO_WORK=… node screenshots.mjs FOLDER
// (the work folder is that of run.sh, which has made the music).

import { join } from 'node:path';
import { chromium } from 'playwright-core';
import { Albums, Device } from './support/device.mjs';
import { Page } from './support/page.mjs';

const folder = process.argv[2];
const Desktop = { viewport: { width: 1440, height: 900 } };
const Phone = { viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true, deviceScaleFactor: 1.5 };

const device = new Device();
await device.start();
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking'] });

async function open(size, colorScheme) {
  const context = await browser.newContext({ ...size, colorScheme });
  const page = await context.newPage();
  await page.goto(device.url);
  await page.locator('#nav .row.heads').first().waitFor({ state: 'attached' });
  return new Page({ page, context, device, size: size === Phone ? 'phone' : 'desktop' });
}

async function shoot(me, name) {
  await me.page.mouse.move(700, 860);
  await me.page.waitForTimeout(900); // pictures come, animations end
  await me.page.screenshot({ path: join(folder, `${name}.png`) });
}

const sunday = await device.playlist('Sunday Morning', Albums.hours, Albums.ferry, Albums.lanterns, Albums.tides);
const canal = await device.playlist('By the Water', Albums.lanterns, Albums.ferry);
await device.playlist('Deep Focus', Albums.ferry, Albums.tides);
await device.playlist('Dinner with Friends', Albums.tides);
const { i32: clid } = await device.send('playlists:cl/create', { name: 'Weekend' });
for (const plid of [sunday, canal]) await device.send('playlists:cl/addItem', { clid, plid });
await device.send('player:setVolume', { volume: 65 });

// Somewhere in the middle of a track, and there it stays.
const rest = async (me, title) => {
  await me.playRow(title);
  await me.page.locator('#player .now-title', { hasText: title }).waitFor();
  await device.send('player:seekTime', { time: 24000 });
};

let me = await open(Desktop, 'light');
await me.openList('Sunday Morning');
await rest(me, 'Rain Counts to Ten');
await me.toFolders('Velka Torrin', 'Lanterns on the Canal');
await shoot(me, 'web-desktop');

me = await open(Desktop, 'dark');
await me.openList('By the Water');
await rest(me, 'Seven Bridges');
await me.menuOf('main', 'Paper Boats');
await shoot(me, 'web-desktop-dark');
await me.closeSheet();
await me.page.locator('#player .now').click();
await shoot(me, 'web-desktop-playing');

me = await open(Phone, 'light');
await shoot(me, 'web-phone-lists');
await me.toMusic();
await me.search('s');
await me.row('side', 'Small Hours').waitFor();
await shoot(me, 'web-phone-search');
await me.toLists();
await me.menuOf('nav', 'Sunday Morning');
await shoot(me, 'web-phone-menu');

me = await open(Phone, 'dark');
await me.openList('Sunday Morning');
await rest(me, 'Two Kettles');
await shoot(me, 'web-phone-playlist');
await me.controls();
await shoot(me, 'web-phone-playing');

await browser.close();
await device.end();
