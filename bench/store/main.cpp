// The store and the model beside a baseline of plain C: prints a table and holds it against its
// bounds. Both do a work in turns, in one process on one processor.

#include <algorithm>
#include <climits>
#include <ctime>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>
#include <mimalloc.h>
#include <sched.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include "Report.h"
#include "Workload.h"

namespace {

struct Storage {
    QString name;
    QString folder;
    bool isDisk;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// In memory-backed storage nothing waits: the time of the processor is the time it takes, also when
// others use the machine. On a disk the waiting counts.
double microseconds(bool waitingCounts) {
    timespec now{};
    clock_gettime(waitingCounts ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e6 + double(now.tv_nsec) / 1e3;
}

// The turns of a workload, each side as often first as second. Nothing where one failed.
std::optional<Figure> takeTurns(const Workload& workload, BenchStore& store, bool isDisk,
                                int uncounted, int turns) {
    std::vector<double> baseline;
    std::vector<double> module;
    const auto take = [&](const auto& prepare, const auto& side, std::vector<double>& times) {
        prepare(store);
        const double begin = microseconds(isDisk);
        const bool ok = !side || side(store);
        times.push_back(microseconds(isDisk) - begin);
        return ok;
    };
    workload.begin(store);
    for (int i = 0; i < uncounted + turns; ++i) {
        if (workload.startsOver)
            store.reopen(true);
        workload.prepare(store);
        bool ok = i % 2 == 0 || take(workload.prepareModule, workload.module, module);
        ok = ok && take(workload.prepareBaseline, workload.baseline, baseline);
        ok = ok && (i % 2 != 0 || take(workload.prepareModule, workload.module, module));
        if (!ok)
            return {};
    }
    module.erase(module.begin(), module.begin() + uncounted);
    std::vector<double> ratios;
    // Both of a turn meet the same machine.
    for (std::size_t i = 0; workload.baseline && i < module.size(); ++i)
        ratios.push_back(module[i] / baseline[i + std::size_t(uncounted)]);
    return Figure{0, median(module), ratios.empty() ? std::nullopt : std::optional(median(ratios))};
}

std::optional<Figure> measure(const Work& work, const Storage& storage, int size, int turns) {
    Workload workload = work.setUp(size);
    BenchStore store(storage.folder, storage.isDisk, workload.contents);
    // The first turn of a short work fills the caches and is not counted.
    const int uncounted = work.length == Work::Length::Short ? 1 : 0;
    std::optional<Figure> figure = takeTurns(workload, store, storage.isDisk, uncounted, turns);
    if (figure)
        figure->size = size;
    workload = {}; // what it holds goes before the store that it uses
    return figure;
}

int turnsOf(const Work& work, int size, bool isShort) {
    const int turns = work.length == Work::Length::Short ? 201
                      : size >= 100000                   ? 7
                      : size >= 10000                    ? 15
                                                         : 31;
    return isShort ? turns / 2 : turns;
}

std::vector<Work> worksNamed(const QString& filter) {
    std::vector<Work> works;
    for (const std::vector<Work>& part : {editWorks(), folderWorks(), readWorks(), playWorks()}) {
        std::copy_if(part.begin(), part.end(), std::back_inserter(works), [&](const Work& work) {
            return QString::fromLatin1(work.name).contains(filter);
        });
    }
    return works;
}

// Two processors that are shared with other machines are not equally fast.
void stayOnOneProcessor() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(std::size_t(std::max(0, ::sched_getcpu())), &one);
    if (::sched_setaffinity(0, sizeof one, &one) != 0)
        std::fprintf(stderr, "the run may move between processors\n");
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
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({"short", "1,000 and 10,000 entries, in memory-backed storage, with slack"});
    parser.addOption({"disk", "a folder on a disk", "folder", "."});
    parser.addOption({"memory", "a folder in memory-backed storage", "folder", "/dev/shm"});
    parser.addOption({"filter", "only works whose name contains this", "text"});
    parser.addOption({"sizes", "comma-separated numbers of entries", "n,n", "1000,10000,100000"});
    parser.addOption({"table", "where the table goes as well", "file"});
    parser.process(app);
    const bool isShort = parser.isSet("short");
    const QString named =
        isShort && !parser.isSet("sizes") ? QStringLiteral("1000,10000") : parser.value("sizes");
    std::vector<int> sizes;
    for (const QString& size : named.split(','))
        sizes.push_back(size.toInt());
    const std::vector<Work> works = worksNamed(parser.value("filter"));
    constexpr int MinSize = 100; // of a list that has a page
    if (works.empty() || *std::min_element(sizes.begin(), sizes.end()) < MinSize) {
        std::fprintf(stderr, "there is no such work, or a size is below %d\n", MinSize);
        return 2;
    }

    stayOnOneProcessor();
    std::vector<Storage> storages{{"memory", QDir(parser.value("memory")).absolutePath(), false}};
    if (!isShort)
        storages.push_back({"disk", QDir(parser.value("disk")).absolutePath(), true});
    constexpr double GuardSlack = 1.5;
    Report report(parser.value("table"), sizes, isShort ? GuardSlack : 1, !isShort);
    for (const Storage& storage : storages) {
        for (const Work& work : works) {
            const int most = isShort ? sizes.back() : INT_MAX;
            const std::vector<int> own{std::min(work.onlySize.value_or(0), most)};
            std::vector<Figure> figures;
            for (const int size : work.onlySize ? own : sizes) {
                const auto figure = measure(work, storage, size, turnsOf(work, size, isShort));
                if (!figure) {
                    figures.clear();
                    break;
                }
                figures.push_back(*figure);
            }
            report.add(work, storage.name, figures);
        }
    }
    return report.finish();
}
