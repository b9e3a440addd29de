// The lists, as soon as their answer is there: the parts that show them may be long in coming on a slow line. Each is a
// link to where it will be open, so a press counts already.

import { earlyAsked, earlyRows } from './core/device.js';

// All that the first rows need, so that none waits for another one to name it.
const Parts = [
  'model/commands.js',
  'model/covers.js',
  'model/lock.js',
  'model/player.js',
  'model/rows.js',
  'model/settings.js',
  'view/dom.js',
  'view/hero.js',
  'view/keys.js',
  'view/listview.js',
  'view/pane.js',
  'view/rowview.js',
  'view/screen.js',
  'view/selection.js',
];

// From here on a line is slow: the browser's few connections are left to the lists first.
const FarMs = 100;

const Container = 1;

function loadPage() {
  for (const part of Parts) {
    const link = document.createElement('link');
    link.rel = 'modulepreload';
    link.href = `/js/${part}`;
    document.head.append(link);
  }
  import('./app.js');
}

function addressOf({ path }) {
  return `#${new URLSearchParams([['at', 'main'], ['list', path]])}`;
}

const [{ requestStart, responseStart }] = performance.getEntriesByType('navigation');
if (responseStart - requestStart < FarMs) loadPage();
else earlyAsked.then(loadPage);

const answer = await earlyRows;
const nav = document.getElementById('nav');
if (answer && nav && !nav.firstElementChild) {
  const list = document.createElement('ul');
  list.className = 'early';
  for (const row of answer.rows.filter(({ type }) => type === Container)) {
    const link = document.createElement('a');
    link.href = addressOf(row);
    link.dir = 'auto';
    link.textContent = row.title;
    list.appendChild(document.createElement('li')).append(link);
  }
  nav.append(list);
  performance.mark('first-lists');
}
