#include "CMRootWorker.h"
#include "PlayerTransport.h"

// The requests of users.

namespace {

constexpr char NothingPlays[] = "Nothing is playing.";

CMPath playLogicPath(const OrvoPlayLogicPlayArgs& args) {
    const CMPath ofContainer = args.mediaRoles().mediaData().metaData().playLogicPath();
    return ofContainer.isEmpty() ? args.trackRoles().mediaData().metaData().playLogicPath()
                                 : ofContainer;
}

// What a client names as a play logic may be any path; a request to play that went to one of the
// player's own would come back for ever.
StreamerPlayLogic* playLogicAt(const CMPath& path) {
    if (path.isEmpty())
        return nullptr;
    auto* worker = qobject_cast<CMNodesWorker*>(CMRoot()->worker(path.prefix()));
    return worker ? qobject_cast<StreamerPlayLogic*>(worker->nodes()->find(path)) : nullptr;
}

CMError invalid(const char* text) {
    return CMError(CMError::InvalidValue(), TrString("Player", text), CMError::DefaultTitle());
}

bool isSupported(OrvoPlayerPlayMode::Enum mode, const OrvoPlayLogicPlayModesSupported& modes) {
    switch (mode) {
    case OrvoPlayerPlayMode::Normal:
        return true;
    case OrvoPlayerPlayMode::Shuffle:
        return modes.shuffle();
    case OrvoPlayerPlayMode::RepeatOne:
        return modes.repeatOne();
    case OrvoPlayerPlayMode::ShuffleRepeatOne:
        return modes.shuffleRepeatOne();
    case OrvoPlayerPlayMode::RepeatAll:
        return modes.repeatAll();
    case OrvoPlayerPlayMode::ShuffleRepeatAll:
        return modes.shuffleRepeatAll();
    }
    return false;
}

} // namespace

void PlayerTransport::playContainer(const CMSetDataRequest& request) {
    post([this, request] {
        OrvoPlayLogicPlayArgs args(request.value());
        const CMPath path = playLogicPath(args);
        if (!playLogicAt(path)) {
            request.reply().setError(invalid("There is no play logic for this."));
            return;
        }
        // The play logic begins anew, what it had announced is void.
        if (m_logic && m_logic->path().base() == path.base())
            dropNext();
        args.setKind(OrvoPlayLogicRequestKind::Play);
        const QPointer<StreamerPlayLogic> logic = playLogicAt(path);
        const quint64 decisions = m_decisions.countRequest();
        CMRoot()->invoke(path, args.toVariant(), request.reply());
        const auto answered = [self = QPointer<PlayerTransport>(this), logic,
                               decisions](bool refused) {
            // Behind the commands that the play logic may have sent.
            if (self)
                self->post([=] { self->onPlayAnswered(logic, decisions, refused); });
        };
        request.reply().onSuccess([answered] { answered(false); });
        request.reply().onError([answered](const CMError&) { answered(true); });
    });
}

void PlayerTransport::onPlayAnswered(StreamerPlayLogic* logic, quint64 decisions, bool refused) {
    // What plays does not notice that another play logic refuses.
    if (!logic || decisions != m_decisions.count() || (refused && logic != m_logic))
        return;
    playNothing(logic);
}

void PlayerTransport::pause(const CMSetDataRequest& request) {
    post([this, request] {
        if (m_state == OrvoPlayerState::Stopped && !m_decisions.hasPlay()) {
            request.reply().setError(notNow(NothingPlays));
            return;
        }
        // Those of what comes are not known yet.
        const bool opening = m_state == OrvoPlayerState::Opening || m_decisions.hasPlay();
        const OrvoPlayLogicControls controls =
            opening ? OrvoPlayLogicControls() : data().controls();
        if (controls.containsPause() && !controls.pause()) {
            request.reply().setError(notNow("This cannot be paused."));
            return;
        }
        m_paused = true;
        m_engine.setPaused(true);
        m_prepareTimer.stop();
        if (m_state == OrvoPlayerState::Playing)
            setState(OrvoPlayerState::Paused);
        Q_EMIT repositioned();
        request.reply().setValue({});
    });
}

void PlayerTransport::resume(const CMSetDataRequest& request) {
    post([this, request] {
        if (m_state == OrvoPlayerState::Stopped && !m_decisions.hasPlay()) {
            request.reply().setError(notNow(NothingPlays));
            return;
        }
        m_paused = false;
        // What was replaced does not sound once more.
        if (m_decisions.hasPlay()) {
            request.reply().setValue({});
            return;
        }
        m_engine.setPaused(false);
        if (m_state == OrvoPlayerState::Paused) {
            setState(OrvoPlayerState::Playing);
            armPrepare();
        }
        Q_EMIT repositioned();
        request.reply().setValue({});
    });
}

void PlayerTransport::stop(const CMSetDataRequest& request) {
    post([this, request] {
        OrvoPlayLogicStopArgs args(request.value());
        noteResumePoint();
        // The one whose play command is on its way is to know that it does not play.
        if (m_decisions.hasPlay() && m_decisions.lastSender())
            activate(m_decisions.lastSender());
        m_decisions.cancelPlays();
        m_decisions.countRequest();
        const CMPath path = deactivate();
        resetToStopped();
        if (path.isEmpty()) {
            request.reply().setValue({});
            return;
        }
        args.setKind(OrvoPlayLogicRequestKind::Stop);
        CMRoot()->invoke(path, args.toVariant(), request.reply());
    });
}

void PlayerTransport::seekTime(const CMSetDataRequest& request) {
    post([this, request] {
        const int time = OrvoPlayerSeekTimeArgs(request.value()).time();
        if (time < 0) {
            request.reply().setError(invalid("The time must be a number of milliseconds."));
            return;
        }
        if (m_state != OrvoPlayerState::Playing && m_state != OrvoPlayerState::Paused) {
            request.reply().setError(notNow(NothingPlays));
            return;
        }
        const OrvoPlayLogicControls controls = data().controls();
        const bool allowed = !controls.containsSeekTime() || controls.seekTime();
        const qint64 whole = duration();
        const qint64 target = whole > 0 ? qMin<qint64>(time, whole) : time;
        if (!allowed || !m_engine.seek(target)) {
            request.reply().setError(notNow("This cannot be sought in."));
            return;
        }
        armPrepare();
        Q_EMIT repositioned();
        request.reply().setValue({});
    });
}

void PlayerTransport::askLogic(const CMSetDataRequest& request, OrvoPlayLogicRequest args) {
    if (m_logic)
        CMRoot()->invoke(m_logic->path(), args.toVariant(), request.reply());
    else
        request.reply().setError(notNow(NothingPlays));
}

void PlayerTransport::next(const CMSetDataRequest& request) {
    post([this, request] {
        OrvoPlayLogicRequest args;
        args.setKind(OrvoPlayLogicRequestKind::Next);
        askLogic(request, args);
    });
}

void PlayerTransport::previous(const CMSetDataRequest& request) {
    post([this, request] {
        OrvoPlayLogicRequest args;
        args.setKind(OrvoPlayLogicRequestKind::Previous);
        askLogic(request, args);
    });
}

void PlayerTransport::setPlayMode(const CMSetDataRequest& request) {
    post([this, request] {
        OrvoPlayLogicChangePlayModeArgs args(request.value());
        if (m_logic && !isSupported(args.playMode(), m_logic->playModesSupported())) {
            request.reply().setError(invalid("There is no such play mode here."));
            return;
        }
        args.setKind(OrvoPlayLogicRequestKind::ChangePlayMode);
        askLogic(request, args);
    });
}

void PlayerTransport::setVolume(const CMSetDataRequest& request) {
    post([this, request] {
        const int volume = OrvoPlayerVolumeArgs(request.value()).volume();
        if (volume < 0 || volume > AudioOutput::MaxVolume) {
            request.reply().setError(invalid("The volume must be between 0 and 100."));
            return;
        }
        applyVolume(volume);
        request.reply().setValue({});
    });
}

void PlayerTransport::setSleepTimer(const CMSetDataRequest& request) {
    post([this, request] {
        const OrvoPlayerSleepTimerArgs args(request.value());
        const int time = args.time();
        if (args.isAtEndOfTrack() && m_state == OrvoPlayerState::Stopped) {
            request.reply().setError(notNow(NothingPlays));
        } else if (args.isAtEndOfTrack()) {
            m_sleepTimer.startAtEndOfTrack();
            request.reply().setValue({});
        } else if (time < 0 || time > SleepTimer::MaxMs) {
            request.reply().setError(invalid(
                "The time must be a number of milliseconds up to 24 hours, or endOfTrack."));
        } else {
            m_sleepTimer.start(time);
            request.reply().setValue({});
        }
    });
}
