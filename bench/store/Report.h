#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include <QString>
#include <QStringList>

#include "Workload.h"

// What was measured of a work at one size.
struct Figure {
    int size = 0;
    double us = 0;               // the module's median
    std::optional<double> ratio; // the median of the turns' own
};

// The table of a run: rows of Markdown, printed as they come and kept in a file, and the bounds
// that a row breaks.
class Report {
public:
    // `slack` is how far a bound may be passed: a ratio or a time by that factor, a growth exponent
    // by half of what it is above 1.
    // Where a disk is measured, and waiting counts, other processes disturb.
    Report(const QString& file, const std::vector<int>& sizes, double slack, bool hasDisk);

    // The figures of a work on one storage, from the smallest size to the largest; none where it
    // failed.
    void add(const Work& work, const QString& storage, const std::vector<Figure>& figures);
    // How the run ends: 0, 1 where a bound is broken, 2 where something could not be measured, 4
    // where others took too much of the processors for a judgement.
    int finish();

private:
    void line(const QString& text);
    void row(const QStringList& cells);

    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, CloseFile> m_file;
    std::size_t m_columns;
    double m_slack;
    bool m_hasDisk;
    double m_begin;
    double m_othersBefore;
    bool m_failed = false;
    QStringList m_broken; // one sentence each
};
