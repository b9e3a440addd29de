import assert from 'node:assert/strict';
import { test } from 'node:test';
import { ListStore, insertedRuns } from '../../../../web/js/model/rows.js';
import { showMoved, showRemoved } from '../../../../web/js/model/shown.js';

// A list that answers when it is told to.
class FakeList {
  constructor(titles) {
    this.titles = titles;
    this.asked = [];
    this.read = (path, from, to) => new Promise((resolve, reject) => {
      this.asked.push({ from, to, resolve, reject });
    });
  }

  answer(index = 0) {
    const [{ from, to, resolve }] = this.asked.splice(index, 1);
    resolve({ title: 'List', rowsCount: this.titles.length, roles: {}, rows: this.titles.slice(from, to + 1).map((title) => ({ title, path: `x:${title}`, type: 3 })) });
    return new Promise((done) => setImmediate(done));
  }

  async answerAll() {
    while (this.asked.length) await this.answer();
  }
}

const numbered = (count) => Array.from({ length: count }, (_, i) => `t${i}`);
const titles = (store) => Array.from(store.rows, (row) => row?.title);

async function loaded(count, { from = 0, to = 20 } = {}) {
  const list = new FakeList(numbered(count));
  const store = new ListStore('playlists:pl/items/1', list);
  store.want(from, to);
  await list.answerAll();
  return { list, store };
}

test('markersThatFollowEachOtherAreOneRun', () => {
  assert.deepEqual(insertedRuns(['+4', '+5', '+6', '+9']), [{ at: 4, count: 3 }, { at: 9, count: 1 }]);
});

test('onlyWhatIsInViewIsRead', async () => {
  const { list, store } = await loaded(1000);
  assert.equal(store.count, 1000);
  assert.equal(store.kept, 100);
  store.want(550, 570);
  assert.deepEqual(list.asked.map(({ from, to }) => [from, to]), [[500, 599]]);
  await list.answerAll();
  store.want(560, 580);
  assert.equal(list.asked.length, 0);
});

test('anInsertionShiftsWhatIsKeptAndReadsOnlyWhatMayHaveChanged', async () => {
  const { list, store } = await loaded(300, { from: 0, to: 20 });
  list.titles.splice(4, 0, 'new1', 'new2');
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['+4', '+5'] });
  assert.equal(store.count, 302);
  assert.deepEqual(titles(store).slice(2, 8), ['t2', 't3', undefined, undefined, 't4', 't5']);
  assert.ok(store.isFresh(3));
  assert.ok(!store.isFresh(6));
  await list.answerAll();
  assert.deepEqual(titles(store).slice(2, 8), ['t2', 't3', 'new1', 'new2', 't4', 't5']);
});

test('anAnswerFromBeforeAnInsertionIsNotPutBehindIt', async () => {
  const { list, store } = await loaded(300);
  store.want(100, 120);
  assert.equal(list.asked.length, 1);
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['+0'] });
  const early = list.asked.shift();
  early.resolve({ title: 'List', rowsCount: 300, roles: {}, rows: numbered(300).slice(100, 200).map((title) => ({ title, path: title, type: 3 })) });
  await new Promise((done) => setImmediate(done));
  assert.equal(store.row(100).title, 't99'); // shifted, not answered
  assert.equal(store.row(101), undefined);
  list.titles.unshift('new');
  await list.answerAll();
  assert.equal(store.row(101).title, 't100');
});

test('aResetKeepsTheRowsOnScreenUntilTheirSuccessorsAreThere', async () => {
  const { list, store } = await loaded(50);
  list.titles = numbered(50).reverse();
  store.apply({ kind: 'startingWith', path: 'playlists:pl/items', changes: ['reset'] });
  assert.equal(store.row(0).title, 't0');
  await list.answerAll();
  assert.equal(store.row(0).title, 't49');
});

test('aListThatShrankUnannouncedIsReadAgain', async () => {
  const { list, store } = await loaded(250, { from: 150, to: 170 });
  list.titles = numbered(120);
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['reset'] });
  await list.answerAll();
  assert.equal(store.count, 120);
  assert.equal(store.rows.length, 120);
});

test('eventsOfOtherListsAreNotHeard', async () => {
  const { list, store } = await loaded(10);
  store.apply({ kind: 'rows', path: 'playlists:pl/items/10', changes: ['+0'] });
  store.apply({ kind: 'startingWith', path: 'playlists:pl/list', changes: ['reset'] });
  store.apply({ kind: 'value', path: 'playlists:pl/items/1', value: {} });
  assert.equal(store.count, 10);
  assert.equal(list.asked.length, 0);
});

test('aClosedListSaysSoAndAsksNoMore', async () => {
  const { list, store } = await loaded(10);
  let closed = 0;
  store.on('closed', () => (closed += 1));
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['close'] });
  store.want(0, 10);
  assert.equal(closed, 1);
  assert.equal(list.asked.length, 0);
});

test('farRowsAreForgottenSoThatMemoryStaysFlat', async () => {
  const { list, store } = await loaded(20000);
  for (let at = 0; at < 20000; at += 100) {
    store.want(at, at + 20);
    await list.answerAll();
  }
  assert.ok(store.kept <= 4100, `${store.kept} rows are kept`);
  assert.equal(store.kept, store.rows.filter(Boolean).length);
  assert.equal(store.row(19950).title, 't19950');
});

test('manyInsertionsAtOnceCostOneStep', async () => {
  const { store } = await loaded(100);
  const started = performance.now();
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: Array.from({ length: 50000 }, (_, i) => `+${i + 100}`) });
  assert.equal(store.count, 50100);
  assert.equal(store.row(99).title, 't99');
  assert.ok(performance.now() - started < 500);
});

test('aFailedReadIsToldAndTriedAgainWithTheNextLook', async () => {
  const list = new FakeList(numbered(10));
  const store = new ListStore('playlists:pl/items/1', list);
  const errors = [];
  store.on('error', (error) => errors.push(error.message));
  store.want(0, 10);
  list.asked.shift().reject(new Error('no'));
  await new Promise((done) => setImmediate(done));
  assert.deepEqual(errors, ['no']);
  store.want(0, 10);
  await list.answerAll();
  assert.equal(store.count, 10);
});

const row = (title) => ({ title, path: `x:${title}`, type: 3 });

test('aReadThatFailsLateIsNotTheOneThatIsWaitedFor', async () => {
  const list = new FakeList(numbered(10));
  const store = new ListStore('x:one', list);
  store.want(0, 10);
  store.moveTo('x:other');
  const [first] = list.asked;
  first.reject(new Error('given up'));
  await new Promise((done) => setImmediate(done));
  store.want(0, 10);
  assert.equal(list.asked.length, 2);
});

test('whatThePageShowsItselfHoldsUntilTheDeviceHasDoneIt', async () => {
  const { list, store } = await loaded(6);
  store.want(0, 6);
  showMoved(store, [1, 3], 5);
  store.hold();
  assert.deepEqual(titles(store), ['t0', 't2', 't4', 't1', 't3', 't5']);
  store.want(0, 6);
  assert.equal(list.asked.length, 0);
  showMoved(store, [5], 0);
  showRemoved(store, [1, 4]);
  assert.deepEqual(titles(store), ['t5', 't2', 't4', 't3']);
  assert.equal(store.count, 4);
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['reset'], revision: 3 });
  assert.equal(list.asked.length, 0);
  list.titles = ['a', 'b', 'c'];
  store.release(undefined);
  await list.answerAll();
  assert.deepEqual(titles(store), ['a', 'b', 'c']);
});

test('whatOthersDidWhileItWasHeldIsReadAgain', async () => {
  for (const [told, isRead] of [[8, false], [9, true], [undefined, true]]) {
    const { list, store } = await loaded(3);
    store.revision = 7;
    store.hold();
    showMoved(store, [0], 3);
    store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['reset'], revision: told });
    store.release(8);
    assert.equal(list.asked.length > 0, isRead, `told of ${told}`);
    if (!isRead) assert.equal(store.revisionOf([0, 1, 2]), 8);
    // What comes late is known already.
    if (!isRead) store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['reset'], revision: 8 });
    assert.equal(list.asked.length > 0, isRead);
  }
});

test('anAnswerThatIsAheadOfTheEventsMakesTheOthersUnsure', async () => {
  const { list, store } = await loaded(250, { from: 0, to: 220 });
  const answer = (from, revision) => ({ title: 'List', rowsCount: 250, revision, roles: {}, rows: numbered(250).slice(from, from + 100).map(row) });
  store.take(0, answer(0, 4));
  store.take(100, answer(100, 4));
  assert.equal(store.revisionOf([5, 105]), 4);
  store.take(0, answer(0, 5));
  assert.equal(store.revisionOf([5]), 5);
  assert.equal(store.revisionOf([5, 105]), undefined);
  // The device was started again, and counts from further below.
  store.reread();
  list.asked.length = 0;
  store.take(0, answer(0, 2));
  assert.equal(store.revisionOf([5]), 2);
});

test('anInsertionThatWasReadAlreadyIsNotMadeTwice', async () => {
  const { store } = await loaded(6);
  store.revision = 4;
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['+2'], revision: 4 });
  assert.equal(store.count, 6);
  store.apply({ kind: 'rows', path: 'playlists:pl/items/1', changes: ['+2'], revision: 5 });
  assert.equal(store.count, 7);
  assert.equal(store.revisionOf([0, 1]), 5);
});
