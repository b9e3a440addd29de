// A device of its own: orvo-host on a free port with a fresh data folder.

import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, readFileSync, rmSync, existsSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';

const Host = process.env.ORVO_HOST;
const Work = process.env.ORVO_WORK;
const ModuleFolder = join(dirname(Host), '..', 'lib');

export const hasPlayer = existsSync(join(ModuleFolder, 'liborvo_player.so'));
export const musicFolder = (name = 'tunes') => join(Work, name);

export class Device {
  constructor({ music = 'tunes', modules = null, settings = [] } = {}) {
    this.music = musicFolder(music);
    this.modules = modules;
    this.settings = settings;
    this.folder = mkdtempSync(join(existsSync('/dev/shm') ? '/dev/shm' : tmpdir(), 'orvo-web-'));
    this.port = 0;
  }

  get url() {
    return `http://127.0.0.1:${this.port}`;
  }

  // Started again it has the same port, as a device has.
  async start() {
    const portFile = join(this.folder, 'port');
    const args = [
      '--data', join(this.folder, 'data'), '--music', this.music, '--listen', `127.0.0.1:${this.port}`,
      '--port-file', portFile, '--log-file', join(this.folder, 'log'),
      '--set', 'settings:player/volume=0', // tests are silent
      ...this.settings.flatMap((setting) => ['--set', setting]),
      ...(this.more ?? []),
      ...(this.modules ?? []).flatMap((name) => ['--module', `liborvo_${name}.so`]),
    ];
    this.process = spawn(Host, args, { stdio: ['ignore', 'pipe', 'pipe'] });
    let said = '';
    this.process.stdout.on('data', (text) => (said += text));
    this.process.stderr.on('data', (text) => (said += text));
    for (let waited = 0; !said.includes('orvo-host is ready'); waited += 10) {
      if (this.process.exitCode !== null || waited > 15000) throw new Error(`the host did not start: ${said}`);
      await new Promise((done) => setTimeout(done, 10));
    }
    this.port = Number(readFileSync(portFile, 'utf8'));
  }

  async kill(signal = 'SIGKILL') {
    if (this.process.exitCode !== null || this.process.signalCode !== null) return;
    const ended = once(this.process, 'exit');
    this.process.kill(signal);
    await ended;
  }

  async end() {
    await this.kill('SIGTERM');
    const log = this.log();
    rmSync(this.folder, { recursive: true, force: true });
    return log;
  }

  log() {
    const file = join(this.folder, 'log');
    return existsSync(file) ? readFileSync(file, 'utf8') : '';
  }

  async rows(path, from = 0, to = 1000000) {
    const query = new URLSearchParams({ path, from, to });
    return (await fetch(`${this.url}/api/rows?${query}`)).json();
  }

  async titles(path) {
    return (await this.rows(path)).rows.map((row) => row.title);
  }

  async value(path) {
    const answer = await (await fetch(`${this.url}/api/value?${new URLSearchParams({ path })}`)).json();
    return answer.value;
  }

  async send(path, value) {
    const answer = await (await fetch(`${this.url}/api/data`, { method: 'POST', body: JSON.stringify({ path, value }) })).json();
    if (answer.error) throw new Error(`${path}: ${answer.error.message}`);
    return answer.result?.result?.value;
  }

  // A playlist with these folders or tracks of the music folder; its id.
  async playlist(name, ...items) {
    const { i32: plid } = await this.send('playlists:pl/create', { name });
    await this.ready();
    if (items.length) {
      const paths = items.map((item) => `files:tree/${item.split('/').map(encodeURIComponent).join('/')}`);
      await this.send('playlists:pl/addItems', { plid, items: paths });
    }
    return plid;
  }

  async ready() {
    for (let i = 0; i < 500; i += 1) {
      const scan = await this.value('files:scan');
      if (scan?.state === 'ready') return;
      await new Promise((done) => setTimeout(done, 20));
    }
    throw new Error('the music folder is never read');
  }
}

export const Albums = {
  lanterns: 'Velka Torrin/Lanterns on the Canal',
  hours: 'Velka Torrin/Small Hours',
  tides: 'Quillmarsh Ensemble/Tides and Clockwork',
  ferry: 'Søren Abbelwick/Nachtfähre',
};
export const Lanterns = ['Towpath at Dusk', 'Seven Bridges', "The Lockkeeper's Daughter", 'Paper Boats', 'Last Light Out'];
export const Hours = ['Kitchen Radio', 'Two Kettles', 'Rain Counts to Ten', 'Almost Morning'];
export const Tides = ['Escapement', 'Spring Tide', 'Pendulum for Four', 'Ebb'];
