import assert from 'node:assert/strict';
import { test } from 'node:test';
import { Player } from '../../../../web/js/model/player.js';

const Volume = 'player:volume';

// A device whose answers wait until they are let go; for the time of one test, since the stories use the real one.
function slowDevice(t) {
  const waiting = [];
  t.mock.method(globalThis, 'fetch', () => new Promise((answer) => waiting.push(answer)));
  return (value) => {
    for (const answer of waiting.splice(0)) answer(Response.json({ value }));
  };
}

test('anAnswerThatIsOlderThanAnEventDoesNotReplaceIt', async (t) => {
  const answer = slowDevice(t);
  const player = new Player({ OrvoPlayerVolumePath: Volume });
  const read = player.refresh(true);
  player.apply({ kind: 'value', path: Volume, value: { i32: 70 } });
  answer({ i32: 0 });
  await read;
  assert.equal(player.volume, 70);
});

test('anAnswerCountsAgainWhenNoEventCameMeanwhile', async (t) => {
  const answer = slowDevice(t);
  const player = new Player({ OrvoPlayerVolumePath: Volume });
  player.apply({ kind: 'value', path: Volume, value: { i32: 70 } });
  const read = player.refresh(true);
  answer({ i32: 40 });
  await read;
  assert.equal(player.volume, 40);
});
