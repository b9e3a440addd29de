// How edits are taken back: the same tracks at the same places, or, where others changed the list meanwhile, as near to
// them as is still possible. Each way is a function that does it and gives what to say, what was not possible included.

import { isChanged } from './editQueue.js';
import { Order, trackKey } from './order.js';
import { plural } from './rows.js';

const Elsewhere = 'The list has changed meanwhile:';

// Present positions in a new order: the moved {index, gap} stand in front of what is at their gap now, ascending by it.
function arrange(size, moved) {
  const taken = new Set(moved.map(({ index }) => index));
  const wanted = [];
  let next = 0;
  for (let i = 0; i <= size; i += 1) {
    for (; next < moved.length && moved[next].gap <= i; next += 1) wanted.push(moved[next].index);
    if (i < size && !taken.has(i)) wanted.push(i);
  }
  return wanted;
}

// Where tracks of the list `size` long that stand together from `to` on were before: gaps of the list as it is.
function formerGaps(origins, to, size) {
  return origins.map((origin, i) => {
    const among = origin - i; // of those that were not moved
    return Math.min(size, among < to ? among : among + origins.length);
  });
}

export class Undo {
  constructor(edits) {
    this.edits = edits;
    this.commands = edits.commands;
  }

  // With the positions that the step knows while nothing else happened to the list, else with those of its rows.
  inItsTurn(target, send) {
    const queue = this.edits.queueOf(target);
    const { revision } = queue;
    return () => queue.add({ revision, isLater: true, send });
  }

  ofRemoval(target, removed) {
    return this.inItsTurn(target, (order) => this.putBack(target, removed, order));
  }

  // removed: {row, index, item, after, before}, ascending.
  async putBack({ plid }, removed, order) {
    const places = removed.filter(({ item }) => item).map((entry) => {
      if (!order.rows) return { ...entry, place: entry.index, isNear: true };
      const place = order.placeBetween(entry);
      return { ...entry, place: place < 0 ? Math.min(entry.index, order.size) : place, isNear: place >= 0 };
    });
    if (order.rows) places.sort((a, b) => a.place - b.place || a.index - b.index);
    const at = places.map(({ place }, i) => (order.rows ? place + i : place));
    await this.commands.addBack(plid, places.map(({ item }) => item), at, order.revision);
    const astray = places.filter(({ isNear }) => !isNear).length;
    const lost = removed.length - places.length;
    return [`${plural(places.length, 'track')} put back.`,
      astray ? `${Elsewhere} ${plural(astray, 'track')} may stand at another place.` : '',
      lost ? `${plural(lost, 'track')} could not be put back.` : ''].filter(Boolean).join(' ');
  }

  // The entries stood at their indices, and stand together from `to` on.
  ofMove(target, { entries, to, size, origins }) {
    return this.inItsTurn(target, async (order) => {
      let moved;
      if (order.rows) {
        moved = entries.map(({ row, index }, i) => ({
          index: order.indexOf(trackKey(row)),
          gap: origins ? order.placeBetween(origins[i]) : Math.min(index, order.size),
        })).filter(({ index, gap }) => index >= 0 && gap >= 0).sort((a, b) => a.gap - b.gap);
      } else {
        const gaps = formerGaps(entries.map(({ index }) => index), to, size);
        moved = gaps.map((gap, i) => ({ index: to + i, gap }));
      }
      if (moved.length === 1) await this.commands.move(target.plid, [moved[0].index], moved[0].gap, order.revision);
      else if (moved.length) await this.commands.setOrder(target.plid, arrange(order.rows ? order.size : size, moved), order.revision);
      const lost = entries.length - moved.length;
      return [moved.length ? `${plural(moved.length, 'track')} moved back.` : '',
        lost ? `${Elsewhere} ${plural(lost, 'track')} could not be moved back.` : ''].filter(Boolean).join(' ');
    });
  }

  // What came meanwhile stays behind the track that it stands behind now.
  ofOrder(target, former) {
    return () => this.edits.run(target, { isPlain: true, send: () => twice(async () => {
      const order = await Order.read(target.path);
      const ranks = new Map(former.map((row, rank) => [trackKey(row), rank]));
      let rank = -1;
      const ranked = order.rows.map((row, index) => {
        rank = ranks.get(trackKey(row)) ?? rank;
        return { rank, index };
      });
      ranked.sort((a, b) => a.rank - b.rank || a.index - b.index);
      await this.commands.setOrder(target.plid, ranked.map(({ index }) => index), order.revision);
      const others = order.rows.filter((row) => !ranks.has(trackKey(row))).length;
      return `The former order is back.${others ? ` ${Elsewhere} ${plural(others, 'track')} had no former place.` : ''}`;
    }) });
  }

  // A list of its name with its modes, its tracks and its collections; and what of that was not possible.
  async makeAgain(list, items) {
    const plid = await this.commands.create(list.name);
    const missing = [];
    const still = async (what, work) => {
      try {
        await work();
      } catch (error) {
        missing.push(`${what}: ${error.message}`);
      }
    };
    const there = items.map(({ item }) => item).filter(Boolean);
    if (there.length) await this.commands.addBack(plid, there);
    if (there.length < items.length) missing.push(`${plural(items.length - there.length, 'track')} could not be put back.`);
    if (list.shuffle) await still('Shuffle', () => this.commands.setShuffle(plid, true));
    if (list.repeat) await still('Repeat', () => this.commands.setRepeat(plid, true));
    for (const { clid, title } of list.collections)
      await still(`“${title}”`, () => this.commands.addToCollection(clid, plid));
    return missing;
  }

  ofDeletion(list, items) {
    return async () => [`“${list.name}” is back.`, ...await this.makeAgain(list, items)].join(' ');
  }

  // The tracks that came to a list leave it; gives how many of them had left already. `before`: the list as it was then.
  takeOut(into, moved, before) {
    return twice(async () => {
      const order = await Order.read(into.path);
      const titles = new Map();
      for (const { row } of moved) titles.set(row.title, (titles.get(row.title) ?? 0) + 1);
      const came = order.rows.map((row, index) => ({ row, index })).filter(({ row }) => {
        const open = before.indexOf(trackKey(row)) < 0 && titles.get(row.title);
        if (open) titles.set(row.title, open - 1);
        return open;
      });
      if (came.length) await this.commands.removeItems(into.plid, came.map(({ index }) => index), order.revision);
      return moved.length - came.length;
    });
  }

  // First they stand in their list again, then they leave the other one: none is lost on the way.
  ofMoveToList(source, removed, into, before) {
    const putBack = this.ofRemoval(source, removed);
    return async () => {
      const said = [await putBack()];
      const left = await this.edits.run(into, { isPlain: true, send: () => this.takeOut(into, removed, before) });
      if (left) said.push(`${Elsewhere} ${plural(left, 'track')} had left “${into.title}” already.`);
      return said.join(' ');
    };
  }

  // First the source is made again, then its tracks leave the list that they came to: none is lost on the way.
  // `list`: what the source was, null for the play queue, which keeps its tracks.
  ofMerge(list, moved, into, before) {
    return () => this.edits.run(into, { isPlain: true, send: async () => {
      const missing = list ? await this.makeAgain(list, moved) : [];
      const left = await this.takeOut(into, moved, before);
      if (left) missing.push(`${Elsewhere} ${plural(left, 'track')} had left “${into.title}” already.`);
      return [list ? `“${list.name}” is back.` : `${plural(moved.length - left, 'track')} left “${into.title}”.`, ...missing].join(' ');
    } });
  }
}

// Once more when others were quicker.
export async function twice(work) {
  try {
    return await work();
  } catch (error) {
    if (!isChanged(error)) throw error;
    return work();
  }
}
