import assert from 'node:assert/strict';
import { test } from 'node:test';
import { components, isAtOrBelow, params, samePlace } from '../../../../web/js/core/device.js';
import { heading } from '../../../../web/js/view/hero.js';
import { RowMetrics } from '../../../../web/js/view/rowview.js';
import { clock, duration, searchText } from '../../../../web/js/model/rows.js';

test('pathsAreComparedByWholeComponentsWithoutParameters', () => {
  assert.ok(isAtOrBelow('playlists:pl/items/1', 'playlists:pl/items'));
  assert.ok(isAtOrBelow('playlists:pl/items/1?a=b', 'playlists:pl/items/1'));
  assert.ok(!isAtOrBelow('playlists:pl/items/10', 'playlists:pl/items/1'));
  assert.ok(samePlace('playlists:cl/items?clid=1', 'playlists:cl/items'));
});

test('aPathInsideAParameterComesBackWhole', () => {
  const inner = 'files:tree/A%20%26%20B/01%3F.flac';
  assert.deepEqual(params(`playlists:pl/selectAddMode?itemid=${encodeURIComponent(inner)}&plid=0`), { itemid: inner, plid: '0' });
  assert.deepEqual(components('files:tree/A%20%26%20B'), ['tree', 'A & B']);
});

test('aListIsCalledAsItsRowWithTheRestAbove', () => {
  assert.deepEqual(heading('Playlist - Party', 'Party', null), { lead: 'Playlist - ', title: 'Party' });
  assert.deepEqual(heading('Playlist - New Name', 'Party', 'Playlist - '), { lead: 'Playlist - ', title: 'New Name' });
  assert.deepEqual(heading('PlayQueue tracks', 'PlayQueue', null), { lead: null, title: 'PlayQueue' });
  assert.deepEqual(heading('Music', undefined, null), { lead: null, title: 'Music' });
  assert.deepEqual(heading(null, 'Party', null), { lead: null, title: 'Party' });
});

test('rowsOfOtherHeightsShiftOnlyWhatIsBelow', () => {
  const metrics = new RowMetrics();
  metrics.setHeight(50);
  metrics.set([[2, 20], [5, 80]]);
  assert.deepEqual([0, 1, 2, 3, 5, 6, 7].map((i) => metrics.topOf(i)), [0, 50, 100, 120, 220, 300, 350]);
  assert.deepEqual([0, 49, 99, 100, 119, 120, 299, 300].map((y) => metrics.indexAt(y, 20)), [0, 0, 1, 2, 2, 3, 5, 6]);
  metrics.shift(3, 10);
  assert.equal(metrics.heightOf(5), 50);
  assert.equal(metrics.heightOf(15), 80);
  metrics.cut(10);
  assert.equal(metrics.topOf(20), 970);
});

test('durationsAreToldAsPeopleReadThem', () => {
  assert.deepEqual([undefined, 0, 999, 61000, 3600000, 3725000].map(duration), ['', '', '0:01', '1:01', '1:00:00', '1:02:05']);
  assert.equal(clock(0), '0:00');
});

test('findingKnowsNoAccents', () => {
  assert.equal(searchText('Über Ångström'), 'uber angstrom');
  assert.equal(searchText('Søren Łukasz Đorđe Cœur Ærø Straße'), 'soren lukasz dorde coeur aero strasse');
});
