// What an element looks like: the colours of its pixels. Forced colours show in no computed style of what is drawn.

// rows of [red, green, blue] of the element as it is on screen
export async function pixelsOf(locator) {
  const page = locator.page();
  const png = (await locator.screenshot({ animations: 'disabled' })).toString('base64');
  // Decoded in a window of its own: the page's policy lets no such picture in.
  const other = await page.context().newPage();
  try {
    return await other.evaluate(async (data) => {
      const bytes = Uint8Array.from(atob(data), (letter) => letter.charCodeAt(0));
      const bitmap = await createImageBitmap(new Blob([bytes], { type: 'image/png' }));
      const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
      const context = canvas.getContext('2d');
      context.drawImage(bitmap, 0, 0);
      const { data: all } = context.getImageData(0, 0, bitmap.width, bitmap.height);
      return Array.from({ length: bitmap.height }, (_, y) => Array.from({ length: bitmap.width }, (__, x) => {
        const at = (y * bitmap.width + x) * 4;
        return [all[at], all[at + 1], all[at + 2]];
      }));
    }, png);
  } finally {
    await other.close();
  }
}

// So many different colours lie along a line, 0 to 1 from its top.
export function coloursAlong(pixels, height) {
  const line = pixels[Math.min(pixels.length - 1, Math.round(pixels.length * height))];
  return new Set(line.map(String)).size;
}
