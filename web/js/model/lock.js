// What is under way: a second press on it does nothing.

export class Lock {
  constructor() {
    this.held = new Set();
  }

  isHeld(keys) {
    return keys.some((key) => this.held.has(key));
  }

  // What `work()` gives, with all keys held until it is done; null when one of them is held already.
  during(keys, work) {
    if (this.isHeld(keys)) return null;
    for (const key of keys) this.held.add(key);
    return work().finally(() => {
      for (const key of keys) this.held.delete(key);
    });
  }
}
