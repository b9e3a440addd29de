#pragma once

#include <memory>
#include <sqlite3.h>

#include <QString>
#include <QTemporaryDir>

// A device's file of playlists, read while the device may be writing it. It is opened read-only and
// never changed: an edit that was cut off (the device was killed and not started since) is rolled
// back in a private copy. On main's stack. Failures are thrown: what cannot be read as
// ClientFailure::unreadable.
class StoreFile {
public:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    using Connection = std::unique_ptr<sqlite3, Close>;

    // `file` is the file itself or the device's data folder.
    explicit StoreFile(const QString& file);

    QString name() const { return m_name; }
    // There was an edit that was cut off.
    bool wasCutOff() const { return m_private != nullptr; }

    // Copies all of it, a part at a time, and lets the device write in between. False when the file
    // is damaged so that not even that is possible; *damage says how.
    bool copyTo(sqlite3* target, QString* damage) const;

    static QString resolve(const QString& file);
    static Connection open(const QString& file, int flags);
    static Connection openMemory();

private:
    void openPrivateCopy();

    QString m_name;
    std::unique_ptr<QTemporaryDir> m_private;
    Connection m_connection;
};
