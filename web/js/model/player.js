// What plays, as the device publishes it, and what can be asked of it.
//
// Emits: change (what: state, data, mode, position, duration, volume, stop, sleep or present) · failed (the text
// of an error that has just come up) · mode (the device says which mode it has).

import { Emitter, getValue, samePlace, sendData } from '../core/device.js';

// Odd: shuffled. 0, 1: no repeat; 2, 3: repeat one; 4, 5: repeat all.
const ModeNames = ['normal', 'shuffle', 'repeatOne', 'shuffleRepeatOne', 'repeatAll', 'shuffleRepeatAll'];
export const Repeat = { Off: 0, One: 1, All: 2 };

const bare = (value) => (value ? Object.values(value)[0] : undefined);

export class Player extends Emitter {
  constructor(paths) {
    super();
    this.paths = paths;
    this.present = false;
    this.online = true;
    this.state = 'stopped';
    this.data = {};
    this.mode = 0;
    this.duration = 0;
    this.volume = 100;
    this.anchor = { position: 0, at: performance.now() };
    this.sleepsAtEnd = false;
    this.sleepUntil = 0; // by the page's own clock; 0: never
    this.lastStop = {}; // {mediaPath, trackPath, position}: where playback was stopped last
    this.heard = new Map(); // how many events each value has had
    this.values = [
      [paths.OrvoPlayerStatePath, 'state', (value) => (this.state = bare(value) ?? 'stopped')],
      [paths.OrvoPlayerDataPath, 'data', (value) => (this.data = value ?? {})],
      [paths.OrvoPlayerPlayModePath, 'mode', (value) => (this.mode = Math.max(0, ModeNames.indexOf(bare(value))))],
      [paths.OrvoPlayerDurationPath, 'duration', (value) => (this.duration = bare(value) ?? 0)],
      [paths.OrvoPlayerVolumePath, 'volume', (value) => (this.volume = bare(value) ?? 100)],
      [paths.OrvoPlayerResumePointPath, 'stop', (value) => (this.lastStop = value ?? {})],
      [paths.OrvoPlayerSleepTimerPath, 'sleep', (value) => this.takeSleep(bare(value) ?? 0)],
      [paths.OrvoPlayerPositionPath, 'position', (value) => this.setAnchor(bare(value) ?? 0)],
    ].filter(([path]) => path);
  }

  // Nothing is known of what plays while there is no connection: the clock rests.
  setOnline(online) {
    if (!online) this.setAnchor(this.position);
    this.online = online;
    this.emit('change', 'present');
  }

  setAnchor(position) {
    this.anchor = { position, at: performance.now() };
  }

  // Reads everything again. Without a player nothing is asked.
  async refresh(present) {
    this.present = present && this.values.length > 0;
    this.emit('change', 'present');
    if (!this.present) return;
    await Promise.all(this.values.map(async ([path, what, take]) => {
      const heard = this.heard.get(what);
      const value = await getValue(path);
      // The answer may be older than an event that came meanwhile; were it newer, its own event is on the way.
      if (this.heard.get(what) !== heard) return;
      take(value);
      this.emit('change', what);
    }));
  }

  apply(event) {
    if (event.kind !== 'value') return;
    for (const [path, what, take] of this.values) {
      if (!samePlace(path, event.path)) continue;
      // The clock runs between two positions, so it is set when it starts or stops, too.
      if (what === 'state') this.setAnchor(this.position);
      this.heard.set(what, (this.heard.get(what) ?? 0) + 1);
      const before = this.error;
      take(event.value);
      this.emit('change', what);
      if (what === 'mode') this.emit('mode');
      if (this.error && this.error !== before) this.emit('failed', this.error);
    }
  }

  get hasSleepTimer() {
    return this.present && Boolean(this.paths.OrvoPlayerSleepTimerPath);
  }

  // The device tells how long it still is when it is set; in between the page counts.
  takeSleep(value) {
    this.sleepsAtEnd = value === 'endOfTrack';
    this.sleepUntil = value > 0 ? performance.now() + value : 0;
  }

  get sleepLeft() {
    return this.sleepUntil ? Math.max(1, this.sleepUntil - performance.now()) : 0;
  }

  // `time`: milliseconds, 0 for off, or endOfTrack.
  setSleepTimer(time) {
    return sendData(this.paths.OrvoPlayerSleepTimerPath, { time });
  }

  get isUsable() {
    return this.present && this.online;
  }

  get isPlaying() {
    return this.state === 'playing';
  }

  get isActive() {
    return this.present && this.state !== 'stopped';
  }

  get track() {
    return this.isActive && this.data.trackRoles?.path ? this.data.trackRoles : null;
  }

  get container() {
    return this.data.mediaRoles ?? null;
  }

  get controls() {
    return this.isActive ? this.data.controls ?? {} : {};
  }

  get error() {
    const { error, streamerError } = this.data;
    const found = error ?? streamerError;
    return found ? found.message || 'This cannot be played.' : null;
  }

  get position() {
    const gone = this.isPlaying && this.online ? performance.now() - this.anchor.at : 0;
    const position = this.anchor.position + gone;
    return this.duration > 0 ? Math.min(position, this.duration) : position;
  }

  get isShuffled() {
    return this.mode % 2 === 1;
  }

  get repeat() {
    return Math.floor(this.mode / 2);
  }

  // The modes that can be chosen, as the play logic says.
  isModePossible(shuffled, repeat) {
    const possible = this.controls.playMode ?? {};
    const mode = repeat * 2 + (shuffled ? 1 : 0);
    return mode === 0 || Boolean(possible[ModeNames[mode]]);
  }

  isCurrent(row) {
    return Boolean(row?.path && this.track?.path === row.path);
  }

  // `startPosition`: milliseconds within the track.
  playContainer(container, track, index, startPosition = 0) {
    return sendData(this.paths.OrvoPlayerPlayContainerPath, {
      mediaRoles: container,
      ...(track ? { trackRoles: track } : {}),
      index,
      startPosition,
      type: 1,
    });
  }

  toggle() {
    return sendData(this.isPlaying ? this.paths.OrvoPlayerPausePath : this.paths.OrvoPlayerResumePath);
  }

  next() {
    return sendData(this.paths.OrvoPlayerNextPath);
  }

  previous() {
    return sendData(this.paths.OrvoPlayerPreviousPath);
  }

  async seek(milliseconds) {
    const time = Math.round(milliseconds);
    this.setAnchor(time);
    this.emit('change', 'position');
    await sendData(this.paths.OrvoPlayerSeekTimePath, { time });
  }

  setVolume(volume) {
    this.volume = volume;
    this.emit('change', 'volume');
    return sendData(this.paths.OrvoPlayerSetVolumePath, { volume });
  }

  setMode(shuffled, repeat) {
    return sendData(this.paths.OrvoPlayerSetPlayModePath, { playMode: repeat * 2 + (shuffled ? 1 : 0) });
  }

  nextRepeat() {
    for (let step = 1; step <= 3; step += 1) {
      const repeat = [Repeat.Off, Repeat.All, Repeat.One][
        ([Repeat.Off, Repeat.All, Repeat.One].indexOf(this.repeat) + step) % 3];
      if (this.isModePossible(this.isShuffled, repeat)) return repeat;
    }
    return this.repeat;
  }
}
