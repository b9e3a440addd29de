// What people set for this browser, kept by it. A browser that keeps nothing has the defaults.

const Name = 'orvo.settings';
const Defaults = { letterKeys: true };

function stored() {
  try {
    return JSON.parse(localStorage.getItem(Name)) ?? {};
  } catch {
    return {};
  }
}

export class Settings {
  constructor() {
    this.values = { ...Defaults, ...stored() };
  }

  get letterKeys() {
    return this.values.letterKeys === true;
  }

  set(name, value) {
    this.values[name] = value;
    try {
      localStorage.setItem(Name, JSON.stringify(this.values));
    } catch {
      // It holds until the page is left.
    }
  }
}
