// What a screen reader is given: Chromium's own accessibility tree of a part of the page, as lines of text.

const Told = new Set(['heading', 'button', 'row', 'textbox', 'searchbox', 'switch', 'slider', 'grid', 'dialog', 'status', 'alert']);
const States = ['focused', 'pressed', 'checked', 'expanded', 'disabled', 'selected', 'invalid'];

const valueOf = (node, name) => node.properties?.find((property) => property.name === name)?.value.value;

function line({ role, name, ...node }) {
  const states = States.filter((state) => ![undefined, false, 'false', ''].includes(valueOf(node, state)));
  return [role.value, JSON.stringify(name?.value ?? ''), ...states].join(' ');
}

export async function spokenOf(locator) {
  const page = locator.page();
  const session = await page.context().newCDPSession(page);
  try {
    await session.send('Accessibility.enable');
    const handle = await locator.elementHandle();
    await handle.evaluate((element) => (window.spokenOf = element));
    const { result: { objectId } } = await session.send('Runtime.evaluate', { expression: 'window.spokenOf' });
    const { nodes } = await session.send('Accessibility.queryAXTree', { objectId });
    return nodes.filter(({ ignored, role }) => !ignored && Told.has(role?.value)).map(line);
  } finally {
    await session.detach();
  }
}
