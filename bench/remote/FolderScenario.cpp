#include <optional>
#include <poll.h>
#include <random>
#include <stdexcept>

#include "../client/StolenTime.h"
#include "Scenarios.h"

namespace {

constexpr int Readers = 4;
constexpr double BreathUs = 2000;

struct Addition {
    double addedUs;
    Samples pages;
};

// Readers with a breath between two pages, as people and pages have it, while one command takes its
// time. The new list is gone afterwards.
Addition addFolder(const Library& library, int tracks) {
    using Scenarios::checkPage;
    using Scenarios::itemsPath;
    using Scenarios::PageRows;
    struct Reader {
        HttpConnection connection;
        Clock::time_point sent;
        Clock::time_point due;
        int from = 0;
        bool waits = false;
    };
    HttpConnection editor = library.device->connect();
    const int list = Device::createPlayList(editor, "A folder");
    std::vector<Reader> readers;
    readers.reserve(Readers);
    for (int i = 0; i < Readers; ++i)
        readers.push_back({library.device->connect(), {}, Clock::now(), 0, false});
    std::mt19937 dice(4);
    std::uniform_int_distribution<int> offset(0, library.bigSize - PageRows);

    Samples samples;
    const std::string request = HttpConnection::command("playlists:pl/addItems",
                                                        R"({"plid":)" + std::to_string(list) +
                                                            R"(,"mode":2,"items":["files:tree"]})");
    const Clock::time_point start = Clock::now();
    editor.send(request);
    double added = -1;
    bool reading = false;
    while (added < 0 || reading) {
        std::vector<pollfd> waiting;
        waiting.reserve(Readers + 1);
        for (Reader& reader : readers) {
            if (!reader.waits && added < 0 && Clock::now() >= reader.due) {
                reader.from = offset(dice);
                const std::string page = HttpConnection::page(
                    itemsPath(library.bigList), reader.from, reader.from + PageRows - 1);
                reader.sent = Clock::now();
                reader.connection.send(page);
                reader.waits = true;
            }
            waiting.push_back({reader.connection.descriptor(), POLLIN, 0});
        }
        waiting.push_back({editor.descriptor(), short(added < 0 ? POLLIN : 0), 0});
        ::poll(waiting.data(), waiting.size(), 1);
        reading = false;
        for (std::size_t i = 0; i < readers.size(); ++i) {
            Reader& reader = readers[i];
            if (reader.waits && waiting[i].revents && reader.connection.receive()) {
                samples.add(microsecondsSince(reader.sent));
                checkPage(reader.connection, reader.from);
                reader.waits = false;
                reader.due = Clock::now() +
                             std::chrono::microseconds(std::chrono::microseconds::rep(BreathUs));
            }
            reading = reading || reader.waits;
        }
        if (added < 0 && waiting.back().revents && editor.receive())
            added = microsecondsSince(start);
    }
    if (editor.status() != 200)
        throw std::runtime_error("the folder was not added: " + std::string(editor.body()));
    const std::string_view answer =
        editor.mustExchange(HttpConnection::page(itemsPath(list), 0, 0));
    if (numberAfter(answer, R"("rowsCount":)") != tracks)
        throw std::runtime_error("the new list has not all tracks of the folder");

    editor.mustExchange(
        HttpConnection::command("playlists:pl/delete", R"({"plid":)" + std::to_string(list) + '}'));
    return {added, samples};
}

} // namespace

void Scenarios::folderAdded(const Library& library, int tracks, const std::string& storage,
                            bool bounded, Report& report) {
    constexpr int Tries = 15;
    const auto bound = bounded ? std::optional(100.0) : std::nullopt;
    const auto [addition, stolen] =
        leastDisturbed(1, Tries, [&] { return addFolder(library, tracks); }).front();
    const std::string work =
        "a folder of " + std::to_string(tracks) + " tracks is added, " + storage;
    report.add(work, "until answered", addition.addedUs / 1000, "ms");
    report.add(work, "pages meanwhile", double(addition.pages.count()), "");
    report.add(work, "page, median", addition.pages.median() / 1000, "ms");
    report.add(work, "page, longest", addition.pages.percentile(100) / 1000, "ms", bound);
    report.add(work, Stolen, stolen, "%");
}
