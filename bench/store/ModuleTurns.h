#pragma once

#include <memory>

#include "CMRootWorker.h"
#include "floor.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListWorker.h"
#include "PlayLogicInterface.h"
#include "Work.h"
#include "Workplace.h"

// A player that carries everything out at once and makes no sound.
class SilentPlayer : public PlayerCommands {
public:
    SilentPlayer() { PlayLogicInterface::playerInstance()->setPlayer(this); }
    ~SilentPlayer() override { PlayLogicInterface::playerInstance()->setPlayer(nullptr); }
    void carryOut(const PlayLogicCommand& command) override { command.reply.setValue({}); }
};

// Turns of the whole module as a host builds it: root, worker, tree, controller and play logic over
// the store. Requests go through the root.
class ModuleTurns : public Turns {
public:
    ModuleTurns(const Setting& setting, const Workplace::Contents& contents);
    ~ModuleTurns() override;

protected:
    void startOver();

    int size() const { return m_setting.size; }
    static CMPath itemsPath() { return OrvoPlayListPlGetItemsPath() + QStringLiteral("1"); }
    // False when the request failed.
    bool send(const CMPath& path, const QVariant& value, QVariant* answer = nullptr);
    // Plays the first list from its first entry on.
    bool play(bool shuffled);
    PlayListBase* list();
    // The floor's store is open beside the module's.
    floor_store* store() { return m_store.get(); }
    floor_list floorList{};

private:
    void open();
    void close();

    Setting m_setting;
    Workplace::Contents m_contents;
    Workplace m_workplace;
    SilentPlayer m_player;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<PlayListWorker> m_worker;
    FloorStore m_store;
};
