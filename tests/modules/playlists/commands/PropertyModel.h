#pragma once

#include <optional>

#include <QList>
#include <QMap>
#include <QSet>
#include <QStringList>

class StoreFile;

// What the module should hold, as plain lists: playlists of titles and collections of playlists.
// Each function does what the command of its name should do and says whether the command should
// succeed.
class PropertyModel {
public:
    static constexpr int Append = 2;

    struct PlayList {
        QString name;
        QStringList titles;
        int lastPlayed = -1;
        bool shuffle = false;
        bool repeatAll = false;
        // Tells it from a later list with its id: rises with each that is made.
        int birth = 0;
    };
    struct Collection {
        QString name;
        QSet<int> members;
    };

    explicit PropertyModel(int itemsLimit) : limit(itemsLimit) {
        playLists[0].name = QStringLiteral("PlayQueue");
    }

    int itemCount() const;

    // The new id, which SQLite gives out as one more than the highest in use.
    std::optional<int> createPlayList(const QString& name);
    std::optional<int> createCollection(const QString& name);
    bool renamePlayList(int plid, const QString& name);
    bool setShuffle(int plid, int mode);
    bool setRepeat(int plid, int mode);
    bool deletePlayList(int plid);
    bool deleteCollection(int clid);
    bool addMember(int clid, int plid);
    bool removeMember(int clid, int plid);
    bool clear(int plid);
    bool removeItems(int plid, const QList<int>& positions);
    bool moveItems(int plid, const QList<int>& positions, int to);
    bool setOrder(int plid, const QList<int>& order);
    bool canPlay(int plid) const {
        return playLists.contains(plid) && !playLists[plid].titles.isEmpty();
    }
    // How many were added; 0 is a refusal.
    int addItems(int plid, const QStringList& titles, int mode);
    // At these positions; a run of them may be cut short.
    int addItemsAt(int plid, const QStringList& titles, const QList<int>& positions, bool isRun);
    // All items of `from` onto `plid`; `from` goes unless it is the queue or the target.
    int merge(int from, int plid, int mode);
    // The queue is emptied at every start.
    void restart() { playLists[0].titles.clear(); }

    // Every playlist and collection as a line each, and those of a file.
    QStringList lines() const;
    static QStringList linesOf(StoreFile& file);

    int limit;        // 0: none
    int addedAt = -1; // where the items that were added last begin
    QMap<int, PlayList> playLists;
    QMap<int, Collection> collections;

private:
    int m_births = 0;
};
