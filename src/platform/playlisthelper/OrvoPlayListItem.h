#pragma once

#include "OrvoHash.h"

// One entry of a playlist. `sequenceNumber` (its position, from 0) and `uid` come from the store
// and are ignored when items are added. Durations in whole seconds. `orvoRoles` is the track's full
// role map as JSON text: what the player and the user interfaces get.
class OrvoPlayListItem : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(sequenceNumber, SequenceNumber, "sequenceNumber")
    ORVO_ID_ATTRIBUTE(uid, Uid, "uid")
    ORVO_ATTRIBUTE(QString, title, Title, "title")
    ORVO_ATTRIBUTE(QString, artist, Artist, "artist")
    ORVO_ATTRIBUTE(QString, album, Album, "album")
    ORVO_ATTRIBUTE(QString, artworkUrl, ArtworkUrl, "artworkUrl")
    ORVO_ATTRIBUTE(QString, genre, Genre, "genre")
    ORVO_ATTRIBUTE(int, durationSeconds, DurationSeconds, "durationSeconds")
    ORVO_ATTRIBUTE(QString, url, Url, "url")
    ORVO_ATTRIBUTE(QString, serviceId, ServiceId, "serviceId")
    ORVO_ATTRIBUTE(QString, orvoRoles, OrvoRoles, "orvoRoles")
};

// A list holds the items themselves and no pointer to each.
Q_DECLARE_TYPEINFO(OrvoPlayListItem, Q_MOVABLE_TYPE);
