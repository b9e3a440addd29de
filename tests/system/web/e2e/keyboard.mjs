import assert from 'node:assert/strict';
import { Albums, Hours, Lanterns, hasPlayer } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

story('everything is in reach of the keyboard', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  const { keyboard } = me.page;
  const focused = () => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent ?? document.activeElement.className);
  await me.row('nav', 'Other').waitFor();
  // The Tab key leads into the list, the arrows through it, past what is only a heading.
  await me.page.locator('#nav .row[tabindex="0"]').focus();
  assert.equal(await focused(), 'PlayQueue');
  await keyboard.press('ArrowDown');
  assert.equal(await focused(), 'Create New Playlist');
  await keyboard.press('ArrowDown');
  assert.equal(await focused(), 'Party');
  await keyboard.press('Enter');
  await eventually(() => me.heading().textContent(), 'Party');
  await me.row('main', Lanterns[0]).waitFor();
  await me.page.locator('#main .screen:not([hidden]) .row[tabindex="0"]').focus();
  await keyboard.press('End');
  assert.equal(await focused(), Lanterns[4]);
  await keyboard.press('m');
  await me.sheet.waitFor();
  await keyboard.press('ArrowDown');
  await keyboard.press('Escape');
  await me.sheetCloses();
  await eventually(focused, Lanterns[4]); // the focus comes back
  await keyboard.press('Home');
  await keyboard.press('Shift+ArrowDown');
  await keyboard.press('Delete');
  await eventually(() => device.titles(`playlists:pl/items/${plid}`), Lanterns.slice(2));
  await keyboard.press('?');
  await me.page.locator('dialog.help').waitFor();
  await keyboard.press('Escape');
  await me.page.locator('dialog.help').waitFor({ state: 'detached' });
}, { sizes: ['desktop'] });

story('the arrows lead from the head into the rows, and from list to list', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  const { keyboard } = me.page;
  const focused = () => me.page.evaluate(() => [document.activeElement.closest('.pane')?.id, document.activeElement.querySelector('.row-title')?.textContent]);
  await me.row('nav', 'Party').focus();
  await keyboard.press('ArrowRight');
  await eventually(() => me.heading().textContent(), 'Party');
  await me.row('main', Lanterns[0]).waitFor();
  assert.deepEqual(await focused(), ['main', undefined]); // on its name, for those who hear it
  await keyboard.press('ArrowDown');
  await eventually(focused, ['main', Lanterns[0]]);
  await keyboard.press('ArrowLeft');
  await eventually(focused, ['nav', 'Party']);
}, { sizes: ['desktop'] });

story('the keys seek in steps of seconds', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await eventually(async () => (await device.value('player:state')).string, 'playing');
  await device.send('player:pause', {});
  await device.send('player:seekTime', { time: 2000 });
  const position = async () => (await device.value('player:position')).i64;
  const slider = me.page.locator('#player .seek .range');
  await eventually(() => slider.isEnabled(), true);
  await eventually(() => slider.getAttribute('aria-valuetext').then((text) => /^0:02 of/.test(text)), true);
  await slider.press('ArrowRight');
  await eventually(position, 7000);
  await slider.press('ArrowLeft');
  await eventually(position, 2000);
  await slider.press('ArrowLeft');
  await eventually(position, 0);
}, { player: true, sizes: ['desktop'] });

story('a long press or the right button opens the menu', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.toLists();
  await me.pressLong('nav', 'Party');
  await me.entry('Rename').waitFor();
  await me.closeSheet();
  await me.openList('Party');
  await me.pressLong('main', 'Seven Bridges');
  await me.entry('Remove track').waitFor();
  await me.closeSheet();
  assert.equal(await device.value('player:state').then((state) => state?.string ?? 'stopped'), 'stopped');
}, { player: true });

story('a long press is no tap, however late its click comes', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.row('main', 'Seven Bridges').waitFor();
  await me.page.evaluate(() => {
    window.clicks = 0;
    document.addEventListener('click', () => (window.clicks += 1), true);
  });
  await me.pressLong('main', 'Seven Bridges');
  await me.entry('Remove track').waitFor();
  assert.equal(await me.page.evaluate(() => window.clicks), 0);
  await me.closeSheet();
  await me.row('main', 'Seven Bridges').evaluate((row) =>
    row.dispatchEvent(new PointerEvent('click', { bubbles: true, detail: 1, pointerType: 'touch' })));
  await me.pressLong('main', 'Paper Boats');
  await me.entry('Remove track').waitFor();
  assert.equal((await device.value('player:state'))?.string ?? 'stopped', 'stopped');
  await me.closeSheet();
  await me.playRow('Paper Boats');
  await eventually(() => me.nowTitle(), 'Paper Boats');
}, { player: true, sizes: ['phone'] });

story('space plays and pauses, n and p step', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.row('main', Lanterns[1]).focus();
  await me.page.keyboard.press('Enter');
  await eventually(() => me.nowTitle(), Lanterns[1]);
  await eventually(async () => (await device.value('player:state')).string, 'playing');
  await me.page.keyboard.press(' ');
  await eventually(async () => (await device.value('player:state')).string, 'paused');
  await me.page.keyboard.press('n');
  await eventually(() => me.nowTitle(), Lanterns[2]);
  await me.page.keyboard.press('p');
  await eventually(() => me.nowTitle(), Lanterns[1]);
}, { player: true, sizes: ['desktop'] });

story('finding in a list goes from match to match', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns, Albums.hours, Albums.ferry);
  const me = await open();
  await me.openList('Party');
  await me.row('main', Lanterns[0]).waitFor();
  if (me.touch) await me.press(me.page.locator('#main .screen:not([hidden]) [aria-label="Find in this list"]').first());
  else await me.page.keyboard.press('f');
  await me.page.keyboard.type('UBER dem');
  await eventually(() => me.page.locator('#main .find-count').textContent(), '1 of 1');
  await eventually(() => me.page.locator('#main .row.found .row-title').textContent(), 'Über dem Maschinenraum');
  await me.page.locator('#main .find-input').fill('e');
  await eventually(() => me.page.locator('#main .find-count').textContent().then((text) => / of /.test(text)), true);
  const before = await me.page.locator('#main .find-count').textContent();
  await me.page.keyboard.press('Enter');
  await eventually(() => me.page.locator('#main .find-count').textContent().then((text) => text !== before), true);
  await me.page.locator('#main .find-input').fill('no such thing');
  await eventually(() => me.page.locator('#main .find-count').textContent(), 'None');
  await me.page.keyboard.press('Escape');
  await me.page.locator('#main .find').waitFor({ state: 'hidden' });
});

for (const [width, height] of [[320, 568], [640, 360], [768, 1024], [1024, 768], [3840, 2160]]) {
  story(`nothing is cut off at ${width} × ${height}`, async ({ device, open }) => {
    await device.playlist('A name that is much longer than any pane on any screen would ever have the room for', Albums.hours);
    const me = await open({ viewport: { width, height }, isMobile: false, hasTouch: false });
    me.touch = false;
    if (width < 760) me.touch = null;
    await me.page.locator('#nav .row.opens .row-title', { hasText: 'A name' }).click();
    await me.row('main', Hours[0]).waitFor();
    const sizes = await me.page.evaluate(() => ({
      page: document.documentElement.scrollWidth - innerWidth,
      main: document.querySelector('#main .scroller').scrollWidth - document.querySelector('#main .scroller').clientWidth,
      player: document.querySelector('#player').scrollWidth - document.querySelector('#player').clientWidth,
      bottom: Math.round(document.querySelector(innerWidth < 760 ? '#tabs' : '#player').getBoundingClientRect().bottom) - innerHeight,
    }));
    assert.deepEqual(sizes, { page: 0, main: 0, player: 0, bottom: 0 });
    const small = await me.page.locator('button:visible').evaluateAll((buttons) => buttons
      .map((button) => [button.ariaLabel ?? button.textContent, button.getBoundingClientRect()])
      .filter(([, box]) => box.width < 24 || box.height < 24 || box.right > innerWidth + 1 || box.left < -1)
      .map(([name]) => name));
    assert.deepEqual(small, []);
    // Once rows pass below the bar it hides them.
    await me.page.locator('#main .scroller').evaluate((element) => (element.scrollTop = 40));
    const scrolls = await me.page.locator('#main .scroller').evaluate((element) => element.scrollTop > 4);
    await eventually(() => me.page.locator('#main .pane-bar').evaluate((bar) => bar.classList.contains('over')), scrolls);
    if (!hasPlayer) return;
    await device.send('playlists:pl/play', { plid: 1 });
    await eventually(() => me.nowTitle(), Hours[0]);
    await me.page.locator('#player .now').click();
    const large = me.page.locator('dialog.large');
    const controls = ['.volume .range', '.seek .range', '[aria-label^="Repeat"]', '[aria-label="Shuffle"]', '.large-title', '.large-tools'];
    const areInside = async (...those) => {
      for (const control of those) {
        const box = await large.locator(control).boundingBox();
        assert.ok(box.x >= 0 && box.y >= 0 && box.x + box.width <= width && box.y + box.height <= height, `${control}: ${JSON.stringify(box)}`);
      }
    };
    await areInside(...controls);
    await large.locator('.upnext-button').click();
    await large.getByRole('button', { name: `Remove ${Hours[1]}` }).waitFor();
    await areInside(...controls, '.upnext', `[aria-label="Remove ${Hours[1]}"]`);
  }, { sizes: ['desktop'] });
}
