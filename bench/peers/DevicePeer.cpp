#include "DevicePeer.h"

#include <stdexcept>

namespace {

const std::string QueueItems = "playlists:pq/items";

enum AddMode { AfterCurrent = 1, Append = 2 };

std::string quotedTree(const std::string& name) {
    return "\"files:tree/" + name + '"';
}

} // namespace

DevicePeer::DevicePeer(const std::string& host, const std::filesystem::path& folder,
                       const Music& music, const std::string& storage)
    : m_storage(storage),
      m_device({host, folder, music.folder, {}}),
      m_connection(m_device.connect()) {
    m_device.waitForScan();
}

bool DevicePeer::command(const std::string& path, const std::string& value) {
    m_connection.mustExchange(HttpConnection::command(path, value));
    return true;
}

std::string DevicePeer::add(const std::string& items, int mode) const {
    return R"({"plid":0,"mode":)" + std::to_string(mode) + R"(,"items":[)" + items + "]}";
}

void DevicePeer::prepareEmpty() {
    m_connection.exchange(HttpConnection::command("player:stop", "{}")); // refused in silence
    command("playlists:pl/clear", R"({"plid":0})");
}

void DevicePeer::playPaused(int index) {
    const std::string logic = R"("mediaData":{"metaData":{"playLogicPath":"playlists:playlogic"}})";
    command("player:playContainer", R"({"mediaRoles":{"type":1,"containerPlayable":true,"path":")" +
                                        QueueItems + "\"," + logic +
                                        R"(},"type":1,"startPosition":0,"paused":true,"index":)" +
                                        std::to_string(index) + '}');
}

void DevicePeer::prepareList(int size) {
    prepareEmpty();
    command("playlists:pl/addItems", add(quotedTree(Music::folderOf(size)), Append));
    playPaused(size / 2 - 1);
    command("player:stop", "{}"); // the place in the list stays
}

bool DevicePeer::addFolder(int size) {
    return command("playlists:pl/addItems", add(quotedTree(Music::folderOf(size)), Append));
}

bool DevicePeer::addFolderInTheMiddle(int size) {
    return command("playlists:pl/addItems", add(quotedTree(Music::folderOf(size)), AfterCurrent));
}

bool DevicePeer::readPage(int from) {
    const std::string_view body =
        m_connection.mustExchange(HttpConnection::page(QueueItems, from, from + PageRows - 1));
    if (body.find(R"("value":{"i32":)" + std::to_string(from + PageRows - 1) + '}') ==
        std::string_view::npos)
        throw std::runtime_error("no whole page from the device");
    return true;
}

bool DevicePeer::removeEverySecond(int size) {
    std::string positions;
    for (int position = 0; position < size; position += 2)
        positions += (position > 0 ? "," : "") + std::to_string(position);
    return command("playlists:pl/removeItems", R"({"plid":0,"items":[)" + positions + "]}");
}

bool DevicePeer::clear() {
    return command("playlists:pl/clear", R"({"plid":0})");
}

std::string DevicePeer::itemPaths(const std::string& list) {
    const std::string body(
        m_connection.mustExchange(HttpConnection::get("/api/rows?roles=path&path=" + list)));
    constexpr std::string_view Path = "\"playlists:item/";
    std::string paths;
    for (std::size_t at = body.find(Path); at != std::string::npos;) {
        const std::size_t end = body.find('"', at + Path.size());
        paths += (paths.empty() ? "" : ",") + body.substr(at, end + 1 - at);
        at = body.find(Path, end);
    }
    return paths;
}

void DevicePeer::prepareSaving() {
    if (m_saved >= 0)
        command("playlists:pl/delete", R"({"plid":)" + std::to_string(m_saved) + '}');
    m_saved = Device::createPlayList(m_connection, "Saved");
    m_paths = itemPaths(QueueItems);
}

bool DevicePeer::save(int) {
    return command("playlists:pl/addItems",
                   R"({"plid":)" + std::to_string(m_saved) + R"(,"items":[)" + m_paths + "]}");
}

bool DevicePeer::load(int) {
    // Asking for the paths is a part of it: whoever loads a list does not have them.
    const std::string paths = itemPaths("playlists:pl/items/" + std::to_string(m_saved));
    return command("playlists:pl/addItems", add(paths, Append));
}

bool DevicePeer::editSaved(int row) {
    return command("playlists:pl/moveItems", R"({"plid":)" + std::to_string(m_saved) +
                                                 R"(,"items":[)" + std::to_string(row) +
                                                 R"(],"to":)" + std::to_string(row + 1) + '}');
}

void DevicePeer::prepareRandom(int size) {
    prepareEmpty();
    std::string items;
    for (int i = 0; i < size; ++i)
        items += (i > 0 ? "," : "") + quotedTree(Music::longTrack());
    command("playlists:pl/addItems", add(items, Append));
    command("playlists:pl/setShuffle", R"({"plid":0,"mode":1})");
    playPaused(0);
}

bool DevicePeer::next() {
    return command("player:next", "{}");
}
