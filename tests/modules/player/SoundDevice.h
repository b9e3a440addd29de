#pragma once

#include <vector>

#include <QtGlobal>

// A sound device for tests: once installed, an automatic sink finds it and prefers it to any real
// one. It keeps real time and remembers what it played.
namespace SoundDevice {

struct Chunk {
    qint64 beginNs;
    qint64 endNs;
};

void install();
// Forgets what was played and mends the device.
void reset();
// From now on it fails after so many chunks of sound; negative: never.
void breakAfter(int chunks);
// Unplugged: it cannot be opened.
void setPresent(bool present);

std::vector<char> played();
std::vector<Chunk> chunks();

} // namespace SoundDevice
