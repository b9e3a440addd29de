#include "OrvoPlayListEnums.h"

ORVO_ENUM_TABLE(OrvoPlayListAddPosition, {OrvoPlayListAddPosition::Now, "now"},
                {OrvoPlayListAddPosition::AfterCurrent, "afterCurrent"},
                {OrvoPlayListAddPosition::Append, "append"})

ORVO_ENUM_TABLE(OrvoPlayListPlShuffleMode, {OrvoPlayListPlShuffleMode::Off, "shuffleOff"},
                {OrvoPlayListPlShuffleMode::On, "shuffleOn"})

// 3 has no name of its own: it travels as its decimal text.
ORVO_ENUM_TABLE(OrvoPlayListPlRepeatMode, {OrvoPlayListPlRepeatMode::Off, "repeatOff"},
                {OrvoPlayListPlRepeatMode::One, "repeatOne"},
                {OrvoPlayListPlRepeatMode::All, "repeatAll"})

ORVO_ENUM_TABLE(OrvoPlayerPlayMode, {OrvoPlayerPlayMode::Normal, "normal"},
                {OrvoPlayerPlayMode::Shuffle, "shuffle"},
                {OrvoPlayerPlayMode::RepeatOne, "repeatOne"},
                {OrvoPlayerPlayMode::ShuffleRepeatOne, "shuffleRepeatOne"},
                {OrvoPlayerPlayMode::RepeatAll, "repeatAll"},
                {OrvoPlayerPlayMode::ShuffleRepeatAll, "shuffleRepeatAll"})
