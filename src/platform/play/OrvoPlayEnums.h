#pragma once

#include "orvo_api_play_export.h"
#include "OrvoEnum.h"

// What a request at a play-logic path wants.
ORVO_ENUM(OrvoPlayLogicRequestKind, ORVO_API_PLAY_EXPORT, Play = 0, Stop = 1, Next = 2,
          Previous = 3, ChangePlayMode = 4)

// What the player does. Opening: the next thing to hear is on its way.
ORVO_ENUM(OrvoPlayerState, ORVO_API_PLAY_EXPORT, Stopped = 0, Opening = 1, Playing = 2, Paused = 3)

// Why the player stopped.
ORVO_ENUM(OrvoPlayerStopReason, ORVO_API_PLAY_EXPORT, Requested = 0, TakenOver = 1)
