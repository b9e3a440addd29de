#pragma once

#include "CMWorker.h"
#include "OrvoPlayListItem.h"

// A source of tracks that are no files, under the prefix "x": every path that it is asked for is a
// track.
class TrackSource : public CMNodesWorker {
    Q_OBJECT
public:
    TrackSource() : CMNodesWorker({}, QStringLiteral("X")) {}

    void setDataRequest(const CMSetDataRequest& request) override;

    // Named after the last part of its path; by Artist, from Album, 1:01 long.
    static OrvoPlayListItem item(const QString& path);

    QList<int> requestSizes; // how many tracks each request asked for
};
