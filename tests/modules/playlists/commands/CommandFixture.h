#pragma once

#include <memory>

#include <QRegularExpression>
#include <QVariantHash>

#include "ModuleFixture.h"
#include "OrvoPlayListPaths.h"
#include "StoreWatch.h"

struct sqlite3;

// The answer of a request, filled in whenever it comes.
using LateAnswer = std::shared_ptr<const Answer>;

// A module of its own name that stands for media sources and for the player.
struct FakeModules {
    RecordingWorker files{QStringLiteral("Files")};
    RecordingWorker radio{QStringLiteral("Radio")};
    RecordingWorker player{QStringLiteral("Player")};
};

// The whole module, with other modules beside it where a test wants them; see README.md.
class CommandFixture : public ModuleFixture {
protected:
    CommandFixture();
    ~CommandFixture() override;

    // Two playlists and a collection: 1 "Party" with a b c, 2 "Quiet" with none, collection 1 "Box"
    // with 2 in it.
    void makeParty();

    // Sends without waiting.
    LateAnswer sendLate(const CMPath& path, const QVariantHash& args);
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

    // What the file holds, read through a connection of the test's own: "a b c".
    QString stored(int plid);
    QStringList query(const QString& sql);
    void run(const QString& sql);
    // Makes every `operation` ("INSERT", "DELETE", "UPDATE") on the table fail.
    void forbid(const QString& operation, const QString& table);
    void allowAll();
    // Ends the module, changes the file, and starts anew.
    void restartAfter(const QString& sql);
    // Numbers dense, nothing orphaned, the file sound.
    void expectSoundStore();

    StoreWatch storeWatch;

private:
    sqlite3* raw();
    void closeRaw();

    sqlite3* m_raw = nullptr;
    QStringList m_triggers;
};

// Qt values in test messages.
void PrintTo(const QString& text, std::ostream* out);
void PrintTo(const QStringList& texts, std::ostream* out);
