#include <random>
#include <stdexcept>
#include <sys/epoll.h>
#include <unistd.h>

#include "../client/Samples.h"
#include "Scenarios.h"

void Scenarios::manyReaders(const Library& library, Report& report) {
    constexpr int Readers = 64;
    constexpr double SecondsUs = 5e6;
    struct Reader {
        HttpConnection connection;
        Clock::time_point sent;
        int from = 0;
    };
    std::mt19937 dice(3);
    std::uniform_int_distribution<int> offset(0, library.bigSize - PageRows);
    std::vector<Reader> readers;
    readers.reserve(Readers);
    const int epoll = ::epoll_create1(EPOLL_CLOEXEC);
    const auto ask = [&](Reader& reader) {
        reader.from = offset(dice);
        const std::string request = HttpConnection::page(itemsPath(library.bigList), reader.from,
                                                         reader.from + PageRows - 1);
        reader.sent = Clock::now();
        reader.connection.send(request);
    };
    for (int i = 0; i < Readers; ++i) {
        readers.push_back({library.device->connect(), {}, 0});
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u32 = std::uint32_t(i);
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, readers.back().connection.descriptor(), &event);
    }
    Samples samples;
    const Clock::time_point start = Clock::now();
    for (Reader& reader : readers)
        ask(reader);
    int open = Readers;
    double seconds = 0;
    while (open > 0) {
        epoll_event events[Readers];
        const int count = ::epoll_wait(epoll, events, Readers, -1);
        for (int i = 0; i < count; ++i) {
            Reader& reader = readers[events[i].data.u32];
            if (!reader.connection.receive())
                continue;
            samples.add(microsecondsSince(reader.sent));
            // The check is a few microseconds.
            checkPage(reader.connection, reader.from);
            seconds = microsecondsSince(start) / 1e6;
            if (seconds * 1e6 < SecondsUs)
                ask(reader);
            else
                --open;
        }
    }
    ::close(epoll);
    const std::string work = "64 clients read pages of 50 at random places";
    report.add(work, "throughput", double(samples.count()) / seconds, "1/s");
    report.add(work, "median", samples.median() / 1000, "ms");
    report.add(work, "99th percentile", samples.percentile(99) / 1000, "ms");
    report.add(work, "longest", samples.percentile(100) / 1000, "ms");
    report.add(work, "errors", 0, "", 0); // the first one would have ended the program
}
