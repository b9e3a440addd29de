#include "Figures.h"

#include <set>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString number(double value, int decimals) {
    return QString::number(value, 'f', decimals);
}

// Three significant digits in the unit that suits: "48.1 µs", "2.31 ms", "1.04 s".
QString duration(double us) {
    const bool isMicro = us < 1000;
    const bool isMilli = us < 1000 * 1000;
    const double value = isMicro ? us : isMilli ? us / 1000 : us / 1000000;
    const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
    return number(value, decimals) + (isMicro   ? QStringLiteral(" µs")
                                      : isMilli ? QStringLiteral(" ms")
                                                : QStringLiteral(" s"));
}

QString withBound(const std::optional<double>& value, const std::optional<double>& bound,
                  int decimals) {
    if (!value)
        return QStringLiteral("–");
    if (!bound)
        return number(*value, decimals);
    return number(*value, decimals) + QStringLiteral(" (≤ ") + QString::number(*bound) +
           QLatin1Char(')');
}

QString row(const QStringList& cells) {
    return QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
}

} // namespace

const Figure* Figures::find(const QString& work, const QString& who, int size,
                            const QString& storage) const {
    for (const Figure& figure : m_figures) {
        if (figure.work == work && figure.who == who && figure.size == size &&
            figure.storage == storage)
            return &figure;
    }
    return nullptr;
}

void Figures::judge(const std::vector<Work>& works) {
    for (const Work& work : works) {
        for (const QString& storage : {QStringLiteral("memory"), QStringLiteral("disk")})
            judge(work, storage);
    }
}

void Figures::judge(const Work& work, const QString& storage) {
    std::set<int> sizes;
    for (const Figure& figure : m_figures) {
        if (figure.work == work.name && figure.storage == storage)
            sizes.insert(figure.size);
    }
    for (const int size : sizes) {
        Line line{work.name,        storage, work.base,     size, {}, 0,
                  work.maxMedianUs, {},      work.maxRatio, {},   {}};
        if (const Figure* base = find(work.name, work.base, size, storage)) {
            line.baseUs = base->medianUs;
            line.ratio = base->ratio;
        }
        line.oursUs = find(work.name, QStringLiteral("orvo"), size, storage)->medianUs;
        const QString at =
            QStringLiteral("%1, %2 entries, %3").arg(work.name).arg(size).arg(storage);
        if (line.ratio && work.maxRatio && *line.ratio > *work.maxRatio * m_slack)
            m_broken.append(QStringLiteral("%1: %2 times the %3, allowed are %4")
                                .arg(at, number(*line.ratio, 2), work.base,
                                     number(*work.maxRatio * m_slack, 2)));
        const int smallest = *sizes.begin();
        const auto growth = m_growth.find({work.name, storage});
        if (size == *sizes.rbegin() && growth != m_growth.end()) {
            line.growth = growth->second;
            line.maxGrowth = work.maxGrowth;
            const double allowed = work.maxGrowth.value_or(0) + (m_slack - 1) / 2;
            if (work.maxGrowth && *line.growth > allowed)
                m_broken.append(QStringLiteral("%1: grows with the power %2 from %3 entries on, "
                                               "allowed are %4")
                                    .arg(at, number(*line.growth, 2))
                                    .arg(smallest)
                                    .arg(number(allowed, 2)));
        }
        if (line.maxUs && line.oursUs > *line.maxUs * m_slack)
            m_broken.append(QStringLiteral("%1: takes %2, allowed are %3")
                                .arg(at, duration(line.oursUs), duration(*line.maxUs * m_slack)));
        m_lines.push_back(line);
    }
}

QString Figures::table() const {
    QString text = row({"work", "storage", "n", "held against", "its median", "our median", "ratio",
                        "growth exponent"}) +
                   row({"---", "---", "--:", "---", "--:", "--:", "--:", "--:"});
    for (const Line& line : m_lines) {
        text += row(
            {line.work, line.storage, QString::number(line.size),
             line.base.isEmpty() ? QStringLiteral("–") : line.base,
             line.baseUs ? duration(*line.baseUs) : QStringLiteral("–"),
             line.maxUs
                 ? QStringLiteral("%1 (≤ %2)").arg(duration(line.oursUs), duration(*line.maxUs))
                 : duration(line.oursUs),
             withBound(line.ratio, line.maxRatio, 2), withBound(line.growth, line.maxGrowth, 2)});
    }
    return text;
}

QByteArray Figures::json() const {
    QJsonArray array;
    for (const Figure& figure : m_figures)
        array.append(QJsonObject{{"work", figure.work},
                                 {"who", figure.who},
                                 {"size", figure.size},
                                 {"storage", figure.storage},
                                 {"median_us", figure.medianUs}});
    return QJsonDocument(array).toJson();
}
