// The same work by Debian's Music Player Daemon and by the device: prints a table with the ratios.
//
//   orvo-bench-peers --host PROGRAM --memory DIR --disk DIR --music DIR [--largest N] [--json FILE]
//
// Ends with 0, with 2 where something could not be measured. There are no bounds: the figures are
// for people.

#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <tuple>

#include "../client/Report.h"
#include "../client/Samples.h"
#include "../client/TempFolder.h"
#include "DevicePeer.h"
#include "MpdPeer.h"

namespace {

struct Work {
    const char* name;
    std::function<void(Peer&, int size)> prepare; // once for each run
    std::function<bool(Peer&, int size, int step)> act;
    int steps; // measured one by one within a run; 1 where the work undoes what was prepared
};

const std::vector<Work>& works() {
    constexpr int Quick = 100;
    const auto empty = [](Peer& peer, int) { peer.prepareEmpty(); };
    const auto list = [](Peer& peer, int size) { peer.prepareList(size); };
    const auto saving = [](Peer& peer, int size) {
        peer.prepareList(size);
        peer.prepareSaving();
    };
    const auto saved = [saving](Peer& peer, int size) {
        saving(peer, size);
        peer.save(size);
        peer.prepareEmpty();
    };
    static const std::vector<Work> table = {
        {"add n to an empty list", empty, [](Peer& p, int n, int) { return p.addFolder(n); }, 1},
        {"add n in the middle of n", list,
         [](Peer& p, int n, int) { return p.addFolderInTheMiddle(n); }, 1},
        {"page of 50", list, [](Peer& p, int n, int i) { return p.readPage(n / 2 + i); }, Quick},
        {"remove every second", list, [](Peer& p, int n, int) { return p.removeEverySecond(n); },
         1},
        {"clear", list, [](Peer& p, int, int) { return p.clear(); }, 1},
        {"save", saving, [](Peer& p, int n, int) { return p.save(n); }, 1},
        {"load", saved, [](Peer& p, int n, int) { return p.load(n); }, 1},
        {"edit of a stored list", saved,
         [](Peer& p, int n, int i) { return p.editSaved(n / 2 + i); }, 20},
        {"next in random mode", [](Peer& p, int n) { p.prepareRandom(n); },
         [](Peer& p, int, int) { return p.next(); }, 20},
    };
    return table;
}

struct Key {
    std::string work;
    int size;
    bool operator<(const Key& other) const {
        return std::tie(work, size) < std::tie(other.work, other.size);
    }
};

struct Figure {
    double median = 0;
    double memory = 0; // of the peer afterwards, in KiB
    bool stopped = false;
};

struct Contestant {
    std::string title;
    std::function<std::unique_ptr<Peer>()> make;
    std::unique_ptr<Peer> peer;
    std::map<Key, Figure> figures;
};

int runsFor(int size) {
    return size <= 1000 ? 5 : size <= 10'000 ? 3 : 1;
}

Figure measure(Contestant& contestant, const Work& work, int size) {
    Samples samples;
    for (int run = 0; run < runsFor(size); ++run) {
        work.prepare(*contestant.peer, size);
        for (int step = 0; step < work.steps; ++step) {
            const Clock::time_point start = Clock::now();
            const bool done = work.act(*contestant.peer, size, step);
            samples.add(microsecondsSince(start));
            if (done)
                continue;
            contestant.peer.reset();
            contestant.peer = contestant.make();
            return {0, 0, true};
        }
    }
    return {samples.median(), double(contestant.peer->memory()), false};
}

std::string timeText(const Figure& figure) {
    if (figure.stopped)
        return "> " + std::to_string(MostSeconds) + " s, stopped";
    char text[32];
    if (figure.median >= 1e6)
        std::snprintf(text, sizeof text, "%.2f s", figure.median / 1e6);
    else if (figure.median >= 1e3)
        std::snprintf(text, sizeof text, "%.2f ms", figure.median / 1e3);
    else
        std::snprintf(text, sizeof text, "%.0f us", figure.median);
    return text;
}

std::string ratioText(const Figure& ours, const Figure& theirs) {
    if (ours.stopped || theirs.stopped)
        return "";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", ours.median / theirs.median);
    return text;
}

void writeJson(const std::string& file, const std::vector<Contestant>& contestants) {
    if (file.empty())
        return;
    std::ofstream out(file);
    const char* separator = "[\n  ";
    for (const Contestant& contestant : contestants) {
        for (const auto& [key, figure] : contestant.figures) {
            if (figure.stopped)
                continue;
            out << separator << "{\"work\": " << jsonQuoted(key.work)
                << ", \"who\": " << jsonQuoted(contestant.peer->name())
                << ", \"size\": " << key.size
                << ", \"storage\": " << jsonQuoted(contestant.peer->storage())
                << ", \"median_us\": " << figure.median << "}";
            separator = ",\n  ";
        }
    }
    out << "\n]\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + file);
}

int run(std::map<std::string, std::string> arguments) {
    for (const char* name : {"--host", "--memory", "--disk", "--music"}) {
        if (arguments[name].empty())
            throw std::runtime_error(std::string(name) + " is missing");
    }
    const int largest =
        arguments["--largest"].empty() ? 100'000 : std::stoi(arguments["--largest"]);
    std::vector<int> sizes;
    for (int size = 1000; size <= largest; size *= 10)
        sizes.push_back(size);
    const TempFolder memory(arguments["--memory"]);
    // Absolute, because the daemon takes no other names.
    const TempFolder disk(std::filesystem::absolute(arguments["--disk"]));
    const Music music{std::filesystem::absolute(arguments["--music"]).string()};
    std::vector<Contestant> contestants(3);
    contestants[0] = {
        "MPD", [&] { return std::make_unique<MpdPeer>(disk.path() / "mpd", music); }, nullptr, {}};
    contestants[1] = {"ours, memory",
                      [&] {
                          return std::make_unique<DevicePeer>(
                              arguments["--host"], memory.path() / "device", music, "memory");
                      },
                      nullptr,
                      {}};
    contestants[2] = {"ours, disk",
                      [&] {
                          return std::make_unique<DevicePeer>(
                              arguments["--host"], disk.path() / "device", music, "disk");
                      },
                      nullptr,
                      {}};
    for (Contestant& contestant : contestants)
        contestant.peer = contestant.make();

    std::printf("The same work over loopback, %s\n\n%-26s %8s  %16s %16s %16s %12s %12s  %5s\n",
                Report::machine().c_str(), "work", "n", "MPD", "ours, memory", "ours, disk",
                "memory/MPD", "disk/MPD", "load");
    for (const Work& work : works()) {
        for (const int size : sizes) {
            const Key key{work.name, size};
            // In turns, so that a busy minute of the machine hits all of them.
            for (Contestant& contestant : contestants)
                contestant.figures[key] = measure(contestant, work, size);
            const auto figure = [&](int index) {
                return contestants[std::size_t(index)].figures[key];
            };
            std::printf("%-26s %8d  %16s %16s %16s %12s %12s  %5.1f\n", work.name, size,
                        timeText(figure(0)).c_str(), timeText(figure(1)).c_str(),
                        timeText(figure(2)).c_str(), ratioText(figure(1), figure(0)).c_str(),
                        ratioText(figure(2), figure(0)).c_str(), Report::machineLoad());
            std::fflush(stdout);
        }
    }
    std::printf("\nresident memory after a list of n was read (MiB)\n");
    for (const int size : sizes) {
        const Key key{"page of 50", size};
        const double daemon = contestants[0].figures[key].memory / 1024;
        const double inMemory = contestants[1].figures[key].memory / 1024;
        const double onDisk = contestants[2].figures[key].memory / 1024;
        std::printf("%-26s %8d  %16.1f %16.1f %16.1f %12.2f %12.2f\n", "", size, daemon, inMemory,
                    onDisk, inMemory / daemon, onDisk / daemon);
    }
    writeJson(arguments["--json"], contestants);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> arguments;
    for (int i = 1; i + 1 < argc; i += 2)
        arguments[argv[i]] = argv[i + 1];
    try {
        return run(arguments);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvo-bench-peers: %s\n", problem.what());
        return 2;
    }
}
