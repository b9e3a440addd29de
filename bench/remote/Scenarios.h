#pragma once

#include <sched.h>

#include "../client/Device.h"
#include "../client/Report.h"

// What all questions are asked of.
struct Library {
    const Device* device;
    int bigList;   // of `bigSize` tracks
    int smallList; // of `smallSize` tracks
    int bigSize;
    int smallSize;
};

namespace Scenarios {

constexpr int PageRows = 50;
// What the figures say about a machine that is not the device's alone.
constexpr const char* Stolen = "stolen meanwhile";

// What the machine itself takes to wake somebody up: below that nothing over a socket gets.
void wakeUps(const cpu_set_t& others, Report& report);
void pages(const Library& library, Report& report);
// Edits by one client, while another one listens.
void edits(const Library& library, const std::string& storage, bool bounded, Report& report);
// In memory-backed storage.
void pagesBehindRemovals(const Library& library, Report& report);
void manyListeners(const Library& library, Report& report);
void manyReaders(const Library& library, Report& report);
// The device's music folder has `tracks` tracks; they are added to a new list while others read.
void folderAdded(const Library& library, int tracks, const std::string& storage, bool bounded,
                 Report& report);

// Whether it is a whole page of rows of that list; throws when it is not.
void checkPage(const HttpConnection& connection, int firstPosition);
std::string itemsPath(int plid);

} // namespace Scenarios
