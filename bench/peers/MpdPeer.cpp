#include "MpdPeer.h"

#include <fstream>
#include <stdexcept>
#include <unistd.h>

#include "../client/Samples.h"

namespace {

constexpr int MostMs = MostSeconds * 1000;

void writeConfiguration(const std::filesystem::path& folder, const Music& music,
                        std::uint16_t port) {
    std::filesystem::create_directories(folder / "playlists");
    std::ofstream out(folder / "mpd.conf");
    const auto line = [&](const char* name, const std::string& value) {
        out << name << " \"" << value << "\"\n";
    };
    line("music_directory", music.folder);
    line("playlist_directory", (folder / "playlists").string());
    line("db_file", (folder / "database").string());
    line("bind_to_address", "127.0.0.1");
    line("port", std::to_string(port));
    line("zeroconf_enabled", "no");
    line("log_level", "default");
    // Limits that the large lists would run into.
    line("max_playlist_length", "1000000");
    line("max_command_list_size", "262144");
    line("max_output_buffer_size", "262144");
    line("connection_timeout", "3600");
    out << "audio_output {\n  type \"null\"\n  name \"null\"\n  mixer_type \"none\"\n}\n";
    if (!out.flush())
        throw std::runtime_error("cannot write mpd.conf");
}

} // namespace

MpdPeer::MpdPeer(const std::filesystem::path& folder, const Music& music) {
    constexpr useconds_t Pause = 100'000;
    constexpr double UpdateUs = 300e6;
    const std::uint16_t port = Socket::freePort();
    writeConfiguration(folder, music, port);
    m_process = std::make_unique<ChildProcess>(
        std::vector<std::string>{"mpd", "--no-daemon", "--stderr", (folder / "mpd.conf").string()},
        (folder / "mpd.log").string());
    Socket socket;
    while (!Socket::tryPort(port, &socket)) {
        if (!m_process->isRunning())
            throw std::runtime_error("mpd does not start, see " + (folder / "mpd.log").string());
        ::usleep(Pause);
    }
    m_connection = std::make_unique<LineConnection>(std::move(socket));
    mustAsk("update\n");
    const Clock::time_point start = Clock::now();
    for (std::string status = "updating_db"; status.find("updating_db") != std::string::npos;) {
        if (microsecondsSince(start) > UpdateUs)
            throw std::runtime_error("mpd reads the music for too long");
        ::usleep(Pause);
        mustAsk("status\n", &status);
    }
}

bool MpdPeer::ask(const std::string& lines, std::string* answer) {
    return m_connection->ask(lines, MostMs, answer);
}

void MpdPeer::mustAsk(const std::string& lines, std::string* answer) {
    if (!ask(lines, answer))
        throw std::runtime_error("no answer from mpd to " + lines.substr(0, 40));
}

void MpdPeer::prepareEmpty() {
    mustAsk("stop\n");
    mustAsk("clear\n");
}

void MpdPeer::prepareList(int size) {
    prepareEmpty();
    mustAsk("add \"" + Music::folderOf(size) + "\"\n");
}

bool MpdPeer::addFolder(int size) {
    return ask("add \"" + Music::folderOf(size) + "\"\n");
}

bool MpdPeer::addFolderInTheMiddle(int size) {
    return ask("add \"" + Music::folderOf(size) + "\" " + std::to_string(size / 2) + "\n");
}

bool MpdPeer::readPage(int from) {
    std::string rows;
    if (!ask("playlistinfo " + std::to_string(from) + ":" + std::to_string(from + PageRows) + "\n",
             &rows))
        return false;
    if (rows.find("Pos: " + std::to_string(from + PageRows - 1) + "\n") == std::string::npos)
        throw std::runtime_error("no whole page from mpd");
    return true;
}

bool MpdPeer::removeEverySecond(int size) {
    std::string commands;
    for (int position = size - 2; position >= 0; position -= 2)
        commands += "delete " + std::to_string(position) + "\n";
    return ask(LineConnection::list(commands));
}

bool MpdPeer::clear() {
    return ask("clear\n");
}

void MpdPeer::prepareSaving() {
    if (!m_saved.empty())
        mustAsk("rm \"" + m_saved + "\"\n");
    m_saved = "saved" + std::to_string(++m_saves);
}

bool MpdPeer::save(int) {
    return ask("save \"" + m_saved + "\"\n");
}

bool MpdPeer::load(int) {
    return ask("load \"" + m_saved + "\"\n");
}

bool MpdPeer::editSaved(int row) {
    return ask("playlistmove \"" + m_saved + "\" " + std::to_string(row) + " " +
               std::to_string(row + 1) + "\n");
}

void MpdPeer::prepareRandom(int size) {
    prepareEmpty();
    std::string commands;
    for (int i = 0; i < size; ++i)
        commands += "add \"" + Music::longTrack() + "\"\n";
    mustAsk(LineConnection::list(commands));
    mustAsk("random 1\n");
    mustAsk("play 0\n");
}

bool MpdPeer::next() {
    return ask("next\n");
}
