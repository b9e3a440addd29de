// The store and the model beside a baseline of plain C, which do each work in turns: prints what
// store.py makes a table of.

#include <algorithm>
#include <climits>
#include <ctime>
#include <log4cplus/initializer.h>
#include <log4cplus/logger.h>
#include <log4cplus/nullappender.h>
#include <mimalloc.h>

#include <QCoreApplication>
#include <QDir>

#include "Workload.h"

namespace {

// In memory-backed storage nothing waits: the time of the processor is the time it takes, also when
// others use the machine. On a disk the waiting counts.
double microseconds(bool waitingCounts) {
    timespec now{};
    clock_gettime(waitingCounts ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e6 + double(now.tv_nsec) / 1e3;
}

// Adds the microseconds of each turn, "module:baseline", where there is no baseline those of
// nothing. Each side is as often first as second. False where one failed.
bool takeTurns(const Workload& workload, BenchStore& store, bool isDisk, int uncounted, int count,
               QStringList* turns) {
    double baselineUs = 0;
    double moduleUs = 0;
    const auto take = [&](const auto& prepare, const auto& side, double* us) {
        prepare(store);
        const double begin = microseconds(isDisk);
        const bool ok = !side || side(store);
        *us = microseconds(isDisk) - begin;
        return ok;
    };
    workload.begin(store);
    for (int i = 0; i < uncounted + count; ++i) {
        if (workload.startsOver)
            store.reopen(true);
        workload.prepare(store);
        const bool moduleFirst = i % 2 != 0;
        bool ok = !moduleFirst || take(workload.prepareModule, workload.module, &moduleUs);
        ok = ok && take(workload.prepareBaseline, workload.baseline, &baselineUs);
        ok = ok && (moduleFirst || take(workload.prepareModule, workload.module, &moduleUs));
        if (!ok)
            return false;
        if (i >= uncounted)
            turns->append(QStringLiteral("%1:%2").arg(moduleUs).arg(baselineUs));
    }
    return true;
}

int turnsOf(const Work& work, int size, bool isShort) {
    const int turns = work.length == Work::Length::Short ? 201
                      : size >= 100000                   ? 7
                      : size >= 10000                    ? 15
                                                         : 31;
    return isShort ? turns / 2 : turns;
}

// For each size itself and its turns, with blanks between; nothing where one failed.
QStringList measure(const Work& work, const QString& storage, bool isDisk,
                    const std::vector<int>& sizes, bool isShort) {
    // A disk has slow seconds: each size gets some of its turns in each of them.
    const int rounds = isDisk ? 3 : 1;
    // The first turn of a short work fills the caches and is not counted.
    const int uncounted = work.length == Work::Length::Short ? 1 : 0;
    std::vector<QStringList> turns(sizes.size());
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            Workload workload = work.setUp(sizes[i]);
            BenchStore store(storage, isDisk, workload.contents);
            const int count = (turnsOf(work, sizes[i], isShort) + rounds - 1) / rounds;
            if (!takeTurns(workload, store, isDisk, uncounted, count, &turns[i]))
                return {};
            workload = {}; // what it holds goes before the store that it uses
        }
    }
    QStringList texts;
    for (std::size_t i = 0; i < sizes.size(); ++i)
        texts.append(QString::number(sizes[i]) + ' ' + turns[i].join(' '));
    return texts;
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

QString boundText(const std::optional<double>& bound) {
    return bound ? QString::number(*bound) : QStringLiteral("-");
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
    if (argc != 5) {
        std::fprintf(stderr, "usage: orvo_bench memory|disk|short FOLDER SIZE,SIZE WORK\n");
        return EXIT_FAILURE;
    }
    const bool isDisk = std::string_view(argv[1]) == "disk";
    const bool isShort = std::string_view(argv[1]) == "short";
    const QString storage = QDir(argv[2]).absolutePath();
    std::vector<int> sizes;
    for (const QString& size : QString(argv[3]).split(','))
        sizes.push_back(size.toInt());
    const std::vector<Work> works = worksNamed(argv[4]);
    constexpr int MinSize = 100; // of a list that has a page
    if (works.empty() || *std::min_element(sizes.begin(), sizes.end()) < MinSize) {
        std::fprintf(stderr, "there is no such work, or a size is below %d\n", MinSize);
        return EXIT_FAILURE;
    }
    for (const Work& work : works) {
        const int most = isShort ? sizes.back() : INT_MAX;
        const std::vector<int> own{std::min(work.onlySize.value_or(0), most)};
        const QStringList turns =
            measure(work, storage, isDisk, work.onlySize ? own : sizes, isShort);
        if (turns.empty()) {
            std::fprintf(stderr, "failed: %s\n", work.name);
            return EXIT_FAILURE;
        }
        const QStringList row{work.name, work.heldAgainst, boundText(work.maxRatio),
                              boundText(isDisk ? work.maxDiskUs : work.maxUs),
                              boundText(work.maxGrowth)};
        std::printf("%s\n", (row + turns).join('\t').toUtf8().constData());
        std::fflush(stdout);
    }
    return EXIT_SUCCESS;
}
