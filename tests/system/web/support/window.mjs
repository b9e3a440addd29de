// A window without an observer while it loads: the test library follows every request of its own pages, which takes
// processor time that a person's browser has for the page. This one gets a script before the page, an address, and is
// asked when it is done.

export class Window {
  static async open(browser, { width, height }) {
    const session = await browser.newBrowserCDPSession();
    const { browserContextId } = await session.send('Target.createBrowserContext');
    const { targetId } = await session.send('Target.createTarget', {
      url: 'about:blank', browserContextId, newWindow: true, width, height,
    });
    const { sessionId } = await session.send('Target.attachToTarget', { targetId, flatten: false });
    return new Window(session, browserContextId, sessionId);
  }

  constructor(session, browserContextId, sessionId) {
    this.session = session;
    this.browserContextId = browserContextId;
    this.sessionId = sessionId;
    this.asked = new Map();
    session.on('Target.receivedMessageFromTarget', (event) => {
      const { id, result, error } = JSON.parse(event.message);
      if (event.sessionId !== sessionId || !id) return;
      const { done, failed } = this.asked.get(id);
      this.asked.delete(id);
      if (error) failed(new Error(error.message));
      else done(result);
    });
  }

  async send(method, params = {}) {
    this.last = (this.last ?? 0) + 1;
    const answer = new Promise((done, failed) => this.asked.set(this.last, { done, failed }));
    const message = JSON.stringify({ id: this.last, method, params });
    await this.session.send('Target.sendMessageToTarget', { sessionId: this.sessionId, message });
    return answer;
  }

  async runBeforePage(script) {
    await this.send('Page.enable');
    await this.send('Page.addScriptToEvaluateOnNewDocument', { source: `(${script})()` });
  }

  go(url) {
    return this.send('Page.navigate', { url });
  }

  async value(expression) {
    const { result } = await this.send('Runtime.evaluate', { expression });
    return result.value;
  }

  async close() {
    await this.session.send('Target.disposeBrowserContext', { browserContextId: this.browserContextId });
    await this.session.detach();
  }
}
