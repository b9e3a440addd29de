// The head of a list: its picture, its name, how much it holds, what can be done with all of it.

import { artworkUrl } from '../core/device.js';
import { RowType, metaData, plural } from '../model/rows.js';
import { Artwork, el, icon, setIcon, setText } from './dom.js';

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

// `noun`: what a row is that is no track, where that is known.
export function amount(store, noun) {
  if (!store.isLoaded) return '';
  if (store.count === 0) return 'Empty';
  // Long lists are told by their length alone: going through them with every page that comes would cost.
  if (!store.isComplete) return store.rows.some((row) => row?.type === RowType.Audio) ? plural(store.count, 'track') : noun ? plural(store.count, noun) : '';
  let tracks = 0;
  let milliseconds = 0;
  for (let i = 0; i < store.count; i += 1) {
    const row = store.row(i);
    if (row?.type !== RowType.Audio) continue;
    tracks += 1;
    milliseconds += metaData(row).duration ?? 0;
  }
  if (!tracks) return plural(store.count, noun ?? 'item');
  const others = store.count - tracks;
  const parts = [others ? plural(others, noun ?? 'folder') : null, plural(tracks, 'track'), spelledDuration(milliseconds)];
  return parts.filter(Boolean).join(' · ');
}

function spelledDuration(milliseconds) {
  const minutes = Math.round(milliseconds / 60000);
  if (milliseconds < 1000) return null;
  if (minutes < 1) return `${Math.round(milliseconds / 1000)} s`;
  return minutes < 60 ? `${minutes} min` : `${Math.floor(minutes / 60)} h ${minutes % 60} min`;
}

export class Hero {
  // `on`: what its buttons do: {play, goOn, add, music, lists}, called with the button.
  constructor({ level = 'h1', on }) {
    const button = (look, name, text, run) =>
      el(`button.pill${look}`, { type: 'button', hidden: true, onclick: (event) => run(event.currentTarget) }, icon(name), el('span', {}, text));
    this.artwork = new Artwork('div.art.big');
    this.lead = el('p.hero-lead');
    this.title = el(`${level}.hero-title`, { tabindex: '-1', dir: 'auto' });
    this.meta = el('p.hero-meta');
    this.play = button('.primary', 'play', 'Play', on.play);
    this.goOn = button('', 'clock', 'Continue', on.goOn);
    this.add = button('', 'plus', 'Add all', on.add);
    this.music = button('.fill', 'note', 'Add music', on.music);
    this.lists = button('.primary', 'plus', 'Add playlists', on.lists);
    this.buttons = el('div.hero-buttons', {}, this.play, this.goOn, this.add, this.music, this.lists);
    this.element = el('header.hero', {}, this.artwork.element,
      el('div.hero-texts', {}, this.lead, this.title, this.meta, this.buttons));
  }

  // `can`: which of its buttons are there: {play, goOn, add, music, lists}. `isPlaying`: this very list sounds.
  show({ lead, title, meta, urls, can, isPlaying, isLive }) {
    setText(this.lead, (lead ?? '').replace(/ - $/, ''));
    setText(this.title, title);
    setText(this.meta, meta);
    this.artwork.set({ urls, title });
    for (const [name, is] of Object.entries(can)) this[name].hidden = !is;
    setIcon(this.play.firstChild, isPlaying ? 'pause' : 'play');
    setText(this.play.lastChild, isPlaying ? 'Pause' : 'Play');
    this.play.disabled = this.goOn.disabled = !isLive;
    this.buttons.hidden = !Object.values(can).some(Boolean);
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
