#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "BenchStore.h"

// One work, set up at one size and done again and again over one store, by the baseline and by the
// module in turns. What is not the work itself belongs into the preparations, which are not timed.
// A side that fails returns false.
struct Workload {
    using Prepare = std::function<void(BenchStore&)>;
    using Side = std::function<bool(BenchStore&)>;

    BenchStore::Contents contents;
    bool startsOver = false; // each turn, with a file laid out anew
    // Before all turns, before both sides of one, and right before the one.
    Prepare begin = [](BenchStore&) {};
    Prepare prepare = begin;
    Prepare prepareBaseline = begin;
    Prepare prepareModule = begin;
    // What the module is held against; empty where there is nothing.
    Side baseline = {};
    Side module = {};
};

// A row of the table.
struct Work {
    const char* name;
    const char* heldAgainst; // "" for nothing
    std::optional<double> maxRatio;
    std::optional<double> maxGrowth;
    // Turns at 1,000, 10,000 and 100,000 entries: fewer for those that take long.
    enum class Length { Short, Long } length;
    // Measured at this size alone, where there is one.
    std::optional<int> onlySize;
    std::function<Workload(int size)> setUp;
    // Of the module's median, in microseconds, in memory-backed storage and on a disk.
    std::optional<double> maxUs = {};
    std::optional<double> maxDiskUs = {};
};

// In the order of the table; one function per source.
std::vector<Work> editWorks();
std::vector<Work> folderWorks();
std::vector<Work> readWorks();
std::vector<Work> playWorks();
