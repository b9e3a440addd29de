#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QString>

// What a work is measured on.
struct Setting {
    QString folder;
    bool isDisk = false;
    int size = 0;
};

// One work, set up at one setting and done again and again, by the baseline and by the module in
// turns. What is not the work itself belongs into the preparations, which are not timed. A side
// that fails returns false.
struct Workload {
    // Before both, and right before the one.
    std::function<void()> prepare = [] {};
    std::function<void()> prepareBaseline = [] {};
    std::function<void()> prepareModule = [] {};
    // What the module is held against; empty where there is nothing.
    std::function<bool()> baseline;
    std::function<bool()> module;
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
    std::function<Workload(const Setting&)> setUp;
    // Of the module's median, in microseconds.
    std::optional<double> maxUs = {};
};

// In the order of the table; one function per source.
std::vector<Work> editWorks();
std::vector<Work> folderWorks();
std::vector<Work> readWorks();
std::vector<Work> playWorks();
