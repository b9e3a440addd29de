#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QString>

#include "SqliteStatement.h"
#include "TrackTags.h"

struct sqlite3;

// The tags of files that were read before, in an SQLite file of the module's own, so that a start
// opens only what is new or changed. Nothing in it is precious: a damaged or foreign file is put
// aside as NAME.damaged and made anew, and one that fails later is not used any more; both are
// logged once. Belongs to the thread that reads tags.
class TagStore {
public:
    // An empty name keeps nothing.
    explicit TagStore(const QString& file);
    ~TagStore();
    TagStore(const TagStore&) = delete;
    TagStore& operator=(const TagStore&) = delete;

    // A file is the same where its size and time of change (nanoseconds) are.
    struct Key {
        QString path; // absolute
        qint64 size = 0;
        qint64 modified = 0;
    };
    struct Found {
        TrackTags tags;
        bool pictureSought = false; // the file was asked for a picture, too
    };
    std::optional<Found> find(const Key& key);
    void put(const Key& key, const TrackTags& tags, bool pictureSought);
    // Writes what was put since the last time.
    void commit();
    // Forgets files that the loader has not asked for since the start, when they are more than
    // those that were. Not before: a disk that is missing for a while need not be read again.
    void forgetUnseen();

private:
    bool open();
    bool isSound();
    bool makeTables();
    void close();
    void putAside();
    void giveUp(const char* doing);
    bool execute(const char* sql);
    void saw(qint64 row);

    QString m_file;
    sqlite3* m_connection = nullptr;
    std::unique_ptr<SqliteStatement> m_find;
    std::unique_ptr<SqliteStatement> m_put;
    int m_uncommitted = 0;
    std::vector<bool> m_seen; // by row
};
