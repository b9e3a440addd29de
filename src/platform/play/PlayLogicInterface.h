#pragma once

#include "CMReply.h"
#include "OrvoPlayRecords.h"
#include "orvo_api_play_export.h"

// The player, as modules see it: whatever player module is loaded. Without one every request is answered and logged
// as an error. The one instance belongs to the platform; worker's thread only.
class ORVO_API_PLAY_EXPORT PlayLogicInterface {
public:
    static PlayLogicInterface* playerInstance();

    // Plays `container` from `index` on, `track` being the roles of that track: the container's play logic gets a play
    // request of type 1. `startPosition` in milliseconds; with `paused` playback waits at it.
    CMReply<QVariant> playContainer(const OrvoRoles& container, const OrvoRoles& track, int index, int startPosition,
                                    bool paused);
    CMReply<QVariant> stop(int reason);

private:
    PlayLogicInterface() = default;
    static CMReply<QVariant> send(const CMPath& path, const QVariant& args);
};

// The player's commands that modules use.
ORVO_API_PLAY_EXPORT CMPath OrvoPlayerPlayContainerPath();
ORVO_API_PLAY_EXPORT CMPath OrvoPlayerStopPath();
