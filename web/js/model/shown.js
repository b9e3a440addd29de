// Edits as the page shows them, before the device has done them.

// Fresh rows stay fresh: they only stand elsewhere.
function reorder(store, order) {
  for (const name of ['rows', 'generations']) {
    const list = store[name];
    store[name] = order.map((i) => list[i]);
  }
  store.rows.forEach((row, i) => {
    if (row?.value?.i32 !== undefined && row.value.i32 !== i) store.rows[i] = { ...row, value: { i32: i } };
  });
}

const places = (store) => Array.from({ length: store.count }, (_, i) => i);

// The rows at `from` (ascending) stand in front of what is at `gap` now.
export function showMoved(store, from, gap) {
  const chosen = new Set(from);
  const kept = (i) => !chosen.has(i);
  const all = places(store);
  reorder(store, [...all.slice(0, gap).filter(kept), ...from, ...all.slice(gap).filter(kept)]);
  store.emit('moved');
  store.emit('rows', { from: 0, to: store.count });
}

export function showRemoved(store, from) {
  const chosen = new Set(from);
  reorder(store, places(store).filter((i) => !chosen.has(i)));
  store.count -= from.length;
  store.kept = store.rows.filter(Boolean).length;
  store.emit('removed', from);
  store.emit('count');
  store.emit('rows', { from: 0, to: store.count });
}
