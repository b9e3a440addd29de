#include "OrvoPlayEnums.h"

ORVO_ENUM_TABLE(OrvoPlayLogicRequestKind, {OrvoPlayLogicRequestKind::Play, "play"},
                {OrvoPlayLogicRequestKind::Stop, "stop"}, {OrvoPlayLogicRequestKind::Next, "next"},
                {OrvoPlayLogicRequestKind::Previous, "previous"},
                {OrvoPlayLogicRequestKind::ChangePlayMode, "changePlayMode"})

ORVO_ENUM_TABLE(OrvoPlayerState, {OrvoPlayerState::Stopped, "stopped"},
                {OrvoPlayerState::Opening, "opening"}, {OrvoPlayerState::Playing, "playing"},
                {OrvoPlayerState::Paused, "paused"})

ORVO_ENUM_TABLE(OrvoPlayerStopReason, {OrvoPlayerStopReason::Requested, "requested"},
                {OrvoPlayerStopReason::TakenOver, "takenOver"})
