#include "PlayLogicInterface.h"

#include "CMLog.h"
#include "CMRootWorker.h"

CMPath OrvoPlayerPlayContainerPath() {
    static const CMPath path(QStringLiteral("player:playContainer"));
    return path;
}

CMPath OrvoPlayerStopPath() {
    static const CMPath path(QStringLiteral("player:stop"));
    return path;
}

PlayLogicInterface* PlayLogicInterface::playerInstance() {
    static PlayLogicInterface instance;
    return &instance;
}

CMReply<QVariant> PlayLogicInterface::send(const CMPath& path, const QVariant& args) {
    const CMReply<QVariant> reply;
    reply.onError([path](const CMError& error) {
        static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Player"));
        LOG4CPLUS_ERROR(logger, path << " failed: " << error.message().toString());
    });
    CMRoot()->invoke(path, args, reply);
    return reply;
}

CMReply<QVariant> PlayLogicInterface::playContainer(const OrvoRoles& container, const OrvoRoles& track, int index,
                                                    int startPosition, bool paused) {
    OrvoPlayLogicPlayArgs args;
    args.setMediaRoles(container);
    args.setTrackRoles(track);
    args.setIndex(index);
    args.setType(1);
    args.setAttribute(QStringLiteral("startPosition"), startPosition);
    args.setAttribute(QStringLiteral("paused"), paused);
    return send(OrvoPlayerPlayContainerPath(), args.toVariant());
}

CMReply<QVariant> PlayLogicInterface::stop(int reason) {
    OrvoHash args;
    args.setAttribute(QStringLiteral("reason"), reason);
    return send(OrvoPlayerStopPath(), args.toVariant());
}
