#include "PlayListWorker.h"

#include <QTimer>

#include "CMConnect.h"
#include "CMRootWorker.h"
#include "Controller.h"
#include "Database.h"
#include "ModuleLog.h"
#include "OrvoPlayListPaths.h"
#include "PlayListManager.h"
#include "PlayListPlayLogic.h"
#include "playlistUI/playlist/UpNextNode.h"
#include "playlistUI/PlayListUI.h"

namespace {
// The step at which the power manager leaves nothing else to do: time for the long work.
constexpr int TargetBeforeMaintenance = 1;
constexpr int TargetForMaintenance = 2;

OrvoValue readSetting(const CMPath& path) {
    return OrvoValue(CMRoot()->getValue(path).toHash());
}

int maxStartWaitMs(const QHash<QString, QVariant>& config) {
    const int number = OrvoHash::toInt(config.value(QStringLiteral("playlists/startWaitMs")), 0);
    return number > 0 ? number : BusyHandler::DefaultMaxStartWaitMs;
}
} // namespace

PlayListWorker::PlayListWorker(const QHash<QString, QVariant>& config)
    : CMNodesWorker(config, "PlayLists") {
    const int itemsLimit = readSetting(OrvoPlayListsSettingsDataBaseItemsLimitPath()).i32();
    const bool vacuumNeeded = readSetting(OrvoPlayListSettingsDataBaseVacuumPath()).bool_();
    m_database = std::make_unique<Database>(itemsLimit, vacuumNeeded, maxStartWaitMs(config));
    cmConnect(m_database.get(), &Database::vacuumNeeded, this,
              &PlayListWorker::on_databaseVacuum_needed);
    // The store has vacuumed in its constructor, before anything listened to its signal: the
    // setting is taken back here.
    if (vacuumNeeded)
        on_databaseVacuum_needed(false);
    m_manager = std::make_unique<PlayListManager>(m_database.get());
    // No list waits for it, so it does not hold up the start.
    QTimer::singleShot(0, this, [this] { m_database->removeUnusedItems(); });
    m_ui = std::make_unique<PlayListUI>(this, nodes(), subscribe(), m_manager.get());
    m_controller =
        std::make_unique<Controller>(this, m_manager.get(), PlayListLimits::from(config));
    m_playLogic = std::make_unique<PlayListPlayLogic>(this, m_manager.get(), nullptr);
    m_upNext = std::make_unique<UpNextNode>(OrvoPlayListUpNextPath(), m_manager.get(),
                                            m_playLogic.get(), subscribe());
    m_upNext->setNodes(nodes());
    cmConnect(this, &PlayListWorker::setDataReceived, this, &PlayListWorker::on_setDataRequest);
    auto* powerManagerTarget = new CMValueItem(this, OrvoPowerManagerTargetPath());
    cmConnect(powerManagerTarget, &CMValueItem::changed, this,
              &PlayListWorker::on_powerManagerTargetItem_changed);
}

PlayListWorker::~PlayListWorker() = default;

void PlayListWorker::setDataRequest(const CMSetDataRequest& request) {
    Q_EMIT setDataReceived(request);
}

void PlayListWorker::on_setDataRequest(const CMSetDataRequest& request) {
    CM_ENTER_ARGS(moduleLog(), "routing");
    if (!m_controller->handleSetData(request))
        CMNodesWorker::setDataRequest(request);
}

void PlayListWorker::on_powerManagerTargetItem_changed(const OrvoValue& newValue,
                                                       const OrvoValue& oldValue) {
    LOG4CPLUS_TRACE(moduleLog(), "newValue=" << loggedValue(newValue.toVariant())
                                             << " oldValue=" << loggedValue(oldValue.toVariant()));
    const int newTarget = OrvoPowerManagerTarget(newValue.toHash()).target();
    const int oldTarget = OrvoPowerManagerTarget(oldValue.toHash()).target();
    if (oldTarget == TargetBeforeMaintenance && newTarget == TargetForMaintenance)
        m_database->vacuum();
}

void PlayListWorker::on_databaseVacuum_needed(bool needed) {
    CMRoot()->setValue(OrvoPlayListSettingsDataBaseVacuumPath(),
                       OrvoValue::fromBool(needed).toVariant(), CMVoidReply());
}
