#include "PlayLogicInterface.h"

#include "CMLog.h"
#include "CMRootWorker.h"
#include "StreamerPlayLogic.h"

namespace {
log4cplus::Logger& playerLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Player"));
    return instance;
}
} // namespace

PlayLogicInterface* PlayLogicInterface::playerInstance() {
    static PlayLogicInterface instance;
    return &instance;
}

CMReply<QVariant> PlayLogicInterface::send(const CMPath& path, const QVariant& args) {
    const CMReply<QVariant> reply;
    reply.onError([path](const CMError& error) {
        LOG4CPLUS_ERROR(playerLog(), path << " failed: " << error.message().toString());
    });
    CMRoot()->invoke(path, args, reply);
    return reply;
}

CMReply<QVariant> PlayLogicInterface::playContainer(const OrvoRoles& container,
                                                    const OrvoRoles& track, int index,
                                                    int startPosition, bool paused) {
    OrvoPlayLogicPlayArgs args;
    args.setMediaRoles(container);
    args.setTrackRoles(track);
    args.setIndex(index);
    args.setType(OrvoPlayLogicPlayArgs::ContainerType);
    args.setStartPosition(startPosition);
    args.setPaused(paused);
    return send(OrvoPlayerPlayContainerPath(), args.toVariant());
}

CMReply<QVariant> PlayLogicInterface::stop(int reason) {
    OrvoPlayLogicStopArgs args;
    args.setReason(reason);
    return send(OrvoPlayerStopPath(), args.toVariant());
}

void PlayLogicInterface::submit(const PlayLogicCommand& command) {
    if (m_player) {
        m_player->submit(command);
        return;
    }
    const TrString text("PlayLogicInterface", "There is no player.");
    LOG4CPLUS_ERROR(playerLog(), text.toString());
    command.reply.setError(CMError(text));
}
