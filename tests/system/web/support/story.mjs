// The frame of a story: a device, a browser window of the right size, and the check that nothing
// went wrong behind the page.

import assert from 'node:assert/strict';
import { appendFileSync } from 'node:fs';
import { availableParallelism } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, test } from 'node:test';
import { chromium } from 'playwright-core';
import { Device, hasPlayer } from './device.mjs';
import { Page } from './page.mjs';
import { Wire } from './wire.mjs';

// The browser asks the device alone.
const Flags = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync'];

// Far longer than any story takes.
const HangsAfter = 180000;

// What comes at all comes much sooner; this is for machines that have other things to do.
const Patience = 20000;

const Sizes = {
  phone: { viewport: { width: 390, height: 844 }, hasTouch: true, isMobile: true },
  desktop: { viewport: { width: 1440, height: 900 } },
};

let theBrowser;
export const browser = () => theBrowser;
before(async () => {
  theBrowser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium', args: Flags });
});
after(() => theBrowser?.close());

const isSearch = (request) => (new URL(request.url()).searchParams.get('path') ?? '').startsWith('files:search');

class StoryWindow {
  constructor(device, size) {
    this.device = device;
    this.size = size;
    this.wrong = [];
  }

  async open({ at = this.device.url, prepare = null, early = null, ...options } = {}) {
    this.context = await theBrowser.newContext({ ...Sizes[this.size], ...options });
    this.page = await this.context.newPage();
    this.page.setDefaultTimeout(Patience);
    const note = (text) => this.wrong.push(text);
    this.page.on('console', (message) => {
      if (['error', 'warning'].includes(message.type())) note(`console: ${message.text()} ${message.location().url}`);
    });
    this.page.on('pageerror', (error) => note(`exception: ${error.stack}`));
    this.page.on('response', (response) => response.status() >= 400 && note(`status ${response.status()}: ${response.url()}`));
    this.page.on('requestfailed', (request) => {
      // Closing a stream is how the page ends it; a picture is given up when its row shows another one, a search when
      // another text is searched for, and everything under way when a story loads the page again.
      const { errorText } = request.failure() ?? {};
      const canBeGivenUp = this.isReloading || request.resourceType() === 'image' || isSearch(request);
      const givenUp = errorText === 'net::ERR_ABORTED' && canBeGivenUp;
      if (!givenUp && !request.url().includes('/api/events')) note(`failed: ${request.url()} ${errorText}`);
    });
    await prepare?.(this.page);
    await this.page.goto(at, { waitUntil: 'commit' });
    await early?.(this.page);
    await this.page.locator('#nav .row.heads').first().waitFor({ state: 'attached' });
    return new Page(this);
  }

  async reload() {
    this.isReloading = true;
    await this.page.reload();
    this.isReloading = false;
  }
}

// run(t): runs it at both sizes. t: {device, size, open(), lay(), allow(pattern)}; lay() gives a wire to the device. Run
// several at a time, those that watch the clock after all others and alone.
export function story(name, run, { player = false, device = {}, sizes = Object.keys(Sizes), alone = false } = {}) {
  const skip = player && !hasPlayer ? 'liborvo_player.so is not built' : false;
  for (const size of sizes) stories.push({ title: `${name} (${size})`, name, run, device, size, skip, alone });
}

const stories = [];
const AtOnce = Math.max(2, availableParallelism());

// Called once all stories are known.
export function runStories() {
  const those = (alone) => stories.filter((found) => found.alone === alone);
  for (const [group, concurrency] of [['together', AtOnce], ['alone', 1]]) {
    describe(group, { concurrency }, () => {
      for (const found of those(group === 'alone')) test(found.title, { skip: found.skip, timeout: HangsAfter }, () => runStory(found));
    });
  }
}

async function runStory({ name, run, device: options, size }) {
  const device = new Device(options);
  const windows = [];
  const allowed = [];
  const wires = [];
  const lay = async () => {
    const wire = new Wire(device);
    wires.push(wire);
    await wire.lay();
    return wire;
  };
  const open = async (how) => {
    const window = new StoryWindow(device, size);
    windows.push(window);
    return window.open(how);
  };
  await device.start();
  try {
    await device.ready();
    await run({ device, size, open, lay, allow: (pattern) => allowed.push(pattern) });
    const wrong = windows.flatMap((window) => window.wrong)
      .filter((text) => !allowed.some((pattern) => pattern.test(text)));
    assert.deepEqual(wrong, [], 'something went wrong behind the page');
  } catch (error) {
    await keepEvidence(name, size, windows, device);
    throw error;
  } finally {
    for (const window of windows) await window.context?.close();
    for (const wire of wires) wire.end();
    await device.end();
  }
}

async function keepEvidence(name, size, windows, device) {
  const file = (i, end) => join(process.env.ORVO_WORK, `failed ${name} (${size}) ${i}${end}`.replace(/[^\w ().]/g, '_'));
  for (const [i, window] of windows.entries()) {
    await window.page?.screenshot({ path: file(i, '.png') }).catch(() => {});
    appendFileSync(file(i, '.log'), `${window.wrong.join('\n')}\n`);
  }
  appendFileSync(file('device', '.log'), device.log());
}

// Waits until `look` gives what is expected; fails with what it gave last.
export async function eventually(look, expected, { within = Patience } = {}) {
  const end = Date.now() + within;
  let seen;
  do {
    seen = await look();
    try {
      assert.deepEqual(seen, expected);
      return;
    } catch {
      await new Promise((done) => setTimeout(done, 30));
    }
  } while (Date.now() < end);
  assert.deepEqual(seen, expected);
}
