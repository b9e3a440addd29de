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

// Assigning the same text again would still cost a layout.
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
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
