// The smallest way to say that something changed.
export class Emitter {
  constructor() {
    this.handlers = new Map();
  }

  // Returns what ends the subscription.
  on(name, handler) {
    if (!this.handlers.has(name)) this.handlers.set(name, new Set());
    this.handlers.get(name).add(handler);
    return () => this.handlers.get(name).delete(handler);
  }

  emit(name, detail) {
    for (const handler of [...(this.handlers.get(name) ?? [])]) handler(detail);
  }
}
