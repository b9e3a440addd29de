#include "RecordingPlayer.h"

#include <gtest/gtest.h>

#include "CMRootWorker.h"

RecordingPlayer::RecordingPlayer() : CMNodesWorker({}, QStringLiteral("Player")) {
    PlayLogicInterface::playerInstance()->setPlayer(this);
}

RecordingPlayer::~RecordingPlayer() {
    PlayLogicInterface::playerInstance()->setPlayer(nullptr);
}

QString RecordingPlayer::text(const OrvoRoles& roles) {
    if (roles.isEmpty())
        return QStringLiteral("nothing");
    const OrvoValue position = roles.value();
    return roles.title().toString() + QLatin1Char('@') +
           (position.containsI32_() ? QString::number(position.i32()) : QStringLiteral("-"));
}

void RecordingPlayer::submit(const PlayLogicCommand& command) {
    using Kind = PlayLogicCommand::Kind;
    m_logic = command.from;
    EXPECT_TRUE(command.params.isEmpty());
    switch (command.kind) {
    case Kind::Play:
        commands.append(QStringLiteral("play ") + text(command.roles));
        opening = command.roles;
        announced = {};
        break;
    case Kind::SetNextMedia:
        commands.append(QStringLiteral("next ") + text(command.roles));
        announced = command.roles;
        break;
    case Kind::NoNextMedia:
        commands.append(QStringLiteral("no next"));
        announced = {};
        break;
    case Kind::PlaybackEnded:
    case Kind::Stop:
        commands.append(command.kind == Kind::Stop ? QStringLiteral("stop")
                                                   : QStringLiteral("ended"));
        sounding = opening = announced = {};
        break;
    }
    command.reply.setValue({});
}

void RecordingPlayer::setDataRequest(const CMSetDataRequest& request) {
    if (request.path() == OrvoPlayerPlayContainerPath()) {
        OrvoPlayLogicPlayArgs args(request.value());
        commands.append(
            QStringLiteral("asked to play: %1 %2")
                .arg(args.mediaRoles().path().toString(), QString::number(args.index())));
        args.setKind(OrvoPlayLogicRequestKind::Play);
        args.removeAttribute(OrvoPlayLogicPlayArgs::StartPosition());
        args.removeAttribute(OrvoPlayLogicPlayArgs::Paused());
        const CMPath path = args.mediaRoles().mediaData().metaData().playLogicPath();
        CMRoot()->invoke(path, args.toVariant(), request.reply());
        return;
    }
    if (request.path() == OrvoPlayerStopPath()) {
        OrvoPlayLogicStopArgs args(request.value());
        commands.append(QStringLiteral("asked to stop: %1").arg(args.reason()));
        if (!stopsThePlayLogic || !m_logic) {
            request.reply().setValue({});
            return;
        }
        args.setKind(OrvoPlayLogicRequestKind::Stop);
        CMRoot()->invoke(m_logic->path(), args.toVariant(), request.reply());
        return;
    }
    CMNodesWorker::setDataRequest(request);
}

void RecordingPlayer::start() {
    ASSERT_TRUE(m_logic);
    sounding = std::exchange(opening, {});
    m_logic->itemStarted(sounding);
}

void RecordingPlayer::startAnnounced() {
    ASSERT_TRUE(m_logic);
    sounding = std::exchange(announced, {});
    m_logic->itemStarted(sounding);
}

void RecordingPlayer::end() {
    if (!announced.isEmpty()) {
        startAnnounced();
        return;
    }
    ASSERT_TRUE(m_logic);
    sounding = {};
    m_logic->tryResumePlayback();
}

void RecordingPlayer::fail() {
    ASSERT_TRUE(m_logic);
    OrvoError error;
    error.setCode(QStringLiteral("CannotPlay"));
    const OrvoRoles failed = opening.isEmpty() ? sounding : opening;
    sounding = opening = announced = {};
    m_logic->itemFailed(failed, error);
}
