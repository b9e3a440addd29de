// What the device takes: file sizes, memory, and the time until its first answer.
//
//   orvo-bench-footprint --build DIR --memory DIR --disk DIR [--json FILE]
//
// Ends with 0, with 1 where a goal is missed, with 2 where something could not be measured.

#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <unistd.h>

#include "../client/Device.h"
#include "../client/Report.h"
#include "../client/Samples.h"
#include "../client/TempFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr int PlayLists = 1000;
constexpr int TracksEach = 10;
const std::string PlayListsModule = "liborvo_playlists.so";
const std::string GatewayModule = "liborvo_gateway.so";

const std::string& firstRequest() {
    static const std::string request = HttpConnection::page("playlists:root", 0, 49);
    return request;
}

void sizes(const fs::path& build, const fs::path& scratch, Report& report) {
    constexpr double ModuleBoundKiB = 500;
    std::set<fs::path> files = {build / "bin/orvo-host", build / "bin/orvoctl"};
    for (const auto& entry : fs::directory_iterator(build / "lib")) {
        if (entry.path().extension() == ".so")
            files.insert(entry.path());
    }
    for (const fs::path& file : files) {
        const fs::path stripped = scratch / file.filename();
        ChildProcess strip({"strip", "--strip-all", "-o", stripped.string(), file.string()},
                           (scratch / "strip.log").string());
        while (strip.isRunning())
            ::usleep(1000);
        const bool isModule = file.filename() == PlayListsModule;
        report.add(file.filename().string(), "stripped", double(fs::file_size(stripped)) / 1024,
                   "KiB", isModule ? std::optional<double>(ModuleBoundKiB) : std::nullopt);
    }
}

void makePlayLists(const Device& device, int count) {
    HttpConnection connection = device.connect();
    for (int i = 0; i < count; ++i) {
        const int id = Device::createPlayList(connection, "Playlist " + std::to_string(i));
        if (TracksEach > 0)
            Device::addTracks(connection, id, 0, TracksEach);
    }
}

// A new process, asked once: what it holds then.
ProcessMemory memoryAfterStart(const Device::Options& options, const std::string& question) {
    const Device device(options);
    HttpConnection connection = device.connect();
    connection.mustExchange(question);
    return ProcessMemory::of(device.pid());
}

void addMemory(Report& report, const std::string& work, const ProcessMemory& memory) {
    report.add(work, "RSS", double(memory.rss) / 1024, "MiB");
    report.add(work, "PSS", double(memory.pss) / 1024, "MiB");
    report.add(work, "private", double(memory.privateKiB) / 1024, "MiB");
}

void memory(const std::string& host, const fs::path& few, const fs::path& many, int manyCount,
            Report& report) {
    constexpr double OverBareBoundMiB = 3;
    const std::string modulesQuestion = HttpConnection::get("/api/modules");
    const ProcessMemory bare =
        memoryAfterStart({host, few.parent_path() / "bare", "", {GatewayModule}}, modulesQuestion);
    const ProcessMemory with =
        memoryAfterStart({host, few, "", {PlayListsModule, GatewayModule}}, firstRequest());
    const ProcessMemory withMany =
        memoryAfterStart({host, many, "", {PlayListsModule, GatewayModule}}, firstRequest());
    const ProcessMemory all = memoryAfterStart({host, few, "", {}}, firstRequest());
    addMemory(report, "bare host: the gateway only", bare);
    addMemory(report, "with the playlists module, 1,000 playlists", with);
    addMemory(report, "with all modules, 1,000 playlists", all);
    report.add("the module over the bare host, 1,000 playlists", "RSS",
               double(with.rss - bare.rss) / 1024, "MiB", OverBareBoundMiB);
    report.add("the module over the bare host, 1,000 playlists", "private",
               double(with.privateKiB - bare.privateKiB) / 1024, "MiB");
    report.add("1,000 more playlists", "private",
               double(withMany.privateKiB - with.privateKiB) * PlayLists / (manyCount - PlayLists),
               "KiB");
}

// A view is what an open page in a browser is to the device: a stream of events and a connection
// that has asked for rows.
void views(const std::string& host, const fs::path& data, Report& report) {
    constexpr int Views = 150; // two connections each; of one address 320 are taken
    const Device device({host, data, "", {PlayListsModule, GatewayModule}});
    const std::string events = HttpConnection::get("/api/events");
    struct View {
        Socket stream;
        HttpConnection connection;
    };
    std::vector<View> open;
    const auto openOne = [&] {
        View view{Socket::toPort(device.port()), device.connect()};
        view.stream.sendAll(events);
        std::string begin;
        view.stream.receive(&begin);
        view.connection.mustExchange(firstRequest());
        open.push_back(std::move(view));
    };
    openOne();
    const ProcessMemory before = ProcessMemory::of(device.pid());
    for (int i = 0; i < Views; ++i)
        openOne();
    const ProcessMemory after = ProcessMemory::of(device.pid());
    report.add("an open view: an event stream and a connection", "private",
               double(after.privateKiB - before.privateKiB) / Views, "KiB");
}

bool dropPageCache() {
    ::sync();
    std::ofstream control("/proc/sys/vm/drop_caches");
    control << "1\n";
    return bool(control.flush());
}

double startMs(const Device::Options& options) {
    const Clock::time_point start = Clock::now();
    const Device device(options);
    HttpConnection connection = device.connect();
    connection.mustExchange(firstRequest());
    return microsecondsSince(start) / 1000;
}

void starts(const std::string& host, const fs::path& data, Report& report) {
    constexpr double WarmBoundMs = 150;
    constexpr int WarmRuns = 15;
    constexpr int ColdRuns = 3;
    struct Setup {
        const char* name;
        std::vector<std::string> modules;
    };
    const Setup setups[] = {
        {"start to first answer, all modules", {}},
        {"start to first answer, playlists and gateway", {PlayListsModule, GatewayModule}},
        {"start to first answer, without the player",
         {PlayListsModule, "liborvo_files.so", GatewayModule}},
    };
    for (const Setup& setup : setups) {
        const Device::Options options{host, data, "", setup.modules};
        startMs(options);
        Samples warm;
        for (int i = 0; i < WarmRuns; ++i)
            warm.add(startMs(options));
        report.add(setup.name, "warm, median", warm.median(), "ms", WarmBoundMs);
        Samples cold;
        for (int i = 0; i < ColdRuns && dropPageCache(); ++i)
            cold.add(startMs(options));
        if (cold.isEmpty())
            report.note("A cold start was not measured: the page cache may not be dropped here.");
        else
            report.add(setup.name, "cold, median", cold.median(), "ms");
    }
}

int run(std::map<std::string, std::string> arguments) {
    constexpr int ManyFactor = 5;
    for (const char* name : {"--build", "--memory", "--disk"}) {
        if (arguments[name].empty())
            throw std::runtime_error(std::string(name) + " is missing");
    }
    const fs::path build = arguments["--build"];
    const std::string host = (build / "bin/orvo-host").string();
    const TempFolder inMemory(arguments["--memory"]);
    const TempFolder onDisk(arguments["--disk"]);
    const fs::path few = inMemory.path() / "few";
    const fs::path many = inMemory.path() / "many";
    {
        const Device device({host, few, "", {}});
        makePlayLists(device, PlayLists);
    }
    fs::copy(few, many, fs::copy_options::recursive);
    {
        const Device device({host, many, "", {}});
        makePlayLists(device, PlayLists * (ManyFactor - 1));
    }
    fs::copy(few, onDisk.path() / "data", fs::copy_options::recursive);

    Report report("What the device takes");
    sizes(build, inMemory.path(), report);
    memory(host, few, many, PlayLists * ManyFactor, report);
    views(host, few, report);
    starts(host, onDisk.path() / "data", report);
    report.writeJson(arguments["--json"]);
    return report.finish() > 0 ? 1 : 0;
}

} // namespace

int main(int argc, char** argv) {
    std::map<std::string, std::string> arguments;
    for (int i = 1; i + 1 < argc; i += 2)
        arguments[argv[i]] = argv[i + 1];
    try {
        return run(arguments);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvo-bench-footprint: %s\n", problem.what());
        return 2;
    }
}
