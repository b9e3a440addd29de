#pragma once

#include "OrvoEnum.h"
#include "playListHelper_export.h"

// Where added items go: now (after the last played one, and started), after the last played one, at
// the end.
ORVO_ENUM(OrvoPlayListAddPosition, PLAYLISTHELPER_EXPORT, Now = 0, AfterCurrent = 1, Append = 2)

ORVO_ENUM(OrvoPlayListPlShuffleMode, PLAYLISTHELPER_EXPORT, Off = 0, On = 1)

// A playlist keeps repeat-all only; the other modes are the player's.
ORVO_ENUM(OrvoPlayListPlRepeatMode, PLAYLISTHELPER_EXPORT, Off = 0, One = 1, All = 2, Track = 3)

// Odd: shuffled. 0, 1: no repeat; 2, 3: repeat one; 4, 5: repeat all.
ORVO_ENUM(OrvoPlayerPlayMode, PLAYLISTHELPER_EXPORT, Normal = 0, Shuffle = 1, RepeatOne = 2,
          ShuffleRepeatOne = 3, RepeatAll = 4, ShuffleRepeatAll = 5)
