// What scrolling costs, told in three ways, because each alone can flatter.
//
// drawn: the time between two frames that the browser's compositor drew, from a trace of the browser: what an eye
// sees. It scrolls what it has also while the page works, so a busy page may show as blank rows instead.
// asked: the time between two animation frames, as the page's own clock sees them: a page that works too long, or
// a machine that gives it no time, shows here.
// work: the processor time of the longest task of the page's thread, from the trace: what of it is the page's fault.

const Kinds = {
  script: ['FunctionCall', 'EvaluateScript', 'FireAnimationFrame', 'EventDispatch', 'TimerFire', 'RunMicrotasks'],
  style: ['UpdateLayoutTree'],
  layout: ['Layout'],
  paint: ['PrePaint', 'Paint', 'Layerize', 'Commit'],
  collection: ['MajorGC', 'MinorGC', 'V8.GCScavenger', 'BlinkGC.AtomicPhase'],
};

export async function recordFrames(browser, page) {
  await browser.startTracing(page, {
    categories: ['toplevel', 'devtools.timeline', 'disabled-by-default-devtools.timeline.frame'],
  });
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
    const main = mainThread(traceEvents);
    return {
      asked: summary(frames),
      drawn: summary(drawnFrames(traceEvents, main)),
      work: Math.max(...tasksOf(traceEvents, main)),
      longest: longestOf(traceEvents, main),
    };
  };
}

function summary(times) {
  if (!times.length) throw new Error('no frames were recorded');
  const sorted = [...times].sort((a, b) => a - b);
  const at = (share) => sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))];
  return {
    count: times.length,
    median: at(0.5),
    p95: at(0.95),
    longest: sorted.at(-1),
    over50: times.filter((time) => time > 50).length,
  };
}

const on = (thread) => (event) => event.pid === thread.pid && event.tid === thread.tid;
const isTask = (event) => event.ph === 'X' && event.name.endsWith('RunTask');

// That of the busiest page.
function mainThread(events) {
  const busy = events.filter(({ name, args }) => name === 'thread_name' && args.name === 'CrRendererMain')
    .map((thread) => ({ thread, tasks: events.filter((event) => isTask(event) && on(thread)(event)).length }))
    .sort((a, b) => b.tasks - a.tasks)[0];
  if (!busy?.tasks) throw new Error('the trace holds no tasks');
  return busy.thread;
}

const tasksOf = (events, main) => events.filter((event) => isTask(event) && on(main)(event)).map(({ tdur = 0 }) => tdur / 1000);

// Each since the one before, or since the end of the last one of which the compositor said that there was nothing to
// draw: a list at rest is not late. A frame that was wanted and not drawn in time is told apart from that, and counts.
function drawnFrames(events, main) {
  const times = (found) => events.filter((event) => event.pid === main.pid && found(event)).map(({ ts }) => ts / 1000)
    .sort((a, b) => a - b);
  const drawn = times(({ name }) => name === 'DrawFrame');
  const begun = times(({ name }) => name === 'BeginFrame');
  let next = 0;
  const resting = times(({ name, args }) => name === 'PipelineReporter' &&
    (args.chrome_frame_reporter ?? args.frame_reporter)?.state === 'STATE_NO_UPDATE_DESIRED').map((time) => {
    while (begun[next] <= time) next += 1;
    return begun[next] ?? time;
  });
  let at = 0;
  return drawn.slice(1).map((time, i) => {
    let since = drawn[i];
    for (; at < resting.length && resting[at] < time; at += 1) since = Math.max(since, resting[at]);
    return time - since;
  });
}

// The longest single piece of each kind of work, in milliseconds.
function longestOf(events, main) {
  const mine = events.filter((event) => event.ph === 'X' && on(main)(event));
  return Object.fromEntries(Object.entries(Kinds).map(([kind, names]) =>
    [kind, Math.max(0, ...mine.filter(({ name }) => names.includes(name)).map(({ dur = 0 }) => dur / 1000))]));
}

export function told(name, { count, median, p95, longest, over50 }) {
  const ms = (time) => `${time.toFixed(1)} ms`;
  return `${name}: ${count} frames, median ${ms(median)}, 95 % ${ms(p95)}, longest ${ms(longest)}, over 50 ms: ${over50}`;
}
