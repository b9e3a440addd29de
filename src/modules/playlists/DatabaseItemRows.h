#pragma once

#include <limits>

#include "DatabaseTransaction.h"
#include "ModuleLog.h"
#include "Sqlite3Statement.h"

// What reading items and changing them have in common.

constexpr int LastPossibleNumber = std::numeric_limits<int>::max();

// The columns of an item row, as both item statements give them.
enum ItemColumn {
    SequenceNumberColumn,
    UidColumn,
    TitleColumn,
    ArtistColumn,
    AlbumColumn,
    ArtworkUrlColumn,
    GenreColumn,
    DurationSecondsColumn,
    UrlColumn,
    ServiceIdColumn,
    OrvoRolesColumn,
};

// Logs it and returns false.
bool reportUnreadItems();

// Calls visit(row) for each entry numbered `from` to `to`, ascending, until it returns false. The
// visitor must not change the playlist.
template <typename Visit>
bool Database::visitItems(int playlistUid, int from, int to, Visit visit) {
    const ConnectionLock lock(m_connection);
    StatementScope entries(statement(StatementId::GetItems));
    const bool bound =
        entries->bindInt(1, playlistUid) && entries->bindInt(2, from) && entries->bindInt(3, to);
    bool goOn = bound;
    while (goOn && entries->step_row())
        goOn = visit(entries.row());
    return (entries.reset() && bound) || reportUnreadItems();
}
