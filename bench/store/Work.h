#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QString>

// What a work is measured on.
struct Setting {
    QString storage; // "disk" or "memory"
    QString folder;
    int size = 0;
};

// One work, set up once at one setting and done again and again. What is not the work itself
// belongs into the preparations, which are not timed. A work that fails returns false.
class Turns {
public:
    virtual ~Turns() = default;
    // Before both.
    virtual void prepare() {}
    // Right before the one.
    virtual void prepareBase() {}
    virtual void prepareOurs() {}
    // What ours is held against; only called where the work's row names one.
    virtual bool base() { return true; }
    virtual bool ours() = 0;
};

// A row of the table. `base` is what the ratio is taken to, empty for none.
struct Work {
    QString name;
    QString base;
    std::optional<double> maxRatio;
    std::optional<double> maxGrowth;
    // Turns at 1,000, 10,000 and 100,000 entries; fewer for those that take long.
    enum class Length { Short, Long } length;
    // The sizes are the benchmark's own, or only this one.
    std::optional<int> onlySize;
    std::function<std::unique_ptr<Turns>(const Setting&)> setUp;
    // Of ours, in microseconds.
    std::optional<double> maxMedianUs = {};
};

const std::vector<Work>& allWorks();

// Its rows, in the order of the table; one function per source.
std::vector<Work> editWorks();
std::vector<Work> readWorks();
std::vector<Work> playWorks();
std::vector<Work> folderWorks();
