#pragma once

#include <memory>

#include "Database.h"
#include "floor.h"
#include "Items.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "Work.h"
#include "Workplace.h"

// Turns of the module's store and model, and the floor on a store of the same contents.
class StoreTurns : public Turns {
public:
    // itemsLimit: as the store takes it, 0 for none.
    StoreTurns(const Setting& setting, const Workplace::Contents& contents, int itemsLimit = 0);
    ~StoreTurns() override;

protected:
    // Both stores closed, laid out anew and opened: for works that use up what they work on.
    void startOver();
    // The store and the floor, and the model over the store unless it is the work to make it.
    void open(bool withModel = true);
    void close();

    int size() const { return m_setting.size; }
    Database& database() { return *m_database; }
    PlayListManager& manager() { return *m_manager; }
    // The first list.
    PlayListBase* list() { return m_manager->getPlayListByUid(1); }
    floor_store* store() { return m_store.get(); }
    floor_list floorList{};

private:
    Setting m_setting;
    Workplace::Contents m_contents;
    int m_itemsLimit;
    Workplace m_workplace;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<PlayListManager> m_manager;
    FloorStore m_store;
};
