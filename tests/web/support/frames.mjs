// Frame times, as the page's own clock sees them, and what the page's thread worked for them, from
// a trace of the browser. On a machine that does other things as well, the first tells how it was,
// the second what it is the page's fault.

export async function recordFrames(browser, page) {
  await browser.startTracing(page, { categories: ['toplevel', 'devtools.timeline'] });
  await page.evaluate(() => {
    const frames = [];
    let last = 0;
    const tick = (now) => {
      if (last) frames.push(now - last);
      last = now;
      window.frameTimer = requestAnimationFrame(tick);
    };
    window.recordedFrames = frames;
    window.frameTimer = requestAnimationFrame(tick);
  });
  return async () => {
    const frames = await page.evaluate(() => {
      cancelAnimationFrame(window.frameTimer);
      return window.recordedFrames;
    });
    const { traceEvents } = JSON.parse(await browser.stopTracing());
    const sorted = [...frames].sort((a, b) => a - b);
    const at = (share) => sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))];
    return {
      count: frames.length,
      median: at(0.5),
      p95: at(0.95),
      longest: sorted.at(-1),
      over50: frames.filter((frame) => frame > 50).length,
      work: longestWork(traceEvents),
    };
  };
}

// The longest task of the busiest main thread, in milliseconds of processor time.
function longestWork(events) {
  const threads = new Map();
  for (const { name, args, pid, tid } of events) {
    if (name === 'thread_name' && args.name === 'CrRendererMain') threads.set(`${pid}:${tid}`, []);
  }
  for (const event of events) {
    if (event.ph === 'X' && event.name.endsWith('RunTask')) threads.get(`${event.pid}:${event.tid}`)?.push(event.tdur ?? 0);
  }
  const busiest = [...threads.values()].sort((a, b) => b.length - a.length)[0] ?? [];
  if (!busiest.length) throw new Error('the trace holds no tasks');
  return Math.max(...busiest) / 1000;
}
