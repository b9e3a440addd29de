#include <functional>
#include <poll.h>
#include <random>
#include <stdexcept>

#include "../client/Samples.h"
#include "../client/Tracks.h"
#include "EventConnection.h"
#include "Scenarios.h"

namespace {

constexpr int WarmUp = 10;

struct Edit {
    std::string name;
    std::function<std::string(int)> request; // of the n-th one
    std::string event;                       // what the listener then gets
    int count;
    bool bounded;
};

struct Times {
    Samples answered;
    Samples told;
};

// Sends one edit and waits for its answer and its event, whichever comes first.
void measure(const Edit& edit, int number, HttpConnection& editor, EventConnection& listener,
             Times* times) {
    const std::string request = edit.request(number);
    listener.clear();
    pollfd waiting[] = {{editor.descriptor(), POLLIN, 0}, {listener.descriptor(), POLLIN, 0}};
    double answered = -1;
    double told = -1;
    const Clock::time_point start = Clock::now();
    editor.send(request);
    while (answered < 0 || told < 0) {
        waiting[0].events = answered < 0 ? POLLIN : 0;
        waiting[1].events = told < 0 ? POLLIN : 0;
        ::poll(waiting, 2, -1);
        if (waiting[0].revents && answered < 0 && editor.receive())
            answered = microsecondsSince(start);
        if (waiting[1].revents && told < 0 && listener.receive(edit.event))
            told = microsecondsSince(start);
    }
    if (editor.status() != 200)
        throw std::runtime_error(edit.name + ": " + std::string(editor.body()));
    if (number >= WarmUp) {
        times->answered.add(answered);
        times->told.add(told);
    }
}

std::vector<Edit> editsOf(const std::string& list, int plid, int size) {
    const std::string id = std::to_string(plid);
    const std::string ofList = R"("path":")" + Scenarios::itemsPath(plid) + '"';
    const auto command = [id](const char* path, const std::string& rest) {
        return HttpConnection::command(path, R"({"plid":)" + id + ',' + rest + '}');
    };
    const auto moveByOne = [command, size](int n) {
        static std::mt19937 dice(2);
        const int from = std::uniform_int_distribution<int>(1, size - 2)(dice);
        const int to = from + (n % 2 == 0 ? 1 : -1);
        return command("playlists:pl/moveItems",
                       R"("items":[)" + std::to_string(from) + R"(],"to":)" + std::to_string(to));
    };
    const auto append = [command](int n) {
        return command("playlists:pl/addExternalItems",
                       R"("mode":2,"items":)" + Tracks::items(n, 1));
    };
    const auto removeLast = [command, size](int n) {
        // The ones that were appended, from behind.
        return command("playlists:pl/removeItems",
                       R"("items":[)" + std::to_string(size + 109 - n) + ']');
    };
    const auto rename = [command](int n) {
        return command("playlists:pl/setName", R"("name":"Renamed )" + std::to_string(n) + '"');
    };
    return {
        {"move a row by one, list of " + list, moveByOne, ofList, 400, true},
        {"add a row at the end, list of " + list, append, ofList, 100, true},
        {"remove the last row, list of " + list, removeLast, ofList, 100, true},
        {"rename a list of " + list, rename, R"("path":"playlists:root")", 200, true},
    };
}

} // namespace

void Scenarios::edits(const Library& library, const std::string& storage, bool bounded,
                      Report& report) {
    constexpr double AnsweredBoundUs = 1000;
    constexpr double ToldBoundUs = 2000;
    constexpr int QuietMs = 50;
    HttpConnection editor = library.device->connect();
    EventConnection listener(library.device->port());
    std::vector<Edit> all =
        editsOf(std::to_string(library.smallSize), library.smallList, library.smallSize);
    const std::vector<Edit> big =
        editsOf(std::to_string(library.bigSize), library.bigList, library.bigSize);
    all.insert(all.end(), big.begin(), big.end());
    for (const Edit& edit : all) {
        listener.settle(QuietMs);
        Times times;
        for (int i = 0; i < WarmUp + edit.count; ++i)
            measure(edit, i, editor, listener, &times);
        const auto bound = [&](double value) {
            return bounded && edit.bounded ? std::optional<double>(value) : std::nullopt;
        };
        const std::string name = edit.name + ", " + storage;
        report.add(name, "median, answer", times.answered.median(), "us", bound(AnsweredBoundUs));
        report.add(name, "median, event", times.told.median(), "us", bound(ToldBoundUs));
    }
}

// A page is asked for behind each removal, so that it waits for all of it.
void Scenarios::pagesBehindRemovals(const Library& library, Report& report) {
    constexpr int Removals = 100;
    constexpr double LongestBoundMs = 20;
    HttpConnection editor = library.device->connect();
    HttpConnection reader = library.device->connect();
    Device::addTracks(editor, library.bigList, library.bigSize, Removals);
    const auto round = [&](int index) {
        const std::string removal = HttpConnection::command(
            "playlists:pl/removeItems", R"({"plid":)" + std::to_string(library.bigList) +
                                            R"(,"items":[)" + std::to_string(index) + "]}");
        const std::string page = HttpConnection::page(itemsPath(library.bigList), 0, PageRows - 1);
        editor.send(removal);
        const Clock::time_point sent = Clock::now();
        reader.send(page);
        while (!reader.receive()) {
        }
        const double waited = microsecondsSince(sent);
        checkPage(reader, 0);
        while (!editor.receive()) {
        }
        if (editor.status() != 200)
            throw std::runtime_error("a row was not removed: " + std::string(editor.body()));
        return waited;
    };
    Samples samples;
    for (int i = Removals; i > 0; --i)
        samples.add(round(library.bigSize + i - 1));
    const std::string work = "a page behind a removal, list of " + std::to_string(library.bigSize);
    report.add(work, "median", samples.median() / 1000, "ms");
    report.add(work, "longest", samples.percentile(100) / 1000, "ms", LongestBoundMs);
}
