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

// A folder on one storage with two stores of the same contents, the module's and the baseline's,
// both open, and gone with this object.
//
// The process works inside the folder while this lives, because the module's paths are relative. A
// failure of the preparations ends the process: a benchmark has no use for half a store.
class BenchStore : private PlayerCommands {
public:
    // What is open of ours: the store, the model over it, or the module as a host builds it, with
    // root, tree, controller and play logic.
    enum class Parts { Store, Model, Module };
    struct Contents {
        // To begin with: `lists` of `length` entries each, with the uids 1, 2, …
        int lists = 0;
        int length = 0;
        Items::Order order = Items::Order::Albums;
        Parts parts = Parts::Model;
        int itemsLimit = 0; // as the store takes it, 0 for none
    };

    BenchStore(const QString& storage, bool isDisk, const Contents& contents);
    ~BenchStore() override;
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;

    // Both are closed, laid out as at the beginning where `anew`, and opened again.
    void reopen(bool anew);
    // The model, where only the store is open.
    void makeManager() { m_ownManager = std::make_unique<PlayListManager>(m_database.get()); }

    PlayListManager& manager() { return m_ownManager ? *m_ownManager : *m_modulesManager; }
    // The first list.
    PlayListBase* list() { return manager().getPlayListByUid(1); }
    Baseline& baseline() { return *m_baseline; }
    Baseline::List baselineList;

    // Requests of the whole module go through the root. False, with a line on stderr, where one is
    // refused.
    static bool send(const CMPath& path, const QVariant& value, QVariant* answer = nullptr);
    static CMPath itemsPath() { return OrvoPlayListPlGetItemsPath() + QStringLiteral("1"); }
    // Plays the first list from its first entry on.
    void play(bool shuffled);
    // Both read the first list, a piece at a time: the page caches are as full as they get.
    void readThrough();

private:
    // A player that carries everything out at once and makes no sound.
    void submit(const PlayLogicCommand& command) override { command.reply.setValue({}); }
    QByteArray image() const;
    void open();
    void close();

    Contents m_contents;
    bool m_isDisk;
    QString m_oldFolder;
    QTemporaryDir m_folder;
    QByteArray m_image; // of the file that both begin with
    std::unique_ptr<Database> m_database;
    std::unique_ptr<PlayListManager> m_ownManager;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<PlayListWorker> m_worker;
    PlayListManager* m_modulesManager = nullptr;
    std::unique_ptr<Baseline> m_baseline;
};
