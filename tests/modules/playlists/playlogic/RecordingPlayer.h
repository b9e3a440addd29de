#pragma once

#include <QPointer>

#include "CMWorker.h"
#include "PlayLogicInterface.h"
#include "StreamerPlayLogic.h"

// A player without sound: keeps what it was told, in order, and reports when the test says so. It
// answers the player's paths for stop and play-container; a container goes to its play logic at
// once.
class RecordingPlayer : public CMNodesWorker, public PlayerCommands {
public:
    RecordingPlayer();
    ~RecordingPlayer() override;

    void submit(const PlayLogicCommand& command) override;
    void setDataRequest(const CMSetDataRequest& request) override;

    // "play b@1", "next c@2", "no next", "ended", "stop", "asked to stop: 0", "asked to play:
    // playlists:pl/items/1 2".
    QStringList commands;
    QStringList takeCommands() { return std::exchange(commands, {}); }
    // "b@1": the title and the sequence number in the roles; "b@-" without one, "nothing" for empty
    // roles.
    static QString text(const OrvoRoles& roles);

    // What was sent to be played starts.
    void start();
    // What was announced starts, as the item before it ends.
    void startAnnounced();
    // What plays ends: on with what was announced, or the play logic is asked.
    void end();
    void fail();

    OrvoRoles sounding;
    OrvoRoles opening;
    OrvoRoles announced;
    // A stop that was asked for stops the play logic before it returns.
    bool stopsThePlayLogic = false;

private:
    QPointer<StreamerPlayLogic> m_logic;
};
