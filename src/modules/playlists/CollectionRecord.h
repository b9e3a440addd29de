#pragma once

#include <QList>
#include <QString>

// One collection as the store keeps it. A value; `uid` -1 marks "no such collection".
struct CollectionRecord {
    static constexpr int NoUid = -1;

    int uid = NoUid;
    QString name;
    // Uids of the member playlists.
    QList<int> playlists;
};
