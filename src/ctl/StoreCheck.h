#pragma once

#include <QList>
#include <QString>

struct sqlite3;

// What is wrong with a file of playlists, and what to do about it.
struct StoreFinding {
    QString text;
    QString advice;
};

// What must hold of a device's file: SQLite's own checks, and what docs/storage.md says. Reads
// only.
namespace StoreCheck {

// False when these are no playlists at all.
bool holdsPlaylists(sqlite3* connection);
QList<StoreFinding> findings(sqlite3* connection);
// The settings beside the data-rw folder that `file` lies in, when they are there.
QList<StoreFinding> settingsFindings(const QString& file);
// "3 playlists, 120 tracks, 1 collections".
QString summary(sqlite3* connection);

extern const char* const putBackABackup;

} // namespace StoreCheck
