#include <stdexcept>
#include <sys/epoll.h>
#include <unistd.h>

#include "../client/StolenTime.h"
#include "EventConnection.h"
#include "Scenarios.h"

void Scenarios::manyListeners(const Library& library, Report& report) {
    constexpr int Listeners = 200;
    constexpr int Rounds = 100;
    constexpr int Tries = 5;
    constexpr double BoundUs = 20'000;
    constexpr int QuietMs = 20;
    std::vector<EventConnection> listeners;
    listeners.reserve(Listeners);
    const int epoll = ::epoll_create1(EPOLL_CLOEXEC);
    for (int i = 0; i < Listeners; ++i) {
        listeners.emplace_back(library.device->port());
        listeners.back().settle(0);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u32 = std::uint32_t(i);
        ::epoll_ctl(epoll, EPOLL_CTL_ADD, listeners.back().descriptor(), &event);
    }
    HttpConnection editor = library.device->connect();
    const std::string needle = R"("path":")" + itemsPath(library.smallList) + '"';
    const auto edits = [&] {
        Samples all;
        for (int round = 0; round < Rounds; ++round) {
            const std::string request = HttpConnection::command(
                "playlists:pl/moveItems", R"({"plid":)" + std::to_string(library.smallList) +
                                              R"(,"items":[)" + std::to_string(round % 2) +
                                              R"(],"to":)" + std::to_string(1 - round % 2) + '}');
            std::vector<bool> told(Listeners, false);
            int missing = Listeners;
            const Clock::time_point start = Clock::now();
            editor.send(request);
            while (missing > 0) {
                epoll_event events[Listeners];
                const int count = ::epoll_wait(epoll, events, Listeners, -1);
                for (int i = 0; i < count; ++i) {
                    const std::size_t index = events[i].data.u32;
                    if (listeners[index].receive(needle) && !told[index]) {
                        told[index] = true;
                        --missing;
                    }
                }
            }
            all.add(microsecondsSince(start));
            while (!editor.receive()) {
            }
            if (editor.status() != 200)
                throw std::runtime_error("an edit was refused");
            for (EventConnection& listener : listeners)
                listener.settle(0);
            ::usleep(QuietMs * 1000);
            for (EventConnection& listener : listeners)
                listener.settle(0);
        }
        return all;
    };
    const auto [all, stolen] = leastDisturbed(1, Tries, edits).front();
    ::close(epoll);
    const std::string work = "200 event streams, all told of an edit";
    report.add(work, "median", all.median() / 1000, "ms", BoundUs / 1000);
    report.add(work, "99th percentile", all.percentile(99) / 1000, "ms", BoundUs / 1000);
    report.add(work, "longest", all.percentile(100) / 1000, "ms", BoundUs / 1000);
    report.add(work, Stolen, stolen, "%");
}
