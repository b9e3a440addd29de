#pragma once

#include <memory>

#include <QByteArray>
#include <QTemporaryDir>

#include "Baseline.h"
#include "CMRootWorker.h"
#include "Database.h"
#include "Items.h"
#include "OrvoPlayListPaths.h"
#include "PlayListBase.h"
#include "PlayListManager.h"
#include "PlayListWorker.h"
#include "PlayLogicInterface.h"
#include "Workload.h"

// A folder on one storage with two stores of the same contents, the module's and the baseline's,
// both open. Shared by the functions of a workload, and gone with them.
//
// The process works inside the folder while this lives, because the module's paths are relative. A
// failure of the preparations ends the process: a benchmark has no use for half a store.
class BenchStore : private PlayerCommands {
public:
    // Lists to begin with: `lists` of `length` entries each, with the uids 1, 2, …
    struct Contents {
        int lists = 0;
        int length = 0;
        Items::Order order = Items::Order::Albums;
    };
    // What is open of ours: the store, the model over it, or the module as a host builds it, with
    // root, tree, controller and play logic.
    enum class Parts { Store, Model, Module };

    // itemsLimit: as the store takes it, 0 for none.
    BenchStore(const Setting& setting, const Contents& contents, Parts parts, int itemsLimit = 0);
    ~BenchStore() override;
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;

    // Both closed, laid out as at the beginning where `anew`, and opened again.
    void reopen(bool anew);
    void startOver() { reopen(true); }

    Database& database() { return *m_database; }
    PlayListManager& manager() { return *m_manager; }
    // The first list, ours and the baseline's.
    PlayListBase* list() { return m_manager->getPlayListByUid(1); }
    Baseline::List* baselineList() { return &m_list; }
    Baseline& baseline() { return *m_baseline; }

    // Requests of the whole module go through the root. False, with a line on stderr, where one is
    // refused.
    static bool send(const CMPath& path, const QVariant& value, QVariant* answer = nullptr);
    static CMPath itemsPath() { return OrvoPlayListPlGetItemsPath() + QStringLiteral("1"); }
    // Plays the first list from its first entry on.
    bool play(bool shuffled);
    // Both read the first list, a piece at a time: the page caches are as full as they get.
    void readThrough();

private:
    // A player that carries everything out at once and makes no sound.
    void carryOut(const PlayLogicCommand& command) override { command.reply.setValue({}); }
    void fill();
    void copyImage(const char* to) const;
    void open();
    void close();

    Contents m_contents;
    Parts m_parts;
    int m_itemsLimit;
    bool m_isDisk;
    QString m_oldFolder;
    QTemporaryDir m_folder;
    QByteArray m_image; // of the file that both begin with
    std::unique_ptr<Database> m_ownDatabase;
    std::unique_ptr<PlayListManager> m_ownManager;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<PlayListWorker> m_worker;
    Database* m_database = nullptr;
    PlayListManager* m_manager = nullptr;
    std::unique_ptr<Baseline> m_baseline;
    Baseline::List m_list;
};
