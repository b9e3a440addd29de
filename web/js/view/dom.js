// What everything on the page is made of: elements without markup – every text is a text, whatever
// it holds –, icons, pictures, messages.

// el('button.primary', {type: 'button', onclick}, 'Play')
export function el(spec, attributes = {}, ...children) {
  const [name, ...classes] = spec.split('.');
  const element = document.createElement(name || 'div');
  if (classes.length) element.className = classes.join(' ');
  for (const [key, value] of Object.entries(attributes ?? {})) {
    if (value === undefined || value === null || value === false) continue;
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else if (value === true) element.setAttribute(key, '');
    else element.setAttribute(key, value);
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

// Assigning the same text again would still cost a layout, and another text node a new place in it.
export function setText(element, text) {
  const node = element.firstChild;
  if (node?.nodeType !== Node.TEXT_NODE || node.nextSibling) element.textContent = text;
  else if (node.data !== text) node.data = text;
}

export function setAttribute(element, name, value) {
  if (value === null || value === undefined) {
    if (element.hasAttribute(name)) element.removeAttribute(name);
  } else if (element.getAttribute(name) !== String(value)) {
    element.setAttribute(name, value);
  }
}

export const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

export const prefersStill = () => matchMedia('(prefers-reduced-motion: reduce)').matches;

// The icons, drawn on a grid of 24: strokes unless filled.

const S = (d) => ({ d, fill: false });
const F = (d) => ({ d, fill: true });

const Shapes = {
  play: F('M8 5.2v13.6c0 .8.9 1.3 1.6.8l10-6.8c.6-.4.6-1.2 0-1.6l-10-6.8C8.900 3.900 8 4.400 8 5.200z'),
  pause: F('M7.500 4.500h2.500c.6 0 1 .4 1 1v13c0 .6-.4 1-1 1H7.500c-.6 0-1-.4-1-1v-13c0-.6.4-1 1-1zM14 4.500h2.500c.6 0 1 .4 1 1v13c0 .6-.4 1-1 1H14c-.6 0-1-.4-1-1v-13c0-.6.4-1 1-1z'),
  next: F('M5 5.800v12.400c0 .8.9 1.200 1.500.8l8.500-6v5.500a1 1 0 0 0 1 1h1.500a1 1 0 0 0 1-1v-13a1 1 0 0 0-1-1H16a1 1 0 0 0-1 1V11L6.500 5C5.900 4.600 5 5 5 5.800z'),
  previous: F('M19 5.800v12.400c0 .8-.9 1.200-1.500.8L9 13v5.500a1 1 0 0 1-1 1H6.500a1 1 0 0 1-1-1v-13a1 1 0 0 1 1-1H8a1 1 0 0 1 1 1V11l8.500-6c.6-.4 1.500 0 1.500.8z'),
  shuffle: S('M3 7h3.500c2 0 3.200 1 4.300 2.700l2.400 4.600c1.100 1.700 2.300 2.700 4.300 2.700H21M18.500 14.500 21 17l-2.500 2.500M3 17h3.500c1.500 0 2.600-.6 3.500-1.600M14 8.600c.9-1 2-1.600 3.500-1.600H21M18.500 4.500 21 7l-2.500 2.500'),
  repeat: S('M4 11V9.500A3.500 3.500 0 0 1 7.500 6H20M17.500 3.500 20 6l-2.500 2.500M20 13v1.500a3.500 3.500 0 0 1-3.500 3.500H4M6.500 20.500 4 18l2.500-2.500'),
  repeatOne: S('M4 11V9.500A3.500 3.500 0 0 1 7.500 6H20M17.500 3.500 20 6l-2.500 2.500M20 13v1.500a3.500 3.500 0 0 1-3.500 3.500H4M6.500 20.500 4 18l2.500-2.500M11 10.500l1.500-1v5'),
  volume: S('M4 9.500v5h3.500L12 18.500v-13L7.500 9.500zM15.500 9a4 4 0 0 1 0 6M18 6.500a7.500 7.500 0 0 1 0 11'),
  muted: S('M4 9.500v5h3.500L12 18.500v-13L7.500 9.500zM16 10l4 4M20 10l-4 4'),
  more: F('M12 4.500a1.700 1.700 0 1 1 0 3.400 1.700 1.700 0 0 1 0-3.400zM12 10.300a1.700 1.700 0 1 1 0 3.400 1.700 1.700 0 0 1 0-3.400zM12 16.100a1.700 1.700 0 1 1 0 3.400 1.700 1.700 0 0 1 0-3.400z'),
  back: S('M14.500 5.500 8 12l6.500 6.500'),
  forward: S('M9.500 5.500 16 12l-6.500 6.500'),
  down: S('M5.500 9.500 12 16l6.500-6.500'),
  up: S('M5.500 14.500 12 8l6.500 6.500'),
  plus: S('M12 5v14M5 12h14'),
  search: S('M10.500 4.500a6 6 0 1 1 0 12 6 6 0 0 1 0-12zM15 15l5 5'),
  close: S('M6 6l12 12M18 6 6 18'),
  check: S('M5 12.500l4.500 4.500L19 7.500'),
  select: S('M9 6.500h11M9 12h11M9 17.500h11M3.500 6.500l1 1 2-2M3.500 12l1 1 2-2M3.500 17.500l1 1 2-2'),
  grip: F('M9 5.500a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800zM15 5.500a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800zM9 10.600a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800zM15 10.600a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800zM9 15.700a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800zM15 15.700a1.400 1.400 0 1 1 0 2.800 1.400 1.400 0 0 1 0-2.800z'),
  import: S('M12 4v10M7.500 9.500 12 14l4.500-4.500M4.500 16v2.500a1.500 1.500 0 0 0 1.500 1.500h12a1.500 1.500 0 0 0 1.500-1.500V16'),
  list: S('M4 6.500h11M4 12h11M4 17.500h6M18.500 17.500V8.500l2.500 1.500M18.500 17.500a2 2 0 1 1-4 0 2 2 0 0 1 4 0z'),
  artist: S('M12 4.500a3.800 3.800 0 1 1 0 7.600 3.800 3.800 0 0 1 0-7.600zM4.800 19.500c.6-3.300 3.400-5 7.200-5s6.600 1.700 7.200 5'),
  album: S('M12 4a8 8 0 1 1 0 16 8 8 0 0 1 0-16zM12 10a2 2 0 1 1 0 4 2 2 0 0 1 0-4z'),
  genre: S('M4.500 5.500h6.300c.5 0 1 .2 1.400.6l6.900 6.900a1.500 1.500 0 0 1 0 2.100l-4.500 4.500a1.500 1.500 0 0 1-2.100 0L5.100 12.200a2 2 0 0 1-.6-1.400zM8.300 9.100v.2'),
  folder: S('M3.500 7.500a2 2 0 0 1 2-2h3.600c.5 0 1 .2 1.400.6l1.400 1.400h6.600a2 2 0 0 1 2 2v7a2 2 0 0 1-2 2h-13a2 2 0 0 1-2-2z'),
  note: S('M9.500 17.500V6l10-2v11.500M9.500 17.500a2.500 2.500 0 1 1-5 0 2.500 2.500 0 0 1 5 0zM19.500 15.500a2.500 2.500 0 1 1-5 0 2.500 2.500 0 0 1 5 0z'),
  edit: S('M4.500 19.500l.8-3.700L16 5a2 2 0 0 1 2.900 2.900L8.200 18.700z'),
  target: S('M12 6.500a5.500 5.500 0 1 1 0 11 5.500 5.500 0 0 1 0-11zM12 2.500v4M12 17.500v4M2.500 12h4M17.500 12h4'),
  trash: S('M4.500 7h15M9.500 7V4.500h5V7M6.500 7l.8 12.500h9.400L17.500 7M10.300 10.500v5.500M13.700 10.500v5.500'),
  help: S('M9 9.200a3 3 0 1 1 4.300 2.700c-.8.5-1.300 1-1.300 2.100M12 17.300v.2'),
  moon: S('M19.500 14.500A8 8 0 0 1 9.500 4.500a8 8 0 1 0 10 10z'),
  settings: S('M4 7h9M17 7h3M15 5v4M4 12h3M11 12h9M9 10v4M4 17h9M17 17h3M15 15v4'),
  clock: S('M12 4a8 8 0 1 1 0 16 8 8 0 0 1 0-16zM12 8v4.300l2.800 1.700'),
};

const Namespace = 'http://www.w3.org/2000/svg';

export function icon(name) {
  const svg = document.createElementNS(Namespace, 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('class', 'icon');
  svg.setAttribute('aria-hidden', 'true');
  const path = document.createElementNS(Namespace, 'path');
  svg.append(path);
  setIcon(svg, name);
  return svg;
}

export function setIcon(svg, name) {
  if (svg.dataset.icon === name) return;
  svg.dataset.icon = name;
  const { d, fill } = Shapes[name];
  svg.classList.toggle('filled', fill);
  svg.firstChild.setAttribute('d', d);
}

// The same title always has the same colour.
function hueOf(text) {
  let hash = 7;
  for (const character of text) hash = (hash * 31 + character.codePointAt(0)) % 3600;
  return hash / 10;
}

// A square picture: artwork, a collage of up to four, or a colour of its own with an initial.
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

// Short messages at the foot of the page; errors stay longer and are spoken at once.

const ShowMs = 3200;
const ShowErrorMs = 7000;
const ListenMs = 60;
const SpokenMs = 4000;

// Inside the dialog that is open: what lies outside it can be neither read nor pressed.
function bring(element) {
  const home = openDialog() ?? document.getElementById('foot');
  if (element.parentElement !== home) home.append(element);
}

// A dialog that closes may take with it what is in it.
let regions;

function regionOf(name) {
  if (!regions) {
    regions = Object.fromEntries(['toasts', 'live', 'urgent'].map((id) => [id, document.getElementById(id)]));
    document.addEventListener('close', () => Object.values(regions).forEach(bring), { capture: true });
  }
  bring(regions[name]);
  return regions[name];
}

// Read out, also when it said the same before: each message is an element of its own, put where readers listen already.
export function announce(text, where = 'live') {
  const spoken = regionOf(where);
  setTimeout(() => {
    const item = el('p', {}, text);
    spoken.append(item);
    setTimeout(() => item.remove(), SpokenMs);
  }, ListenMs);
}

function toast(kind, text, ms) {
  const region = regionOf('toasts');
  const last = region.lastElementChild;
  if (last?.dataset.text === text) last.remove();
  const close = el('button.icon-button.small', { type: 'button', 'aria-label': 'Dismiss', onclick: () => item.remove() }, icon('close'));
  const item = el(`div.toast.${kind}`, {}, el('p', {}, text), close);
  item.dataset.text = text;
  region.append(item);
  announce(text, kind === 'error' ? 'urgent' : 'live');
  while (region.childElementCount > 3) region.firstElementChild.remove();
  setTimeout(() => item.remove(), ms);
}

export const tell = (text) => toast('info', text, ShowMs);

// What went wrong, in the device's own words.
export function tellError(error) {
  toast('error', error?.message || 'Something went wrong.', ShowErrorMs);
}

// Of what the page asked for by itself: a lost connection has its banner already.
export function tellUnlessOffline(error) {
  if (!error.isOffline) tellError(error);
}

// Every dialog is shown by this, so that the address can keep an entry of the history for it.
export function showDialog(dialog) {
  dialog.showModal();
  document.dispatchEvent(new Event('dialogshown'));
}

export const openDialog = () => [...document.querySelectorAll('dialog[open]')].at(-1) ?? null;

// Runs what the user asked for; what takes longer than a moment shows that it works.
const BusyAfterMs = 150;
let busyCount = 0;

export async function busy(work, element = null) {
  const timer = setTimeout(() => {
    busyCount += 1;
    document.body.classList.add('busy');
    element?.setAttribute('aria-busy', 'true');
    shown = true;
  }, BusyAfterMs);
  let shown = false;
  try {
    return await work;
  } finally {
    clearTimeout(timer);
    if (shown) {
      busyCount -= 1;
      if (busyCount === 0) document.body.classList.remove('busy');
      element?.removeAttribute('aria-busy');
    }
  }
}

// The usual way to carry out a command from the page: busy while it lasts, its error told.
export async function attempt(work, element) {
  try {
    return await busy(work, element);
  } catch (error) {
    tellError(error);
    return undefined;
  }
}
