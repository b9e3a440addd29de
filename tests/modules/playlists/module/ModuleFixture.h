#pragma once

#include <gtest/gtest.h>
#include <memory>

#include <QDir>
#include <QTemporaryDir>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "LogCapture.h"
#include "OrvoPlayListItem.h"
#include "Printing.h"
#include "StoreFile.h"

class PlayListWorker;

// What a request was answered with.
struct Answer {
    bool answered = false;
    bool failed = false;
    QVariant value;
    CMError error;

    // The value of the action reply.
    OrvoValue result() const;
    // The error's text, empty on success.
    QString message() const { return failed ? error.message().toString() : QString(); }
};

// The answer of a request, filled in whenever it comes.
using LateAnswer = std::shared_ptr<const Answer>;

// A worker of another module, with what reached it. It answers prepare calls with the items given
// for the paths, or keeps the requests for the test to answer, and everything else with success.
class RecordingWorker : public CMNodesWorker {
public:
    explicit RecordingWorker(const QString& name) : CMNodesWorker({}, name) {}

    void setDataRequest(const CMSetDataRequest& request) override;

    QList<CMSetDataRequest> requests;
    QHash<QString, OrvoPlayListItem> items; // by path text
    bool keepPrepareRequests = false;       // answer none: the test does
};

// The whole module over a real store in a temporary folder, as the host builds it: root, settings,
// worker.
class ModuleFixture : public ::testing::Test, public StoreFile {
protected:
    ModuleFixture();
    ~ModuleFixture() override;

    // Makes the module; called by the first use of `worker()`. Settings are to be made before.
    PlayListWorker* worker();
    // Ends the module and makes it anew over the same files; settings stay.
    void restart();
    void setSetting(const CMPath& path, const QVariant& value);
    QVariant setting(const CMPath& path) { return m_root->getValue(path); }

    // Sends a set-data request without waiting.
    LateAnswer sendLate(const CMPath& path, const QVariant& value);
    LateAnswer sendLate(const CMPath& path, const QVariantHash& args) {
        return sendLate(path, QVariant(args));
    }
    // With the events of one turn of the loop handled when the answer is late.
    Answer send(const CMPath& path, const QVariant& value);
    Answer send(const CMPath& path, const OrvoHash& record) {
        return send(path, record.toVariant());
    }
    OrvoRowsRoles rows(const CMPath& path, int from = 0, int to = CMGetRowsRequest::LastRow,
                       const QStringList& roles = OrvoRoles::defaultNames());
    // The rows of a reply as role maps again.
    static QList<OrvoRoles> asRoles(const OrvoRowsRoles& reply,
                                    const QStringList& roles = OrvoRoles::defaultNames());

    int createPlayList(const QString& name);
    int createCollection(const QString& name);
    // A complete item as a media source delivers it: roles of type 3 with title, uri and pre-play
    // path.
    static OrvoPlayListItem makeItem(const QString& title);
    void addItems(int plid, const QStringList& titles, int mode = 2);
    // The titles of a playlist, in order.
    QStringList titles(int plid);
    // What no command breaks: every rule of a store, and the queue's name.
    void expectInvariants();

    // Everything user interfaces were told since the last clear: "StartingWith playlists:root reset
    // -1" and "Rows playlists:pl/items/7 +4,+5 0 -1".
    QStringList events;

    // What the module is made with.
    QHash<QString, QVariant> config;

    QTemporaryDir folder;
    CMRootWorker* root() { return m_root.get(); }

private:
    QString m_oldFolder;
    std::unique_ptr<CMRootWorker> m_root;
    std::unique_ptr<PlayListWorker> m_worker;
};
