// Frame times, as the page's own clock sees them.

export async function recordFrames(page) {
  await page.evaluate(() => {
    const frames = [];
    let last = 0;
    const tick = (now) => {
      if (last) frames.push(now - last);
      last = now;
      window.frameTimer = requestAnimationFrame(tick);
    };
    window.frames_ = frames;
    window.frameTimer = requestAnimationFrame(tick);
  });
  return async () => {
    const frames = await page.evaluate(() => {
      cancelAnimationFrame(window.frameTimer);
      return window.frames_;
    });
    const sorted = [...frames].sort((a, b) => a - b);
    const at = (share) => sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))];
    return { count: frames.length, median: at(0.5), p95: at(0.95), p99: at(0.99), longest: sorted.at(-1), over50: frames.filter((frame) => frame > 50).length };
  };
}
