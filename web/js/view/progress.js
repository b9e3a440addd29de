// How far adding has come, with a way to stop it. What is over in a moment shows nothing but its end.

import { plural } from '../model/rows.js';
import { el, setText, tell, tellError } from './dom.js';

const ShowAfterMs = 350;

// `isQuiet`: that it is done shows elsewhere.
export function watchAdding(adding, region, { isQuiet = false } = {}) {
  const text = el('p.progress-text');
  const bar = el('progress', { 'aria-label': `Adding to ${adding.title}` });
  const stop = el('button.pill.small', { type: 'button', onclick: () => adding.stop() }, 'Stop');
  const card = el('div.progress-card', { role: 'group', 'aria-label': `Adding to ${adding.title}` },
    el('div.progress-texts', {}, text, bar), stop);
  const timer = setTimeout(() => region.append(card), ShowAfterMs);

  const show = () => {
    stop.disabled = adding.stopping;
    if (adding.phase === 'finding') {
      bar.removeAttribute('value');
      setText(text, adding.found ? `Finding tracks: ${adding.found.toLocaleString()}` : 'Finding tracks');
    } else if (adding.phase === 'adding') {
      bar.max = Math.max(1, adding.found);
      bar.value = adding.added;
      setText(text, `Adding to ${adding.title}: ${adding.added.toLocaleString()} of ${adding.found.toLocaleString()}`);
    } else {
      clearTimeout(timer);
      card.remove();
      if (!isQuiet || adding.phase !== 'done' || !adding.added) finish(adding);
    }
  };
  adding.on('change', show);
  show();
}

function finish(adding) {
  const amount = plural(adding.added, 'track');
  if (adding.phase === 'failed') tellError(adding.error);
  else if (adding.phase === 'stopped') tell(`Stopped: ${amount} of ${adding.found.toLocaleString()} added to ${adding.title}.`);
  else if (adding.added) tell(`${amount} added to ${adding.title}.`);
  else tell('There are no tracks to add.');
}
