#pragma once

#include "../../PlayListBase.h"
#include "../BaseNode.h"

// What the nodes that list tracks share: the requested range is read from the playlist and nothing
// else.
class TrackListNode : public BaseNode {
    Q_OBJECT
public:
    using BaseNode::BaseNode;

    // Rows with more letters than this are refused as AnswerTooLarge, before the next is read.
    static constexpr qint64 MaxLetters = 64 * 1024 * 1024;

protected:
    // A playlist that is gone lists as empty.
    void sendTracks(PlayListBase* pl, const TrString& title, const CMGetRowsRequest& request);
    // `total` rows out of `pl`: `visitRows` visits the requested ones, in the order of the rows.
    using VisitRows = std::function<void(const PlayListBase::VisitRoles& visit)>;
    void sendTracks(PlayListBase* pl, int total, const VisitRows& visitRows, const TrString& title,
                    const CMGetRowsRequest& request);
};
