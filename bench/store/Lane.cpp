#include "Lane.h"

#include <ctime>
#include <sys/wait.h>
#include <unistd.h>

#include "CMLog.h"

namespace {

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

// Takes turns of one work, and each of the two as often first as second.
class Taker {
public:
    Taker(const Work& work, const Setting& setting)
        : m_hasBase(!work.base.isEmpty()),
          m_watch(setting.storage == QLatin1String("disk")),
          m_turns(work.setUp(setting)) {
        // The first turn of a short work fills the caches and is not counted.
        if (work.length == Work::Length::Short)
            take(1);
    }

    // The times of these turns alone; empty when one failed.
    Times take(int count) {
        Times times;
        for (int i = 0; i < count; ++i, ++m_taken) {
            m_turns->prepare();
            const bool ok = m_taken % 2 == 0 ? takeBase(times) && takeOurs(times)
                                             : takeOurs(times) && takeBase(times);
            if (!ok)
                return {};
        }
        return times;
    }

private:
    bool takeBase(Times& times) {
        m_turns->prepareBase();
        return !m_hasBase || m_watch.time([this] { return m_turns->base(); }, times.base);
    }
    bool takeOurs(Times& times) {
        m_turns->prepareOurs();
        return m_watch.time([this] { return m_turns->ours(); }, times.ours);
    }

    bool m_hasBase;
    Stopwatch m_watch;
    std::unique_ptr<Turns> m_turns;
    int m_taken = 0;
};

bool writeAll(int file, const void* from, std::size_t size) {
    return write(file, from, size) == ssize_t(size);
}

bool writeAll(int file, const std::vector<double>& values) {
    return writeAll(file, values.data(), values.size() * sizeof(double));
}

bool readAll(int file, void* to, std::size_t size) {
    for (auto* at = static_cast<char*>(to); size > 0;) {
        const ssize_t got = read(file, at, size);
        if (got <= 0)
            return false;
        at += got;
        size -= std::size_t(got);
    }
    return true;
}

// Until somebody asks for none, or nobody is there to ask.
bool work(const Work& work, const Setting& setting, int asked, int answers) {
    Taker taker(work, setting);
    int count = 0;
    if (!writeAll(answers, &count, sizeof count))
        return false;
    while (readAll(asked, &count, sizeof count) && count > 0) {
        const Times times = taker.take(count);
        if (times.ours.empty() || !writeAll(answers, times.ours) || !writeAll(answers, times.base))
            return false;
    }
    return true;
}

} // namespace

Lane::Lane(const Work& work, const Setting& setting) : m_hasBase(!work.base.isEmpty()) {
    int questions[2];
    int answers[2];
    CM_ASSERT(pipe(questions) == 0 && pipe(answers) == 0, "no pipe");
    m_child = fork();
    CM_ASSERT(m_child >= 0, "no process");
    if (m_child == 0) {
        close(questions[1]);
        close(answers[0]);
        _exit(::work(work, setting, questions[0], answers[1]) ? 0 : 1);
    }
    close(questions[0]);
    close(answers[1]);
    m_asks = questions[1];
    m_answers = answers[0];
    int ready = 0;
    m_ok = readAll(m_answers, &ready, sizeof ready);
}

Lane::~Lane() {
    const int none = 0;
    if (m_ok)
        writeAll(m_asks, &none, sizeof none);
    close(m_asks);
    close(m_answers);
    waitpid(m_child, nullptr, 0);
}

bool Lane::takeTurns(int count) {
    m_ok = m_ok && writeAll(m_asks, &count, sizeof count);
    receive(count, m_times.ours);
    if (m_hasBase)
        receive(count, m_times.base);
    return m_ok;
}

void Lane::receive(int count, std::vector<double>& values) {
    const std::size_t known = values.size();
    values.resize(known + std::size_t(count));
    m_ok = m_ok && readAll(m_answers, values.data() + known, std::size_t(count) * sizeof(double));
}
