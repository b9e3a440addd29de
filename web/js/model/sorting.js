// The order in which people sort tracks: numbers by their value, case and accents aside, an album's tracks in the
// album's own order. What has no such text comes last; equals stay as they are.

import { metaData } from './rows.js';

const collator = new Intl.Collator(undefined, { numeric: true, sensitivity: 'base' });

const addressOf = (row) => row.mediaData?.resources?.[0]?.uri ?? null;

const folderOf = (row) => addressOf(row)?.replace(/[^/]*$/, '') ?? '';

const text = (of) => (a, b) => {
  const [left, right] = [of(a) || '', of(b) || ''];
  if (!left || !right) return Number(!left) - Number(!right);
  return collator.compare(left, right);
};

const number = (of) => (a, b) => (of(a) || Infinity) - (of(b) || Infinity) || 0;

const titleOf = (row) => row.title;
const artistOf = (row) => metaData(row).artist;
const albumOf = (row) => metaData(row).album;
const durationOf = (row) => metaData(row).duration;

// Two albums of one name lie in two folders.
const byAlbum = [text(albumOf), text(folderOf), number((row) => metaData(row).trackNumber)];

const Orders = {
  title: { of: titleOf, compare: text(titleOf), then: [] },
  artist: { of: artistOf, compare: text(artistOf), then: [...byAlbum, text(titleOf)] },
  album: { of: albumOf, compare: text(albumOf), then: [...byAlbum, text(titleOf)] },
  duration: { of: durationOf, compare: number(durationOf), then: [] },
};

export const SortFields = Object.keys(Orders);

// The present positions in the new order. Reversed, an album keeps its own order and what has no text stays last.
export function sorted(rows, { by, reverse = false }) {
  const { of, compare, then } = Orders[by];
  const whole = (a, b) => {
    const first = compare(a, b) * (reverse && of(a) && of(b) ? -1 : 1);
    return then.reduce((found, next) => found || next(a, b), first);
  };
  return rows.map((row, index) => index).sort((a, b) => whole(rows[a], rows[b]) || a - b);
}

// The positions of those whose file or address stands further up already.
export function duplicates(rows) {
  const seen = new Set();
  return rows.flatMap((row, index) => {
    const address = addressOf(row);
    if (address && seen.has(address)) return [index];
    if (address) seen.add(address);
    return [];
  });
}
