// The head of a list: its picture, its name, how much it holds, what can be done with all of it.

import { artworkUrl } from '../core/api.js';
import { RowType, metaData } from '../model/rows.js';
import { Artwork } from './artwork.js';
import { el, plural, setText } from './dom.js';
import { icon } from './icons.js';

// What a list is called: its row's own title, with what its published title says besides above it.
// "Playlist - Party", opened from "Party", is "Party" below "Playlist".
export function heading(published, rowTitle, knownLead) {
  const title = published ?? rowTitle ?? '';
  if (knownLead && title.startsWith(knownLead)) return { lead: knownLead, title: title.slice(knownLead.length) };
  if (rowTitle && title !== rowTitle && title.endsWith(` - ${rowTitle}`))
    return { lead: title.slice(0, title.length - rowTitle.length), title: rowTitle };
  if (rowTitle && title.startsWith(rowTitle)) return { lead: null, title: rowTitle };
  return { lead: null, title };
}

export function amount(store) {
  if (!store.isLoaded) return '';
  if (store.count === 0) return 'Empty';
  // Long lists are told by their length alone: going through them with every page that comes would cost.
  if (!store.isComplete) return store.rows.some((row) => row?.type === RowType.Audio) ? plural(store.count, 'track') : '';
  let tracks = 0;
  let milliseconds = 0;
  for (let i = 0; i < store.count; i += 1) {
    const row = store.row(i);
    if (row?.type !== RowType.Audio) continue;
    tracks += 1;
    milliseconds += metaData(row).duration ?? 0;
  }
  if (!tracks) return plural(store.count, 'item');
  const others = store.count - tracks;
  const parts = [others ? plural(others, 'folder') : null, plural(tracks, 'track'), spelledDuration(milliseconds)];
  return parts.filter(Boolean).join(' · ');
}

function spelledDuration(milliseconds) {
  const minutes = Math.round(milliseconds / 60000);
  if (milliseconds < 1000) return null;
  if (minutes < 1) return `${Math.round(milliseconds / 1000)} s`;
  return minutes < 60 ? `${minutes} min` : `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}

export class Hero {
  constructor({ level = 'h1', onPlay, onAdd, onMusic }) {
    this.artwork = new Artwork('div.art.big');
    this.lead = el('p.hero-lead');
    this.title = el(`${level}.hero-title`, { tabindex: '-1' });
    this.meta = el('p.hero-meta');
    this.play = el('button.pill.primary', { type: 'button', onclick: onPlay, hidden: true }, icon('play'), 'Play');
    this.add = el('button.pill.primary', { type: 'button', onclick: (event) => onAdd(event.currentTarget), hidden: true }, icon('plus'), 'Add all');
    this.music = el('button.pill.fill', { type: 'button', onclick: onMusic, hidden: true }, icon('note'), 'Add music');
    this.buttons = el('div.hero-buttons', {}, this.play, this.add, this.music);
    this.element = el('header.hero', {}, this.artwork.element,
      el('div.hero-texts', {}, this.lead, this.title, this.meta, this.buttons));
  }

  show({ lead, title, meta, urls, canPlay, canAdd, canFill }) {
    setText(this.lead, (lead ?? '').replace(/ - $/, ''));
    setText(this.title, title);
    setText(this.meta, meta);
    this.artwork.set({ urls, title });
    this.play.hidden = !canPlay;
    this.add.hidden = !canAdd;
    this.music.hidden = !canFill;
    this.buttons.hidden = this.play.hidden && this.add.hidden && this.music.hidden;
  }
}

export function ownPictures(store) {
  const own = artworkUrl(metaData(store.roles).artworkUrl);
  if (own) return [own];
  const urls = new Set();
  for (let i = 0; i < Math.min(store.rows.length, 200) && urls.size < 4; i += 1) {
    const url = artworkUrl(metaData(store.row(i)).artworkUrl);
    if (url) urls.add(url);
  }
  return [...urls];
}
