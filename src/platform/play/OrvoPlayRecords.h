#pragma once

#include "CMError.h"
#include "OrvoPlayEnums.h"
#include "OrvoPlayListEnums.h"
#include "OrvoRoles.h"

// The records that pass between a play logic, the player and those who watch them.

// Which play modes a play logic offers.
class OrvoPlayLogicPlayModesSupported : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(bool, shuffle, Shuffle, "shuffle")
    ORVO_ATTRIBUTE(bool, shuffleRepeatAll, ShuffleRepeatAll, "shuffleRepeatAll")
    ORVO_ATTRIBUTE(bool, shuffleRepeatOne, ShuffleRepeatOne, "shuffleRepeatOne")
    ORVO_ATTRIBUTE(bool, repeatOne, RepeatOne, "repeatOne")
    ORVO_ATTRIBUTE(bool, repeatAll, RepeatAll, "repeatAll")
};

// Which controls are live for what plays.
class OrvoPlayLogicControls : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(bool, pause, Pause, "pause")
    ORVO_ATTRIBUTE(bool, next, Next, "next")
    ORVO_ATTRIBUTE(bool, previous, Previous, "previous")
    ORVO_ATTRIBUTE(bool, seekTime, SeekTime, "seekTime")
    ORVO_ATTRIBUTE(bool, seekBytes, SeekBytes, "seekBytes")
    ORVO_ATTRIBUTE(OrvoPlayLogicPlayModesSupported, playMode, PlayMode, "playMode")
};

// What a play logic publishes about what plays.
class OrvoPlayLogicData : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(OrvoRoles, trackRoles, TrackRoles, "trackRoles")
    ORVO_ATTRIBUTE(OrvoRoles, mediaRoles, MediaRoles, "mediaRoles")
    ORVO_ATTRIBUTE(OrvoPlayLogicControls, controls, Controls, "controls")
    // Set while something is wrong, removed when the next item has started.
    ORVO_ATTRIBUTE(OrvoError, error, Error, "error")
    ORVO_ATTRIBUTE(OrvoError, streamerError, StreamerError, "streamerError")
};

// A request at a play-logic path: its kind, beside the arguments of that kind in the same hash.
class OrvoPlayLogicRequest : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(OrvoPlayLogicRequestKind::Enum, kind, Kind, "request")
};

// A play request. Its first track starts at `startPosition` (milliseconds) and, with `paused`,
// waits there.
class OrvoPlayLogicPlayArgs : public OrvoPlayLogicRequest {
public:
    using OrvoPlayLogicRequest::OrvoPlayLogicRequest;
    // The type that plays the container in `mediaRoles` from `index` on, `trackRoles` being the
    // first track. A number that callers send.
    static constexpr int ContainerType = 1;
    ORVO_ATTRIBUTE(OrvoRoles, mediaRoles, MediaRoles, "mediaRoles")
    ORVO_ATTRIBUTE(OrvoRoles, trackRoles, TrackRoles, "trackRoles")
    ORVO_ATTRIBUTE(int, index, Index, "index")
    ORVO_ATTRIBUTE(int, type, Type, "type")
    ORVO_ATTRIBUTE(int, startPosition, StartPosition, "startPosition")
    ORVO_ATTRIBUTE(bool, paused, Paused, "paused")
};

// A change-play-mode request, and the argument of the player's own play-mode command.
class OrvoPlayLogicChangePlayModeArgs : public OrvoPlayLogicRequest {
public:
    using OrvoPlayLogicRequest::OrvoPlayLogicRequest;
    ORVO_ATTRIBUTE(OrvoPlayerPlayMode::Enum, playMode, PlayMode, "playMode")
};

// A stop request, and the argument of the player's own stop command.
class OrvoPlayLogicStopArgs : public OrvoPlayLogicRequest {
public:
    using OrvoPlayLogicRequest::OrvoPlayLogicRequest;
    ORVO_ATTRIBUTE(int, reason, Reason, "reason")
};

// Where to go on in what plays, in milliseconds.
class OrvoPlayerSeekTimeArgs : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(time, Time, "time")
};

// Where playback was stopped last: in the track `trackPath` of the container `mediaPath`, after
// `position` milliseconds. Empty when there is no such place.
class OrvoPlayerResumePoint : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ATTRIBUTE(CMPath, mediaPath, MediaPath, "mediaPath")
    ORVO_ATTRIBUTE(CMPath, trackPath, TrackPath, "trackPath")
    ORVO_ATTRIBUTE(qint64, position, Position, "position")
};

// Milliseconds, 0 for off, or the text endOfTrack.
class OrvoPlayerSleepTimerArgs : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(time, Time, "time")

    static QString EndOfTrack() { return QStringLiteral("endOfTrack"); }
    bool isAtEndOfTrack() const { return attribute(Time()).toString() == EndOfTrack(); }
};

// 0 (silent) to 100 (as recorded).
class OrvoPlayerVolumeArgs : public OrvoHash {
public:
    using OrvoHash::OrvoHash;
    ORVO_ID_ATTRIBUTE(volume, Volume, "volume")
};
