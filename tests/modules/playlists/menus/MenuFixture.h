#pragma once

#include <memory>
#include <vector>

#include "KeepingWorker.h"
#include "TreeFixture.h"

// What menus are made of.
namespace Expected {
QJsonObject action(const QString& title, const QString& path);
QJsonObject edit(const QString& title, const QString& path, const QJsonObject& value);
QJsonObject separator();
QJsonObject text(const QString& value);
QJsonObject flag(bool value);
// A command's answer as the requester gets it, without the close event and with the one of the menu
// at `closes`.
RowText done(const QJsonObject& value);
RowText doneAndClosed(const QJsonObject& value, const QString& closes);
} // namespace Expected

// The tree of the whole module, used as an interface uses it: by the paths that rows carry.
class MenuFixture : public TreeFixture {
protected:
    Answer select(const QString& path, const QVariantHash& value = {}) {
        return send(CMPath(path), QVariant(value));
    }
    // What a successful answer holds; the error's text otherwise, which equals no answer.
    static RowText answerText(const Answer& answer);
    // A menu's title, path, count and rows as a whole.
    void expectMenu(const QString& path, const QString& title, const QList<QJsonObject>& rows);
    // Whether every one of these requests is refused as unknown, and no client is told anything.
    void expectNotTaken(const QStringList& paths);
    // A number that SQLite gave to the track.
    QString itemId(int plid, int place);
};

// The seven nodes without the module's worker.
class MenuAloneFixture : public PartsFixture {
protected:
    MenuAloneFixture();

    // Chooses an entry. True when the node took it.
    bool choose(const QString& path, const QVariant& value, const CMReply<QVariant>& reply = {});
    // What choosing it sent: "playlists:pl/play {"plid":1}", "nothing" when the node did not take
    // it.
    QString sent(const QString& path, const QVariant& value = QVariantHash());
    void destroyNodes() { m_made.clear(); }

    KeepingWorker module{QStringLiteral("PlayLists")};

private:
    std::vector<std::unique_ptr<CMNode>> m_made;
};
