import assert from 'node:assert/strict';
import { hasPlayer } from '../support/device.mjs';
import { recordFrames, told } from '../support/frames.mjs';
import { Count, fill } from '../support/manytracks.mjs';
import { browser, eventually, story } from '../support/story.mjs';

const heap = (page) => page.evaluate(() => performance.memory.usedJSHeapSize);

story('20,000 tracks: scroll to the end, jump to the playing one', async ({ device, open, size }) => {
  const plid = await fill(device);
  const me = await open();
  await me.openList('Everything');
  await me.row('main', 'Track 0').waitFor();
  assert.match(await me.meta().textContent(), /^20,000 tracks/);
  if (hasPlayer) {
    const { rows, roles } = await device.rows(`playlists:pl/items/${plid}`, 12345, 12345);
    await device.send('player:playContainer', { mediaRoles: roles, trackRoles: rows[0], index: 12345, type: 1 });
    await eventually(() => me.nowTitle(), 'Track 12345');
    await device.send('player:pause', {}); // it is to be found again later
  }

  const scroller = me.page.locator('#main .screen:not([hidden]) .scroller');
  const before = await heap(me.page);
  const stop = await recordFrames(browser(), me.page);
  // As a hand would: first along the list for some seconds, then all the way in a few strokes.
  await scroller.evaluate(async (element) => {
    const frame = () => new Promise(requestAnimationFrame);
    for (let i = 0; i < 180; i += 1) {
      element.scrollTop += 90;
      await frame();
    }
    for (let i = 0; i < 180; i += 1) {
      element.scrollTop += element.scrollHeight / 190;
      await frame();
    }
    element.scrollTop = element.scrollHeight;
    for (let i = 0; i < 30; i += 1) await frame();
  });
  const frames = await stop();
  await me.row('main', `Track ${Count - 1}`).waitFor();
  const after = await heap(me.page);
  console.log(`# ${size}, 20,000 tracks: ${told('asked', frames.asked)}; ${told('drawn', frames.drawn)}; ` +
    `most work for one: ${frames.work.toFixed(1)} ms; heap ${(before / 1e6).toFixed(1)} → ${(after / 1e6).toFixed(1)} MB`);
  assert.ok(frames.work < 50, `${frames.work} ms of work in one frame`);
  const rowElements = await me.page.locator('#main .row').count();
  assert.ok(rowElements < 60, `${rowElements} row elements`);
  assert.ok(after - before < 40e6, `the heap grew by ${after - before} bytes`);

  if (hasPlayer) {
    if (me.touch) {
      await me.controls();
      await me.press(me.page.locator('dialog.large').getByRole('button', { name: 'Show in its list' }));
    } else {
      await me.press(me.page.locator('#player [aria-label="Jump to the current track"]'));
    }
    const row = me.row('main', 'Track 12345');
    await row.waitFor();
    await eventually(() => row.getAttribute('aria-current'), 'true');
    const box = await row.boundingBox();
    assert.ok(box.y > 0 && box.y + box.height < me.page.viewportSize().height, 'the row is in view');
  }

  // The place is kept when rows are inserted in front of it and when the list is read again.
  await scroller.evaluate((element) => (element.scrollTop = element.scrollHeight / 2));
  const topRow = () => scroller.evaluate((element) => {
    const top = element.getBoundingClientRect().top + 80;
    const [[at, row]] = [...element.querySelectorAll('.row:not([hidden])')]
      .map((found) => [found.getBoundingClientRect().top, found])
      .filter(([y]) => y > top).sort(([a], [b]) => a - b);
    return [row.querySelector('.row-title').textContent, Math.round(at)];
  });
  await eventually(() => topRow().then(([title]) => /^Track (99|100)\d\d$/.test(title)), true);
  const place = await topRow();
  await device.send('playlists:pl/removeItems', { plid, items: [3, 4, 5] });
  await eventually(() => me.meta().textContent().then((text) => /^19,997 tracks/.test(text)), true);
  await eventually(topRow, place);
}, { alone: true });

story('a row on its way never shows another one', async ({ device, open }) => {
  await fill(device);
  const me = await open();
  await me.openList('Everything');
  await me.row('main', 'Track 0').waitFor();
  await me.page.route('**/api/rows?path=playlists%3Apl%2Fitems**', (route) => new Promise(() => route));
  const scroller = me.page.locator('#main .screen:not([hidden]) .scroller');
  await scroller.evaluate((element) => (element.scrollTop = element.scrollHeight / 2));
  await me.page.locator('#main .row.waits:not([hidden])').first().waitFor();
  const shown = await me.page.locator('#main .row:not([hidden])').evaluateAll((rows) => rows
    .filter((row) => row.dataset.index > 5000).map((row) => row.querySelector('.row-title').textContent.trim()));
  assert.ok(shown.length > 5);
  assert.deepEqual([...new Set(shown)], ['']);
  await me.page.unrouteAll({ behavior: 'ignoreErrors' });
}, { sizes: ['desktop'] });
