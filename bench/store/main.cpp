#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <log4cplus/initializer.h>
#include <log4cplus/nullappender.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include "CMLog.h"
#include "Figures.h"

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

// In memory-backed storage nothing waits: the time of the processor is the time it takes, also when
// others use the machine. On a disk the waiting counts.
class Stopwatch {
public:
    explicit Stopwatch(bool waitingCounts)
        : m_clock(waitingCounts ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID) {}

    template <typename Call>
    bool time(Call call, std::vector<double>& us) const {
        const double begin = now();
        const bool ok = call();
        us.push_back(now() - begin);
        return ok;
    }

private:
    double now() const {
        timespec t{};
        clock_gettime(m_clock, &t);
        return double(t.tv_sec) * 1e6 + double(t.tv_nsec) / 1e3;
    }

    clockid_t m_clock;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

int turnsOf(const Work& work, const Setting& setting, bool isShort) {
    if (work.length == Work::Length::Short)
        return isShort ? 101 : 201;
    const int many = setting.size >= 100000 ? 5 : setting.size >= 10000 ? 11 : 31;
    return isShort ? many / 2 : many;
}

struct Times {
    std::vector<double> base;
    std::vector<double> ours;
};

// Empty when the work failed.
Times measure(const Work& work, const Setting& setting, int count) {
    const std::unique_ptr<Turns> turns = work.setUp(setting);
    const Stopwatch watch(setting.storage == QLatin1String("disk"));
    const bool hasBase = !work.base.isEmpty();
    Times times;
    bool ok = true;
    const auto takeBase = [&] {
        turns->prepareBase();
        ok = ok && (!hasBase || watch.time([&] { return turns->base(); }, times.base));
    };
    const auto takeOurs = [&] {
        turns->prepareOurs();
        ok = ok && watch.time([&] { return turns->ours(); }, times.ours);
    };
    // The first turn of a short work fills the caches and is not counted.
    const bool isWarmedUp = work.length == Work::Length::Short;
    for (int i = isWarmedUp ? -1 : 0; i < count; ++i) {
        // In turns, and each of the two as often first as second.
        turns->prepare();
        if (i % 2 == 0) {
            takeBase();
            takeOurs();
        } else {
            takeOurs();
            takeBase();
        }
        if (!ok)
            return {};
        if (i < 0)
            times = {};
    }
    return times;
}

void writeAll(int file, const std::vector<double>& values) {
    const std::size_t size = values.size() * sizeof(double);
    if (write(file, values.data(), size) != ssize_t(size))
        _exit(1);
}

std::vector<double> readSome(int file, int count) {
    std::vector<double> values(std::size_t(count), 0.0);
    auto* to = reinterpret_cast<char*>(values.data());
    std::size_t missing = values.size() * sizeof(double);
    while (missing > 0) {
        const ssize_t got = read(file, to, missing);
        if (got <= 0)
            return {};
        to += got;
        missing -= std::size_t(got);
    }
    return values;
}

// In a process of its own: what an earlier work has left of the heap is no part of this one.
Times measureApart(const Work& work, const Setting& setting, int count) {
    int ends[2];
    CM_ASSERT(pipe(ends) == 0, "no pipe");
    const pid_t child = fork();
    CM_ASSERT(child >= 0, "no process");
    if (child == 0) {
        const Times times = measure(work, setting, count);
        writeAll(ends[1], times.ours);
        writeAll(ends[1], times.base);
        _exit(0);
    }
    close(ends[1]);
    Times times;
    times.ours = readSome(ends[0], count);
    if (!times.ours.empty() && !work.base.isEmpty())
        times.base = readSome(ends[0], count);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return status == 0 ? times : Times();
}

void run(benchmark::State& state, const Work& work, const Setting& setting, Figures& figures) {
    const Times times = measureApart(work, setting, int(state.max_iterations));
    if (times.ours.empty()) {
        state.SkipWithError("it did not work");
        return;
    }
    auto time = times.ours.begin();
    for (auto _ : state)
        state.SetIterationTime(*time++ / 1e6);
    figures.add(
        {work.name, QStringLiteral("orvo"), setting.size, setting.storage, median(times.ours)});
    if (!work.base.isEmpty()) {
        figures.add({work.name, work.base, setting.size, setting.storage, median(times.base)});
        state.counters["ratio"] = median(times.ours) / median(times.base);
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
    for (const std::vector<Work>& part : {editWorks(), readWorks(), playWorks()}) {
        for (const Work& work : part) {
            if (work.name.contains(options.filter))
                works.push_back(work);
        }
    }
    return works;
}

void registerAll(const std::vector<Work>& works, const Options& options, Figures& figures) {
    const auto registerOne = [&](const Work& work, const Setting& setting) {
        const QString name = QStringLiteral("%1, %2, %3")
                                 .arg(work.name, setting.storage, QString::number(setting.size));
        benchmark::RegisterBenchmark(name.toUtf8().constData(),
                                     [&figures, &work, setting](benchmark::State& state) {
                                         run(state, work, setting, figures);
                                     })
            ->Iterations(turnsOf(work, setting, options.isShort))
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    };
    for (const auto& [storage, folder] :
         {std::pair(QStringLiteral("memory"), options.memory), {"disk", options.disk}}) {
        if (folder.isEmpty())
            continue;
        for (const Work& work : works) {
            if (work.onlySize) {
                registerOne(work, {storage, folder,
                                   options.isShort ? options.sizes.back() : *work.onlySize});
                continue;
            }
            for (const int size : options.sizes)
                registerOne(work, {storage, folder, size});
        }
    }
}

bool writeFile(const QString& fileName, const QByteArray& text) {
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

int main(int argc, char** argv) {
    // As a host runs by default: from info on, and somebody takes it.
    log4cplus::Initializer logging;
    log4cplus::Logger::getRoot().setLogLevel(log4cplus::INFO_LOG_LEVEL);
    log4cplus::Logger::getRoot().addAppender(
        log4cplus::SharedAppenderPtr(new log4cplus::NullAppender));
    QCoreApplication app(argc, argv);
    const Options options = readOptions(app);
    const std::vector<Work> works = chosenWorks(options);
    Figures figures(options.slack);
    registerAll(works, options, figures);
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
