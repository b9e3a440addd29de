// The device's sleep timer: its button, which says how long it still is, and its menu.

import { attempt, el, icon, setAttribute, tell } from './dom.js';

const MinuteMs = 60000;
const Minutes = [15, 30, 45, 60, 90];

function left(player) {
  const { sleepLeft } = player;
  if (player.sleepsAtEnd) return 'at the end of this track';
  if (sleepLeft > 0) return `in ${Math.ceil(sleepLeft / MinuteMs)} min`;
  return 'off';
}

export class SleepButton {
  // `menu`: the app's.
  constructor(player, menu) {
    Object.assign(this, { player, menu });
    this.element = el('button.icon-button.toggle.sleep-button', { type: 'button', onclick: () => this.open() }, icon('moon'));
    player.on('change', () => this.show());
    this.show();
  }

  show() {
    const { player, element } = this;
    const text = `Sleep timer: ${left(player)}`;
    setAttribute(element, 'aria-label', text);
    setAttribute(element, 'title', text);
    setAttribute(element, 'aria-pressed', String(player.sleepsAtEnd || player.sleepLeft > 0));
    element.hidden = !player.hasSleepTimer;
    element.disabled = !player.isUsable;
  }

  open() {
    const { player } = this;
    const isOn = player.sleepsAtEnd || player.sleepLeft > 0;
    const entry = (title, time, said) => ({ title, run: () => this.set(time, said) });
    const items = [
      ...(isOn ? [entry('Off', 0, 'The sleep timer is off.')] : []),
      ...(player.isActive ? [entry('At the end of this track', 'endOfTrack', 'Playback pauses at the end of this track.')] : []),
      ...Minutes.map((minutes) => entry(`${minutes} minutes`, minutes * MinuteMs, `Playback pauses in ${minutes} minutes.`)),
    ];
    this.menu.open({ title: isOn ? `Playback pauses ${left(player)}` : 'Playback pauses by itself', items }, { anchor: this.element, head: { title: 'Sleep timer', urls: [], symbol: 'moon' } });
  }

  set(time, said) {
    this.menu.close();
    attempt(this.player.setSleepTimer(time).then(() => tell(said)), null);
  }
}
