// A music folder of a story's own: silent tracks without tags, which are called what their files are.

import { mkdirSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';

const Rate = 8000;

export function silence(folder, ...names) {
  const bytes = Rate * 60 * 2;
  const head = Buffer.alloc(44);
  head.write('RIFF', 0);
  head.writeUInt32LE(36 + bytes, 4);
  head.write('WAVEfmt ', 8);
  head.writeUInt32LE(16, 16);
  head.writeUInt16LE(1, 20); // PCM
  head.writeUInt16LE(1, 22); // one channel
  head.writeUInt32LE(Rate, 24);
  head.writeUInt32LE(Rate * 2, 28);
  head.writeUInt16LE(2, 32);
  head.writeUInt16LE(16, 34);
  head.write('data', 36);
  head.writeUInt32LE(bytes, 40);
  for (const name of names) {
    const file = join(folder, `${name}.wav`);
    mkdirSync(dirname(file), { recursive: true });
    writeFileSync(file, Buffer.concat([head, Buffer.alloc(bytes)]));
  }
}
