#pragma once

#include <QString>

// One playlist as the store keeps it. A value; `uid` 0 is the play queue, -1 marks "no such
// playlist".
struct PlayListRecord {
    static constexpr int NoUid = -1;
    static constexpr int PlayQueueUid = 0;

    int uid = NoUid;
    QString name;
    bool shuffle = false;
    bool repeatAll = false;
    // Sequence number of the last played item, -1 when nothing has been played.
    int lastPlayedIndex = 0;
    // Number of entries.
    int size = 0;
};
