#include "StreamerPlayLogic.h"

#include <QPointer>
#include <QScopedValueRollback>

#include "CMLog.h"

namespace {

void answerNotSupported(const CMSetDataRequest& request) {
    request.reply().setError(
        CMError(CMError::NotSupported(),
                TrString("StreamerPlayLogic", "%1 does not do that.", {request.path().toString()}),
                CMError::DefaultTitle()));
}

} // namespace

StreamerPlayLogic::StreamerPlayLogic(CMNodes* nodes, const CMPath& path, QObject* parent)
    : PlayLogicBase(nodes, path, parent) {}

const QList<StreamerPlayLogic::RequestRow>& StreamerPlayLogic::requestRows() {
    using Kind = OrvoPlayLogicRequestKind;
    using Logic = StreamerPlayLogic;
    static const QList<RequestRow> rows = {
        {.kind = Kind::Play, .call = &Logic::play, .setsPlayMode = true, .asksForSound = true},
        {.kind = Kind::Stop, .call = &Logic::stop, .setsPlayMode = true},
        {.kind = Kind::Next, .call = &Logic::nextInternal, .asksForSound = true},
        {.kind = Kind::Previous, .call = &Logic::previousInternal, .asksForSound = true},
        {.kind = Kind::ChangePlayMode,
         .call = &Logic::changePlayModeInternal,
         .setsPlayMode = true},
    };
    return rows;
}

bool StreamerPlayLogic::setDataRequest(const CMSetDataRequest& request) {
    const OrvoPlayLogicRequestKind::Enum kind = OrvoPlayLogicRequest(request.value()).kind();
    for (const RequestRow& row : requestRows()) {
        if (row.kind != kind)
            continue;
        if (row.setsPlayMode)
            ++m_playModeDecisions;
        const QScopedValueRollback<int> setting(m_settingPlayMode,
                                                m_settingPlayMode + (row.setsPlayMode ? 1 : 0));
        const quint64 number = ++m_requests;
        if (row.asksForSound)
            m_openRequest = number;
        (this->*row.call)(request);
        if (row.asksForSound && request.hasReply()) {
            request.reply().onFinished([self = QPointer<StreamerPlayLogic>(this), number] {
                if (self)
                    self->answered(number);
            });
        }
        return true;
    }
    return false;
}

void StreamerPlayLogic::answered(quint64 request) {
    if (request != m_openRequest)
        return;
    m_openRequest = 0;
    m_pendingStart = {};
}

void StreamerPlayLogic::play(const CMSetDataRequest& request) {
    m_pendingStart = OrvoPlayLogicPlayArgs(request.value());
    playInternal(request, m_pendingStart);
}

void StreamerPlayLogic::stop(const CMSetDataRequest& request) {
    m_pendingStart = {};
    m_openRequest = 0;
    stopInternal(request);
}

void StreamerPlayLogic::playInternal(const CMSetDataRequest& request,
                                     const OrvoPlayLogicPlayArgs&) {
    answerNotSupported(request);
}

void StreamerPlayLogic::stopInternal(const CMSetDataRequest& request) {
    m_startedRoles = {};
    send(PlayLogicCommand::Kind::Stop);
    setData({});
    request.reply().setValue({});
}

void StreamerPlayLogic::nextInternal(const CMSetDataRequest& request) {
    answerNotSupported(request);
}

void StreamerPlayLogic::previousInternal(const CMSetDataRequest& request) {
    answerNotSupported(request);
}

void StreamerPlayLogic::changePlayModeInternal(const CMSetDataRequest& request) {
    answerNotSupported(request);
}

OrvoPlayLogicPlayModesSupported StreamerPlayLogic::playModesSupported() {
    return {};
}

void StreamerPlayLogic::prepareNextMedia() {
    sendNoNextMediaCommand();
}

OrvoPlayLogicData StreamerPlayLogic::mediaPlaybackStarted(const OrvoRoles&, const OrvoRoles&) {
    OrvoPlayLogicData published = data();
    published.removeAttribute(OrvoPlayLogicData::Error());
    published.removeAttribute(OrvoPlayLogicData::StreamerError());
    return published;
}

void StreamerPlayLogic::tryResumePlayback() {
    playbackEnded();
}

CMReply<QVariant> StreamerPlayLogic::send(PlayLogicCommand::Kind kind, const OrvoRoles& roles,
                                          const QHash<QString, QVariant>& params) {
    const bool requested = kind == PlayLogicCommand::Kind::Play && m_openRequest != 0;
    const PlayLogicCommand command{kind, this, roles, params, {}, requested};
    PlayLogicInterface::playerInstance()->submit(command);
    return command.reply;
}

CMReply<QVariant> StreamerPlayLogic::sendPlayCommand(const OrvoRoles& roles,
                                                     const QHash<QString, QVariant>& params) {
    QHash<QString, QVariant> all = params;
    if (!m_pendingStart.isEmpty()) {
        // The caller of playContainer says how the first item starts, the override need not know.
        for (const QString& key :
             {OrvoPlayLogicPlayArgs::StartPosition(), OrvoPlayLogicPlayArgs::Paused()}) {
            if (m_pendingStart.contains(key) && !all.contains(key))
                all.insert(key, m_pendingStart.attribute(key));
        }
        OrvoPlayLogicData staged = data();
        staged.setMediaRoles(m_pendingStart.mediaRoles());
        stageData(staged);
        m_pendingStart = {};
    }
    return send(PlayLogicCommand::Kind::Play, roles, all);
}

CMReply<QVariant>
StreamerPlayLogic::sendSetNextMediaCommand(const OrvoRoles& roles,
                                           const QHash<QString, QVariant>& params) {
    return send(PlayLogicCommand::Kind::SetNextMedia, roles, params);
}

CMReply<QVariant> StreamerPlayLogic::sendNoNextMediaCommand() {
    return send(PlayLogicCommand::Kind::NoNextMedia);
}

CMReply<QVariant> StreamerPlayLogic::playbackEnded() {
    m_startedRoles = {};
    // The errors stay: they tell why it ended.
    OrvoPlayLogicData ended = data();
    ended.removeAttribute(OrvoPlayLogicData::TrackRoles());
    ended.removeAttribute(OrvoPlayLogicData::Controls());
    setData(ended);
    return send(PlayLogicCommand::Kind::PlaybackEnded);
}

void StreamerPlayLogic::itemStarted(const OrvoRoles& roles) {
    const OrvoRoles oldRoles = m_startedRoles;
    m_startedRoles = roles;
    OrvoPlayLogicData staged = data();
    staged.setTrackRoles(roles);
    stageData(staged);
    setData(mediaPlaybackStarted(oldRoles, roles));
}

void StreamerPlayLogic::itemFailed(const OrvoRoles& roles, const OrvoError& error) {
    itemBrokeOff(roles, error);
    tryResumePlayback();
}

void StreamerPlayLogic::itemBrokeOff(const OrvoRoles& roles, const OrvoError& error) {
    OrvoPlayLogicData failed = data();
    failed.setTrackRoles(roles);
    failed.setStreamerError(error);
    setData(failed);
}

void StreamerPlayLogic::nothingPlayed(const OrvoError& error) {
    m_startedRoles = {};
    OrvoPlayLogicData nothing;
    nothing.setError(error);
    setData(nothing);
}

void StreamerPlayLogic::playModePublished() {
    if (m_settingPlayMode > 0)
        return;
    // A mode that was published as a side effect (the playing list's own shuffle was switched) is
    // put into force by a request of its own, after whatever is going on has finished.
    const int decisions = m_playModeDecisions;
    const OrvoPlayerPlayMode::Enum mode = playMode();
    QMetaObject::invokeMethod(
        this,
        [this, decisions, mode] {
            if (decisions != m_playModeDecisions || mode != playMode())
                return;
            OrvoPlayLogicChangePlayModeArgs args;
            args.setKind(OrvoPlayLogicRequestKind::ChangePlayMode);
            args.setPlayMode(mode);
            const CMReply<QVariant> reply;
            reply.onError([](const CMError& error) {
                static log4cplus::Logger logger =
                    log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayLogic"));
                LOG4CPLUS_ERROR(logger, "play mode not changed: " << error.message().toString());
            });
            setDataRequest(CMSetDataRequest(path(), args.toVariant(), reply));
        },
        Qt::QueuedConnection);
}
