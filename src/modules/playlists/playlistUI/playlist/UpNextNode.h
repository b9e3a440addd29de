#pragma once

#include "../../UpNext.h"
#include "CMSubscribe.h"
#include "TrackListNode.h"

class PlayListPlayLogic;

// The tracks that will be heard after the playing one, in that order. Sends its views one reset in
// each turn of the event loop in which that changes.
class UpNextNode : public TrackListNode {
    Q_OBJECT
public:
    UpNextNode(const CMPath& path, PlayListManager* manager, const PlayListPlayLogic* playLogic,
               CMSubscribe* subscribe);

    bool getRowsRequest(const CMGetRowsRequest& request) override;

private Q_SLOTS:
    void on_upNext_changed();
    void sendReset();

private:
    const PlayListPlayLogic* m_playLogic;
    CMSubscribe* m_subscribe;
    UpNext m_told;
    bool m_resetIsDue = false;
};
