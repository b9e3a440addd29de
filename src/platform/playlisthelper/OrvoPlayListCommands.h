#pragma once

#include <algorithm>

#include <QVariantList>

#include "OrvoPlayListEnums.h"
#include "OrvoPlayListItem.h"

// One record per command. An id or target position that is missing or is no number reads -1, which
// every command refuses; a missing or unreadable mode reads as a number above every mode.

// A revision that is no whole number from 0 on reads as none that a list ever has.
struct OrvoRevision {
    static constexpr qint64 Malformed = -1;
    static qint64 read(const QVariant& value) {
        return std::max(OrvoHash::toInt64(value, Malformed), Malformed);
    }
    static QVariant write(qint64 value) { return value; }
};

// A playlist, and the state of it that the command was made for, where its sender says so.
class OrvoPlayListPlId : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(plid, Plid, "plid")
    ORVO_ATTRIBUTE_AS(qint64, OrvoRevision, revision, Revision, "revision")
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

class OrvoPlayListPlRemoveItems : public OrvoPlayListPlId {
public:
    using OrvoPlayListPlId::OrvoPlayListPlId;
    ORVO_ATTRIBUTE(QList<int>, items, Items, "items")
};

class OrvoPlayListPlMoveItems : public OrvoPlayListPlId {
public:
    using OrvoPlayListPlId::OrvoPlayListPlId;
    ORVO_ID_ATTRIBUTE(to, To, "to")
    ORVO_ATTRIBUTE(QList<int>, items, Items, "items")
};

// Every present position once, in the new order.
class OrvoPlayListPlSetOrder : public OrvoPlayListPlId {
public:
    using OrvoPlayListPlId::OrvoPlayListPlId;
    ORVO_ATTRIBUTE(QList<int>, order, Order, "order")
};

// Where added items are to stand, as the add commands take it: one position, from which on they
// follow each other, or a list with one for each. Kept as it came.
struct OrvoPlayListAt {
    static QVariant read(const QVariant& value) { return value; }
    static QVariant write(const QVariant& value) { return value; }
};

// Items by path: each element of `items` is the path of something that its module can prepare. No
// items: the whole playlist `fromPlid`.
class OrvoPlayListPlAddItems : public OrvoPlayListPlId {
public:
    using OrvoPlayListPlId::OrvoPlayListPlId;
    ORVO_ID_ATTRIBUTE(fromPlid, FromPlid, "fromPlid")
    ORVO_ATTRIBUTE(QVariantList, items, Items, "items")
    ORVO_ATTRIBUTE(OrvoPlayListAddPosition::Enum, mode, Mode, "mode")
    ORVO_ATTRIBUTE_AS(QVariant, OrvoPlayListAt, at, At, "at")
};

// Complete items.
class OrvoPlayListPlAddExternalItems : public OrvoPlayListPlId {
public:
    using OrvoPlayListPlId::OrvoPlayListPlId;
    ORVO_LIST_ATTRIBUTE(OrvoPlayListItem, items, Items, "items")
    ORVO_ATTRIBUTE(OrvoPlayListAddPosition::Enum, mode, Mode, "mode")
    ORVO_ATTRIBUTE_AS(QVariant, OrvoPlayListAt, at, At, "at")
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
