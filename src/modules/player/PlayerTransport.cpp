#include "PlayerTransport.h"

#include <utility>

#include "CMConnect.h"
#include "CMRootWorker.h"
#include "PlayerLog.h"

namespace {

// Late enough to follow edits of the list, early enough to open a slow source.
constexpr qint64 PrepareBeforeEndMs = 10000;
// A timer counts in ints; when it is over, what is left is looked at again.
constexpr qint64 MaxPrepareWaitMs = 3600 * 1000;

QString firstUri(const OrvoRoles& roles) {
    for (const OrvoResource& resource : roles.mediaData().resources()) {
        if (!resource.uri().isEmpty())
            return resource.uri();
    }
    return {};
}

// The same entry of the same list, wherever it stands by now.
bool isSameItem(const OrvoRoles& a, const OrvoRoles& b) {
    return a.id().isEmpty() ? a == b : a.id() == b.id();
}

OrvoError playError(const char* code, const TrString& message) {
    OrvoError error;
    error.setCode(QString::fromLatin1(code));
    error.setMessage(message.toString());
    return error;
}

TrString nothingToPlay() {
    return TrString("Player", "There is nothing to play.");
}

} // namespace

PlayerTransport::PlayerTransport(const QString& sink, const SourceRules& rules, QObject* parent)
    : QObject(parent), m_engine(sink, rules) {
    cmConnect(&m_engine, &PlayerEngine::started, this, &PlayerTransport::onStarted);
    cmConnect(&m_engine, &PlayerEngine::ended, this, &PlayerTransport::onEnded);
    cmConnect(&m_engine, &PlayerEngine::finished, this, &PlayerTransport::onFinished);
    cmConnect(&m_engine, &PlayerEngine::failed, this, &PlayerTransport::onFailed);
    m_prepareTimer.setSingleShot(true);
    cmConnect(&m_prepareTimer, &QTimer::timeout, this, &PlayerTransport::armPrepare);
    cmConnect(&m_sleepTimer, &SleepTimer::elapsed, this, &PlayerTransport::sleep);
    cmConnect(&m_sleepTimer, &SleepTimer::changed, this, &PlayerTransport::onSleepTimerChanged);
    PlayLogicInterface::playerInstance()->setPlayer(this);
}

PlayerTransport::~PlayerTransport() {
    PlayLogicInterface::playerInstance()->setPlayer(nullptr);
}

CMError PlayerTransport::notNow(const char* text) {
    return CMError(CMError::NotSupported(), TrString("Player", text), CMError::DefaultTitle());
}

void PlayerTransport::post(std::function<void()> step) {
    QMetaObject::invokeMethod(this, std::move(step), Qt::QueuedConnection);
}

OrvoPlayLogicData PlayerTransport::data() const {
    return m_logic ? m_logic->data() : OrvoPlayLogicData();
}

OrvoPlayerPlayMode::Enum PlayerTransport::playMode() const {
    return m_logic ? m_logic->playMode() : OrvoPlayerPlayMode::Normal;
}

qint64 PlayerTransport::duration() const {
    const qint64 told = m_engine.duration();
    return told > 0 ? told : qMax<qint64>(0, m_current.roles.mediaData().metaData().duration());
}

void PlayerTransport::setState(OrvoPlayerState::Enum state) {
    m_state = state;
    Q_EMIT changed();
}

// Commands of play logics.

const PlayerTransport::CommandRow& PlayerTransport::commandRow(PlayLogicCommand::Kind kind) {
    using Kind = PlayLogicCommand::Kind;
    using T = PlayerTransport;
    static const CommandRow rows[] = {
        {.kind = Kind::Play, .handle = &T::handlePlay, .decides = true, .takesOver = true},
        {.kind = Kind::SetNextMedia, .handle = &T::handleSetNextMedia},
        {.kind = Kind::NoNextMedia},
        {.kind = Kind::PlaybackEnded, .handle = &T::handlePlaybackEnded, .decides = true},
        {.kind = Kind::Stop, .handle = &T::handleStop, .decides = true},
    };
    for (const CommandRow& row : rows) {
        if (row.kind == kind)
            return row;
    }
    cmFatal("a play-logic command of an unknown kind");
}

void PlayerTransport::submit(const PlayLogicCommand& command) {
    const CommandRow& row = commandRow(command.kind);
    const bool counts = row.takesOver || command.from == m_logic;
    const PlayerEngine::Generation announced = counts ? announce(command) : 0;
    PendingDecisions::Ticket ticket;
    if (command.kind == PlayLogicCommand::Kind::Play) {
        // From now on: a pause that comes before the item does is a later word.
        const OrvoPlayLogicPlayArgs start{QVariantHash(command.params)};
        m_paused = start.containsPaused() ? start.paused() : m_paused && !command.requested;
        ticket = m_decisions.addPlay(command.from);
    } else {
        ticket = m_decisions.addOther(row.decides && counts);
    }
    post([this, command, announced, counts, ticket] {
        if (!m_decisions.resolve(ticket)) {
            command.reply.setError(notNow("It was stopped meanwhile."));
            return;
        }
        // Sent before its play logic took over.
        const bool late = !counts && command.from && command.from == m_logic;
        execute(command, late ? announce(command) : announced);
    });
}

// What was announced before is void. A new announcement is known at once, so that those who watch
// see one change.
PlayerEngine::Generation PlayerTransport::announce(const PlayLogicCommand& command) {
    const bool next = command.kind == PlayLogicCommand::Kind::SetNextMedia;
    m_engine.clearNext();
    if (!next && m_next.generation == 0)
        return 0;
    m_next = next ? Item{++m_lastGeneration, command.roles} : Item{};
    Q_EMIT changed();
    return m_next.generation;
}

void PlayerTransport::execute(const PlayLogicCommand& command, PlayerEngine::Generation announced) {
    const CommandRow& row = commandRow(command.kind);
    if (!command.from || (command.from != m_logic && !row.takesOver)) {
        command.reply.setError(notNow("This play logic does not play."));
        return;
    }
    const bool replaced = announced != 0 && announced != m_next.generation;
    if (row.handle && !replaced)
        (this->*row.handle)(command);
    command.reply.setValue({});
}

void PlayerTransport::playNothing(StreamerPlayLogic* logic) {
    activate(logic);
    resetToStopped();
    logic->nothingPlayed(playError("NothingToPlay", nothingToPlay()));
}

void PlayerTransport::handlePlay(const PlayLogicCommand& command) {
    if (command.roles.isEmpty()) {
        playNothing(command.from);
        return;
    }
    activate(command.from);
    const OrvoPlayLogicPlayArgs start{QVariantHash(command.params)};
    m_current = {++m_lastGeneration, command.roles};
    m_prepared = false;
    m_prepareTimer.stop();
    m_startMs = qMax(0, start.startPosition());
    m_mediaPath = data().mediaRoles().path();
    m_engine.play(m_current.generation, firstUri(command.roles), m_startMs, m_paused);
    setState(OrvoPlayerState::Opening);
}

void PlayerTransport::handleSetNextMedia(const PlayLogicCommand& command) {
    if (m_current.generation == 0)
        dropNext(); // ended meanwhile, nothing for it to follow
    else if (m_sleepTimer.isAtEndOfTrack())
        m_isNextHeldBack = true;
    else
        m_engine.setNext(m_next.generation, firstUri(command.roles));
}

void PlayerTransport::handlePlaybackEnded(const PlayLogicCommand&) {
    // What was heard to its end begins anew.
    if (m_resumePoint.mediaPath() == m_mediaPath)
        setResumePoint({});
    resetToStopped();
}

void PlayerTransport::handleStop(const PlayLogicCommand&) {
    noteResumePoint();
    deactivate();
    resetToStopped();
}

void PlayerTransport::activate(StreamerPlayLogic* logic) {
    if (m_logic == logic)
        return;
    const CMPath left = deactivate();
    m_next = {};
    m_logic = logic;
    cmConnect(logic, &PlayLogicBase::dataChanged, this, &PlayerTransport::changed);
    cmConnect(logic, &PlayLogicBase::playModeChanged, this, &PlayerTransport::changed);
    cmConnect(logic, &QObject::destroyed, this, &PlayerTransport::resetToStopped);
    if (left.isEmpty())
        return;
    OrvoPlayLogicStopArgs args;
    args.setKind(OrvoPlayLogicRequestKind::Stop);
    args.setReason(OrvoPlayerStopReason::TakenOver);
    CMRoot()->invoke(left, args.toVariant(), {});
}

CMPath PlayerTransport::deactivate() {
    if (!m_logic)
        return {};
    m_logic->disconnect(this);
    const CMPath path = m_logic->path();
    m_logic = nullptr;
    return path;
}

void PlayerTransport::resetToStopped() {
    m_engine.stop();
    m_current = m_next = {};
    // What is on its way was told how to start.
    m_paused = m_paused && m_decisions.hasPlay();
    m_prepareTimer.stop();
    if (m_sleepTimer.isAtEndOfTrack() && !m_decisions.hasPlay())
        m_sleepTimer.stop(); // there is no track any more
    setState(OrvoPlayerState::Stopped);
}

void PlayerTransport::dropNext() {
    m_engine.clearNext();
    if (m_next.generation == 0)
        return;
    m_next = {};
    Q_EMIT changed();
}

// What the engine reports.

void PlayerTransport::onStarted(PlayerEngine::Generation generation) {
    if (generation == m_next.generation) {
        m_current = m_next;
        m_next = {};
        m_startMs = 0;
    }
    // Something else was decided, which only waits for its turn: this one hardly sounds.
    if (generation != m_current.generation || m_decisions.hasAny() || !m_logic)
        return;
    m_prepared = false;
    m_logic->itemStarted(m_current.roles);
    setState(m_paused ? OrvoPlayerState::Paused : OrvoPlayerState::Playing);
    Q_EMIT repositioned();
    armPrepare();
}

void PlayerTransport::armPrepare() {
    if (m_prepared || m_current.generation == 0)
        return;
    const qint64 whole = duration();
    const qint64 left = whole - position() - PrepareBeforeEndMs;
    if (left <= 0)
        prepare();
    else if (m_state == OrvoPlayerState::Playing)
        m_prepareTimer.start(int(qMin(left, MaxPrepareWaitMs)));
    else
        m_prepareTimer.stop();
}

void PlayerTransport::prepare() {
    if (m_prepared || m_decisions.hasAny() || !m_logic)
        return;
    m_prepared = true;
    m_prepareTimer.stop();
    m_logic->prepareNextMedia();
}

void PlayerTransport::onEnded(PlayerEngine::Generation generation) {
    if (generation == m_current.generation)
        prepare();
}

void PlayerTransport::onFinished(PlayerEngine::Generation generation) {
    // Behind the announcement that may be under way.
    post([this, generation] { resumeAfter(generation); });
}

void PlayerTransport::resumeAfter(PlayerEngine::Generation generation) {
    if (generation != m_current.generation || m_decisions.hasAny() || !m_logic)
        return;
    const bool sleeps = m_sleepTimer.isAtEndOfTrack();
    if (!sleeps && m_next.generation != 0)
        return;
    if (sleeps) {
        m_paused = true;
        m_isNextHeldBack = false;
        m_sleepTimer.stop();
    }
    if (m_next.generation != 0) {
        // What was held back is loaded and waits at its beginning.
        m_engine.play(m_next.generation, firstUri(m_next.roles), 0, true);
        setState(OrvoPlayerState::Opening);
        return;
    }
    m_state = OrvoPlayerState::Opening;
    m_logic->tryResumePlayback();
    Q_EMIT changed();
}

void PlayerTransport::onFailed(PlayerEngine::Generation generation, const QString& text) {
    const bool ofNext = generation == m_next.generation;
    if ((!ofNext && generation != m_current.generation) || m_decisions.hasAny() || !m_logic)
        return;
    const OrvoRoles roles = ofNext ? m_next.roles : m_current.roles;
    const QString title = roles.title().toString();
    LOG4CPLUS_ERROR(playerLog(),
                    "cannot play \"" << title << "\" (" << firstUri(roles) << "): " << text);
    m_prepareTimer.stop();
    m_prepared = true;
    m_state = OrvoPlayerState::Opening;
    // Why stands in the log alone: it would tell strangers which files and ports there are.
    const OrvoError error =
        playError("CannotPlay", TrString("Player", "%1 cannot be played.", {title}));
    if (ofNext) {
        m_current = {++m_lastGeneration, roles};
        dropNext();
        m_logic->itemFailed(roles, error);
    } else {
        m_logic->itemBrokeOff(roles, error);
        // Behind the announcement that may be under way, and when the error was published.
        post([this, generation] { goOnAfter(generation); });
    }
    Q_EMIT changed();
}

void PlayerTransport::goOnAfter(PlayerEngine::Generation generation) {
    if (generation != m_current.generation || m_decisions.hasAny())
        return;
    // What broke off is not tried again and again.
    if (m_next.generation != 0 && isSameItem(m_next.roles, m_current.roles))
        dropNext();
    m_engine.goOn();
}

// What cannot be paused is stopped.
void PlayerTransport::sleep() {
    const CMReply<QVariant> paused;
    paused.onError([self = QPointer<PlayerTransport>(this)](const CMError&) {
        if (self)
            self->stop(CMSetDataRequest(OrvoPlayerStopPath(), {}, {}));
    });
    pause(CMSetDataRequest(OrvoPlayerPausePath(), {}, paused));
}

// The engine would go on by itself to what it knows as the next one.
void PlayerTransport::onSleepTimerChanged() {
    if (m_sleepTimer.isAtEndOfTrack() && m_next.generation != 0) {
        m_isNextHeldBack = true;
        m_engine.clearNext();
    } else if (std::exchange(m_isNextHeldBack, false) && m_next.generation != 0) {
        m_engine.setNext(m_next.generation, firstUri(m_next.roles));
    }
    Q_EMIT sleepTimerChanged();
}

void PlayerTransport::setResumePoint(const OrvoPlayerResumePoint& point) {
    if (point == m_resumePoint)
        return;
    m_resumePoint = point;
    Q_EMIT changed();
}

void PlayerTransport::noteResumePoint() {
    const CMPath track = m_current.roles.path();
    if (m_current.generation == 0 || track.isEmpty())
        return;
    OrvoPlayerResumePoint point;
    point.setMediaPath(m_mediaPath);
    point.setTrackPath(track);
    const qint64 startMs = m_state == OrvoPlayerState::Opening ? m_startMs : 0;
    point.setPosition(qMax(startMs, position()));
    setResumePoint(point);
}

void PlayerTransport::applyVolume(int volume) {
    m_volume = volume;
    m_engine.setVolume(volume);
    Q_EMIT changed();
}
