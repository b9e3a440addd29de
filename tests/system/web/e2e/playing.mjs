import assert from 'node:assert/strict';
import { Albums, Lanterns, Hours, Tides } from '../support/device.mjs';
import { eventually, story } from '../support/story.mjs';

const playing = async (device) => {
  const state = await device.value('player:state');
  const data = await device.value('player:data');
  return state?.string === 'stopped' ? null : data?.trackRoles?.title ?? null;
};

story('play from the middle, next, previous, seek', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow("The Lockkeeper's Daughter");
  await eventually(() => playing(device), "The Lockkeeper's Daughter");
  await eventually(() => me.nowTitle(), "The Lockkeeper's Daughter");
  await eventually(() => me.row('main', "The Lockkeeper's Daughter").getAttribute('aria-current'), 'true');

  await me.control('Next');
  await eventually(() => me.nowTitle(), 'Paper Boats');
  await me.control('Previous');
  await eventually(() => me.nowTitle(), "The Lockkeeper's Daughter");

  const slider = (await me.controls()).locator('.seek .range');
  await eventually(() => slider.isEnabled(), true);
  await slider.evaluate((input) => {
    input.value = 500;
    input.dispatchEvent(new Event('input', { bubbles: true }));
    input.dispatchEvent(new Event('change', { bubbles: true }));
  });
  const length = (await device.value('player:duration')).i64;
  await eventually(async () => {
    const at = (await device.value('player:position')).i64;
    return at >= length * 0.48 && at < length * 0.9;
  }, true);

  await me.control('Pause');
  await eventually(async () => (await device.value('player:state')).string, 'paused');
  const first = (await device.value('player:position')).i64;
  await me.control('Play');
  await eventually(async () => (await device.value('player:position')).i64 > first, true);
}, { player: true });

story('the large view stays where it is, whatever is looked for in it', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow(Lanterns[0]);
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await me.page.locator('#player .now').click();
  const large = me.page.locator('dialog.large');
  await large.waitFor();
  // The glow behind it is wider than the screen.
  const moved = await large.evaluate((dialog) => {
    dialog.scrollTo(200, 200);
    return [dialog.scrollLeft, dialog.scrollTop];
  });
  assert.deepEqual(moved, [0, 0]);
}, { player: true });

story('insert next while shuffled and hear it next', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  const me = await open();
  await me.openList('Party');
  await me.playRow('Towpath at Dusk');
  await eventually(() => me.nowTitle(), 'Towpath at Dusk');
  await me.control('Shuffle');
  await eventually(async () => (await (await me.controls()).locator('[aria-label="Shuffle"]').getAttribute('aria-pressed')), 'true');
  await me.closeControls();
  await me.toFolders('Quillmarsh Ensemble', 'Tides and Clockwork');
  await me.menuOf('side', 'Ebb');
  await me.choose('Next');
  await me.toast('1 track added to Party.').waitFor();
  assert.equal((await device.titles(`playlists:pl/items/${plid}`))[1], 'Ebb');
  await me.control('Next');
  await eventually(() => playing(device), 'Ebb');
  await eventually(() => me.nowTitle(), 'Ebb');
}, { player: true });

story('added now sounds now', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.toFolders('Quillmarsh Ensemble');
  await me.menuOf('side', 'Tides and Clockwork');
  await me.choose('Now');
  await eventually(() => me.nowTitle(), 'Escapement');
  assert.deepEqual(await device.titles(`playlists:pl/items/${plid}`), [...Hours, ...Tides]);
}, { player: true });

story('a list is played, repeated and jumped to', async ({ device, open }) => {
  await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  await me.press(me.page.locator('#main .screen:not([hidden]) .hero').getByRole('button', { name: 'Play' }));
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await me.control('Repeat: off');
  await eventually(async () => (await device.value('player:playMode')).string, 'repeatAll');
  await me.control('Repeat: all');
  await eventually(async () => (await device.value('player:playMode')).string, 'repeatOne');
  await me.closeControls();
  await me.toLists();
  await me.openList('Other');
  if (me.touch) {
    await me.controls();
    await me.press(me.page.locator('dialog.large').getByRole('button', { name: 'Show in its list' }));
  } else {
    await me.page.keyboard.press('j');
  }
  await eventually(() => me.heading().textContent(), 'Party');
  await eventually(() => me.page.evaluate(() => document.activeElement.querySelector('.row-title')?.textContent), Lanterns[0]);
}, { player: true });

story('a list goes on where it was left, and begins anew after its end', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.lanterns);
  await device.playlist('Other', Albums.hours);
  const me = await open();
  await me.openList('Party');
  const goOn = me.page.locator('#main .screen:not([hidden]) .hero').getByRole('button', { name: 'Continue' });
  const position = async () => (await device.value('player:position')).i64;
  const stop = async () => {
    await device.send('player:stop', {});
    await eventually(() => me.nowTitle(), 'Nothing is playing');
  };
  await me.row('main', Lanterns[0]).waitFor();
  assert.equal(await goOn.count(), 0);

  await me.playRow(Lanterns[2]);
  await eventually(() => me.nowTitle(), Lanterns[2]);
  await device.send('player:seekTime', { time: 30000 });
  assert.equal(await goOn.count(), 0);
  await stop();
  await me.press(goOn);
  await eventually(() => me.nowTitle(), Lanterns[2]);
  assert.ok(await position() >= 30000);
  await eventually(() => goOn.count(), 0);

  // Left for another list, it is gone on with at the beginning of the track.
  await device.send('playlists:pl/play', { plid: plid + 1 });
  await eventually(() => me.nowTitle(), Hours[0]);
  await stop();
  await me.press(goOn);
  await eventually(() => me.nowTitle(), Lanterns[2]);
  assert.ok(await position() < 30000);

  await device.send('player:previous', {});
  await device.send('player:previous', {});
  await eventually(() => me.nowTitle(), Lanterns[0]);
  await stop();
  await eventually(() => me.page.evaluate(() => document.body.classList.contains('busy')), false);
  await eventually(() => goOn.count(), 0);

  await me.playRow(Lanterns[4]);
  await eventually(() => me.nowTitle(), Lanterns[4]);
  const length = (await device.value('player:duration')).i64;
  await device.send('player:seekTime', { time: length - 500 });
  await eventually(() => me.nowTitle(), 'Nothing is playing');
  await eventually(() => goOn.count(), 0);
  await me.press(me.page.locator('#main .screen:not([hidden]) .hero').getByRole('button', { name: 'Play' }));
  await eventually(() => me.nowTitle(), Lanterns[0]);
}, { player: true });

story('a file that cannot be played is named, and the next one plays', async ({ device, open }) => {
  const plid = await device.playlist('Party', Albums.hours);
  const roles = { title: 'Gone', type: 3, mediaData: { metaData: {}, resources: [{ uri: 'file:///nowhere/gone.flac' }] } };
  const item = { title: 'Gone', url: 'file:///nowhere/gone.flac', serviceId: 'files', orvoRoles: JSON.stringify(roles) };
  await device.send('playlists:pl/addExternalItems', { plid, items: [item] });
  await device.send('playlists:pl/moveItems', { plid, items: [4], to: 0 });
  const me = await open();
  await me.openList('Party');
  await me.playRow('Gone');
  await me.toast('Gone cannot be played.').waitFor();
  await eventually(() => me.nowTitle(), Hours[0]);
  await eventually(() => me.page.locator('#player').evaluate((bar) => bar.classList.contains('failed')), false);
}, { player: true });

story('two windows show the same volume', async ({ device, open }) => {
  const me = await open();
  const other = await open();
  const volume = me.page.locator('#player .volume .range');
  await eventually(() => volume.isEnabled(), true);
  await volume.evaluate((input) => {
    input.value = 35;
    input.dispatchEvent(new Event('input', { bubbles: true }));
  });
  await eventually(async () => (await device.value('player:volume')).i32, 35);
  await eventually(() => other.page.locator('#player .volume .range').inputValue(), '35');
}, { player: true, sizes: ['desktop'] });

story('the volume that is being set is not taken back by news of an older one', async ({ device, open }) => {
  const me = await open();
  const volume = me.page.locator('#player .volume .range');
  await device.send('player:setVolume', { volume: 70 });
  await eventually(() => volume.inputValue(), '70');
  // In the moment that the page waits before it sends, which lasts here until it is told to, the device says
  // something else. News come in their order: a list made afterwards tells that the page has heard it.
  await volume.evaluate((input) => {
    const { setTimeout } = window;
    window.setTimeout = (send) => (window.send = send);
    input.value = 35;
    input.dispatchEvent(new Event('input', { bubbles: true }));
    window.setTimeout = setTimeout;
  });
  await device.send('player:setVolume', { volume: 80 });
  await eventually(async () => (await device.value('player:volume')).i32, 80);
  await device.playlist('Later');
  await me.row('nav', 'Later').waitFor();
  await me.page.evaluate(() => window.send());
  await eventually(async () => (await device.value('player:volume')).i32, 35);
  await eventually(() => volume.inputValue(), '35');
}, { player: true, sizes: ['desktop'] });

story('a device without a player shows that, and asks for nothing it has not', async ({ device, open }) => {
  await device.playlist('Party', Albums.hours);
  const me = await open();
  await eventually(() => me.nowTitle(), 'No player');
  assert.equal(await me.page.locator('#player .play-button').isEnabled(), false);
  await me.openList('Party');
  await me.row('main', 'Two Kettles').waitFor();
  assert.equal(await me.page.locator('#main .screen:not([hidden]) .hero').getByRole('button', { name: 'Play' }).count(), 0);
  await me.playRow('Two Kettles'); // there is its menu instead
  await me.entry('Remove track').waitFor();
}, { device: { modules: ['playlists', 'files', 'gateway'] } });
