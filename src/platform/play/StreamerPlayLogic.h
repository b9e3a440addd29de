#pragma once

#include "PlayLogicBase.h"
#include "PlayLogicInterface.h"

// The frame of a play logic: the class that decides what plays, next and before, derives from it.
// It decodes the requests at its path into the overridable calls, and sends the commands that
// answer them to the player. An override answers its request, at once or later; a request that no
// one answers gets an error.
//
//   request "play"            playInternal          sendPlayCommand(first item)
//   request "next"            nextInternal          sendPlayCommand(next item)
//   the end comes near        prepareNextMedia      sendSetNextMediaCommand or sendNoNextMedia…
//   an item is started        mediaPlaybackStarted  (returns what is published)
//   nothing to go on with     tryResumePlayback     sendPlayCommand or playbackEnded
//
// The play command that a request leads to is sent before the request is answered: one that comes
// later keeps a pause, and a play request that was answered without one has led to nothing.
// Commands are carried out in order and never call back before they return. Owned by its module,
// on the worker's thread; a command without a player fails its reply.
class ORVO_API_PLAY_EXPORT StreamerPlayLogic : public PlayLogicBase {
    Q_OBJECT
public:
    StreamerPlayLogic(CMNodes* nodes, const CMPath& path, QObject* parent = nullptr);

    bool setDataRequest(const CMSetDataRequest& request) override;

    virtual void playInternal(const CMSetDataRequest& request, const OrvoPlayLogicPlayArgs& args);
    // The base stops the player, empties the data and answers the request; an override ends in it.
    virtual void stopInternal(const CMSetDataRequest& request);
    virtual void nextInternal(const CMSetDataRequest& request);
    virtual void previousInternal(const CMSetDataRequest& request);
    virtual void changePlayModeInternal(const CMSetDataRequest& request);
    virtual OrvoPlayLogicPlayModesSupported playModesSupported();

    // What plays comes to its end: announce what follows. Once per started item.
    virtual void prepareNextMedia();
    // `newRoles` have started. Once per started item, before its prepareNextMedia(); data() holds
    // them already. The result is published.
    virtual OrvoPlayLogicData mediaPlaybackStarted(const OrvoRoles& oldRoles,
                                                   const OrvoRoles& newRoles);
    // What played has ended with nothing announced, or has failed (then data() holds the error).
    virtual void tryResumePlayback();

    CMReply<QVariant> sendPlayCommand(const OrvoRoles& roles,
                                      const QHash<QString, QVariant>& params);
    CMReply<QVariant> sendSetNextMediaCommand(const OrvoRoles& roles,
                                              const QHash<QString, QVariant>& params);
    CMReply<QVariant> sendNoNextMediaCommand();
    // Nothing is left to play. The player stops and stays with this play logic.
    CMReply<QVariant> playbackEnded();

    // The player reports. Only the player calls these.
    void itemStarted(const OrvoRoles& roles);
    // It failed, and the play logic finds the way on.
    void itemFailed(const OrvoRoles& roles, const OrvoError& error);
    // It failed, and what follows is the player's to find out: something may be announced.
    void itemBrokeOff(const OrvoRoles& roles, const OrvoError& error);
    // The play request that came last was answered without a play command.
    void nothingPlayed(const OrvoError& error);

protected:
    void playModePublished() override;

private:
    struct RequestRow {
        OrvoPlayLogicRequestKind::Enum kind;
        void (StreamerPlayLogic::*call)(const CMSetDataRequest& request);
        // The play logic is choosing its mode while it handles this request.
        bool setsPlayMode = false;
        // What plays from it was asked for.
        bool asksForSound = false;
    };
    static const QList<RequestRow>& requestRows();

    void answered(quint64 request);
    void play(const CMSetDataRequest& request);
    void stop(const CMSetDataRequest& request);
    CMReply<QVariant> send(PlayLogicCommand::Kind kind, const OrvoRoles& roles = {},
                           const QHash<QString, QVariant>& params = {});

    OrvoRoles m_startedRoles;
    // The play request whose first play command has not come yet.
    OrvoPlayLogicPlayArgs m_pendingStart;
    quint64 m_requests = 0;
    // The last request for sound while it is not answered, 0 when it is.
    quint64 m_openRequest = 0;
    int m_settingPlayMode = 0;
    // Counts the requests that decide about the play mode: a change that was queued before the last
    // one is out of date.
    int m_playModeDecisions = 0;
};
