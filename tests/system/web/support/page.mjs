// The page as a user has it: what is pressed and read on it, by its visible texts and names.

// The page shows other rows with the elements of rows that are gone, while a press holds on to the element that it found:
// so what cannot be pressed is looked for again.
const LookAgainMs = 4000;
const Looks = 5;

export class Page {
  constructor(window) {
    this.window = window;
    this.page = window.page;
    this.touch = window.size === 'phone';
  }

  async press(locator, how = {}) {
    for (let look = 1; ; look += 1) {
      try {
        await locator[this.touch ? 'tap' : 'click']({ ...how, timeout: LookAgainMs });
        return;
      } catch (error) {
        if (look === Looks || error.name !== 'TimeoutError') throw error;
      }
    }
  }

  // What moves on its own has arrived. A trial press would not do: the browser counts it as the first of two.
  async still() {
    await this.page.evaluate(() => Promise.allSettled(document.getAnimations()
      .filter((animation) => Number.isFinite(animation.effect.getComputedTiming().endTime)).map(({ finished }) => finished)));
  }

  // As fast as a hand can: a finger's times go with its touches, however busy the machine is.
  async pressTwice(locator) {
    await locator.waitFor();
    await this.still();
    const box = await locator.boundingBox();
    const at = { x: box.x + box.width / 2, y: box.y + box.height / 2 };
    if (!this.touch) {
      await this.page.mouse.dblclick(at.x, at.y);
      return;
    }
    const session = await this.window.context.newCDPSession(this.page);
    const begin = Date.now();
    await Promise.all([['touchStart', 0], ['touchEnd', 30], ['touchStart', 120], ['touchEnd', 150]].map(([type, ms]) =>
      session.send('Input.dispatchTouchEvent', { type, touchPoints: type === 'touchStart' ? [at] : [], timestamp: (begin + ms) / 1000 })));
    await session.detach();
  }

  // Rows of one pane: nav, main or side. The title is matched whole.
  row(pane, title) {
    return this.page.locator(`#${pane} .screen:not([hidden]) .row:not([hidden])`)
      .filter({ has: this.page.locator('.row-title', { hasText: new RegExp(`^${escape(title)}$`) }) }).first();
  }

  // The titles on screen in their order; only for lists that fit.
  titles(pane) {
    return this.page.locator(`#${pane} .screen:not([hidden]) .rows`).evaluate((rows) =>
      [...rows.querySelectorAll('.row:not([hidden])')]
        .sort((a, b) => Number(a.dataset.index) - Number(b.dataset.index))
        .map((row) => row.querySelector('.row-title').textContent));
  }

  heading(pane = 'main') {
    return this.page.locator(`#${pane} .screen:not([hidden]) .hero-title`);
  }

  meta(pane = 'main') {
    return this.page.locator(`#${pane} .screen:not([hidden]) .hero-meta`);
  }

  async toLists() {
    if (!this.touch) return;
    const nav = this.page.locator('#nav');
    for (let i = 0; i < 4 && !(await nav.isVisible()); i += 1) {
      const back = this.page.locator('#main .screen:not([hidden]) [aria-label="Back"]');
      if (await back.isVisible()) await back.tap();
      else await this.page.locator('#tab-lists').tap();
    }
  }

  async openList(title) {
    await this.toLists();
    await this.press(this.row('nav', title).locator('.row-title'));
    await this.heading().filter({ hasText: title }).waitFor();
  }

  // The places of the music, then through its lists.
  async toMusic(...titles) {
    const side = this.page.locator('#side');
    if (this.touch || !(await side.isVisible())) await this.press(this.page.locator('#tab-music'));
    await side.waitFor();
    for (const title of titles) {
      await this.press(this.row('side', title).locator('.row-title'));
      await this.heading('side').filter({ hasText: title }).waitFor();
    }
  }

  get searchField() {
    return this.page.getByRole('searchbox', { name: 'Search the music' });
  }

  // By the keys, once the field that was asked for has them.
  async typeSearch(text) {
    await this.page.locator('[aria-label="Search the music"]:focus').waitFor();
    await this.page.keyboard.type(text);
  }

  // In the music, which is open.
  async search(text) {
    await this.searchField.fill(text);
  }

  back(pane) {
    return this.press(this.page.locator(`#${pane} .screen:not([hidden]) [aria-label="Back"]`));
  }

  toFolders(...folders) {
    return this.toMusic('Folders', ...folders);
  }

  async menuOf(pane, title) {
    await this.press(this.row(pane, title).locator('.row-more'));
    await this.sheet.waitFor();
  }

  get sheet() {
    return this.page.locator('dialog.sheet[open]');
  }

  entry(text) {
    return this.sheet.locator('.menu-entry').filter({ has: this.page.locator('.menu-text', { hasText: new RegExp(`^${escape(text)}$`) }) });
  }

  async choose(...texts) {
    for (const text of texts) await this.press(this.entry(text));
  }

  async enter(text) {
    await this.sheet.locator('input').fill(text);
    await this.press(this.sheet.locator('.primary'));
  }

  async sheetCloses() {
    await this.sheet.waitFor({ state: 'detached' });
  }

  async closeSheet() {
    await this.press(this.sheet.locator('[aria-label="Close"]'));
    await this.sheetCloses();
  }

  // What is asked before much is changed.
  get question() {
    return this.page.locator('dialog.question[open]');
  }

  async answer(button) {
    await this.press(this.question.getByRole('button', { name: button, exact: true }));
    await this.question.waitFor({ state: 'detached' });
  }

  get undoBar() {
    return this.page.locator('.undo-bar');
  }

  async dismiss() {
    await this.press(this.page.locator('.toast').last().getByRole('button', { name: 'Dismiss' }));
  }

  async undo() {
    await this.press(this.undoBar.getByRole('button', { name: 'Undo' }));
  }

  async createFromRoot(rowTitle, name) {
    await this.toLists();
    await this.press(this.row('nav', rowTitle).locator('.row-title'));
    await this.enter(name);
    await this.sheetCloses();
    await this.heading().filter({ hasText: name }).waitFor();
  }

  async playRow(title) {
    const row = this.row('main', title);
    if (this.touch) await row.locator('.row-title').tap();
    else await row.locator('.row-title').dblclick();
  }

  // The controls are in the bar on a desktop and in the large view on a phone.
  async controls() {
    if (!this.touch) return this.page.locator('#player');
    const large = this.page.locator('dialog.large');
    if (!(await large.evaluate((dialog) => dialog.open))) await this.page.locator('#player .now').tap();
    return large;
  }

  async closeControls() {
    if (!this.touch) return;
    await this.page.locator('dialog.large .large-head [aria-label="Close"]').tap();
  }

  async control(name) {
    await this.press((await this.controls()).locator(`button[aria-label="${name}"]`));
  }

  async openSleep() {
    await this.press((await this.controls()).locator('button[aria-label^="Sleep timer"]'));
    await this.sheet.waitFor();
  }

  nowTitle() {
    return this.page.locator('#player .now-title').textContent();
  }

  toast(text) {
    return this.page.locator('.toast', { hasText: text });
  }

  // With a finger by the mode for it, with a mouse as everywhere.
  async chooseRows(pane, ...titles) {
    if (this.touch) await this.press(this.page.locator(`#${pane} .screen:not([hidden]) [aria-label="Choose several"]`));
    for (const [i, title] of titles.entries()) {
      const row = this.row(pane, title).locator('.row-title');
      await this.press(row, this.touch ? {} : { modifiers: i ? ['Control'] : [] });
    }
  }

  // Lifts a row and lets it go on the middle of another one, beyond it by a little.
  async drag(from, to) {
    const drop = await this.lift(from, to);
    await drop();
  }

  // The same up to letting go; what it gives does that, over another row if need be.
  async lift(from, to) {
    const pointer = await this.pointer();
    const start = await this.middle(from);
    let { y } = start;
    const moveTo = async (title) => {
      const target = (await this.middle(title)).y;
      const end = target + Math.sign(target - y) * 8;
      for (let step = 1; step <= 6; step += 1) await pointer.move({ x: start.x, y: y + ((end - y) * step) / 6 });
      y = end;
    };
    await pointer.down(start);
    if (this.touch) await this.page.locator('#main .row.lifted').waitFor(); // a long press
    await moveTo(to);
    await this.page.locator('#main .rows.dragging').waitFor();
    return async (over) => {
      if (over) await moveTo(over);
      await pointer.up();
    };
  }

  async middle(title) {
    const row = this.row('main', title);
    let box = null;
    for (let look = 1; !box && look <= Looks; look += 1) {
      await row.evaluate((element) => Promise.allSettled(element.getAnimations().map((animation) => animation.finished)));
      box = await row.locator('.row-title').boundingBox();
    }
    return { x: box.x + Math.min(60, box.width / 2), y: box.y + box.height / 2 };
  }

  // A finger or a mouse.
  async pointer() {
    const { mouse } = this.page;
    if (!this.touch) {
      return {
        down: async ({ x, y }) => {
          await mouse.move(x, y);
          await mouse.down();
        },
        move: ({ x, y }) => mouse.move(x, y),
        up: () => mouse.up(),
      };
    }
    const session = await this.window.context.newCDPSession(this.page);
    const touch = (type, point) => session.send('Input.dispatchTouchEvent', { type, touchPoints: point ? [point] : [] });
    return {
      down: (point) => touch('touchStart', point),
      move: (point) => touch('touchMove', point),
      up: async () => {
        await touch('touchEnd');
        await session.detach();
      },
    };
  }

  // A finger that rests on a row, or the right button.
  async pressLong(pane, title) {
    const row = this.row(pane, title).locator('.row-title');
    if (!this.touch) {
      await row.click({ button: 'right' });
      return;
    }
    // What hears it comes with the player's bar, after the lists.
    await this.page.locator('#player .transport').first().waitFor({ state: 'attached' });
    await row.waitFor();
    await this.still();
    const box = await row.boundingBox();
    const pointer = await this.pointer();
    await pointer.down({ x: box.x + 20, y: box.y + box.height / 2 });
    await this.page.locator(`#${pane} .row.lifted`).waitFor();
    await pointer.up();
  }
}

function escape(text) {
  return text.replace(/[.*+?^${}()|[\]\\]/g, '\\$&');
}
