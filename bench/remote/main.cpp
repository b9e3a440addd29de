// The device, end to end over HTTP on this machine: prints a table and compares it with its bounds.
//
//   orvo-bench-remote --host PROGRAM --music FOLDER --tracks N --memory DIR --disk DIR [--json
//   FILE] [--processors all]
//
// Device and clients share one processor; with `--processors all` they run where the system puts
// them. Ends with 0, with 1 where a bound is broken, with 2 where something could not be measured.

#include <cstdio>
#include <exception>
#include <map>
#include <sched.h>
#include <stdexcept>

#include "../client/TempFolder.h"
#include "Scenarios.h"

namespace {

constexpr int PlayLists = 1000;
constexpr int SmallSize = 100;
constexpr int BigSize = 100'000;

std::map<std::string, std::string> readArguments(int argc, char** argv) {
    std::map<std::string, std::string> arguments;
    for (int i = 1; i + 1 < argc; i += 2)
        arguments[argv[i]] = argv[i + 1];
    for (const char* name : {"--host", "--music", "--tracks", "--memory", "--disk"}) {
        if (arguments[name].empty())
            throw std::runtime_error(std::string(name) + " is missing");
    }
    return arguments;
}

// The device and its clients on one processor; returns the others. Between two of a virtual
// machine, waking the other one costs as much as a small answer, and at times several milliseconds.
cpu_set_t shareOneProcessor() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0)
        throw std::runtime_error("the processors are not known");
    int last = CPU_SETSIZE - 1;
    while (last > 0 && !CPU_ISSET(last, &allowed))
        --last;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(last, &one);
    CPU_CLR(last, &allowed);
    if (::sched_setaffinity(0, sizeof one, &one) != 0)
        throw std::runtime_error("no processor can be chosen");
    return allowed;
}

// Through the device's own commands, so the data is what a person's clicks would have made.
Library fill(const Device& device) {
    HttpConnection connection = device.connect();
    Library library{&device, -1, -1, BigSize, SmallSize};
    for (int i = 0; i < PlayLists; ++i) {
        const int id = Device::createPlayList(connection, "Playlist " + std::to_string(i));
        if (i == PlayLists / 2)
            library.smallList = id;
    }
    Device::addTracks(connection, library.smallList, 0, SmallSize);
    library.bigList = Device::createPlayList(connection, "Everything");
    Device::addTracks(connection, library.bigList, 0, BigSize);
    return library;
}

int run(std::map<std::string, std::string> arguments) {
    const bool shared = arguments["--processors"] != "all";
    cpu_set_t others;
    CPU_ZERO(&others);
    if (shared)
        others = shareOneProcessor();
    const TempFolder memory(arguments["--memory"]);
    const TempFolder disk(arguments["--disk"]);
    const std::string host = arguments["--host"];
    Report report(std::string("The device over HTTP: 1,000 playlists, one list of 100,000 tracks; "
                              "device and clients on ") +
                  (shared ? "one processor" : "all processors"));
    Library library;
    {
        const Device device({host, memory.path() / "device", arguments["--music"], {}});
        device.waitForScan();
        library = fill(device);
        Scenarios::wakeUps(others, report);
        Scenarios::pages(library, report);
        Scenarios::edits(library, "memory", true, report);
        Scenarios::pagesBehindRemovals(library, report);
        Scenarios::manyListeners(library, report);
        Scenarios::manyReaders(library, report);
        Scenarios::folderAdded(library, std::stoi(arguments["--tracks"]), "memory", true, report);
    }
    std::filesystem::copy(memory.path() / "device", disk.path() / "device",
                          std::filesystem::copy_options::recursive);
    const Device onDisk({host, disk.path() / "device", arguments["--music"], {}});
    onDisk.waitForScan();
    library.device = &onDisk;
    Scenarios::edits(library, "disk", false, report);
    Scenarios::folderAdded(library, std::stoi(arguments["--tracks"]), "disk", false, report);

    report.note("On the disk every edit waits for the disk to have it, and others wait with it: no "
                "bounds there either.");
    report.writeJson(arguments["--json"]);
    return report.finish() > 0 ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(readArguments(argc, argv));
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvo-bench-remote: %s\n", problem.what());
        return 2;
    }
}
