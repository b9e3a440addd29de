// Where rows stand when all have the same height but a few: headers and separators. Costs as much
// as there are of those, not as there are rows.

export class RowMetrics {
  constructor() {
    this.height = 1;
    this.special = new Map(); // index → height
    this.sorted = [];
    this.before = []; // what the special ones in front add
  }

  setHeight(height) {
    this.height = height;
    this.rebuild();
  }

  // heights: [[index, height or null]]; null: as usual.
  set(heights) {
    let changed = false;
    for (const [index, height] of heights) {
      if (height === null) changed = this.special.delete(index) || changed;
      else if (this.special.get(index) !== height) {
        this.special.set(index, height);
        changed = true;
      }
    }
    if (changed) this.rebuild();
    return changed;
  }

  shift(at, count) {
    const moved = new Map();
    for (const [index, height] of this.special) moved.set(index >= at ? index + count : index, height);
    this.special = moved;
    this.rebuild();
  }

  cut(count) {
    for (const index of [...this.special.keys()]) if (index >= count) this.special.delete(index);
    this.rebuild();
  }

  rebuild() {
    this.sorted = [...this.special.keys()].sort((a, b) => a - b);
    let sum = 0;
    this.before = this.sorted.map((index) => {
      const mine = sum;
      sum += this.special.get(index) - this.height;
      return mine;
    });
    this.extra = sum;
  }

  heightOf(index) {
    return this.special.get(index) ?? this.height;
  }

  topOf(index) {
    let low = 0;
    let high = this.sorted.length;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (this.sorted[middle] < index) low = middle + 1;
      else high = middle;
    }
    return index * this.height + (low < this.sorted.length ? this.before[low] : this.extra ?? 0);
  }

  indexAt(y, count) {
    let low = 0;
    let high = Math.max(0, count - 1);
    while (low < high) {
      const middle = (low + high + 1) >> 1;
      if (this.topOf(middle) <= y) low = middle;
      else high = middle - 1;
    }
    return low;
  }
}
