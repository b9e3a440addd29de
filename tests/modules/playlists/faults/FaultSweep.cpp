#include "FaultSweep.h"

#include <algorithm>
#include <sqlite3.h>

#include <QElapsedTimer>
#include <QFile>

#include "Database.h"
#include "FaultTable.h"

namespace {

// No operation comes near, on a store this small.
constexpr int MaxPoints = 2000;

// Another process lets go after so many tries.
constexpr int BusyTries = 25;

constexpr const char* ContentsQuery =
    "SELECT 'p' || uid || ' ' || name || ' ' || shuffle || repeatAll || ' ' || lastPlayedIndex"
    "  FROM playlists UNION ALL"
    " SELECT 'e' || playlist || ' ' || sequenceNumber || ' ' || title || ' ' || length(orvoRoles)"
    "  FROM playlists_items JOIN items ON item = uid UNION ALL"
    " SELECT 'i' || count(*) FROM items UNION ALL"
    " SELECT 'c' || uid || ' ' || name FROM collections UNION ALL"
    " SELECT 'm' || collection || ' ' || playlist FROM collections_playlists ORDER BY 1";

// What an interrupted statement says about itself, and what is not the module's.
QStringList ownErrors(const QStringList& errors) {
    QStringList own;
    for (const QString& line : errors) {
        if (!line.startsWith(QLatin1String("Unable to reset sql statement: ")))
            own.append(line);
    }
    return own;
}

bool fits(const Outcome& outcome, const QString& result) {
    return outcome.isPrefix ? outcome.result.startsWith(result) : outcome.result == result;
}

} // namespace

const QList<Fault>& FaultSweep::faults() {
    static const QList<Fault> rows = {
        {FileAction::Read, SQLITE_IOERR_READ, false, "a read fails"},
        {FileAction::Read, SQLITE_IOERR_READ, true, "reads fail"},
        {FileAction::Write, SQLITE_IOERR_WRITE, false, "a write fails"},
        {FileAction::Write, SQLITE_IOERR_WRITE, true, "writes fail"},
        {FileAction::Write, SQLITE_FULL, false, "full for a write"},
        {FileAction::Write, SQLITE_FULL, true, "full"},
        {FileAction::Sync, SQLITE_IOERR_FSYNC, false, "a sync fails"},
        {FileAction::Sync, SQLITE_IOERR_FSYNC, true, "syncs fail"},
        {FileAction::Truncate, SQLITE_IOERR_TRUNCATE, false, "a truncate fails"},
        {FileAction::Truncate, SQLITE_IOERR_TRUNCATE, true, "truncates fail"},
        {FileAction::Lock, SQLITE_BUSY, false, "busy for a lock"},
        {FileAction::Lock, SQLITE_BUSY, true, "busy", BusyTries},
        {FileAction::Lock, SQLITE_IOERR_LOCK, false, "a lock fails"},
        {FileAction::Lock, SQLITE_IOERR_LOCK, true, "locks fail"},
        {FileAction::Delete, SQLITE_IOERR_DELETE, false, "an unlink fails"},
        {FileAction::Delete, SQLITE_IOERR_DELETE, true, "unlinks fail"},
        {FileAction::Open, SQLITE_CANTOPEN, false, "an open fails"},
        {FileAction::Open, SQLITE_CANTOPEN, true, "opens fail"},
        {FileAction::Anything, SQLITE_IOERR, true, "everything fails"},
    };
    return rows;
}

QList<OrvoPlayListItem> FaultSweep::newItems(int count) {
    QList<OrvoPlayListItem> list = items(count, QStringLiteral("new"));
    for (OrvoPlayListItem& each : list)
        each.setOrvoRoles(QStringLiteral("{\"type\":3,\"title\":\"%1\",\"pad\":\"%2\"}")
                              .arg(each.title(), QString(1500, QLatin1Char('x'))));
    return list;
}

void FaultSweep::SetUp() {
    FaultVfs::install();
    QList<OrvoPlayListItem> tracks = newItems(8);
    for (int i = 0; i < tracks.size(); ++i)
        tracks[i].setTitle(QString(QLatin1Char(char('a' + i))));
    PlayListRecord pl = playListOf(tracks.mid(0, 6), QStringLiteral("Party"));
    pl.lastPlayedIndex = 3;
    ASSERT_TRUE(database().updatePlayList(pl));
    const PlayListRecord second = playListOf(tracks.mid(6), QStringLiteral("Quiet"));
    const CollectionRecord first = database().createCollection(QStringLiteral("Box"));
    database().createCollection(QStringLiteral("Shelf"));
    ASSERT_TRUE(database().addToCollection(first, second.uid));
    close();
    QFile file(QString::fromLatin1(File));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    m_image = file.readAll();
}

void FaultSweep::TearDown() {
    FaultVfs::clear();
    ModelFixture::TearDown();
}

void FaultSweep::restore(const Operation& operation) {
    disconnect();
    dropManager();
    close();
    QFile::remove(QString::fromLatin1(File) + QStringLiteral("-journal"));
    QFile file(QString::fromLatin1(File));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(m_image.size(), file.write(m_image));
    file.close();
    reopen(operation.itemsLimit);
    sqlite3* connection = StoreProbe::connection(database());
    // What a store has that no test hurries.
    sqlite3_exec(connection, "PRAGMA synchronous=FULL;", nullptr, nullptr, nullptr);
    sqlite3_busy_timeout(connection, 0);
    if (useModel)
        manager();
    if (*operation.prepare) {
        run(QString::fromLatin1(operation.prepare));
    }
    party = record(1);
    quiet = record(2);
    const QList<CollectionRecord> collections = database().getCollections();
    ASSERT_EQ(2, collections.size());
    box = collections[0];
    shelf = collections[1];
    onRestored();
    m_dirty = false;
}

QStringList FaultSweep::contents() {
    return query(QString::fromLatin1(ContentsQuery));
}

QStringList FaultSweep::inMemory() {
    QStringList lines;
    const auto note = [&lines](const PlayListBase* pl) {
        lines.append(QStringLiteral("p%1 %2 %3%4 %5 size %6")
                         .arg(pl->getUid())
                         .arg(pl->getName())
                         .arg(int(pl->getShuffle()))
                         .arg(int(pl->getRepeatAll()))
                         .arg(pl->getLastSequenceNumber())
                         .arg(pl->getSize()));
    };
    note(manager().getPlayQueue());
    const QList<PlayListBase*> playlists = manager().getAllPlayList();
    std::for_each(playlists.cbegin(), playlists.cend(), note);
    const QList<CollectionBase*> collections = manager().getAllCollection();
    for (const CollectionBase* cl : collections) {
        QStringList members;
        const QList<PlayListBase*> objects = cl->getPlayLists();
        for (const PlayListBase* pl : objects)
            members.append(QString::number(pl->getUid()));
        members.sort();
        lines.append(QStringLiteral("c%1 %2 %3")
                         .arg(cl->getUid())
                         .arg(cl->getName(), members.join(QLatin1Char(','))));
    }
    lines.sort();
    return lines;
}

QStringList FaultSweep::inFile() {
    QStringList lines = query(QStringLiteral(
        "SELECT 'p' || uid || ' ' || name || ' ' || shuffle || repeatAll || ' ' || lastPlayedIndex"
        "  || ' size ' || (SELECT count(*) FROM playlists_items WHERE playlist = uid)"
        "  FROM playlists UNION ALL"
        " SELECT 'c' || uid || ' ' || name || ' ' ||"
        "  coalesce((SELECT group_concat(playlist) FROM (SELECT playlist FROM collections_playlists"
        "   WHERE collection = uid ORDER BY playlist)), '') FROM collections"));
    lines.sort();
    return lines;
}

// Why the file or the connection is not as every operation must leave it; empty when it is.
QString FaultSweep::stateErrors(bool unusedItems) {
    QStringList errors;
    sqlite3* connection = StoreProbe::connection(database());
    if (!sqlite3_get_autocommit(connection))
        errors.append(QStringLiteral("a transaction left open"));
    if (!StoreProbe::foreignKeysOn(connection))
        errors.append(QStringLiteral("foreign keys left off"));
    for (const QString& text : StoreProbe::busyTexts(database()))
        errors.append(QStringLiteral("left active: ") + text);
    for (const QString& broken : brokenRules()) {
        if (!unusedItems || !broken.startsWith(QLatin1String("without exactly one entry")))
            errors.append(broken);
    }
    return errors.join(QStringLiteral("; "));
}

void FaultSweep::useAgain() {
    if (!useModel) {
        const CollectionRecord cl = database().createCollection(QStringLiteral("next"));
        EXPECT_NE(-1, cl.uid);
        EXPECT_TRUE(database().deleteCollection(cl));
        return;
    }
    QList<PlayListBase*> playlists = manager().getAllPlayList();
    playlists.append(manager().getPlayQueue());
    for (PlayListBase* pl : qAsConst(playlists)) {
        pl->getItems(0, 0);
        const int size = pl->getSize();
        if (size < 2)
            continue;
        EXPECT_TRUE(pl->moveItem(0, size - 1));
        EXPECT_TRUE(pl->moveItem(size - 1, 0));
    }
}

void FaultSweep::sweep(const Operation& operation) {
    SCOPED_TRACE(operation.name);
    m_partly.clear();
    for (const Outcome& outcome : operation.outcomes) {
        if (outcome.effect != Outcome::Effect::Partly)
            continue;
        restore(operation);
        run(QString::fromLatin1(outcome.partly));
        m_partly.insert(QString::fromLatin1(outcome.partly), contents());
    }
    restore(operation);
    m_before = contents();
    const QString result = operation.run();
    ASSERT_TRUE(fits(operation.outcomes.constFirst(), result)) << qPrintable(result);
    m_done = contents();
    ASSERT_EQ(operation.outcomes.constFirst().effect == Outcome::Effect::Done, m_before != m_done);
    m_dirty = true;

    FaultRow row;
    row.operation = QString::fromLatin1(operation.name);
    m_row = &row;
    for (const Fault& fault : faults()) {
        int nth = 1;
        while (nth < MaxPoints && !HasFatalFailure() && visit(operation, fault, nth))
            ++nth;
        EXPECT_LT(nth, MaxPoints);
    }
    m_row = nullptr;
    EXPECT_EQ(row.points, row.asStated);
    addFaultRow(row);
}

// True when there was such a point.
bool FaultSweep::visit(const Operation& operation, const Fault& fault, int nth) {
    if (m_dirty)
        restore(operation);
    // Nothing is in memory that could be read from the file.
    sqlite3_db_release_memory(StoreProbe::connection(database()));
    QString result;
    QStringList errors;
    QElapsedTimer timer;
    timer.start();
    FaultVfs::set(fault, nth);
    {
        const LogCapture log(QStringLiteral("PlayLists"), log4cplus::ERROR_LOG_LEVEL);
        result = operation.run();
        errors = ownErrors(log.errors());
    }
    FaultVfs::clear();
    const bool reached = FaultVfs::failures() > 0;
    // No hang: not even a wait.
    EXPECT_LT(timer.elapsed(), 2000);

    const QStringList after = contents();
    const Outcome* found = nullptr;
    for (const Outcome& outcome : operation.outcomes) {
        const QStringList& expected = outcome.effect == Outcome::Effect::None ? m_before
                                      : outcome.effect == Outcome::Effect::Done
                                          ? m_done
                                          : m_partly[QString::fromLatin1(outcome.partly)];
        if (fits(outcome, result) && (operation.anyErrors || outcome.errors == errors) &&
            after == expected) {
            found = &outcome;
            break;
        }
    }
    if (!reached && found != &operation.outcomes.constFirst())
        found = nullptr;
    m_dirty = after != m_before;
    const bool unusedItems = found && found->effect == Outcome::Effect::Partly;
    QString wrong = stateErrors(unusedItems);
    if (!found)
        wrong += QStringLiteral(" no stated outcome: ") + result + QStringLiteral(" [") +
                 errors.join(QStringLiteral(" | ")) + QStringLiteral("] ") +
                 (after == m_before ? QStringLiteral("unchanged")
                  : after == m_done ? QStringLiteral("done")
                                    : after.join(QStringLiteral(", ")));
    if (useModel && !operation.mayTrail && inMemory() != inFile())
        wrong += QStringLiteral(" memory: ") + inMemory().join(QStringLiteral(", ")) +
                 QStringLiteral(" file: ") + inFile().join(QStringLiteral(", "));
    {
        SCOPED_TRACE(std::string(fault.name) + ", point " + std::to_string(nth));
        useAgain();
        if (useModel) {
            const QStringList here = inMemory();
            const QStringList there = inFile();
            if (here != there)
                wrong += QStringLiteral(" memory later: ") + here.join(QStringLiteral(", ")) +
                         QStringLiteral(" file: ") + there.join(QStringLiteral(", "));
        }
        if (!wrong.isEmpty()) {
            ADD_FAILURE() << qPrintable(wrong);
            m_dirty = true;
        }
    }
    if (contents() != m_before)
        m_dirty = true;
    if (!reached)
        return false;
    ++m_row->points;
    if (found && found->wronglyAcknowledged && !useModel)
        noteLostCommit(QString::fromLatin1(fault.name));
    if (wrong.isEmpty() && found) {
        ++m_row->asStated;
        ++(found->wronglyAcknowledged                  ? m_row->wrong
           : found->effect == Outcome::Effect::Done    ? m_row->done
           : found->effect == Outcome::Effect::Partly  ? m_row->partly
           : found == &operation.outcomes.constFirst() ? m_row->done
                                                       : m_row->refused);
    }
    return true;
}
