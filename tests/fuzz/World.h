#pragma once

#include <memory>

#include <QTemporaryDir>

#include "ApiRouter.h"
#include "CMRootWorker.h"
#include "StoreFile.h"

class FilesWorker;
class LateWorker;
class PlayListWorker;

// A device without its sockets and its sound: a root, the real playlists and files modules, a
// player that takes every command, and a source "attic" that answers late or never. Everything lies
// in one temporary folder:
//
//   data    the working folder, with the store
//   music   two tracks, a picture, and a link that leads out
//   page    a page, and a link that leads out
//   beside them what the links lead to: files that hold secret() and must never be read
//
// The store begins with the playlists 1 "Party" (a b c) and 2 "Quiet" (none), and the collection 1
// "Box" with 2 in it. Made once per process by instance(); what fails here ends the process.
class World : public StoreFile {
public:
    static World& instance();
    ~World() override;

    // The playlists module anew over a store as it was at the beginning. The others stay, because
    // to let go of a watched folder takes the system longer than all the rest, unless settings
    // were written: then everything is made anew.
    void reset(int itemsLimit = 0, bool settingsWritten = false);
    // The playlists module anew over the same store.
    void restart();
    // How large bodies, items, additions, names and answers may be. A fuzzer's inputs reach the
    // small limits.
    enum class Limits { Default, Small };
    void setLimits(Limits limits);
    ApiLimits apiLimits() const;
    // Handles what is due. The second form also answers, or drops, what the attic has kept.
    void handleEvents();
    void settle();

    QString pageFolder() const { return m_folder.filePath(QStringLiteral("page")); }
    QString musicFolder() const { return m_folder.filePath(QStringLiteral("music")); }
    const QByteArray& secret() const { return m_secret; }

    // Every rule of a store kept, with SQLite's own checks where they are asked for.
    void requireInvariants(bool thorough);
    // Nothing has come or gone beside the store.
    void requireSameFiles();

    // An item as a media source delivers it.
    static QVariantHash item(const QString& title);

private:
    World();
    void startOthers();
    void stopOthers();
    void start();
    void stop();
    QStringList files() const;

    QTemporaryDir m_folder;
    QByteArray m_secret;
    QByteArray m_emptyStore; // the file as it was at the beginning
    QStringList m_files;
    int m_itemsLimit = 0;
    Limits m_limits = Limits::Default;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<PlayListWorker> m_playLists;
    std::unique_ptr<FilesWorker> m_filesModule;
    std::unique_ptr<LateWorker> m_attic;
    std::unique_ptr<LateWorker> m_player;
};
