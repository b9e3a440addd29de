#pragma once

#include <QList>

#include "CMPath.h"
#include "orvo_api_play_export.h"
#include "OrvoPlayListPaths.h"

// The fixed paths of whatever player module is loaded: commands (set-data), then values. None is
// the start of another one.
#define ORVO_PLAYER_PATHS(X)                                                                       \
    X(OrvoPlayerPlayContainerPath, "player:playContainer")                                         \
    X(OrvoPlayerPausePath, "player:pause")                                                         \
    X(OrvoPlayerResumePath, "player:resume")                                                       \
    X(OrvoPlayerStopPath, "player:stop")                                                           \
    X(OrvoPlayerSeekTimePath, "player:seekTime")                                                   \
    X(OrvoPlayerNextPath, "player:next")                                                           \
    X(OrvoPlayerPreviousPath, "player:previous")                                                   \
    X(OrvoPlayerSetPlayModePath, "player:setPlayMode")                                             \
    X(OrvoPlayerSetVolumePath, "player:setVolume")                                                 \
    X(OrvoPlayerStatePath, "player:state")                                                         \
    X(OrvoPlayerDataPath, "player:data")                                                           \
    X(OrvoPlayerNextMediaPath, "player:nextMedia")                                                 \
    X(OrvoPlayerPlayModePath, "player:playMode")                                                   \
    X(OrvoPlayerPositionPath, "player:position")                                                   \
    X(OrvoPlayerDurationPath, "player:duration")                                                   \
    X(OrvoPlayerVolumePath, "player:volume")                                                       \
    X(OrvoPlayerResumePointPath, "player:resumePoint")                                             \
    X(OrvoPlayerSleepTimerPath, "player:sleepTimer")

#define ORVO_DECLARE_PATH(function, path) ORVO_API_PLAY_EXPORT CMPath function();
ORVO_PLAYER_PATHS(ORVO_DECLARE_PATH)
#undef ORVO_DECLARE_PATH

// Every function above with its path text.
ORVO_API_PLAY_EXPORT const QList<OrvoPathRow>& orvoPlayerPaths();
