// The music as the page shows it: its places, what a search finds, and how far the device has read its folder.
//
// Emits: change (how far it is).

import { Emitter, basePart, getRows, getValue, params, samePlace } from '../core/device.js';
import { RowType, plural } from './rows.js';

// The page's own list of the places; the device has none there.
export const MusicPath = 'files:';
const SearchPath = 'files:search';
const ScanPath = 'files:scan';

// `noun`: what its rows are.
const Places = [
  { title: 'Artists', path: 'files:artists', symbol: 'artist', noun: 'artist' },
  { title: 'Albums', path: 'files:albums', symbol: 'album', noun: 'album' },
  { title: 'Genres', path: 'files:genres', symbol: 'genre', noun: 'genre' },
  { title: 'Recently added', path: 'files:recent', symbol: 'clock', noun: 'album' },
  { title: 'Folders', path: 'files:tree', symbol: 'folder', noun: 'folder' },
];

// What a search finds. `first`: so many of them are shown with the others.
const Groups = [
  { title: 'Artists', part: 'artists', noun: 'artist', first: 3 },
  { title: 'Albums', part: 'albums', noun: 'album', first: 3 },
  { title: 'Tracks', part: 'tracks', noun: 'track', first: 5 },
];

// The device takes no longer text.
export const MaxLetters = 200;

// A text as it was typed → the path of what is found, of the places without one. Halves of letters are left out.
export function searchPath(typed) {
  const text = typed.replace(/\p{Surrogate}/gu, '').trim();
  return text ? `${SearchPath}?text=${encodeURIComponent(text)}` : MusicPath;
}

export const isSearch = (path) => Boolean(path) && samePlace(path, SearchPath);

// The text of a search or of one of its lists. An address may say anything.
export function searchedText(path) {
  try {
    return params(path).text ?? '';
  } catch {
    return '';
  }
}

export class Music extends Emitter {
  constructor() {
    super();
    this.scan = null;
    this.told = 0; // so many events came
    this.running = new AbortController();
  }

  // Events are newer than an answer that they overtake.
  async refresh() {
    const { told } = this;
    const scan = await getValue(ScanPath);
    if (told === this.told) this.take(scan);
  }

  apply(event) {
    if (event.kind !== 'value' || !samePlace(event.path, ScanPath)) return;
    this.told += 1;
    this.take(event.value);
  }

  take(scan) {
    this.scan = scan;
    this.emit('change');
  }

  get isScanning() {
    return this.scan?.state === 'scanning';
  }

  get isEmpty() {
    return this.scan?.state === 'ready' && this.scan.tracks === 0;
  }

  // What is not known yet is not told.
  get progress() {
    if (!this.isScanning) return '';
    const { tracks, done } = this.scan;
    return tracks ? `reading ${done.toLocaleString()} of ${plural(tracks, 'track')}` : 'looking for music';
  }

  get summary() {
    if (!this.scan) return '';
    const { progress } = this;
    return progress ? `${progress[0].toUpperCase()}${progress.slice(1)}` : plural(this.scan.tracks, 'track');
  }

  isPlace(path) {
    return path === MusicPath || isSearch(path) || Places.some((place) => place.path === path);
  }

  // Whether a list is a way to music rather than something to be heard.
  isBrief(path) {
    return this.isPlace(path) || Boolean(groupOf(path));
  }

  // Undefined where the device's own title says it.
  titleOf(path) {
    if (path === MusicPath) return 'Music';
    if (isSearch(path)) return 'Search results';
    const group = groupOf(path);
    return group ? `${group.title} for “${searchedText(path)}”` : Places.find((place) => place.path === path)?.title;
  }

  // What the rows of a list are that are no tracks.
  nounOf(path) {
    const group = groupOf(path);
    return (group ?? Places.find((place) => place.path === basePart(path)))?.noun;
  }

  // As a list is read: the places, or all that a search finds.
  async read(path, from, to, roles) {
    const { rows, found } = isSearch(path) ? await this.search(path, roles) : { rows: this.isEmpty ? [] : Places };
    return {
      roles: { path, found },
      rowsCount: rows.length,
      rows: rows.slice(from, to + 1).map((row) => ({ type: RowType.Container, ...row })),
    };
  }

  // The page waits for the answers no more.
  abandon() {
    this.running.abort();
    this.running = new AbortController();
  }

  // What the device refuses to search for is not found, and says why.
  async search(path, roles) {
    const { signal } = this.running;
    const query = path.slice(basePart(path).length);
    const lists = Groups.map((group) => ({ ...group, path: `${SearchPath}/${group.part}${query}` }));
    try {
      const answers = await Promise.all(lists.map((list) => getRows(list.path, 0, list.first - 1, roles, signal)));
      return {
        rows: lists.flatMap((list, i) => rowsOfGroup(list, answers[i])),
        found: { counts: answers.map(({ rowsCount }, i) => [rowsCount, Groups[i].noun]) },
      };
    } catch (error) {
      if (!(error.status >= 400 && error.status < 500)) throw error;
      return { rows: [], found: { counts: [], problem: error.message } };
    }
  }
}

const groupOf = (path) => Groups.find(({ part }) => basePart(path) === `${SearchPath}/${part}`);

function rowsOfGroup({ title, path, noun, first }, { rows, rowsCount }) {
  if (!rowsCount) return [];
  const all = { title: `Show all ${plural(rowsCount, noun)}`, path, symbol: 'forward' };
  return [{ type: RowType.Header, title: `${title} · ${rowsCount.toLocaleString()}` }, ...rows, ...(rowsCount > first ? [all] : [])];
}
