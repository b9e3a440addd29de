#pragma once

#include <filesystem>

#include "../client/ChildProcess.h"
#include "../client/LineConnection.h"
#include "Peer.h"

// Debian's Music Player Daemon, with a configuration of its own below `folder`.
class MpdPeer : public Peer {
public:
    MpdPeer(const std::filesystem::path& folder, const Music& music);

    std::string name() const override { return "MPD"; }
    std::string storage() const override { return "memory"; }
    long memory() const override { return ProcessMemory::of(m_process->pid()).rss; }
    void prepareEmpty() override;
    void prepareList(int size) override;
    bool addFolder(int size) override;
    bool addFolderInTheMiddle(int size) override;
    bool readPage(int from) override;
    bool removeEverySecond(int size) override;
    bool clear() override;
    void prepareSaving() override;
    bool save(int size) override;
    bool load(int size) override;
    bool editSaved(int row) override;
    void prepareRandom(int size) override;
    bool next() override;

private:
    bool ask(const std::string& lines, std::string* answer = nullptr);
    void mustAsk(const std::string& lines, std::string* answer = nullptr);

    std::unique_ptr<ChildProcess> m_process;
    std::unique_ptr<LineConnection> m_connection;
    int m_saves = 0;
    std::string m_saved;
};
