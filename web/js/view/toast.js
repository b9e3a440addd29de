// Short messages at the foot of the page; errors stay longer and are spoken at once.

import { el } from './dom.js';
import { icon } from './icons.js';

const ShowMs = 3200;
const ShowErrorMs = 7000;

let region;

// Inside the dialog that is open: what lies outside it can be neither read nor pressed.
function place() {
  const home = [...document.querySelectorAll('dialog[open]')].at(-1) ?? document.body;
  if (region.parentElement !== home) home.append(region);
}

function begin() {
  region = document.getElementById('toasts');
  document.addEventListener('close', place, { capture: true });
}

function toast(kind, text, ms) {
  if (!region) begin();
  place();
  const last = region.lastElementChild;
  if (last?.dataset.text === text) last.remove();
  const close = el('button.icon-button.small', { type: 'button', 'aria-label': 'Dismiss', onclick: () => item.remove() }, icon('close'));
  const item = el(`div.toast.${kind}`, { role: kind === 'error' ? 'alert' : 'status' }, el('p', {}, text), close);
  item.dataset.text = text;
  region.append(item);
  while (region.childElementCount > 3) region.firstElementChild.remove();
  setTimeout(() => item.remove(), ms);
}

export const tell = (text) => toast('info', text, ShowMs);

// What went wrong in the device's own words. A lost connection has its banner already.
export function tellError(error) {
  if (error?.isOffline) return;
  toast('error', error?.message || 'Something went wrong.', ShowErrorMs);
}

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
