// Paths of the data model as text: prefix:component/component?name=value&name=value.
// Names and values are percent-encoded, so a path may be carried inside a parameter.

export function basePart(path) {
  const question = path.indexOf('?');
  return question < 0 ? path : path.slice(0, question);
}

export function modulePart(path) {
  return path.slice(0, path.indexOf(':'));
}

export function components(path) {
  const base = basePart(path);
  return base.slice(base.indexOf(':') + 1).split('/').filter(Boolean).map(decodeURIComponent);
}

export function params(path) {
  const result = {};
  const question = path.indexOf('?');
  if (question < 0) return result;
  for (const pair of path.slice(question + 1).split('&')) {
    if (!pair) continue;
    const equals = pair.indexOf('=');
    const name = decodeURIComponent(equals < 0 ? pair : pair.slice(0, equals));
    result[name] = equals < 0 ? '' : decodeURIComponent(pair.slice(equals + 1));
  }
  return result;
}

export function withParams(base, values) {
  const pairs = Object.entries(values)
    .filter(([, value]) => value !== undefined)
    .map(([name, value]) => `${encodeURIComponent(name)}=${encodeURIComponent(value)}`);
  return pairs.length ? `${base}?${pairs.join('&')}` : base;
}

export function samePlace(a, b) {
  return basePart(a) === basePart(b);
}

// Whole components, parameters aside: a/1 is at or below a, and no start of a/10.
export function isAtOrBelow(path, start) {
  const base = basePart(path);
  const of = basePart(start);
  return base === of || base.startsWith(of.endsWith(':') ? of : `${of}/`);
}

// The path itself after every shorter one that still begins with `root`.
export function ancestry(path, root) {
  if (path === root || !isAtOrBelow(path, root) || path.includes('?')) return [path];
  const rest = path.slice(root.length + 1).split('/');
  const result = [];
  for (let i = 1; i <= rest.length; i += 1) result.push(`${root}/${rest.slice(0, i).join('/')}`);
  return result;
}
