// What an empty list says: what there is to do about it.

import { getValue } from '../core/device.js';
import { emptyMusic } from './music.js';

const MusicFolder = 'files:musicFolder';

async function ofMusic() {
  const folder = Object.values((await getValue(MusicFolder)) ?? {})[0];
  if (!folder) return 'This device has no music folder. Start it with one: --music FOLDER';
  return `There is no music in ${folder} yet. Put audio files there: they appear here by themselves.`;
}

function ofTracks(app) {
  if (!app.hasMusic) return 'No tracks yet.';
  return `No tracks yet. In Music, press + beside a track or folder${app.isNarrow ? '' : ', or drag it here'}.`;
}

export async function emptyText(app, screen) {
  if (screen.target) return ofTracks(app);
  if (app.commands.collectionOf(screen.path) !== null) return 'No playlists in this collection yet. Add some here, or by the menu of a playlist.';
  if (screen.pane !== app.side) return 'There is nothing here.';
  const text = emptyMusic(app, screen);
  if (text) return text;
  return app.music.isEmpty ? ofMusic().catch(() => 'There is no music yet.') : 'There is no music here.';
}
