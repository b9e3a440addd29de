#include <sqlite3.h>

#include <QStringList>

#include "Database.h"
#include "ModuleLog.h"
#include "Sqlite3Statement.h"

QList<CollectionRecord> Database::getCollections() {
    CM_ENTER(moduleLog());
    QList<CollectionRecord> collections;
    StatementScope query(statement(StatementId::GetCollections));
    while (query->step_row()) {
        CollectionRecord cl;
        cl.uid = query->columnInt(0);
        cl.name = query->columnText(1);
        cl.playlists = commaSeparateNumberToList(query->columnText(2));
        collections.append(cl);
    }
    if (!query.reset())
        LOG4CPLUS_ERROR(moduleLog(), "Unable to fetch collections");
    return collections;
}

CollectionRecord Database::createCollection(const QString& name) {
    CM_ENTER_ARGS(moduleLog(), "name=" << loggedText(name));
    CollectionRecord cl;
    if (!statement(StatementId::CreateCollection).run(name)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to create collection in database");
        return cl;
    }
    cl.uid = int(sqlite3_last_insert_rowid(m_connection));
    cl.name = name;
    LOG4CPLUS_TRACE(moduleLog(),
                    "Inserted collection uid=" << cl.uid << " name=" << loggedText(cl.name));
    return cl;
}

bool Database::deleteCollection(const CollectionRecord& cl) {
    CM_ENTER_ARGS(moduleLog(), "uid=" << cl.uid);
    if (!statement(StatementId::DeleteCollection).run(cl.uid)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Unable to delete collection uid=" << cl.uid << " in database");
        return false;
    }
    if (sqlite3_changes(m_connection) == 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to delete collection uid="
                                         << cl.uid << " in database: no such collection in DB");
        return false;
    }
    return true;
}

bool Database::addToCollection(const CollectionRecord& cl, const int& playlistUid) {
    CM_ENTER_ARGS(moduleLog(), "col=" << cl.uid << " pl=" << playlistUid);
    if (!statement(StatementId::AddToCollection).run(cl.uid, playlistUid)) {
        LOG4CPLUS_ERROR(moduleLog(),
                        "Unable to add pl=" << playlistUid << " to collection=" << cl.uid);
        return false;
    }
    LOG4CPLUS_TRACE(moduleLog(), "Pl=" << playlistUid << " added to collection=" << cl.uid);
    return true;
}

bool Database::removeFromCollection(const CollectionRecord& cl, const int& playlistUid) {
    CM_ENTER_ARGS(moduleLog(), "col=" << cl.uid << " pl=" << playlistUid);
    if (!statement(StatementId::RemoveFromCollection).run(cl.uid, playlistUid)) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove pl=" << playlistUid << " from collection="
                                                            << cl.uid << " in database");
        return false;
    }
    if (sqlite3_changes(m_connection) == 0) {
        LOG4CPLUS_ERROR(moduleLog(), "Unable to remove pl="
                                         << playlistUid << " From collection=" << cl.uid
                                         << " in database: no such playlist in collection in DB");
        return false;
    }
    return true;
}

QList<int> commaSeparateNumberToList(const QString& text) {
    QList<int> numbers;
    const QStringList pieces = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& piece : pieces) {
        bool ok = false;
        const int number = piece.toInt(&ok, 10);
        if (ok)
            numbers.append(number);
        else
            LOG4CPLUS_ERROR(moduleLog(), "Error parsing collections");
    }
    return numbers;
}
