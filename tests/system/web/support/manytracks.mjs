// A playlist of 20,000 tracks, which all sound like one.

import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { musicFolder } from './device.mjs';

export const Count = 20000;
const Portion = 2500;

const fileUrl = (name) => pathToFileURL(join(musicFolder(), name)).href;
const Sounds = fileUrl('Velka Torrin/Lanterns on the Canal/01 Towpath at Dusk.flac');
const Covers = ['Velka Torrin/Lanterns on the Canal', 'Velka Torrin/Small Hours', 'Quillmarsh Ensemble/Tides and Clockwork', 'Søren Abbelwick/Nachtfähre']
  .map((album) => fileUrl(`${album}/cover.png`));

function item(i) {
  const title = `Track ${i}`;
  const artworkUrl = Covers[Math.floor(i / 10) % Covers.length];
  const metaData = { artist: `Artist ${i % 300}`, album: `Album ${Math.floor(i / 10)}`, artworkUrl, duration: 180000, serviceId: 'files', prePlayPath: 'files:prePlay' };
  const orvoRoles = JSON.stringify({ title, type: 3, mediaData: { metaData, resources: [{ uri: Sounds, mimeType: 'audio/flac' }] } });
  return { title, artist: metaData.artist, album: metaData.album, artworkUrl, durationSeconds: 180, url: Sounds, serviceId: 'files', orvoRoles };
}

export async function fill(device) {
  const plid = await device.playlist('Everything');
  for (let from = 0; from < Count; from += Portion) {
    const items = Array.from({ length: Portion }, (_, i) => item(from + i));
    await device.send('playlists:pl/addExternalItems', { plid, items });
  }
  return plid;
}
