// Two people edit one list at once, each on a slow wire. Whatever they do to it: no track is lost, doubled or removed
// that neither of them chose, and both see the device's list in the end. ORVO_TOGETHER_SECONDS says for how long.

import assert from 'node:assert/strict';
import { eventually, story } from '../support/story.mjs';

const Seconds = Number(process.env.ORVO_TOGETHER_SECONDS ?? 10);
const Seed = Number(process.env.ORVO_TOGETHER_SEED ?? Date.now() % 1000000);
const ThereAndBack = 200;
const Size = 24;

function random(seed) {
  let state = seed;
  const next = () => {
    state = (state * 1103515245 + 12345) % 2147483648;
    return state / 2147483648;
  };
  return { below: (count) => Math.floor(next() * count), pick: (list) => list[Math.floor(next() * list.length)] };
}

const Refusals = { remove: /^Could not remove items|already/, undo: /^Not undone: / };

// One of the two. Each removes tracks of their own half only, so that what is gone can be told exactly.
class Editor {
  constructor(me, isMine, chance, expected) {
    Object.assign(this, { me, isMine, chance, expected });
    this.page = me.page;
    this.done = []; // what was done and what came of it, for a failure
    this.steps = []; // titles of each removal that can be taken back
    this.sending = 0; // edits on their way
    const isEdit = (request) => request.method() === 'POST';
    this.page.on('request', (request) => (this.sending += isEdit(request)));
    for (const end of ['requestfinished', 'requestfailed']) this.page.on(end, (request) => (this.sending -= isEdit(request)));
  }

  change(titles, by) {
    this.done.push(`${titles} ${by}`);
    for (const title of titles) this.expected.set(title, (this.expected.get(title) ?? 0) + by);
  }

  // Without rows that are on their way.
  async visible() {
    return (await this.me.titles('main')).filter((title) => /\d$/.test(title));
  }

  async mine() {
    const titles = (await this.visible()).filter((title) => this.isMine(title));
    // Those that are there once: a title means one row then.
    return titles.filter((title) => titles.indexOf(title) === titles.lastIndexOf(title));
  }

  // Everything that the page reads out from now on: {text, urgent}; and whether there was anything to take back when the
  // keys for it were pressed.
  async listen() {
    await this.page.evaluate(() => {
      document.addEventListener('keydown', ({ ctrlKey, key }) => {
        if (ctrlKey && key === 'z') window.couldUndo = Boolean(document.querySelector('.undo-bar'));
      }, { capture: true });
      window.said = [];
      for (const id of ['live', 'urgent']) {
        new MutationObserver((changes) => {
          for (const { addedNodes } of changes) for (const node of addedNodes) window.said.push({ text: node.textContent, urgent: id === 'urgent' });
        }).observe(document.getElementById(id), { childList: true });
      }
    });
  }

  said() {
    return this.page.evaluate(() => window.said);
  }

  // Does it, and gives what the page says of it: null when it was refused or, `work` giving false, not begun. Others may be
  // on their way still.
  async telling(pattern, refusal, work) {
    const from = (await this.said()).length;
    if (await work() === false) return null;
    for (const end = Date.now() + 20000; Date.now() < end;) {
      const found = (await this.said()).slice(from).find(({ text, urgent }) => (urgent ? refusal : pattern).test(text));
      if (found) return found.urgent ? null : found.text;
      await new Promise((done) => setTimeout(done, 20));
    }
    throw new Error(`nothing was said like ${pattern}`);
  }

  async removeSome() {
    const mine = await this.mine();
    const titles = [...new Set(Array.from({ length: 1 + this.chance.below(3) }, () => this.chance.pick(mine)))];
    if (mine.length < 4) return;
    await this.me.chooseRows('main', ...titles);
    // What was hit: rows may have moved under the pointer.
    await this.page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
    const chosen = await this.page.locator('#main .screen:not([hidden]) .row.selected:not([hidden]) .row-title').allTextContents();
    if (!chosen.length || !chosen.every((title) => this.isMine(title))) {
      await this.page.keyboard.press('Escape');
      return;
    }
    if (!await this.telling(/ removed$/, Refusals.remove, () => this.page.keyboard.press('Delete'))) return;
    this.change(chosen, -1);
    this.steps.push(chosen);
  }

  // Gives the title of the row whose menu it is: rows may have moved under the pointer.
  async openMenu(wanted) {
    await this.me.menuOf('main', wanted);
    const title = await this.me.sheet.locator('.sheet-title').textContent();
    if (this.isMine(title)) return title;
    await this.me.closeSheet();
    return null;
  }

  // By its menu, pressed twice.
  async removeByMenu() {
    const all = (await this.visible()).filter((title) => this.isMine(title));
    if (all.length < 4) return;
    const title = await this.openMenu(this.chance.pick(all));
    if (!title) return;
    if (!await this.telling(/ removed$/, Refusals.remove, () => this.me.entry('Remove track').dblclick())) return;
    this.change([title], -1);
    this.steps.push([title]);
  }

  async addByMenu() {
    const mine = await this.mine();
    if (!mine.length) return;
    const title = await this.openMenu(this.chance.pick(mine));
    if (!title) return;
    await this.me.choose('Add to playlist', 'Party');
    await this.me.entry('Append').dblclick();
    await this.me.sheet.waitFor({ state: 'detached' });
    this.change([title], 1);
  }

  async moveByDrag() {
    const titles = await this.mine();
    if (titles.length < 2) return;
    const [from, to] = [this.chance.pick(titles), this.chance.pick(titles)];
    if (from === to) return;
    const [start, end] = [await this.me.middle(from), await this.me.middle(to)];
    await this.page.mouse.move(start.x, start.y);
    await this.page.mouse.down();
    await this.page.mouse.move(start.x, (start.y + end.y) / 2, { steps: 3 });
    await this.page.mouse.move(start.x, end.y + Math.sign(end.y - start.y) * 8, { steps: 3 });
    await this.page.mouse.up(); // the page lets it go by itself when the other takes something away
  }

  async moveByKeys() {
    const title = this.chance.pick(await this.mine());
    if (!title) return;
    await this.me.row('main', title).focus();
    const key = this.chance.pick(['Alt+ArrowDown', 'Alt+ArrowUp']);
    for (let press = this.chance.below(5); press >= 0; press -= 1) await this.page.keyboard.press(key);
  }

  // The last removal, or a move that came after it.
  async undo() {
    const press = async () => {
      await this.page.keyboard.press('Control+z');
      return this.page.evaluate(() => window.couldUndo);
    };
    const text = await this.telling(/ put back| moved back/, Refusals.undo, press);
    if (/ put back/.test(text)) this.change(this.steps.pop(), 1);
  }

  async act() {
    const what = this.chance.pick(['removeSome', 'removeSome', 'removeByMenu', 'addByMenu', 'moveByDrag', 'moveByKeys', 'undo', 'undo']);
    this.done.push(what);
    await this[what]();
  }
}

story('two people edit one list on slow wires', async ({ device, open, lay, allow }) => {
  allow(/409/);
  const chance = random(Seed);
  console.log(`# two people edit for ${Seconds} s, seed ${Seed}`);
  const { i32: plid } = await device.send('playlists:pl/create', { name: 'Party' });
  const order = () => device.titles(`playlists:pl/items/${plid}`);
  const tracks = (await device.rows('files:tree/Artist%20000/Album%200000', 0, Size - 1)).rows;
  await device.send('playlists:pl/addItems', { plid, items: tracks.map(({ path }) => path) });
  const expected = new Map((await order()).map((title) => [title, 1]));
  const numberOf = (title) => Number(title.match(/\d+$/)[0]);
  const editors = [];
  for (const half of [0, 1]) {
    const wire = await lay();
    const me = await open({ at: wire.url, viewport: { width: 1440, height: 3200 } });
    await me.openList('Party');
    await me.page.locator('#main .row.movable').first().waitFor();
    wire.slow(ThereAndBack);
    const editor = new Editor(me, (title) => numberOf(title) % 2 === half, random(chance.below(1000000)), expected);
    await editor.listen();
    editors.push(editor);
  }
  const shown = async () => Promise.all([order(), ...editors.map(({ me }) => me.titles('main'))]);
  // All three the same, before and after, and nothing on its way.
  const isSettled = async () => {
    const [before, after] = [await shown(), await shown()];
    return editors.every(({ sending }) => sending === 0) && [...before, ...after].every((titles) => titles.join() === before[0].join());
  };
  const check = async () => {
    const wanted = [...expected].flatMap(([title, count]) => Array(count).fill(title)).sort();
    await eventually(async () => (await order()).sort(), wanted);
    await eventually(isSettled, true);
  };
  // So that there is something to edit until the end.
  const restock = async () => {
    const missing = tracks.filter(({ title }) => !expected.get(title)).slice(4);
    if (!missing.length) return;
    await device.send('playlists:pl/addItems', { plid, items: missing.map(({ path }) => path) });
    for (const { title } of missing) expected.set(title, 1);
    await check();
  };
  const end = Date.now() + Seconds * 1000;
  try {
    for (let round = 0; Date.now() < end; round += 1) {
      await Promise.all(editors.map(async (editor) => {
        for (let act = 0; act < 3; act += 1) await editor.act();
      }));
      await check();
      await movesAlone(editors[round % 2], order);
      await restock();
    }
    await check();
  } catch (error) {
    for (const editor of editors) console.log(`# ${editor.done.slice(-30).join(' · ')}\n# ${(await editor.said()).slice(-12).map(({ text }) => text).join(' · ')}`);
    throw error;
  }
  // Neither takes away what is the other's to remove.
  const errors = (await Promise.all(editors.map((editor) => editor.said()))).flat().filter(({ urgent }) => urgent);
  assert.deepEqual(errors.filter(({ text }) => !text.endsWith('The playlist has changed meanwhile.')), []);
}, { sizes: ['desktop'], device: { music: 'many-tracks' }, alone: true });

// While the other one only watches: as many places as presses.
async function movesAlone({ me, page }, order) {
  const before = await order();
  const [title] = before.filter((one) => before.indexOf(one) === before.lastIndexOf(one));
  const from = before.indexOf(title);
  if (!title || before.length < from + 6) return;
  await me.row('main', title).focus();
  for (let press = 0; press < 5; press += 1) await page.keyboard.press('Alt+ArrowDown');
  const after = [...before.slice(0, from), ...before.slice(from + 1, from + 6), title, ...before.slice(from + 6)];
  await eventually(order, after);
}
