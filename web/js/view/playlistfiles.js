// Playlist files of other programs, read into new playlists, and playlists as files to keep. What was not found is told
// by the lines of the file.

import { sendData } from '../core/device.js';
import { allRows, plural } from '../model/rows.js';
import { attempt, el, icon, showDialog, tell } from './dom.js';

const ImportPath = 'lists:import';
const ExportPath = 'lists:export';
const Accepted = '.m3u,.m3u8,.pls,.xspf';
// More lines than a person reads on a screen.
const MaxLines = 200;

const hasFiles = ({ dataTransfer }) => Boolean(dataTransfer?.types.includes('Files'));

// The file as the device takes it: what its text is encoded in is found out there.
function base64Of(file) {
  return new Promise((done, failed) => {
    const reader = new FileReader();
    reader.onload = () => done(reader.result.slice(reader.result.indexOf(',') + 1));
    reader.onerror = () => failed(new Error(`${file.name} cannot be read.`));
    reader.readAsDataURL(file);
  });
}

function summaryOf({ file, plid, name, added, notFound }) {
  if (plid === undefined) return `Nothing of ${file} was found in the music. No playlist was made.`;
  const missing = notFound.length ? `, ${plural(notFound.length, 'line')} not found in the music` : '';
  return `“${name}”: ${plural(added, 'track')} imported${missing}.`;
}

export class PlaylistFiles {
  constructor(app) {
    this.app = app;
    this.acceptDrops();
  }

  get isPossible() {
    return this.app.modules.has('lists');
  }

  choose(anchor) {
    const input = el('input', { type: 'file', multiple: true, accept: Accepted, hidden: true });
    input.addEventListener('change', () => {
      this.importAll([...input.files], anchor);
      input.remove();
    });
    input.addEventListener('cancel', () => input.remove());
    document.body.append(input);
    input.click();
  }

  // Onto the lists; anywhere else the browser would leave the page for the file.
  acceptDrops() {
    const nav = this.app.nav.element;
    const isTaken = (event) => this.isPossible && nav.contains(event.target);
    document.addEventListener('dragover', (event) => {
      if (!hasFiles(event)) return;
      event.preventDefault();
      event.dataTransfer.dropEffect = isTaken(event) ? 'copy' : 'none';
      nav.classList.toggle('takes-files', isTaken(event));
    });
    document.addEventListener('dragleave', (event) => event.relatedTarget || nav.classList.remove('takes-files'));
    document.addEventListener('drop', (event) => {
      nav.classList.remove('takes-files');
      if (!hasFiles(event)) return;
      event.preventDefault();
      if (isTaken(event)) this.importAll([...event.dataTransfer.files], nav);
    });
  }

  // One after the other; one that is refused does not keep the others.
  async importAll(files, anchor) {
    const results = [];
    for (const file of files) {
      const result = await attempt(this.importOne(file), anchor);
      if (result) results.push(result);
    }
    const made = results.filter(({ plid }) => plid !== undefined);
    if (made.length) await attempt(this.openList(made.at(-1)), anchor);
    if (results.some(({ notFound }) => notFound.length)) this.report(results);
    else if (results.length) tell(results.map(summaryOf).join(' '));
  }

  async importOne(file) {
    const result = await sendData(ImportPath, { file: file.name, bytes: await base64Of(file) });
    return { ...result, file: file.name };
  }

  async openList({ plid }) {
    const { app } = this;
    const { path } = app.commands.listOf(plid);
    const row = (await allRows(app.nav.top.path)).find((one) => one.path === path);
    if (row) app.openInMain(row);
  }

  report(results) {
    const close = () => dialog.close();
    const parts = results.flatMap((result) => {
      const lines = result.notFound.slice(0, MaxLines).map(({ line, text }) =>
        el('li', {}, el('span.line-number', {}, `Line ${line} `), el('span', { dir: 'auto' }, text)));
      const more = result.notFound.length - lines.length;
      return [
        el('p', {}, summaryOf(result)),
        lines.length ? el('ul.missing', {}, lines, more > 0 ? el('li', {}, `and ${more.toLocaleString()} more`) : null) : null,
      ];
    });
    const dialog = el('dialog.card.report', { 'aria-labelledby': 'report-title' },
      el('header.sheet-head', {}, el('h2.sheet-title', { id: 'report-title' }, 'Imported'),
        el('button.icon-button', { type: 'button', 'aria-label': 'Close', onclick: close }, icon('close'))),
      el('div.report-text', { tabindex: '0' }, parts));
    dialog.addEventListener('close', () => dialog.remove());
    document.body.append(dialog);
    showDialog(dialog);
  }

  async save({ plid }) {
    const { text, file, mimeType, tracks, name } = await sendData(ExportPath, { plid });
    const url = URL.createObjectURL(new Blob([text], { type: mimeType }));
    el('a', { href: url, download: file }).click();
    URL.revokeObjectURL(url);
    tell(`“${name}” exported with ${plural(tracks, 'track')}.`);
  }
}
