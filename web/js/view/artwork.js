// A square picture: artwork, a collage of up to four, or a colour of its own with an initial.

import { el, setText } from './dom.js';
import { icon } from './icons.js';

// The same title always has the same colour.
function hueOf(text) {
  let hash = 7;
  for (const character of text) hash = (hash * 31 + character.codePointAt(0)) % 3600;
  return hash / 10;
}

export class Artwork {
  constructor(spec = 'div.art') {
    this.element = el(spec, { 'aria-hidden': 'true' });
    this.initial = el('span.art-initial');
    this.element.append(this.initial);
    this.urls = [];
    this.images = [];
  }

  // `symbol`: an icon instead of the initial.
  set({ urls = [], title = '', symbol = null }) {
    const shown = urls.length > 1 && urls.length < 4 ? urls.slice(0, 1) : urls.slice(0, 4);
    this.setFallback(title, symbol);
    if (shown.length === this.urls.length && shown.every((url, i) => url === this.urls[i])) return;
    this.urls = shown;
    this.element.classList.toggle('collage', shown.length === 4);
    while (this.images.length > shown.length) this.images.pop().remove();
    shown.forEach((url, i) => {
      if (!this.images[i]) {
        this.images[i] = el('img', { alt: '', decoding: 'async', draggable: 'false' });
        this.images[i].addEventListener('load', (event) => event.target.classList.add('loaded'));
        this.images[i].addEventListener('error', (event) => event.target.classList.remove('loaded'));
        this.element.append(this.images[i]);
      }
      if (this.images[i].getAttribute('src') === url) return;
      this.images[i].classList.remove('loaded');
      this.images[i].src = url;
    });
  }

  setFallback(title, symbol) {
    this.element.classList.toggle('symbol', symbol !== null);
    const key = `${symbol}|${title}`;
    if (this.fallback === key) return;
    this.fallback = key;
    this.element.style.setProperty('--hue', hueOf(title).toFixed(1));
    const first = [...title.trim()][0] ?? '';
    if (symbol) this.initial.replaceChildren(icon(symbol));
    else setText(this.initial, first.toLocaleUpperCase());
  }
}
