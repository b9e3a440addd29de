// What is open stands in the address, so that the browser's own back and reload do what people
// expect.

const Places = ['nav', 'main', 'side'];

export class Address {
  constructor(app) {
    this.app = app;
    window.addEventListener('popstate', () => this.apply());
  }

  read() {
    const query = new URLSearchParams(location.hash.slice(1));
    return {
      place: Places.includes(query.get('at')) ? query.get('at') : null,
      main: query.getAll('list'),
      side: query.getAll('music'),
      sideOpen: query.get('beside') === '1',
    };
  }

  text() {
    const { app } = this;
    const query = new URLSearchParams();
    query.append('at', document.body.dataset.place);
    if (document.body.classList.contains('side-open')) query.append('beside', '1');
    for (const path of app.main.paths()) query.append('list', path);
    for (const path of app.side.paths().slice(1)) query.append('music', path);
    return `#${query}`;
  }

  write() {
    const text = this.text();
    if (text !== location.hash) history.pushState(null, '', text);
  }

  apply(sideOpenFirst = false) {
    const { app } = this;
    const { place, main, side, sideOpen } = this.read();
    const rows = () => app.nav.top.store.rows;
    app.main.restore(main, (path) => rows().find((row) => row?.path === path));
    app.side.restore([app.side.stack[0].path, ...side]);
    document.body.classList.toggle('side-open', place ? sideOpen : sideOpenFirst && app.hasMusic);
    if (!app.main.top && !app.isNarrow && app.nav.top.store.isLoaded) app.openFirst();
    app.setPlace(place ?? (app.main.top ? 'main' : 'nav'));
    if (!place) history.replaceState(null, '', this.text());
  }
}
