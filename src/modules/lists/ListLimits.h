#pragma once

// How large a playlist file may be that is read.
namespace ListLimits {

constexpr int MaxBytes = 8 * 1024 * 1024;
constexpr int MaxEntries = 100000;
// Of a line, and in XML of a tag or the text behind it.
constexpr int MaxLineLength = 32768;
// Of a tag in XML.
constexpr int MaxAttributes = 256;
// Files that are read, and that are written, at the same time. Each may take several times its
// size.
constexpr int MaxJobs = 4;

} // namespace ListLimits
