#pragma once

#include <functional>

#include <QObject>
#include <QPointer>
#include <QTimer>

#include "AudioOutput.h"
#include "CMRequest.h"
#include "PendingDecisions.h"
#include "PlayerEngine.h"
#include "PlayLogicInterface.h"
#include "SleepTimer.h"
#include "StreamerPlayLogic.h"

// Plays what play logics decide: at most one of them, the active one, is in charge at a time.
// Requests of users and commands of play logics form one queue and are carried out in its order,
// each from the event loop, so nothing calls back into a play logic that is still deciding.
// What a decision replaces is dropped the moment it is sent, not when its turn comes.
// Owned by the worker, on its thread. A request that cannot be served gets an error reply.
class PlayerTransport : public QObject, public PlayerCommands {
    Q_OBJECT
public:
    PlayerTransport(const QString& sink, const SourceRules& rules, QObject* parent = nullptr);
    ~PlayerTransport() override;

    // The user's requests, at once or later answered through their replies.
    void playContainer(const CMSetDataRequest& request);
    void pause(const CMSetDataRequest& request);
    void resume(const CMSetDataRequest& request);
    void stop(const CMSetDataRequest& request);
    void seekTime(const CMSetDataRequest& request);
    void next(const CMSetDataRequest& request);
    void previous(const CMSetDataRequest& request);
    void setPlayMode(const CMSetDataRequest& request);
    void setVolume(const CMSetDataRequest& request);
    void setSleepTimer(const CMSetDataRequest& request);

    void submit(const PlayLogicCommand& command) override;

    OrvoPlayerState::Enum state() const { return m_state; }
    OrvoPlayLogicData data() const;
    OrvoPlayerPlayMode::Enum playMode() const;
    OrvoRoles nextMedia() const { return m_next.roles; }
    qint64 position() const { return m_engine.position(); }
    // As the file tells, else as its roles do; 0 when unknown.
    qint64 duration() const;
    int volume() const { return m_volume; }
    // Without a request, at start.
    void applyVolume(int volume);
    const SleepTimer& sleepTimer() const { return m_sleepTimer; }
    // Of the last stop or, when something plays, of the one before.
    const OrvoPlayerResumePoint& resumePoint() const { return m_resumePoint; }
    void setResumePoint(const OrvoPlayerResumePoint& point);
    // At a stop, also that of the device.
    void noteResumePoint();

Q_SIGNALS:
    // Something of the above has changed, except the position as time goes by.
    void changed();
    // The position jumped.
    void repositioned();
    void sleepTimerChanged();

private:
    struct Item {
        PlayerEngine::Generation generation = 0;
        OrvoRoles roles;
    };
    struct CommandRow {
        PlayLogicCommand::Kind kind;
        // Null where nothing is left to do once what was announced is void.
        void (PlayerTransport::*handle)(const PlayLogicCommand& command) = nullptr;
        // What plays or was announced is over when this is sent.
        bool decides = false;
        // Any play logic may send it, the active one or not.
        bool takesOver = false;
    };
    static const CommandRow& commandRow(PlayLogicCommand::Kind kind);

    // The refusal of what cannot be done as things are.
    static CMError notNow(const char* text);
    void post(std::function<void()> step);
    PlayerEngine::Generation announce(const PlayLogicCommand& command);
    void execute(const PlayLogicCommand& command, PlayerEngine::Generation announced);
    void handlePlay(const PlayLogicCommand& command);
    void handleSetNextMedia(const PlayLogicCommand& command);
    void handlePlaybackEnded(const PlayLogicCommand& command);
    void handleStop(const PlayLogicCommand& command);

    void onStarted(PlayerEngine::Generation generation);
    void onEnded(PlayerEngine::Generation generation);
    void onFinished(PlayerEngine::Generation generation);
    void onFailed(PlayerEngine::Generation generation, const QString& text);
    void goOnAfter(PlayerEngine::Generation generation);
    void resumeAfter(PlayerEngine::Generation generation);
    void playNothing(StreamerPlayLogic* logic);
    void onPlayAnswered(StreamerPlayLogic* logic, quint64 decisions, bool refused);

    void activate(StreamerPlayLogic* logic);
    // Leaves the active play logic and returns its path, empty when there was none.
    CMPath deactivate();
    // Nothing plays, nothing is announced, no timer waits for a track.
    void resetToStopped();
    void dropNext();
    void askLogic(const CMSetDataRequest& request, OrvoPlayLogicRequest args);
    void armPrepare();
    void prepare();
    void setState(OrvoPlayerState::Enum state);
    void sleep();
    void onSleepTimerChanged();

    PlayerEngine m_engine;
    QPointer<StreamerPlayLogic> m_logic;
    PlayerEngine::Generation m_lastGeneration = 0;
    Item m_current;
    // Known from the moment when it is announced; the engine opens it when that turn comes.
    Item m_next;
    OrvoPlayerState::Enum m_state = OrvoPlayerState::Stopped;
    bool m_paused = false;
    bool m_prepared = false;
    PendingDecisions m_decisions;
    int m_startMs = 0;  // where the current item was to start
    CMPath m_mediaPath; // what it belongs to; the play logic's data may be gone when it stops
    OrvoPlayerResumePoint m_resumePoint;
    int m_volume = AudioOutput::MaxVolume;
    QTimer m_prepareTimer;
    SleepTimer m_sleepTimer;
    bool m_isNextHeldBack = false; // the engine does not know what is announced
};
