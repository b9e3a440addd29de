#pragma once

#include <QString>
#include <QStringList>

struct sqlite3;

// The playlists' file, read and changed past the module through a connection of its own. What
// SQLite refuses is thrown: the test fails there.
class StoreFile {
public:
    // Where a device keeps it, below its data folder.
    static constexpr const char* File = "data-rw/playlists/playlists.sqlite";

    // Opened by the first use.
    explicit StoreFile(const QString& name = QString::fromLatin1(File)) : m_name(name) {}
    virtual ~StoreFile() { disconnect(); }
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;

    // What every row holds, the columns of a row joined by '|'.
    QStringList query(const QString& sql);
    int queryInt(const QString& sql);
    void run(const QString& sql);
    // Makes every `change` ("INSERT ON items", "UPDATE ON items WHEN OLD.uid = 2") fail until
    // allowAll().
    void forbid(const QString& change);
    void allowAll();

    // "a b c": the titles of a playlist's entries, in order.
    QString stored(int plid);
    // How the file is not as every store must be, with SQLite's own checks where they are asked
    // for.
    QStringList brokenRules(bool thorough = true);

    sqlite3* connection();
    void disconnect();

protected:
    virtual sqlite3* open(const QString& name);

private:
    QString m_name;
    sqlite3* m_connection = nullptr;
    int m_triggers = 0;
};
