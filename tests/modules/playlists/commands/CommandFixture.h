#pragma once

#include <memory>

#include <QRegularExpression>
#include <QVariantHash>

#include "ModuleFixture.h"
#include "OrvoPlayListPaths.h"
#include "StoreWatch.h"

using Path = CMPath (*)();

// A command and what comes of it: the text that its caller or the trace has, whole, and its lines
// in the log.
struct CommandRow {
    const char* what;
    Path path;
    QVariantHash args;
    const char* message;
    QStringList lines = {};
    const char* forbidden = ""; // what the store may not do meanwhile
};

// A module of its own name that stands for media sources and for the player.
struct FakeModules {
    RecordingWorker files{QStringLiteral("Files")};
    RecordingWorker radio{QStringLiteral("Radio")};
    RecordingWorker player{QStringLiteral("Player")};
};

// The whole module, with other modules beside it where a test wants them; see README.md.
class CommandFixture : public ModuleFixture {
protected:
    // Two playlists and a collection: 1 "Party" with a b c, 2 "Quiet" with none, collection 1 "Box"
    // with 2 in it.
    void makeParty();

    // The error of a refused command; fails the test when it succeeded or is unanswered.
    QString refusal(const CMPath& path, const QVariant& args);
    void expectDone(const CMPath& path, const QVariant& args);

    // An item in the form in which requests carry it.
    static QVariantHash itemHash(const QString& title) { return makeItem(title).toHash(); }
    static QVariantList itemHashes(const QStringList& titles);
    // An item whose roles are these.
    static OrvoPlayListItem itemWithRoles(const OrvoRoles& roles);
    static OrvoRoles rolesOfItem(const OrvoPlayListItem& item);
    // Lets `source` prepare an item of that title at that path.
    static void offer(RecordingWorker& source, const QString& path, const QString& title);

    // Ends the module, changes the file, and starts anew.
    void restartAfter(const QString& sql);

    StoreWatch storeWatch;

private:
    sqlite3* open(const QString& name) override;
};
