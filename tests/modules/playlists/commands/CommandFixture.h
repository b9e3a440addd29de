#pragma once

#include <algorithm>
#include <memory>

#include <QRegularExpression>
#include <QVariantHash>

#include "ModuleFixture.h"
#include "OrvoPlayListPaths.h"
#include "StoreWatch.h"

using Path = CMPath (*)();

// A command as the tests know it that say something of every one.
struct Command {
    Path path;
    const char* handler; // its name in the trace
    const char* prefix;  // the first sentence of its errors, "" where it has none
    QVariantHash args;   // what it can do to playlist 1 and collection 1 of makeParty()
    bool takesRevision = false;
};

// A request and what comes of it: the text that its caller or the trace has, whole, and its lines
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
    // All commands of the module. One after the other, those that take a revision leave something
    // to do for the next.
    static const QList<Command>& commands();
    // The handlers of the commands that no row is about.
    template <typename Row>
    static QStringList handlersWithout(const QList<Row>& rows);

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

template <typename Row>
QStringList CommandFixture::handlersWithout(const QList<Row>& rows) {
    QStringList handlers;
    for (const Command& command : commands()) {
        const auto isAboutIt = [&](const Row& row) { return row.path == command.path; };
        if (std::none_of(rows.begin(), rows.end(), isAboutIt))
            handlers.append(command.handler);
    }
    return handlers;
}
