#pragma once

#include <memory>

#include "CMWorker.h"

class CMValueItem;
class Controller;
class Database;
class PlayListManager;
class PlayListPlayLogic;
class PlayListUI;
class UpNextNode;

// The module's root object: builds the store, the model, the browse tree, the controller and the
// play logic, wires what crosses between them, and routes set-data requests. The host owns it;
// everything lives on the thread that made it.
class PlayListWorker : public CMNodesWorker {
    Q_OBJECT
public:
    explicit PlayListWorker(const QHash<QString, QVariant>& config);
    // Takes its parts along, the store last, so that the file is closed when a host ends in order.
    ~PlayListWorker() override;

    void setDataRequest(const CMSetDataRequest& request) override;

Q_SIGNALS:
    void setDataReceived(CMSetDataRequest request);

private Q_SLOTS:
    void on_setDataRequest(const CMSetDataRequest& request);
    void on_powerManagerTargetItem_changed(const OrvoValue& newValue, const OrvoValue& oldValue);
    void on_databaseVacuum_needed(bool needed);

private:
    // Each uses those before it, and goes before them.
    std::unique_ptr<Database> m_database;
    std::unique_ptr<PlayListManager> m_manager;
    std::unique_ptr<PlayListUI> m_ui;
    std::unique_ptr<Controller> m_controller;
    std::unique_ptr<PlayListPlayLogic> m_playLogic;
    std::unique_ptr<UpNextNode> m_upNext;
};
