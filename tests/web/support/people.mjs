// What people do with the page, by what they see on it.

export class People {
  constructor(window) {
    this.window = window;
    this.page = window.page;
    this.touch = window.size === 'phone';
  }

  async press(locator) {
    if (this.touch) await locator.tap();
    else await locator.click();
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

  async toMusic(...folders) {
    const side = this.page.locator('#side');
    if (this.touch || !(await side.isVisible())) await this.press(this.page.locator('#tab-music'));
    await side.waitFor();
    for (const folder of folders) {
      await this.press(this.row('side', folder).locator('.row-title'));
      await this.heading('side').filter({ hasText: folder }).waitFor();
    }
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

  nowTitle() {
    return this.page.locator('#player .now-title').textContent();
  }

  toast(text) {
    return this.page.locator('.toast', { hasText: text });
  }

  // Lifts a row and lets it go on the middle of another one, beyond it by a little.
  async drag(from, to) {
    const start = await center(this.row('main', from).locator('.row-title'));
    const target = await center(this.row('main', to).locator('.row-title'));
    const end = { x: start.x, y: target.y + Math.sign(target.y - start.y) * 8 };
    if (this.touch) await this.dragByFinger(start, end);
    else await this.dragByMouse(start, end);
  }

  async dragByMouse(start, end) {
    const { mouse } = this.page;
    await mouse.move(start.x, start.y);
    await mouse.down();
    for (let step = 1; step <= 10; step += 1)
      await mouse.move(start.x, start.y + ((end.y - start.y) * step) / 10);
    await this.page.waitForTimeout(60);
    await mouse.up();
  }

  async dragByFinger(start, end) {
    const session = await this.window.context.newCDPSession(this.page);
    const touch = (type, point) => session.send('Input.dispatchTouchEvent', { type, touchPoints: point ? [point] : [] });
    await touch('touchStart', start);
    await this.page.waitForTimeout(550); // a long press
    for (let step = 1; step <= 10; step += 1)
      await touch('touchMove', { x: start.x, y: start.y + ((end.y - start.y) * step) / 10 });
    await this.page.waitForTimeout(60);
    await touch('touchEnd');
    await session.detach();
  }
}

async function center(locator) {
  const box = await locator.boundingBox();
  return { x: box.x + Math.min(60, box.width / 2), y: box.y + box.height / 2 };
}

function escape(text) {
  return text.replace(/[.*+?^${}()|[\]\\]/g, '\\$&');
}
