#include "Device.h"

#include <charconv>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

#include "Samples.h"
#include "Tracks.h"

Device::Device(const Options& options) {
    constexpr double PatienceUs = 60e6;
    constexpr useconds_t Pause = 200;
    std::filesystem::create_directories(options.data);
    const std::filesystem::path portFile = options.data / "port";
    std::filesystem::remove(portFile);
    std::vector<std::string> command = {options.host,      "--data",       options.data.string(),
                                        "--listen",        "127.0.0.1:0",  "--port-file",
                                        portFile.string(), "--audio-sink", "null",
                                        "--log-level",     "warn"};
    if (!options.music.empty())
        command.insert(command.end(), {"--music", options.music});
    for (const std::string& module : options.modules)
        command.insert(command.end(), {"--module", module});
    m_process = std::make_unique<ChildProcess>(command, (options.data / "host.log").string());

    const Clock::time_point start = Clock::now();
    while (m_port == 0) {
        std::ifstream(portFile) >> m_port;
        if (m_port > 0)
            break;
        if (!m_process->isRunning() || microsecondsSince(start) > PatienceUs)
            throw std::runtime_error("the device does not start, see " +
                                     (options.data / "host.log").string());
        ::usleep(Pause);
    }
}

void Device::waitForScan() const {
    constexpr useconds_t Pause = 100'000;
    HttpConnection connection = connect();
    const std::string question = HttpConnection::get("/api/value?path=files:scan");
    while (connection.mustExchange(question).find(R"("ready")") == std::string_view::npos)
        ::usleep(Pause);
}

int Device::createPlayList(HttpConnection& connection, const std::string& name) {
    const std::string_view body = connection.mustExchange(
        HttpConnection::command("playlists:pl/create", R"({"name":")" + name + "\"}"));
    const int id = numberAfter(body, R"("i32":)");
    if (id <= 0)
        throw std::runtime_error("no id for a new playlist");
    return id;
}

void Device::addTracks(HttpConnection& connection, int plid, int first, int count) {
    constexpr int MostAtOnce = 5000;
    for (int done = 0; done < count; done += MostAtOnce) {
        const int now = std::min(MostAtOnce, count - done);
        connection.mustExchange(
            HttpConnection::command("playlists:pl/addExternalItems",
                                    R"({"plid":)" + std::to_string(plid) + R"(,"mode":2,"items":)" +
                                        Tracks::items(first + done, now) + '}'));
    }
}

int numberAfter(std::string_view text, std::string_view name) {
    const std::size_t at = text.find(name);
    int number = -1;
    if (at != std::string_view::npos)
        std::from_chars(text.data() + at + name.size(), text.data() + text.size(), number);
    return number;
}
