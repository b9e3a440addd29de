// How much of the processors a hypervisor gives to other machines: what is measured meanwhile tells of those.

import { readFileSync } from 'node:fs';
import { cpus } from 'node:os';

const TickMs = 10;
const StolenField = 8; // of a line "cpu user nice system idle iowait irq softirq stolen"

const stolenMs = () => Number(readFileSync('/proc/stat', 'utf8').split('\n', 1)[0].split(/\s+/)[StolenField]) * TickMs;

// Measures until nothing was stolen from `kept` measurements, but not more often than `tries`. Gives those from which
// the least was stolen, whatever they measured, in their order, each as { figures, stolen } with percent of the time.
export async function leastDisturbed(kept, tries, measure) {
  const all = [];
  for (let i = 0; i < tries && all.filter(({ stolen }) => stolen === 0).length < kept; i += 1) {
    const before = stolenMs();
    const begun = performance.now();
    const figures = await measure();
    const time = (performance.now() - begun) * cpus().length;
    all.push({ i, figures, stolen: (100 * (stolenMs() - before)) / time });
  }
  return all.sort((a, b) => a.stolen - b.stolen).slice(0, kept).sort((a, b) => a.i - b.i);
}
