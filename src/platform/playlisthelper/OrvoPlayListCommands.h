#pragma once

#include <QVariantList>

#include "OrvoPlayListEnums.h"
#include "OrvoPlayListItem.h"

// One record per command. An id or target position that is missing or is no number reads -1, which
// every command refuses; a missing or unreadable mode reads as a number above every mode.

class OrvoPlayListPlId : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
};

class OrvoPlayListPlCreate : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, name, Name, "name")
};

class OrvoPlayListPlSetName : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE(QString, name, Name, "name")
};

class OrvoPlayListPlSetShuffle : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE(OrvoPlayListPlShuffleMode::Enum, mode, Mode, "mode")
};

class OrvoPlayListPlSetRepeat : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE(OrvoPlayListPlRepeatMode::Enum, mode, Mode, "mode")
};

class OrvoPlayListPlRemoveItems : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE(QList<int>, items, Items, "items")
};

class OrvoPlayListPlMoveItems : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ID_ATTRIBUTE(to, To, "to")
    ORVO_ATTRIBUTE(QList<int>, items, Items, "items")
};

// Items by path: each element of `items` is the path of something that its module can prepare. No
// items: the whole playlist `fromPlid`.
class OrvoPlayListPlAddItems : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ID_ATTRIBUTE(fromPlid, FromPlid, "fromPlid")
    ORVO_ATTRIBUTE(QVariantList, items, Items, "items")
    ORVO_ATTRIBUTE(OrvoPlayListAddPosition::Enum, mode, Mode, "mode")
};

// Complete items.
class OrvoPlayListPlAddExternalItems : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_LIST_ATTRIBUTE(OrvoPlayListItem, items, Items, "items")
    ORVO_ATTRIBUTE(OrvoPlayListAddPosition::Enum, mode, Mode, "mode")
};

class OrvoPlayListClCreate : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, name, Name, "name")
};

class OrvoPlayListClId : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(clid, Clid, "clid")
};

class OrvoPlayListClAddRemoveItem : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ID_ATTRIBUTE(clid, Clid, "clid")
};
