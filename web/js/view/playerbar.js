// The bar at the foot of the page, always there, and the large view that it opens.

import { artworkUrl } from '../core/device.js';
import { metaData } from '../model/rows.js';
import { Artwork, el, icon, setText, showDialog } from './dom.js';
import { SleepButton } from './sleep.js';
import { Transport } from './transport.js';

const ClockMs = 250;

function describe(player) {
  const { track } = player;
  if (!player.present) return { title: 'No player', line: 'This device has no player.', album: '', urls: [] };
  if (!track) return { title: 'Nothing is playing', line: player.error ?? 'Choose a track to begin.', album: '', urls: [] };
  const { artist, album, artworkUrl: uri } = metaData(track);
  const url = artworkUrl(uri);
  return { title: track.title ?? '', line: player.error ?? artist ?? '', album: album ?? '', urls: url ? [url] : [] };
}

export class PlayerBar {
  // `upNext`: what comes, shown here or in the large view. `onJump`: shows the current track in its list.
  constructor(element, player, { upNext, onJump, menu }) {
    Object.assign(this, { element, player, upNext });
    this.artwork = new Artwork('div.art');
    this.title = el('span.now-title', { dir: 'auto' });
    this.line = el('span.now-line', { dir: 'auto' });
    this.transport = new Transport(player);
    this.large = new LargeView(player, { upNext, onJump, menu });
    this.sleep = new SleepButton(player, menu);
    this.lead = el('span.unseen');
    this.open = el('button.now', { type: 'button', onclick: () => this.large.show() },
      this.artwork.element, el('span.now-texts', {}, this.lead, this.title, this.line));
    this.jump = el('button.icon-button', { type: 'button', 'aria-label': 'Jump to the current track', title: 'Jump to the current track', onclick: onJump }, icon('target'));
    this.coming = upNextButton('icon-button', upNext, (list) => element.append(list));
    element.append(this.open, el('div.controls', {}, this.transport.buttons, this.transport.seek),
      el('div.extras', {}, this.sleep.element, this.coming, this.jump, this.transport.volume));
    player.on('change', () => this.show());
    setInterval(() => this.tick(), ClockMs);
    this.show();
  }

  show() {
    const { player } = this;
    const { title, line, album, urls } = describe(player);
    this.element.classList.toggle('idle', !player.isActive);
    this.element.classList.toggle('failed', Boolean(player.error));
    setText(this.title, title);
    setText(this.line, [line, player.error ? '' : album].filter(Boolean).join(' · '));
    this.artwork.set({ urls, title, symbol: player.track ? null : 'note' });
    this.open.disabled = !player.isActive;
    this.jump.disabled = !player.track || !player.container?.path;
    this.coming.disabled = !player.isActive;
    if (!player.isActive) this.upNext.hide();
    setText(this.lead, player.track ? 'Now playing: ' : '');
  }

  tick() {
    if (!document.hidden) for (const { sleep } of [this, this.large]) sleep.show();
    if (document.hidden || !this.player.isPlaying || !this.player.online) return;
    this.transport.showClock();
    if (this.large.dialog.open) this.large.transport.showClock();
  }
}

// Shows and hides what comes; `place(element)` puts it where this button wants it.
function upNextButton(look, upNext, place, text = null) {
  const shown = (is) => button.setAttribute('aria-expanded', String(is));
  const toggle = () => {
    if (button.getAttribute('aria-expanded') === 'true') {
      upNext.hide();
      return;
    }
    upNext.show(place, () => {
      shown(false);
      if (button.offsetParent) button.focus({ preventScroll: true });
    });
    shown(true);
  };
  const button = el(`button.${look}.upnext-button`, { type: 'button', 'aria-label': 'Up next', title: 'Up next', 'aria-expanded': 'false', hidden: !upNext.path, onclick: toggle },
    icon('list'), text);
  return button;
}

class LargeView {
  constructor(player, { upNext, onJump, menu }) {
    Object.assign(this, { player, upNext });
    this.sleep = new SleepButton(player, menu);
    this.artwork = new Artwork('div.art.huge');
    this.glow = new Artwork('div.art.glow');
    this.title = el('h2.large-title', { dir: 'auto' });
    this.line = el('p.large-line', { dir: 'auto' });
    this.album = el('p.large-album', { dir: 'auto' });
    this.transport = new Transport(player);
    const close = el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: () => this.dialog.close() }, icon('down'));
    const jump = el('button.pill', { type: 'button', onclick: () => { this.dialog.close(); onJump(); } }, icon('target'), 'Show in its list');
    const coming = upNextButton('pill', upNext, (list) => this.side.before(list), el('span', {}, 'Up next'));
    this.side = el('div.large-side', {}, el('div.large-texts', {}, this.title, this.line, this.album),
      this.transport.seek, this.transport.buttons, this.transport.volume);
    this.dialog = el('dialog.large', { 'aria-label': 'Now playing' },
      el('div.large-glow', {}, this.glow.element),
      el('div.large-head', {}, close, el('div.large-tools', {}, this.sleep.element, coming, jump)),
      el('div.large-body', {}, this.artwork.element, this.side));
    this.dialog.addEventListener('close', () => upNext.hide());
    document.body.append(this.dialog);
    player.on('change', () => this.refresh());
  }

  show() {
    this.upNext.hide();
    this.refresh(true);
    showDialog(this.dialog);
  }

  refresh(force = false) {
    if (!force && !this.dialog.open) return;
    if (!this.player.isActive) {
      this.dialog.close();
      return;
    }
    const { title, line, album, urls } = describe(this.player);
    setText(this.title, title);
    setText(this.line, line);
    setText(this.album, album);
    this.artwork.set({ urls, title });
    this.glow.set({ urls, title });
  }
}
