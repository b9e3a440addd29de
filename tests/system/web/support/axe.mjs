// What axe-core finds on the page as it is shown, one line for each.

import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';

const axeSource = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

// What axe leaves out by default and people with voice control need.
const rules = { 'label-content-name-mismatch': { enabled: true } };

export async function findings(me) {
  await me.still();
  // Evaluated from outside, so the page's own policy on scripts stays as it is.
  if (!(await me.page.evaluate(() => Boolean(window.axe)))) await me.page.evaluate(axeSource);
  return me.page.evaluate(async (options) => {
    const { violations } = await window.axe.run(document, { resultTypes: ['violations'], ...options });
    return violations.map(({ id, help, nodes }) =>
      `${id}: ${help}: ${nodes.slice(0, 3).map((node) => `${node.html} ${node.failureSummary}`).join(' | ')}`);
  }, { rules });
}
