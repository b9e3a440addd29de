import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Edits } from '../../../../web/js/model/edits.js';
import { Lock } from '../../../../web/js/model/lock.js';
import { Order, trackKey } from '../../../../web/js/model/order.js';

const target = { plid: 5, path: 'playlists:pl/items/5' };
const row = (title) => ({ path: `playlists:item/${title}`, title });

// A device's list, with its revision. It takes what the page sends, and nothing for another revision.
class FakeDevice {
  constructor(titles) {
    this.titles = [...titles];
    this.revision = 1;
    this.canArrange = true;
  }

  change(revision, work) {
    if (revision !== undefined && revision !== this.revision) throw Object.assign(new Error('changed'), { status: 409 });
    work();
    this.revision += 1;
  }

  order() {
    return new Order(this.titles.map(row), this.revision);
  }

  async prepare(paths) {
    return new Map(paths.map((path) => [path, { title: path.split('/').at(-1) }]));
  }

  async removeItems(plid, at, revision) {
    this.change(revision, () => (this.titles = this.titles.filter((title, i) => !at.includes(i))));
  }

  async addBack(plid, items, at, revision) {
    this.change(revision, () => items.forEach(({ title }, i) => this.titles.splice(at[i], 0, title)));
  }

  async move(plid, at, gap, revision) {
    this.change(revision, () => {
      const moved = at.map((i) => this.titles[i]);
      const rest = (from, to) => this.titles.slice(from, to).filter((title) => !moved.includes(title));
      this.titles = [...rest(0, gap), ...moved, ...rest(gap)];
    });
  }

  async setOrder(plid, order, revision) {
    assert.deepEqual([...order].sort((a, b) => a - b), this.titles.map((title, i) => i));
    this.change(revision, () => (this.titles = order.map((i) => this.titles[i])));
  }
}

async function edited(letters, work) {
  const titles = [...letters];
  const device = new FakeDevice(titles);
  const edits = new Edits(device, new Lock());
  let reads = 0;
  edits.queueOf(target).readOrder = async () => {
    reads += 1;
    return device.order();
  };
  const steps = [];
  edits.on('done', (step) => steps.push(step));
  const shown = titles.map(row);
  const how = { revision: 1, rows: (i) => shown[i], count: titles.length, isShown: true };
  await work(edits, (wanted) => wanted.map((title) => ({ row: row(title), index: titles.indexOf(title) })), how);
  return { device, step: steps.at(-1), reads: () => reads };
}

test('removedTracksComeBackToTheirPlacesWithoutReadingTheList', async () => {
  const { device, step, reads } = await edited('abcdef', (edits, entries, how) => edits.remove(target, entries(['b', 'c', 'e']), how));
  assert.equal(device.titles.join(''), 'adf');
  assert.equal(step.text, '3 tracks removed');
  assert.equal(await step.undo(), '3 tracks put back.');
  assert.equal(device.titles.join(''), 'abcdef');
  assert.equal(reads(), 0);
});

test('removedTracksComeBackBesideTheirNeighboursWhenOthersWereThere', async () => {
  const { device, step } = await edited('abcdef', (edits, entries, how) => edits.remove(target, entries(['b', 'c', 'f']), how));
  device.change(undefined, () => (device.titles = ['e', 'x', 'd', 'a']));
  assert.equal(await step.undo(), '3 tracks put back.');
  assert.equal(device.titles.join(''), 'efxdabc');
});

test('tracksWithoutNeighboursStandWhereThereIsRoomAndThatIsSaid', async () => {
  const { device, step } = await edited('abc', (edits, entries, how) => edits.remove(target, entries(['b']), how));
  device.change(undefined, () => (device.titles = ['x', 'y']));
  assert.equal(await step.undo(), '1 track put back. The list has changed meanwhile: 1 track may stand at another place.');
  assert.equal(device.titles.join(''), 'xby');
});

test('movedTracksGoBackFromWhereverTheyCameFrom', async () => {
  const letters = 'abcdefgh';
  for (const chosen of [['a'], ['h'], ['d'], ['a', 'c'], ['b', 'c', 'g'], ['a', 'h'], ['e', 'f']]) {
    for (let gap = 0; gap <= letters.length; gap += 1) {
      const { device, step, reads } = await edited(letters, (edits, entries, how) => edits.move(target, entries(chosen), gap, how));
      await step.undo();
      assert.equal(device.titles.join(''), letters, `${chosen} to ${gap}`);
      assert.equal(reads(), 0);
    }
  }
});

test('movedTracksGoBackBetweenTheirNeighboursWhenOthersWereThere', async () => {
  const { device, step } = await edited('abcdef', (edits, entries, how) => edits.move(target, entries(['a', 'd']), 6, how));
  assert.equal(device.titles.join(''), 'bcefad');
  device.change(undefined, () => (device.titles = ['x', 'b', 'c', 'e', 'f', 'd']));
  assert.equal(await step.undo(), '1 track moved back. The list has changed meanwhile: 1 track could not be moved back.');
  assert.equal(device.titles.join(''), 'xbcdef');
});

test('aRowThatIsUnderRemovalIsNotRemovedTwice', async () => {
  await edited('abc', async (edits, entries, how) => {
    const first = edits.remove(target, entries(['b']), how);
    assert.equal(edits.remove(target, entries(['b', 'c']), how), null);
    await first;
  });
});

test('whatIsGoneAlreadyIsSaidAndNothingElseIsRemoved', async () => {
  const device = new FakeDevice('abc');
  const edits = new Edits(device, new Lock());
  edits.queueOf(target).readOrder = async () => device.order();
  device.change(undefined, () => (device.titles = ['a', 'c']));
  const entries = [{ row: row('b'), index: 1 }];
  await assert.rejects(edits.remove(target, entries, { revision: 1, rows: (i) => row('abc'[i]), count: 3 }), /^Error: “b” is gone already\.$/);
  assert.equal(device.titles.join(''), 'ac');
});

test('aTrackIsKnownByItsNumberAndItsTitle', () => {
  assert.notEqual(trackKey({ path: 'playlists:item/7', title: 'a' }), trackKey({ path: 'playlists:item/7', title: 'b' }));
});
