#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "Work.h"

// One measured number.
struct Figure {
    QString work;
    QString who;
    int size;
    QString storage;
    double medianUs;
    // Of ours to this, where ours is held against it: the median of the turns' own.
    std::optional<double> ratio = {};
};

// What was measured, and what it means: ratios, growth exponents and the bounds they must keep.
class Figures {
public:
    // `slack` is how far a bound may be passed: a ratio or a time by that factor, a growth exponent
    // by half of what it is above 1.
    explicit Figures(double slack) : m_slack(slack) {}

    double slack() const { return m_slack; }
    void add(const Figure& figure) { m_figures.push_back(figure); }
    // Of our cost, from the smallest size to the largest.
    void addGrowth(const QString& work, const QString& storage, double exponent) {
        m_growth[{work, storage}] = exponent;
    }
    // For people, one line per work, storage and size.
    QString table() const;
    // One sentence per broken bound.
    const QStringList& broken() const { return m_broken; }
    // [{"work", "who", "size", "storage", "median_us"}, …], for the plot and for comparisons.
    QByteArray json() const;
    // Looks at all works and both storages; call it once, after the last figure.
    void judge(const std::vector<Work>& works);

private:
    struct Line {
        QString work, storage, base;
        int size = 0;
        std::optional<double> baseUs;
        double oursUs = 0;
        std::optional<double> maxUs;
        std::optional<double> ratio;
        std::optional<double> maxRatio;
        // On the line of a work's greatest size.
        std::optional<double> growth, maxGrowth;
    };

    // Null where it was not measured.
    const Figure* find(const QString& work, const QString& who, int size,
                       const QString& storage) const;
    void judge(const Work& work, const QString& storage);

    double m_slack;
    std::vector<Figure> m_figures;
    std::map<std::pair<QString, QString>, double> m_growth;
    std::vector<Line> m_lines;
    QStringList m_broken;
};
