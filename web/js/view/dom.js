// Elements without markup: every text is a text, whatever it holds.

// el('button.primary', {type: 'button', onclick}, 'Play')
export function el(spec, attributes = {}, ...children) {
  const [name, ...classes] = spec.split('.');
  const element = document.createElement(name || 'div');
  if (classes.length) element.className = classes.join(' ');
  for (const [key, value] of Object.entries(attributes ?? {})) {
    if (value === undefined || value === null || value === false) continue;
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else if (value === true) element.setAttribute(key, '');
    else element.setAttribute(key, value);
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined));
  return element;
}

// Assigning the same text again would still cost a layout, and another text node a new place in it.
export function setText(element, text) {
  const node = element.firstChild;
  if (node?.nodeType !== Node.TEXT_NODE || node.nextSibling) element.textContent = text;
  else if (node.data !== text) node.data = text;
}

export function setAttribute(element, name, value) {
  if (value === null || value === undefined) {
    if (element.hasAttribute(name)) element.removeAttribute(name);
  } else if (element.getAttribute(name) !== String(value)) {
    element.setAttribute(name, value);
  }
}

export const clamp = (value, low, high) => Math.min(Math.max(value, low), high);

export const plural = (count, word) =>
  `${count.toLocaleString()} ${word}${count === 1 ? '' : 's'}`;

export const prefersStill = () => matchMedia('(prefers-reduced-motion: reduce)').matches;
