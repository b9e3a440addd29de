#include "Report.h"

#include <cmath>
#include <ctime>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace {

QString number(double value, int decimals = 2) {
    return QString::number(value, 'f', decimals);
}

// Three significant digits in the unit that suits: "48.1 µs", "2.31 ms", "1.04 s".
QString duration(double us) {
    const int unit = us < 1e3 ? 0 : us < 1e6 ? 1 : 2;
    const double value = us / std::pow(1e3, unit);
    return number(value, value < 10    ? 2
                         : value < 100 ? 1
                                       : 0) +
           QStringList{QStringLiteral(" µs"), QStringLiteral(" ms"), QStringLiteral(" s")}[unit];
}

double secondsNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

// What others have had of all processors, in seconds since the machine's start: the hypervisor,
// and other processes where these count.
double secondsOfOthers(bool processesCount) {
    std::ifstream file("/proc/stat");
    std::string name;
    long user = 0, nice = 0, system = 0, idle = 0, iowait = 0, irq = 0, softirq = 0, stolen = 0;
    file >> name >> user >> nice >> system >> idle >> iowait >> irq >> softirq >> stolen;
    const double tick = 1.0 / double(sysconf(_SC_CLK_TCK));
    if (!processesCount)
        return double(stolen) * tick;
    rusage own{};
    getrusage(RUSAGE_SELF, &own);
    return double(user + nice + system + stolen) * tick -
           double(own.ru_utime.tv_sec + own.ru_stime.tv_sec) -
           double(own.ru_utime.tv_usec + own.ru_stime.tv_usec) / 1e6;
}

// The slope of log cost against log size: 0 costs the same at any size, 1 grows with the list.
std::optional<double> growth(const std::vector<Figure>& figures) {
    if (figures.size() < 2)
        return {};
    return std::log(figures.back().us / figures.front().us) /
           std::log(double(figures.back().size) / figures.front().size);
}

} // namespace

Report::Report(const QString& file, const std::vector<int>& sizes, double slack, bool hasDisk)
    : m_file(std::fopen(qPrintable(file), "w")),
      m_columns(sizes.size()),
      m_slack(slack),
      m_hasDisk(hasDisk),
      m_begin(secondsNow()),
      m_othersBefore(secondsOfOthers(hasDisk)) {
    QStringList names{QStringLiteral("work"), QStringLiteral("storage")};
    QStringList rules{QStringLiteral("---"), QStringLiteral("---")};
    for (const int size : sizes) {
        names.append(QStringLiteral("n = %1").arg(size));
        rules.append(QStringLiteral("--:"));
    }
    row(names + QStringList{QStringLiteral("at most"), QStringLiteral("growth")});
    row(rules + QStringList{QStringLiteral("---"), QStringLiteral("---")});
}

void Report::line(const QString& text) {
    for (std::FILE* to : {stdout, m_file.get()}) {
        if (to) {
            std::fprintf(to, "%s\n", text.toUtf8().constData());
            std::fflush(to);
        }
    }
}

void Report::row(const QStringList& cells) {
    line(QStringLiteral("| ") + cells.join(QStringLiteral(" | ")) + QStringLiteral(" |"));
}

void Report::add(const Work& work, const QString& storage, const std::vector<Figure>& figures) {
    const QString name = QString::fromLatin1(work.name);
    const QString against = QString::fromLatin1(work.heldAgainst);
    const auto require = [&](double value, const std::optional<double>& bound,
                             const QString& said) {
        if (bound && value > *bound)
            m_broken.append(QStringLiteral("%1, %2: %3").arg(name, storage, said));
    };
    const auto slack = [this](const std::optional<double>& bound) {
        return bound ? std::optional(*bound * m_slack) : bound;
    };
    QStringList cells{name, storage};
    for (const Figure& figure : figures) {
        QString cell = duration(figure.us);
        if (figure.ratio) {
            cell += QStringLiteral(", ") + number(*figure.ratio);
            require(*figure.ratio, slack(work.maxRatio),
                    QStringLiteral("%1 times the %2 with %3 entries")
                        .arg(number(*figure.ratio, 3), against)
                        .arg(figure.size));
        }
        require(figure.us, slack(work.maxUs),
                QStringLiteral("%1 with %2 entries").arg(duration(figure.us)).arg(figure.size));
        cells.append(work.onlySize ? QStringLiteral("%1: %2").arg(figure.size).arg(cell) : cell);
    }
    while (cells.size() < int(m_columns) + 2)
        cells.append(QString());
    cells.append(work.maxRatio ? QStringLiteral("%1 × %2").arg(*work.maxRatio).arg(against)
                 : work.maxUs  ? duration(*work.maxUs)
                               : QString());
    const auto exponent = growth(figures);
    if (exponent && work.maxGrowth) {
        cells.append(QStringLiteral("%1 (≤ %2)").arg(number(*exponent)).arg(*work.maxGrowth));
        require(*exponent, *work.maxGrowth + (m_slack - 1) / 2,
                QStringLiteral("grows with the power %1").arg(number(*exponent, 3)));
    } else {
        cells.append(QString());
    }
    row(cells);
    if (figures.empty()) {
        m_failed = true;
        line(QStringLiteral("FAILED %1, %2").arg(name, storage));
    }
}

int Report::finish() {
    constexpr double MaxDisturbedPercent = 10;
    enum { Held, Broken, Failed, Disturbed = 4 };
    const double percent =
        100 * (secondsOfOthers(m_hasDisk) - m_othersBefore) / (secondsNow() - m_begin);
    line(QStringLiteral("\nTaken by others: %1 % of a processor.").arg(number(percent, 1)));
    if (m_slack > 1)
        line(QStringLiteral("Bounds with slack: ratios and times by %1, growth exponents plus %2.")
                 .arg(number(m_slack, 1), number((m_slack - 1) / 2)));
    if (m_failed)
        return Failed;
    if (percent > MaxDisturbedPercent) {
        line(QStringLiteral("The machine was disturbed (more than %1 %): no bound was judged.")
                 .arg(MaxDisturbedPercent));
        return Disturbed;
    }
    for (const QString& sentence : m_broken)
        line(QStringLiteral("BROKEN ") + sentence);
    if (m_broken.isEmpty())
        line(QStringLiteral("Every bound was held."));
    return m_broken.isEmpty() ? Held : Broken;
}
