import assert from 'node:assert/strict';
import { chmodSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { eventually, story } from '../support/story.mjs';

const Refused = /401/;
const Token = 'a-token-for-this-test';

story('names that hold markup and control characters are text', async ({ device, open }) => {
  const names = ['<img src=x onerror=alert(1)>', '"><script>window.hit=1</script>', '&lt;b&gt;', 'a\u0007\u001b[31mb', '\u202egnp.exe'];
  for (const name of names) await device.send('playlists:pl/create', { name });
  const kept = await device.titles('playlists:root');
  const me = await open();
  for (const name of names) assert.ok(kept.some((title) => title.includes(name)), name);
  await eventually(async () => {
    const shown = await me.page.locator('#nav .row').allTextContents();
    return names.filter((name) => !shown.some((text) => text.includes(name)));
  }, []);
  assert.equal(await me.page.evaluate(() => window.hit), undefined);
  assert.equal(await me.page.locator('#nav img[src="x"], #nav b, #nav script').count(), 0);
});

story('a device with a token asks for it once', async ({ device, open, allow }) => {
  allow(Refused);
  allow(/ERR_ABORTED/); // by loading the page anew
  await device.kill('SIGTERM');
  const file = join(device.folder, 'token');
  writeFileSync(file, Token);
  chmodSync(file, 0o600);
  device.more = ['--token-file', file];
  await device.start();
  const me = await open({
    early: async (page) => {
      const input = page.locator('input[name=token]');
      await input.fill('not-the-right-token');
      await input.press('Enter');
      await page.getByText("This is not the device's token.").waitFor();
      await input.fill(Token);
      await input.press('Enter');
    },
  });
  await me.page.reload();
  await me.page.locator('#nav .row.heads').first().waitFor({ state: 'attached' });
  assert.equal(await me.page.locator('input[name=token]').count(), 0);
  assert.equal(await me.page.evaluate(() => document.cookie), '');
  // Its events come too.
  const answer = await fetch(`${device.url}/api/data`, {
    method: 'POST', headers: { Authorization: `Bearer ${Token}` },
    body: JSON.stringify({ path: 'playlists:pl/create', value: { name: 'Behind the door' } }),
  });
  assert.equal(answer.status, 200);
  await me.page.locator('#nav .row', { hasText: 'Behind the door' }).waitFor();
}, { sizes: ['desktop'] });
