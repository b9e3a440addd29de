#pragma once

#include <string>

// Made-up tracks with everything that a track of the music folder has, as the add command takes
// them.
namespace Tracks {

// A JSON list of the tracks `first` to `first + count - 1`.
std::string items(int first, int count);

} // namespace Tracks
