#pragma once

#include "../client/Device.h"
#include "Peer.h"

// Our device over HTTP. What the daemon does with its queue is done with the play queue where it
// can be, and with a playlist where it is about a stored list.
class DevicePeer : public Peer {
public:
    DevicePeer(const std::string& host, const std::filesystem::path& folder, const Music& music,
               const std::string& storage);

    std::string name() const override { return "ours"; }
    std::string storage() const override { return m_storage; }
    long memory() const override { return ProcessMemory::of(m_device.pid()).rss; }
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
    bool command(const std::string& path, const std::string& value);
    std::string add(const std::string& items, int mode) const;
    void playPaused(int index);
    // The paths of the items of a list, as an add command takes them.
    std::string itemPaths(const std::string& list);

    std::string m_storage;
    Device m_device;
    HttpConnection m_connection;
    int m_saved = -1;
    std::string m_paths;
};
