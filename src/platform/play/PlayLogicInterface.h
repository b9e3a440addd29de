#pragma once

#include <QPointer>

#include "CMReply.h"
#include "orvo_api_play_export.h"
#include "OrvoPlayerPaths.h"
#include "OrvoPlayRecords.h"

class StreamerPlayLogic;

// What a play logic tells the player. The reply is completed when the player has carried it out.
struct PlayLogicCommand {
    enum class Kind {
        Play,         // play `roles` now, whatever plays or was announced
        SetNextMedia, // `roles` follow what plays, without a gap; replaces an earlier announcement
        NoNextMedia,  // nothing follows what plays
        PlaybackEnded,
        Stop
    };
    Kind kind;
    QPointer<StreamerPlayLogic> from;
    OrvoRoles roles;
    QHash<QString, QVariant> params;
    CMReply<QVariant> reply;
    // A play command that a request to play, for the next or for the previous item led to. Any
    // other one follows from an edit, a failure or an end, and keeps a pause.
    bool requested = false;
};

// What a player module derives from to receive the commands of play logics. A command may be
// carried out later, but in the order given, and it never calls back into the play logic before it
// returns.
class PlayerCommands {
public:
    virtual ~PlayerCommands() = default;
    virtual void submit(const PlayLogicCommand& command) = 0;
};

// The player, as modules see it: whatever player module is loaded. Without one every request and
// command is answered and logged as an error. The one instance belongs to the platform; worker's
// thread only.
class ORVO_API_PLAY_EXPORT PlayLogicInterface {
public:
    static PlayLogicInterface* playerInstance();

    // Plays `container` from `index` on, `track` being the roles of that track: the container's
    // play logic gets a play request of ContainerType. The first track starts at `startPosition`
    // (milliseconds); with `paused` it waits there.
    CMReply<QVariant> playContainer(const OrvoRoles& container, const OrvoRoles& track, int index,
                                    int startPosition, bool paused);
    // `reason`: an OrvoPlayerStopReason.
    CMReply<QVariant> stop(int reason);

    // The player module makes itself known while it lives, null afterwards.
    void setPlayer(PlayerCommands* player) { m_player = player; }
    PlayerCommands* player() const { return m_player; }
    // For StreamerPlayLogic: hands the command to the player module.
    void submit(const PlayLogicCommand& command);

private:
    PlayLogicInterface() = default;
    static CMReply<QVariant> send(const CMPath& path, const QVariant& args);

    PlayerCommands* m_player = nullptr;
};
