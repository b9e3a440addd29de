#pragma once

#include "CMPath.h"
#include "OrvoHash.h"
#include "OrvoValue.h"
#include "TrString.h"

template <>
struct OrvoAttribute<TrString> {
    static TrString read(const QVariant& value) { return TrString::fromVariant(value); }
    static QVariant write(const TrString& value) { return value.toVariant(); }
};

template <>
struct OrvoAttribute<CMPath> {
    static CMPath read(const QVariant& value) { return CMPath::fromQVariant(value); }
    static QVariant write(const CMPath& value) { return value.toQVariant(); }
};

// What a row, item, container or track is. The numbers are exchanged with user interfaces and
// stored with items: fixed.
struct OrvoRolesType {
    enum Enum : int {
        None = 0,
        Container = 1, // opens
        Audio = 3,     // plays
        Editable = 101,
        Action = 102,
        Header = 103,
        Separator = 105
    };
};

struct OrvoRolesContainerType {
    enum Enum : int { None = 0, ContextMenu = 100 };
};

// What is known about a medium beside its title. Durations in milliseconds.
class OrvoMetaData : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, artist, Artist, "artist")
    ORVO_ATTRIBUTE(QString, album, Album, "album")
    ORVO_ATTRIBUTE(QString, genre, Genre, "genre")
    ORVO_ATTRIBUTE(QString, artworkUrl, ArtworkUrl, "artworkUrl")
    ORVO_ATTRIBUTE(QString, serviceId, ServiceId, "serviceId")
    ORVO_ATTRIBUTE(int, trackNumber, TrackNumber, "trackNumber")
    ORVO_ATTRIBUTE(qint64, duration, Duration, "duration")
    // The play logic that plays this medium or container.
    ORVO_ATTRIBUTE(CMPath, playLogicPath, PlayLogicPath, "playLogicPath")
    // What a service wants to be asked before each playback.
    ORVO_ATTRIBUTE(CMPath, prePlayPath, PrePlayPath, "prePlayPath")
    ORVO_ATTRIBUTE(bool, allowSeekTime, AllowSeekTime, "allowSeekTime")
    ORVO_ATTRIBUTE(bool, allowSeekBytes, AllowSeekBytes, "allowSeekBytes")
};

// One place a medium can be read from.
class OrvoResource : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, uri, Uri, "uri")
    ORVO_ATTRIBUTE(QString, mimeType, MimeType, "mimeType")
};

class OrvoMediaData : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(OrvoMetaData, metaData, MetaData, "metaData")
    ORVO_LIST_ATTRIBUTE(OrvoResource, resources, Resources, "resources")
};

// The role map of one row, item, container or track.
class OrvoRoles : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(TrString, title, Title, "title")
    ORVO_ATTRIBUTE(CMPath, path, Path, "path")
    ORVO_ATTRIBUTE(int, type, Type, "type")
    ORVO_ATTRIBUTE(int, containerType, ContainerType, "containerType")
    ORVO_ATTRIBUTE(bool, containerPlayable, ContainerPlayable, "containerPlayable")
    ORVO_ATTRIBUTE(OrvoValue, value, Value, "value")
    ORVO_ATTRIBUTE(bool, modifiable, Modifiable, "modifiable")
    ORVO_ATTRIBUTE(QString, id, Id, "id")
    ORVO_ATTRIBUTE(OrvoMediaData, mediaData, MediaData, "mediaData")
    // Where the row's menu opens.
    ORVO_ATTRIBUTE_AS(OrvoRoles, OrvoAttribute<OrvoRoles>, context, Context, "context")
    ORVO_ATTRIBUTE(int, rowsCount, RowsCount, "rowsCount")

    // The role names a reader gets that asks for none in particular.
    ORVO_API_EXPORT static const QStringList& defaultNames();
};

// The answer to a get-rows request: the container's own roles, its rows (each a list with one value
// per requested role) and the total number of rows, of which `rows` may be a part.
class OrvoRowsRoles : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(OrvoRoles, roles, Roles, "roles")
    ORVO_ATTRIBUTE(QVariantList, rows, Rows, "rows")
    ORVO_ATTRIBUTE(int, rowsCount, RowsCount, "rowsCount")
    // Only of a list that has such: which state of it this is, the row that was played last, and
    // the one to go on with.
    ORVO_ATTRIBUTE(qint64, revision, Revision, "revision")
    ORVO_ID_ATTRIBUTE(lastPlayedIndex, LastPlayedIndex, "lastPlayedIndex")
    ORVO_ID_ATTRIBUTE(resumeIndex, ResumeIndex, "resumeIndex")
};

struct OrvoEventRowsType {
    enum Enum : int { None = 0, Close = 1 };
};

// What a user interface should do after a command.
class OrvoEvent : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(int, rowsType, RowsType, "rowsType")
    ORVO_ATTRIBUTE(CMPath, path, Path, "path")
};

// The result of a command.
class OrvoActionReply : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(QString, xclass, Xclass, "xclass")
    ORVO_ATTRIBUTE(OrvoRoles, result, Result, "result")
    ORVO_LIST_ATTRIBUTE(OrvoEvent, events, Events, "events")
};

// What the power manager is heading for. Its numbering is its own; the step from Target 1 to 2 is
// the quiet moment.
class OrvoPowerManagerTarget : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(int, target, Target, "target")
};

namespace CMGlobal {
// One value per requested role name, in the order of the names; an absent role is a null value.
ORVO_API_EXPORT QVariantList itemRolesToList(const QStringList& names, const OrvoRoles& roles);
} // namespace CMGlobal
