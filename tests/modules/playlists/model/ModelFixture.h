#pragma once

#include <memory>

#include "Collection.h"
#include "PlayList.h"
#include "PlayListManager.h"
#include "SignalLog.h"
#include "StoreFixture.h"

// The manager, as the worker makes it, over a real store in a temporary folder.
class ModelFixture : public StoreFixture {
protected:
    void TearDown() override;

    // Made by the first use, so that a test can prepare the store.
    PlayListManager& manager();
    // Ends model and store and makes both anew over the same file.
    PlayListManager& restart(int itemsLimit = 0);
    // Ends the model, the store stays open.
    void dropManager();
    // One turn of the event loop: what is to be deleted later goes.
    static void settle();

    // A new playlist with one entry per letter, `last` its last played position.
    PlayListBase& playList(const QString& letters, int last = -1,
                           const QString& name = QStringLiteral("list"));
    CollectionBase& collection(const QString& name = QStringLiteral("group"),
                               const QList<PlayListBase*>& members = {});
    // Adds one item per letter.
    static int add(PlayListBase& pl, OrvoPlayListAddPosition::Enum position,
                   const QString& letters);
    // One item per letter.
    static QList<OrvoPlayListItem> letterItems(const QString& letters);
    // The titles of all entries in the file, in order: "abc".
    QString letters(const PlayListBase& pl);
    // Members of a collection in the file, by uid.
    QList<int> membersInFile(const CollectionBase& cl);

    // Each object in memory says what its rows say.
    void expectInStep();
    void expectInStep(PlayListBase& pl);

private:
    std::unique_ptr<PlayListManager> m_manager;
};
