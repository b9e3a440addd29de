#include "ModuleTurns.h"

#include <QCoreApplication>

#include "OrvoPlayListCommands.h"
#include "PlayListPlayLogic.h"

// The play logic's friend: the way to the lists themselves, past the commands.
class PlayLogicProbe {
public:
    static PlayListManager* manager(PlayListWorker* worker) {
        return static_cast<PlayListPlayLogic*>(worker->nodes()->find(OrvoPlayListsPlayLogicPath()))
            ->m_manager;
    }
};

ModuleTurns::ModuleTurns(const Setting& setting, const Workplace::Contents& contents)
    : m_setting(setting),
      m_contents(contents),
      m_workplace(setting.folder, contents, setting.storage == QLatin1String("disk")) {
    open();
}

ModuleTurns::~ModuleTurns() {
    close();
}

void ModuleTurns::startOver() {
    close();
    m_workplace.restore();
    open();
}

void ModuleTurns::open() {
    m_root = std::make_unique<CMRootWorker>(QStringLiteral("settings.json"));
    // All items of the longest list, prepared at once, are more than a device takes by default.
    constexpr qint64 MaxAdditionBytes = 1 << 30;
    m_worker = std::make_unique<PlayListWorker>(
        QHash<QString, QVariant>{{QStringLiteral("playlists/maxAdditionBytes"), MaxAdditionBytes}});
    m_store = m_workplace.openFloor();
    floorList = {1, m_contents.length, -1};
}

void ModuleTurns::close() {
    m_worker.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_root.reset();
    m_store.reset();
}

PlayListBase* ModuleTurns::list() {
    return PlayLogicProbe::manager(m_worker.get())->getPlayListByUid(1);
}

bool ModuleTurns::send(const CMPath& path, const QVariant& value, QVariant* answer) {
    const CMReply<QVariant> reply;
    m_root->setDataRequest(CMSetDataRequest(path, value, reply));
    if (answer && reply.isFinished())
        *answer = reply.value();
    return reply.isFinished() && !reply.isError();
}

bool ModuleTurns::play(bool shuffled) {
    list()->setShuffle(shuffled);
    OrvoRoles container;
    container.setPath(itemsPath());
    OrvoPlayLogicPlayArgs args;
    args.setKind(OrvoPlayLogicRequestKind::Play);
    args.setMediaRoles(container);
    args.setIndex(0);
    args.setType(1);
    return send(OrvoPlayListsPlayLogicPath(), args.toVariant());
}
