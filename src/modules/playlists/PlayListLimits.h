#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

// How large texts may be that are to be stored, in bytes of UTF-8. They hold for every caller:
// another module can ask for as much as a stranger's request. What a store has already stays.
struct PlayListLimits {
    // All texts of an item together.
    qint64 maxItemBytes = 256 * 1024;
    // All items of one addition, or of one answer to a prepare call.
    qint64 maxAdditionBytes = 64 * 1024 * 1024;
    // The name of a playlist or a collection.
    qint64 maxNameBytes = 4 * 1024;

    // With the keys "playlists/max…" of the configuration. A value that is no number above zero
    // leaves the default.
    static PlayListLimits from(const QHash<QString, QVariant>& config);
};
