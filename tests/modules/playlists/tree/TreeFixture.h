#pragma once

#include <QJsonObject>

#include "CMNodes.h"
#include "CMSubscribe.h"
#include "Database.h"
#include "ModuleFixture.h"
#include "PlayListManager.h"

// A row, or other roles, as JSON text: equal when every role is. See README.md for titles.
class RowText : public QString {
public:
    RowText() = default;
    explicit RowText(const QJsonObject& row);
    explicit RowText(const OrvoHash& roles);
};

// What rows are made of, as their readers see it.
namespace Expected {
// The link to a menu.
QJsonObject menu(const QString& title, const QString& path);
// Media data of a container that the module plays.
QJsonObject playable();
QJsonObject header(const QString& title);
// A text to be entered.
QJsonObject entry(const QString& title, const QString& path);
} // namespace Expected

// The rows of a reply, one object each.
QList<RowText> rowTexts(const OrvoRowsRoles& reply);
QList<RowText> rowTexts(const QList<QJsonObject>& rows);
// Only the titles.
QStringList rowTitles(const OrvoRowsRoles& reply);

void PrintTo(const QList<RowText>& rows, std::ostream* out);

// The tree of the whole module.
class TreeFixture : public ModuleFixture {
protected:
    // Before the module is made: what the root shows.
    void show(bool playQueue, bool collections);
    OrvoRowsRoles rowsAt(const QString& path, int from = 0, int to = CMGetRowsRequest::LastRow) {
        return rows(CMPath(path), from, to);
    }
    // The events that `act` leads to, those of the same turn of the event loop only.
    template <typename Act>
    QStringList eventsOf(Act act) {
        worker();
        events.clear();
        act();
        return events;
    }
};

// A store and manager without a worker; the test makes the part of the tree that it is about.
class PartsFixture : public ModuleFixture {
protected:
    PartsFixture();

    // What a node answers.
    static OrvoRowsRoles ask(CMNode* node, const QString& path, int from = 0,
                             int to = CMGetRowsRequest::LastRow,
                             const QStringList& roles = OrvoRoles::defaultNames());

    Database database{0, false};
    PlayListManager manager{&database};
    CMNodes nodes;
    CMSubscribe subscribe;
};
