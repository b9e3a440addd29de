// A slow line: a request and its answer take 800 ms besides the device's own time.

import assert from 'node:assert/strict';
import { Albums, Lanterns } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const ThereAndBack = 800;
// What the browser and the device take on a machine that does other things as well.
const Own = 400;

story('on a slow line the frame of the page is there after one round trip, and the lists after three', async ({ device, open, lay }) => {
  await device.playlist('Party', Albums.lanterns);
  const wire = await lay();
  wire.slow(ThereAndBack);
  const me = await open({ at: wire.url, prepare: (page) => page.addInitScript(() => {
    window.seen = {};
    const look = (now) => {
      const tabs = document.querySelector('#player');
      if (tabs && getComputedStyle(document.body).display === 'grid') window.seen.frame ??= now;
      if (document.querySelector('#nav')?.textContent.includes('Party')) window.seen.lists ??= now;
      requestAnimationFrame(look);
    };
    requestAnimationFrame(look);
  }) });
  await me.row('nav', 'Party').waitFor();
  const { seen, painted } = await me.page.evaluate(() => ({ seen: window.seen, painted: performance.getEntriesByName('first-paint')[0].startTime }));
  console.log(`# at ${ThereAndBack} ms: frame painted after ${Math.round(painted)} ms, lists after ${Math.round(seen.lists)} ms`);
  assert.ok(Math.max(seen.frame, painted) < ThereAndBack + Own, `the frame after ${seen.frame}, painted after ${painted} ms`);
  assert.ok(seen.lists < 3 * ThereAndBack + Own, `the lists after ${seen.lists} ms`);
}, { alone: true });

story('a list that is pressed before the page is all there is opened when it is', async ({ device, open, lay }) => {
  await device.playlist('Party', Albums.lanterns);
  const wire = await lay();
  wire.slow(ThereAndBack);
  const me = await open({ at: wire.url, early: async (page) => {
    const link = page.locator('.early a', { hasText: 'Party' });
    await link.waitFor();
    await link.click();
  } });
  await eventually(() => me.heading().textContent(), 'Party');
  await eventually(() => me.titles('main'), Lanterns);
}, { sizes: ['desktop'], alone: true });
