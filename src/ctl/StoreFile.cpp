#include "StoreFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include "ClientFailure.h"

namespace {

// Where a device keeps it below its data folder.
const QString InDataFolder = QStringLiteral("data-rw/playlists/playlists.sqlite");
const QString JournalSuffix = QStringLiteral("-journal");

// A step holds the file for a fraction of a millisecond; the device writes in the pauses.
constexpr int FirstStepPages = 64;
constexpr unsigned long PauseMs = 3;
constexpr int BusyTimeoutMs = 10000;

ClientFailure unreadable(const QString& name, const QString& reason) {
    return ClientFailure::unreadable(QStringLiteral("cannot read %1: %2").arg(name, reason));
}

// Reads the first page, which shows whether the file can be used at all.
int look(sqlite3* connection) {
    return sqlite3_exec(connection, "SELECT count(*) FROM sqlite_master", nullptr, nullptr,
                        nullptr);
}

struct FinishBackup {
    void operator()(sqlite3_backup* backup) const { sqlite3_backup_finish(backup); }
};

} // namespace

QString StoreFile::resolve(const QString& file) {
    const QFileInfo info(file);
    const QString inside = file + QLatin1Char('/') + InDataFolder;
    return info.isDir() && QFileInfo(inside).isFile() ? inside : file;
}

StoreFile::Connection StoreFile::open(const QString& file, int flags) {
    sqlite3* connection = nullptr;
    const int code =
        sqlite3_open_v2(QFile::encodeName(file).constData(), &connection, flags, nullptr);
    Connection result(connection);
    if (code != SQLITE_OK)
        throw unreadable(file, QString::fromUtf8(sqlite3_errstr(code)));
    sqlite3_extended_result_codes(connection, 1);
    sqlite3_busy_timeout(connection, BusyTimeoutMs);
    return result;
}

StoreFile::Connection StoreFile::openMemory() {
    return open(QStringLiteral(":memory:"), SQLITE_OPEN_READWRITE);
}

StoreFile::StoreFile(const QString& file) : m_name(resolve(file)) {
    const QFileInfo info(m_name);
    if (info.isDir())
        throw unreadable(m_name, QStringLiteral("it is a folder without %1").arg(InDataFolder));
    QFile probe(m_name);
    if (!probe.open(QIODevice::ReadOnly))
        throw unreadable(m_name, probe.errorString());
    probe.close();
    m_connection = open(m_name, SQLITE_OPEN_READONLY);
    const int code = look(m_connection.get());
    if (code == SQLITE_NOTADB)
        throw unreadable(m_name, QStringLiteral("it is no database"));
    // Rolling back what was cut off is the work of the next start of the device.
    if (code == SQLITE_READONLY_ROLLBACK || code == SQLITE_READONLY_RECOVERY ||
        code == SQLITE_CANTOPEN)
        openPrivateCopy();
}

void StoreFile::openPrivateCopy() {
    const auto stamp = [this] {
        const QFileInfo store(m_name);
        const QFileInfo journal(m_name + JournalSuffix);
        return QStringLiteral("%1 %2 %3 %4")
            .arg(store.size())
            .arg(store.lastModified().toMSecsSinceEpoch())
            .arg(journal.size())
            .arg(journal.lastModified().toMSecsSinceEpoch());
    };
    const QString before = stamp();
    m_private = std::make_unique<QTemporaryDir>();
    const QString copy = m_private->filePath(QStringLiteral("copy.sqlite"));
    const bool copied =
        QFile::copy(m_name, copy) && QFile::copy(m_name + JournalSuffix, copy + JournalSuffix);
    if (!copied || stamp() != before)
        throw unreadable(m_name, QStringLiteral("it changes; is a device starting with it?"));
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    m_connection = open(copy, SQLITE_OPEN_READWRITE);
    look(m_connection.get());
}

bool StoreFile::copyTo(sqlite3* target, QString* damage) const {
    const std::unique_ptr<sqlite3_backup, FinishBackup> backup(
        sqlite3_backup_init(target, "main", m_connection.get(), "main"));
    if (!backup) {
        *damage = QString::fromUtf8(sqlite3_errmsg(target));
        return false;
    }
    QElapsedTimer waiting;
    int pages = FirstStepPages;
    int left = std::numeric_limits<int>::max();
    for (;;) {
        const int code = sqlite3_backup_step(backup.get(), pages);
        if (code == SQLITE_DONE)
            return true;
        const bool busy = (code & 0xff) == SQLITE_BUSY || (code & 0xff) == SQLITE_LOCKED;
        if (busy && !waiting.isValid())
            waiting.start();
        if (busy && waiting.elapsed() > BusyTimeoutMs)
            throw ClientFailure::refused(
                QStringLiteral("%1 is in use all the time, try again").arg(m_name));
        if (!busy && code != SQLITE_OK) {
            *damage = QString::fromUtf8(sqlite3_errstr(code));
            return false;
        }
        if (code == SQLITE_OK) {
            waiting.invalidate();
            // An edit makes it begin again. Larger steps see to it that it ends, however many come.
            const int now = sqlite3_backup_remaining(backup.get());
            if (now >= left)
                pages = std::min(2 * pages, std::numeric_limits<int>::max() / 2);
            left = now;
        }
        QThread::msleep(PauseMs);
    }
}
