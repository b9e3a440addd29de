#include <algorithm>
#include <benchmark/benchmark.h>
#include <climits>
#include <cmath>
#include <cstdio>
#include <log4cplus/initializer.h>
#include <log4cplus/nullappender.h>
#include <memory>
#include <mimalloc.h>
#include <sched.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "CMLog.h"
#include "Figures.h"
#include "Lane.h"

namespace {

struct Options {
    bool isShort = false;
    QString disk;
    QString memory;
    QString json;
    QString filter;
    std::vector<int> sizes;
    double slack = 1;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

int turnsOf(const Work& work, const Setting& setting, bool isShort) {
    if (work.length == Work::Length::Short)
        return isShort ? 101 : 201;
    const int many = setting.size >= 100000 ? 7 : setting.size >= 10000 ? 15 : 31;
    return isShort ? many / 2 : many;
}

// The middle one of the turns' ratios: both of a turn meet the same machine.
double medianRatio(const Times& times) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < times.base.size(); ++i)
        ratios.push_back(times.ours[i] / times.base[i]);
    return median(ratios);
}

// One work on one storage at all its sizes, which take turns as well: what else the machine does
// meets all of them.
struct Series {
    const Work& work;
    std::vector<Setting> settings;
    std::vector<int> turns;   // at each setting
    std::vector<Times> times; // empty when it failed, or is still to be measured
    // From the first size to the last, where there are several.
    std::optional<double> growth;
    bool isMeasured = false;

    void measure(double slack);
};

// The median of what our turns from this one on took.
double medianSince(const Times& times, std::size_t first) {
    return median({times.ours.begin() + std::ptrdiff_t(first), times.ours.end()});
}

// Whether a bound, with its slack, is broken by what was measured so far.
bool isBroken(const Work& work, double slack, const std::vector<std::unique_ptr<Lane>>& lanes) {
    return work.maxRatio && std::any_of(lanes.begin(), lanes.end(), [&](const auto& lane) {
               return medianRatio(lane->times()) > *work.maxRatio * slack;
           });
}

void Series::measure(double slack) {
    constexpr int MostRounds = 40;
    constexpr int MostTimes = 3;
    const int rounds = std::min(MostRounds, *std::min_element(turns.begin(), turns.end()));
    std::vector<std::unique_ptr<Lane>> lanes;
    for (const Setting& setting : settings)
        lanes.push_back(std::make_unique<Lane>(work, setting));
    const double sizes = double(settings.back().size) / settings.front().size;
    std::vector<double> exponents;
    bool ok = true;
    // Few turns give a rough ratio: one that would break its bound is worth as many turns again,
    // and all of them count.
    for (int round = 0; ok && round < rounds * MostTimes; ++round) {
        if (round > 0 && round % rounds == 0 && !isBroken(work, slack, lanes))
            break;
        std::vector<double> medians;
        for (std::size_t i = 0; ok && i < lanes.size(); ++i) {
            const std::size_t known = lanes[i]->times().ours.size();
            const int until = turns[i] * (round + 1) / rounds;
            ok = lanes[i]->takeTurns(until - int(known));
            medians.push_back(medianSince(lanes[i]->times(), known));
        }
        exponents.push_back(std::log(medians.back() / medians.front()) / std::log(sizes));
    }
    for (const std::unique_ptr<Lane>& lane : lanes)
        times.push_back(ok ? lane->times() : Times());
    if (ok && lanes.size() > 1)
        growth = median(exponents);
    isMeasured = true;
}

void run(benchmark::State& state, Series& series, std::size_t which, Figures& figures) {
    if (!series.isMeasured)
        series.measure(figures.slack());
    const Times& times = series.times[which];
    if (times.ours.empty()) {
        state.SkipWithError("it did not work");
        return;
    }
    auto time = times.ours.begin();
    for (auto _ : state)
        state.SetIterationTime(*time++ / 1e6);
    const Work& work = series.work;
    const Setting& setting = series.settings[which];
    figures.add(
        {work.name, QStringLiteral("orvo"), setting.size, setting.storage, median(times.ours)});
    if (which + 1 == series.settings.size() && series.growth)
        figures.addGrowth(work.name, setting.storage, *series.growth);
    if (!work.base.isEmpty()) {
        const double ratio = medianRatio(times);
        figures.add(
            {work.name, work.base, setting.size, setting.storage, median(times.base), ratio});
        state.counters["ratio"] = ratio;
    }
}

// Names each benchmark as it is done, and remembers whether one failed.
class Progress : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const auto ratio = run.counters.find("ratio");
            if (run.error_occurred)
                std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(),
                             run.error_message.c_str());
            else if (ratio != run.counters.end())
                std::fprintf(stderr, "%-60s %6.2f\n", run.run_name.function_name.c_str(),
                             double(ratio->second));
            else
                std::fprintf(stderr, "%s\n", run.run_name.function_name.c_str());
            m_failed = m_failed || run.error_occurred;
        }
    }
    bool failed() const { return m_failed; }

private:
    bool m_failed = false;
};

// Sizes take turns in a process each. Those of a run stay where it began: two processors that are
// shared with other machines are not equally fast, and one size would have the better of it.
void stayOnOneProcessor() {
    const int here = ::sched_getcpu();
    cpu_set_t one;
    CPU_ZERO(&one);
    if (here >= 0)
        CPU_SET(here, &one);
    if (here < 0 || ::sched_setaffinity(0, sizeof one, &one) != 0)
        std::fprintf(stderr, "the sizes may run on different processors\n");
}

Options readOptions(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"short", "1,000 and 10,000 entries, in memory-backed storage only"});
    parser.addOption({"disk", "a folder on a disk", "folder", "."});
    parser.addOption({"memory", "a folder in memory-backed storage", "folder", "/dev/shm"});
    parser.addOption({"json", "where the figures go, for programs", "file"});
    parser.addOption({"filter", "only works whose name contains this", "text"});
    parser.addOption({"sizes", "comma-separated numbers of entries", "n,n"});
    parser.addOption({"no-disk", "memory-backed storage only"});
    parser.process(app);
    Options options;
    options.isShort = parser.isSet("short");
    if (!options.isShort && !parser.isSet("no-disk"))
        options.disk = QDir(parser.value("disk")).absolutePath();
    options.memory = QDir(parser.value("memory")).absolutePath();
    options.json =
        parser.isSet("json") ? QDir::current().absoluteFilePath(parser.value("json")) : QString();
    options.filter = parser.value("filter");
    options.sizes = {1000, 10000};
    if (!options.isShort)
        options.sizes.push_back(100000);
    if (parser.isSet("sizes")) {
        options.sizes.clear();
        for (const QString& size : parser.value("sizes").split(','))
            options.sizes.push_back(size.toInt());
    }
    constexpr double GuardSlack = 1.5;
    options.slack = options.isShort ? GuardSlack : 1;
    return options;
}

std::vector<Work> chosenWorks(const Options& options) {
    std::vector<Work> works;
    for (const std::vector<Work>& part : {editWorks(), folderWorks(), readWorks(), playWorks()}) {
        for (const Work& work : part) {
            if (work.name.contains(options.filter))
                works.push_back(work);
        }
    }
    return works;
}

std::vector<std::unique_ptr<Series>> registerAll(const std::vector<Work>& works,
                                                 const Options& options, Figures& figures) {
    std::vector<std::unique_ptr<Series>> all;
    for (const auto& [storage, folder] :
         {std::pair(QStringLiteral("memory"), options.memory), {"disk", options.disk}}) {
        if (folder.isEmpty())
            continue;
        for (const Work& work : works) {
            const int most = options.isShort ? options.sizes.back() : INT_MAX;
            const int onlySize = std::min(work.onlySize.value_or(0), most);
            all.push_back(std::make_unique<Series>(Series{work, {}, {}, {}, {}}));
            Series& series = *all.back();
            for (const int size : work.onlySize ? std::vector<int>{onlySize} : options.sizes) {
                const std::size_t which = series.settings.size();
                series.settings.push_back({storage, folder, size});
                series.turns.push_back(turnsOf(work, series.settings.back(), options.isShort));
                const QString name =
                    QStringLiteral("%1, %2, %3").arg(work.name, storage, QString::number(size));
                benchmark::RegisterBenchmark(name.toUtf8().constData(),
                                             [&figures, &series, which](benchmark::State& state) {
                                                 run(state, series, which, figures);
                                             })
                    ->Iterations(series.turns.back())
                    ->UseManualTime()
                    ->Unit(benchmark::kMicrosecond);
            }
        }
    }
    return all;
}

bool writeFile(const QString& fileName, const QByteArray& text) {
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

int main(int argc, char** argv) {
    // A device opens its store once. Here it is opened in many turns, and what the one before has
    // given back is to be there: neither returned to the system nor marked as unused.
    constexpr long LongerThanARunMs = 24L * 60 * 60 * 1000;
    mi_option_disable(mi_option_allow_decommit);
    mi_option_set(mi_option_decommit_delay, LongerThanARunMs);
    mi_option_set(mi_option_segment_decommit_delay, LongerThanARunMs);
    // As a host runs by default: from info on, and an appender takes it.
    log4cplus::Initializer logging;
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::INFO_LOG_LEVEL);
    log4cplus::Logger::getRoot().addAppender(
        log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    QCoreApplication app(argc, argv);
    stayOnOneProcessor();
    const Options options = readOptions(app);
    const std::vector<Work> works = chosenWorks(options);
    if (works.empty()) {
        std::fprintf(stderr, "there is no work whose name contains \"%s\"\n",
                     qPrintable(options.filter));
        return 2;
    }
    Figures figures(options.slack);
    const auto series = registerAll(works, options, figures);
    Progress progress;
    benchmark::RunSpecifiedBenchmarks(&progress);
    figures.judge(works);

    std::printf("%s", figures.table().toUtf8().constData());
    if (options.slack > 1)
        std::printf("\nBounds with slack: ratios times %.1f, growth exponents plus %.2f.\n",
                    options.slack, (options.slack - 1) / 2);
    for (const QString& sentence : figures.broken())
        std::printf("BROKEN %s\n", qPrintable(sentence));
    const bool written = options.json.isEmpty() || writeFile(options.json, figures.json());
    return written && !progress.failed() && figures.broken().isEmpty() ? 0 : 1;
}
