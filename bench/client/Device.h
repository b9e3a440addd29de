#pragma once

#include <filesystem>
#include <memory>

#include "ChildProcess.h"
#include "HttpConnection.h"

// One running orvo-host over a data folder, silent, with the modules that the options name. It ends
// with this object.
class Device {
public:
    struct Options {
        std::string host;                 // the program
        std::filesystem::path data;       // kept
        std::string music;                // empty: none
        std::vector<std::string> modules; // empty: all
    };

    // Returns when the device listens, which is before its event loop runs: the first answer is
    // still to be waited for.
    explicit Device(const Options& options);

    std::uint16_t port() const { return m_port; }
    pid_t pid() const { return m_process->pid(); }
    HttpConnection connect() const { return HttpConnection(m_port); }

    // Waits until the music folder is read.
    void waitForScan() const;
    // Makes a playlist and returns its id.
    static int createPlayList(HttpConnection& connection, const std::string& name);
    // Adds made-up tracks at the end of the list, in bodies of a size that the device takes.
    static void addTracks(HttpConnection& connection, int plid, int first, int count);

private:
    std::unique_ptr<ChildProcess> m_process;
    std::uint16_t m_port = 0;
};

// The number behind the first `name` in the text, or -1.
int numberAfter(std::string_view text, std::string_view name);
