// The controls of what plays, for the bar and for the large view alike. Only those are live that
// the play logic allows.

import { Repeat } from '../model/player.js';
import { clock } from '../model/rows.js';
import { attempt, clamp, el, icon, setAttribute, setIcon, setText } from './dom.js';

const SendVolumeEveryMs = 80;
// In milliseconds, however long the track.
const SeekKeys = { ArrowLeft: -5000, ArrowDown: -5000, ArrowRight: 5000, ArrowUp: 5000, PageDown: -30000, PageUp: 30000 };
const RepeatNames = { [Repeat.Off]: 'Repeat: off', [Repeat.One]: 'Repeat: this track', [Repeat.All]: 'Repeat: all' };

export class Transport {
  constructor(player) {
    this.player = player;
    const button = (spec, name, label, run) =>
      el(`button.icon-button${spec}`, { type: 'button', 'aria-label': label, title: label, onclick: () => attempt(run(), null) }, icon(name));
    this.shuffle = button('.toggle', 'shuffle', 'Shuffle', () => player.setMode(!player.isShuffled, this.repeatWith(!player.isShuffled)));
    this.previous = button('', 'previous', 'Previous', () => player.previous());
    this.play = button('.play-button', 'play', 'Play', () => player.toggle());
    this.next = button('', 'next', 'Next', () => player.next());
    this.repeat = button('.toggle', 'repeat', 'Repeat', () => player.setMode(player.isShuffled, player.nextRepeat()));
    this.buttons = el('div.transport', { role: 'group', 'aria-label': 'Playback' },
      this.shuffle, this.previous, this.play, this.next, this.repeat);
    this.buildSeek();
    this.buildVolume();
    player.on('change', (what) => this.show(what));
    this.show('all');
  }

  // Some play logics repeat only without shuffle, or the other way round.
  repeatWith(shuffled) {
    return this.player.isModePossible(shuffled, this.player.repeat) ? this.player.repeat : Repeat.Off;
  }

  buildSeek() {
    const { player } = this;
    this.elapsed = el('span.time');
    this.length = el('span.time');
    this.slider = el('input.range', { type: 'range', min: 0, max: 1000, value: 0, step: 1, 'aria-label': 'Position' });
    this.seek = el('div.seek', {}, this.elapsed, this.slider, this.length);
    this.slider.addEventListener('keydown', (event) => {
      const step = SeekKeys[event.key];
      if (!step || this.slider.disabled) return;
      event.preventDefault();
      attempt(player.seek(clamp(player.position + step, 0, player.duration)), this.slider);
    });
    const target = () => (Number(this.slider.value) / 1000) * player.duration;
    this.slider.addEventListener('input', () => {
      this.seeking = true;
      this.showTime(target());
    });
    this.slider.addEventListener('change', () => {
      this.seeking = false;
      attempt(player.seek(target()), this.slider);
    });
  }

  buildVolume() {
    const { player } = this;
    this.mute = el('button.icon-button', { type: 'button', onclick: () => this.toggleMute() }, icon('volume'));
    this.volumeSlider = el('input.range', { type: 'range', min: 0, max: 100, step: 1, 'aria-label': 'Volume' });
    this.volume = el('div.volume', {}, this.mute, this.volumeSlider);
    // What people have set and the device does not know yet; nothing that it says meanwhile takes it back.
    this.wantedVolume = null;
    const send = () => {
      const volume = this.wantedVolume;
      this.wantedVolume = null;
      attempt(player.setVolume(volume), null);
    };
    this.volumeSlider.addEventListener('input', () => {
      if (this.wantedVolume === null) setTimeout(send, SendVolumeEveryMs);
      this.wantedVolume = Number(this.volumeSlider.value);
      setFill(this.volumeSlider, this.wantedVolume / 100);
    });
  }

  toggleMute() {
    const { player } = this;
    if (player.volume > 0) this.loud = player.volume;
    attempt(player.setVolume(player.volume > 0 ? 0 : this.loud ?? 60), null);
  }

  show(what) {
    const { player } = this;
    const { controls } = player;
    const isLive = player.isActive && player.online;
    const allows = (name) => isLive && controls[name] !== false && Boolean(controls[name] ?? true);
    this.play.disabled = !isLive || (player.isPlaying && !allows('pause'));
    this.next.disabled = !allows('next');
    this.previous.disabled = !allows('previous');
    this.shuffle.disabled = !isLive || !player.isModePossible(!player.isShuffled, this.repeatWith(!player.isShuffled));
    this.repeat.disabled = !isLive || player.nextRepeat() === player.repeat;
    this.slider.disabled = !allows('seekTime') || !(player.duration > 0);
    this.volumeSlider.disabled = this.mute.disabled = !player.isUsable;
    setIcon(this.play.firstChild, player.isPlaying || player.state === 'opening' ? 'pause' : 'play');
    label(this.play, player.isPlaying ? 'Pause' : 'Play');
    setAttribute(this.shuffle, 'aria-pressed', String(player.isShuffled));
    setAttribute(this.repeat, 'aria-pressed', String(player.repeat !== Repeat.Off));
    setIcon(this.repeat.firstChild, player.repeat === Repeat.One ? 'repeatOne' : 'repeat');
    label(this.repeat, RepeatNames[player.repeat]);
    if (what === 'volume' || what === 'all') this.showVolume();
    this.showClock();
  }

  showVolume() {
    if (this.wantedVolume !== null) return;
    const { volume } = this.player;
    if (document.activeElement !== this.volumeSlider || !this.volumeSlider.matches(':active')) this.volumeSlider.value = volume;
    setFill(this.volumeSlider, volume / 100);
    setIcon(this.mute.firstChild, volume === 0 ? 'muted' : 'volume');
    label(this.mute, volume === 0 ? 'Sound on' : 'Mute');
  }

  // The player bar calls it once a frame or less.
  showClock() {
    if (!this.seeking) this.showTime(this.player.isActive ? this.player.position : 0);
  }

  showTime(position) {
    const { duration } = this.player;
    const active = this.player.isActive;
    setText(this.elapsed, active ? clock(position) : '–:––');
    setText(this.length, active && duration > 0 ? clock(duration) : '–:––');
    const share = duration > 0 ? Math.min(1, position / duration) : 0;
    if (!this.seeking) {
      const value = String(Math.round(share * 1000));
      if (this.slider.value !== value) this.slider.value = value;
    }
    setAttribute(this.slider, 'aria-valuetext', `${clock(position)} of ${clock(duration)}`);
    setFill(this.slider, share);
  }
}

function label(button, text) {
  setAttribute(button, 'aria-label', text);
  setAttribute(button, 'title', text);
}

function setFill(slider, share) {
  slider.style.setProperty('--fill', `${(share * 100).toFixed(2)}%`);
}
