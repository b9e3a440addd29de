#include "StoreCheck.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStringList>

const char* const StoreCheck::putBackABackup =
    "Stop the device and put back a backup. Without one, \"sqlite3 FILE .recover\" saves what can "
    "still be read.";

namespace {

using StoreCheck::putBackABackup;

const char* const nextStartMends = "The next start of the device mends this.";
const char* const clearIt =
    "Clear the playlist and fill it again, or put back a backup of the file.";
const char* const editIt = "Set it anew with a command, or put back a backup of the file.";
const char* const deleteIt = "Remove the track and add it again.";

// At most so many sentences of one kind.
constexpr int MaxOfOneKind = 10;
// The type of roles that a playlist takes: audio.
constexpr int AudioType = 3;

// A query whose rows are sentences, each about one thing that must not be.
struct Rule {
    const char* sql;
    const char* advice;
};

const Rule rules[] = {
    {"SELECT 'the play queue is missing' WHERE NOT EXISTS (SELECT 1 FROM playlists WHERE uid = 0)",
     nextStartMends},
    {"SELECT 'playlist ' || uid || ' has an id that no playlist can have' FROM playlists"
     " WHERE uid < 0 OR uid > 2147483647",
     putBackABackup},
    {"SELECT 'playlist ' || uid || ': its name is no text' FROM playlists"
     " WHERE typeof(name) <> 'text' OR name = ''",
     editIt},
    {"SELECT 'playlist ' || uid || ': shuffle is ' || quote(shuffle) || ', repeat is ' ||"
     " quote(repeatAll) || '; each must be 0 or 1' FROM playlists"
     " WHERE shuffle NOT IN (0, 1) OR repeatAll NOT IN (0, 1)"
     " OR typeof(shuffle) <> 'integer' OR typeof(repeatAll) <> 'integer'",
     editIt},
    {"SELECT 'playlist ' || uid || ': the last played position is ' || quote(lastPlayedIndex)"
     " FROM playlists WHERE typeof(lastPlayedIndex) <> 'integer' OR lastPlayedIndex < -1"
     " OR lastPlayedIndex > 2147483647",
     "Play the playlist, or put back a backup of the file."},
    {"SELECT 'playlist ' || playlist || ': its ' || count(*) || ' entries are numbered from ' ||"
     " min(sequenceNumber) || ' to ' || max(sequenceNumber) || ', with gaps' FROM playlists_items"
     " GROUP BY playlist HAVING min(sequenceNumber) <> 0 OR max(sequenceNumber) <> count(*) - 1"
     " OR count(DISTINCT sequenceNumber) <> count(*)",
     clearIt},
    {"SELECT 'playlist ' || playlist || ': an entry''s number is ' || quote(sequenceNumber)"
     " FROM playlists_items WHERE typeof(sequenceNumber) <> 'integer'",
     clearIt},
    {"SELECT 'playlist ' || playlist || ': entry ' || sequenceNumber || ' has no track'"
     " FROM playlists_items WHERE item NOT IN (SELECT uid FROM items)",
     clearIt},
    {"SELECT 'there are entries of playlist ' || playlist || ', which does not exist'"
     " FROM playlists_items WHERE playlist NOT IN (SELECT uid FROM playlists) GROUP BY playlist",
     putBackABackup},
    {"SELECT 'track ' || item || ' belongs to ' || count(*) || ' entries' FROM playlists_items"
     " GROUP BY item HAVING count(*) > 1",
     deleteIt},
    {"SELECT count(*) || ' tracks belong to no playlist' FROM items"
     " WHERE uid NOT IN (SELECT item FROM playlists_items) HAVING count(*) > 0",
     nextStartMends},
    {"SELECT 'track ' || uid || ': title, address or service is no text' FROM items"
     " WHERE typeof(title) <> 'text' OR typeof(url) <> 'text' OR typeof(serviceId) <> 'text'",
     deleteIt},
    {"SELECT 'track ' || uid || ': artist, album, artwork or genre is no text' FROM items"
     " WHERE typeof(artist) NOT IN ('text', 'null') OR typeof(album) NOT IN ('text', 'null')"
     " OR typeof(artworkUrl) NOT IN ('text', 'null') OR typeof(genre) NOT IN ('text', 'null')",
     deleteIt},
    {"SELECT 'track ' || uid || ': the duration is ' || quote(durationSeconds) FROM items"
     " WHERE typeof(durationSeconds) NOT IN ('integer', 'null') OR durationSeconds > 2147483647"
     " OR durationSeconds < -2147483648",
     deleteIt},
    {"SELECT 'collection ' || uid || ': its name is no text' FROM collections"
     " WHERE typeof(name) <> 'text' OR name = ''",
     "Delete the collection and make it again."},
    {"SELECT 'collection ' || uid || ' has an id that no collection can have' FROM collections"
     " WHERE uid < 1 OR uid > 2147483647",
     putBackABackup},
    {"SELECT 'collection ' || collection || ' names playlist ' || playlist ||"
     " ', which does not exist' FROM collections_playlists"
     " WHERE playlist NOT IN (SELECT uid FROM playlists)",
     "Delete the collection and make it again."},
    {"SELECT 'there are members of collection ' || collection || ', which does not exist'"
     " FROM collections_playlists WHERE collection NOT IN (SELECT uid FROM collections)"
     " GROUP BY collection",
     putBackABackup},
};

struct Setting {
    const char* path;
    QJsonValue::Type type;
};
const Setting settings[] = {
    {"settings:playlists/databaseItemsLimit", QJsonValue::Double},
    {"settings:playlists/databaseVacuum", QJsonValue::Bool},
    {"settings:playlists/playqueueVisible", QJsonValue::Bool},
    {"settings:playlists/collectionsVisible", QJsonValue::Bool},
    {"settings:player/volume", QJsonValue::Double},
    {"settings:player/resumePoint", QJsonValue::String},
};

// The first column of every row. A query that fails says so in a row of its own.
QStringList texts(sqlite3* connection, const char* sql) {
    QStringList result;
    char* message = nullptr;
    const auto collect = [](void* into, int, char** values, char**) {
        static_cast<QStringList*>(into)->append(QString::fromUtf8(values[0]));
        return 0;
    };
    if (sqlite3_exec(connection, sql, collect, &result, &message) != SQLITE_OK)
        result.append(QStringLiteral("cannot be read: %1").arg(QString::fromUtf8(message)));
    sqlite3_free(message);
    return result;
}

void append(QList<StoreFinding>* findings, const QStringList& sentences, const char* advice) {
    const QString advised = QString::fromUtf8(advice);
    for (const QString& sentence : sentences.mid(0, MaxOfOneKind))
        findings->append({sentence, advised});
    if (sentences.size() > MaxOfOneKind)
        findings->append(
            {QStringLiteral("… and %1 more of this kind").arg(sentences.size() - MaxOfOneKind),
             advised});
}

QStringList tracksWithoutRoles(sqlite3* connection) {
    QStringList result;
    sqlite3_stmt* query = nullptr;
    sqlite3_prepare_v2(connection, "SELECT uid, orvoRoles FROM items", -1, &query, nullptr);
    while (sqlite3_step(query) == SQLITE_ROW) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(query, 1));
        const QByteArray roles(text, sqlite3_column_bytes(query, 1));
        if (QJsonDocument::fromJson(roles).object().value(QStringLiteral("type")).toInt() !=
            AudioType)
            result.append(QStringLiteral("track %1: its roles are none of an audio track")
                              .arg(sqlite3_column_int(query, 0)));
    }
    sqlite3_finalize(query);
    return result;
}

} // namespace

bool StoreCheck::holdsPlaylists(sqlite3* connection) {
    const char* const anyOfUs =
        "SELECT name FROM sqlite_master WHERE type = 'table' AND name = 'playlists'";
    return !texts(connection, anyOfUs).isEmpty();
}

QList<StoreFinding> StoreCheck::findings(sqlite3* connection) {
    QList<StoreFinding> found;
    QStringList own = texts(connection, "PRAGMA integrity_check(20)");
    own.removeAll(QStringLiteral("ok"));
    own.replaceInStrings(QRegularExpression(QStringLiteral("^")), QStringLiteral("SQLite: "));
    append(&found, own, putBackABackup);
    append(&found,
           texts(connection, "SELECT 'SQLite: a row of ' || \"table\" || ' refers to a row of ' ||"
                             " parent || ' that is not there' FROM pragma_foreign_key_check"),
           putBackABackup);
    for (const Rule& rule : rules)
        append(&found, texts(connection, rule.sql), rule.advice);
    append(&found, tracksWithoutRoles(connection), deleteIt);
    return found;
}

QList<StoreFinding> StoreCheck::settingsFindings(const QString& file) {
    const QString folder = QFileInfo(file).absolutePath();
    const QDir data(QDir::cleanPath(folder + QStringLiteral("/../..")));
    QFile settingsFile(data.filePath(QStringLiteral("settings.json")));
    const bool inDataFolder = data.filePath(QStringLiteral("data-rw/playlists")) == folder;
    QList<StoreFinding> found;
    if (!inDataFolder || !settingsFile.open(QIODevice::ReadOnly))
        return found;
    const QString name = settingsFile.fileName();
    const QJsonDocument document = QJsonDocument::fromJson(settingsFile.readAll());
    if (!document.isObject())
        return {{QStringLiteral("%1 holds no settings").arg(name),
                 QStringLiteral("The next start of the device puts it aside and uses none.")}};
    const QJsonObject object = document.object();
    for (const Setting& setting : settings) {
        const QString path = QString::fromLatin1(setting.path);
        if (object.contains(path) && object.value(path).type() != setting.type)
            found.append({QStringLiteral("%1: %2 has a value of the wrong kind").arg(name, path),
                          QStringLiteral("The device leaves it out; set it anew.")});
    }
    return found;
}

QString StoreCheck::summary(sqlite3* connection) {
    return texts(connection,
                 "SELECT (SELECT count(*) FROM playlists WHERE uid > 0) || ' playlists, ' ||"
                 " (SELECT count(*) FROM items) || ' tracks, ' ||"
                 " (SELECT count(*) FROM collections) || ' collections'")
        .value(0);
}
