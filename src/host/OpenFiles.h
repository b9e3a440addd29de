#pragma once

// How many files, sockets among them, the process can have open at once.
namespace OpenFiles {

// Below it not even the start would come to its end: the event loop, the signals, the store, the
// music folder and the modules' libraries have some, a track that plays about ten.
constexpr long Least = 64;
// The gateway's 512 connections, and room for files that are served, the player and the store.
constexpr long Wanted = 1024;

// Raises the limit as far as the system lets a process do it, and returns it. Nothing in the
// process uses select(), which would have been a reason to stay below 1024.
long raiseLimit();

} // namespace OpenFiles
