import assert from 'node:assert/strict';
import { test } from 'node:test';
import { EditQueue } from '../../../../web/js/model/editQueue.js';
import { Lock } from '../../../../web/js/model/lock.js';
import { Order } from '../../../../web/js/model/order.js';
import { duplicates, sorted } from '../../../../web/js/model/sorting.js';
import { isBlank } from '../../../../web/js/model/commands.js';

const changed = () => Object.assign(new Error('changed'), { status: 409 });

// What was sent, and answers when it is told to.
class Sent {
  constructor() {
    this.states = [];
    this.send = (state) => new Promise((resolve, reject) => this.states.push({ state, resolve, reject }));
  }

  async last() {
    await new Promise((done) => setImmediate(done));
    return this.states.at(-1);
  }
}

function queueOf(orders = []) {
  let reads = 0;
  const queue = new EditQueue(async () => {
    reads += 1;
    return orders.shift() ?? { revision: 100 + reads, rows: [] };
  });
  return { queue, reads: () => reads };
}

test('editsOfAListGoOneAfterTheOtherEachWithWhatTheOneBeforeLedTo', async () => {
  const { queue, reads } = queueOf();
  const sent = new Sent();
  const edits = [queue.add({ revision: 7, isShown: true, send: sent.send }), queue.add({ isShown: true, send: sent.send })];
  assert.deepEqual((await sent.last()).state, { revision: 7 });
  assert.equal(sent.states.length, 1);
  sent.states[0].resolve('one');
  assert.deepEqual((await sent.last()).state, { revision: 8 });
  sent.states[1].resolve('two');
  assert.deepEqual(await Promise.all(edits), ['one', 'two']);
  assert.equal(queue.revision, 9);
  assert.equal(reads(), 0);
});

test('whatIsUnderWayIsLocked', async () => {
  const lock = new Lock();
  let end;
  const first = lock.during(['a', 'b'], () => new Promise((done) => (end = done)));
  assert.equal(lock.during(['b', 'c'], async () => 'second'), null);
  assert.equal(await lock.during(['c'], async () => 'other'), 'other');
  end();
  await first;
  assert.equal(await lock.during(['b'], async () => 'again'), 'again');
  await assert.rejects(lock.during(['b'], async () => {
    throw new Error('no');
  }), /no/);
  assert.equal(lock.isHeld(['b']), false);
});

test('anEditThatTheListOutranIsSentOnceMoreForTheListAsItIs', async () => {
  const { queue, reads } = queueOf([{ revision: 20, rows: ['x'] }]);
  const sent = new Sent();
  const edit = queue.add({ revision: 7, isShown: true, send: sent.send });
  const next = queue.add({ isShown: true, send: sent.send });
  (await sent.last()).reject(changed());
  assert.deepEqual((await sent.last()).state, { revision: 20, rows: ['x'] });
  (await sent.last()).resolve('done');
  assert.equal(await edit, 'done');
  // What was made on top of it finds its rows anew as well.
  assert.deepEqual((await sent.last()).state, { revision: 102, rows: [] });
  (await sent.last()).reject(changed());
  await assert.rejects(next, /changed/);
  assert.equal(reads(), 2);
  assert.equal(queue.revision, undefined);
});

test('whatFailsForAnotherReasonIsNotSentAgain', async () => {
  const { queue } = queueOf();
  let sent = 0;
  await assert.rejects(queue.add({ revision: 7, send: async () => {
    sent += 1;
    throw new Error('full');
  } }), /full/);
  assert.equal(sent, 1);
  assert.equal(await queue.add({ revision: 8, send: async () => 'next' }), 'next');
});

test('whatIsMadeForARevisionIsNotTakenForAnother', async () => {
  const { queue, reads } = queueOf();
  await queue.add({ revision: 7, isShown: true, send: async () => {} });
  const { revision } = queue;
  assert.deepEqual(await queue.add({ revision, isLater: true, send: async (state) => state }), { revision: 8 });
  queue.add({ revision: 8, isShown: true, send: async () => {} });
  await queue.add({ revision, isLater: true, send: async () => {} });
  assert.equal(reads(), 1);
});

test('whatIsMadeForARevisionIsNotMadeOnTopOfEditsOnTheirWay', async () => {
  const { queue } = queueOf([{ revision: 9, rows: [] }]);
  const sent = new Sent();
  const first = queue.add({ revision: 7, isShown: true, send: sent.send });
  const other = queue.add({ revision: 7, isLater: true, send: async (state) => state.revision });
  const unknown = queue.add({ isLater: true, send: async (state) => state.revision });
  (await sent.last()).resolve();
  await first;
  assert.deepEqual([await other, await unknown], [9, 101 + 1]);
});

const orderOf = (...titles) => new Order(titles.map((title, i) => ({ path: `p:${i}`, title })), 1);

test('anOrderIsReadAtOneRevision', async () => {
  const answers = [
    { revision: 1, rowsCount: 3, rows: [{ path: 'p:0', title: 'a' }, { path: 'p:1', title: 'b' }] },
    { revision: 2, rowsCount: 2, rows: [{ path: 'p:2', title: 'c' }] },
    { revision: 2, rowsCount: 2, rows: [{ path: 'p:0', title: 'a' }, { path: 'p:2', title: 'c' }] },
  ];
  const order = await Order.read('x', { read: async () => answers.shift() });
  assert.deepEqual(order.rows.map(({ title }) => title), ['a', 'c']);
  assert.equal(order.revision, 2);
});

test('aNumberThatWasGivenAgainIsAnotherTrack', () => {
  const order = orderOf('a', 'new', 'c');
  const found = order.find([{ row: { path: 'p:2', title: 'c' } }, { row: { path: 'p:1', title: 'b' } }, { row: { path: 'p:0', title: 'a' } }]);
  assert.deepEqual(found.map(({ index }) => index), [0, 2]);
});

test('aPlaceIsFoundByWhatStandsBesideIt', () => {
  const order = orderOf('a', 'b', 'c');
  assert.equal(order.placeBetween({ after: 'p:0 a', before: 'p:9 z' }), 1);
  assert.equal(order.placeBetween({ after: 'p:9 z', before: 'p:2 c' }), 2);
  assert.equal(order.placeBetween({ after: 'p:9 z', before: 'p:8 y' }), -1);
  assert.equal(order.placeBetween({ after: null, before: 'p:8 y' }), 0);
  assert.equal(order.placeBetween({ after: 'p:9 z', before: null }), 3);
});

const track = (title, { artist, album, number, seconds, file = title } = {}) => ({
  title, mediaData: { metaData: { artist, album, trackNumber: number, duration: seconds }, resources: [{ uri: `file:///music/${album}/${file}` }] },
});
const titlesBy = (rows, how) => sorted(rows, how).map((i) => rows[i].title);

test('tracksAreSortedAsAPersonSorts', () => {
  const rows = [track('Track 10'), track('élan'), track('track 9'), track(''), track('Zoo'), track('Eland'), track('Elan')];
  assert.deepEqual(titlesBy(rows, { by: 'title' }), ['élan', 'Elan', 'Eland', 'track 9', 'Track 10', 'Zoo', '']);
  assert.deepEqual(titlesBy(rows, { by: 'title', reverse: true }), ['Zoo', 'Track 10', 'track 9', 'Eland', 'élan', 'Elan', '']);
});

test('anAlbumKeepsItsOwnOrder', () => {
  const rows = [
    track('A', { artist: 'b', album: 'Two', number: 2 }), track('B', { artist: 'B', album: 'two', number: 1 }),
    track('C', { artist: 'a', album: 'Two', number: 12 }), track('D', { artist: 'a', album: 'One', number: 3 }),
    track('E', { artist: '', album: '' }),
  ];
  assert.deepEqual(titlesBy(rows, { by: 'artist' }), ['D', 'C', 'B', 'A', 'E']);
  assert.deepEqual(titlesBy(rows, { by: 'album', reverse: true }), ['B', 'A', 'C', 'D', 'E']);
});

test('durationsAreSortedByTheirLength', () => {
  const rows = [track('a', { seconds: 300 }), track('b', { seconds: 20 }), track('c', {}), track('d', { seconds: 20 })];
  assert.deepEqual(titlesBy(rows, { by: 'duration' }), ['b', 'd', 'a', 'c']);
  assert.deepEqual(titlesBy(rows, { by: 'duration', reverse: true }), ['a', 'b', 'd', 'c']);
});

test('duplicatesAreThoseOfTheSameFileAndTheFirstStays', () => {
  const rows = [track('a', { file: '1' }), track('b', { file: '2' }), track('c', { file: '1' }), { title: 'no address' }, { title: 'no address' }];
  assert.deepEqual(duplicates(rows), [2]);
});

test('namesOfBlanksAloneAreBlank', () => {
  assert.deepEqual(['', ' ', '\n\t', '\u00a0\u200b', ' a '].map(isBlank), [false, true, true, true, false]);
});
