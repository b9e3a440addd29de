#include "SignalLog.h"

#include "CollectionBase.h"
#include "PlayListBase.h"
#include "PlayListManager.h"

namespace {
QString text(int number) {
    return QString::number(number);
}

QString text(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString text(const QList<int>& numbers) {
    QStringList texts;
    for (int number : numbers)
        texts.append(text(number));
    return texts.join(QLatin1Char(','));
}
} // namespace

void SignalLog::watch(PlayListBase* pl, const QString& origin) {
    using Pl = PlayListBase;
    connect(pl, &Pl::itemsAdded, this, [=, this](const QString& position, int first, int count) {
        add(origin, {"itemsAdded", position, text(first), text(count)});
    });
    connect(pl, &Pl::itemsInserted, this, [=, this](const QList<int>& positions) {
        add(origin, {"itemsInserted", text(positions)});
    });
    connect(pl, &Pl::itemsRemoved, this, [=, this](const QList<int>& indices, int last) {
        add(origin, {"itemsRemoved", text(indices), text(last)});
    });
    connect(pl, &Pl::itemMoved, this, [=, this](int from, int to) {
        add(origin, {"itemMoved", text(from), text(to)});
    });
    connect(pl, &Pl::itemsReordered, this, [=, this](const QList<int>& order) {
        add(origin, {"itemsReordered", text(order)});
    });
    connect(pl, &Pl::itemsCleared, this, [=, this] { add(origin, {"itemsCleared"}); });
    connect(pl, &Pl::shuffleChanged, this, [=, this](bool value) {
        add(origin, {"shuffleChanged", text(value)});
    });
    connect(pl, &Pl::repeatAllChanged, this, [=, this](bool value) {
        add(origin, {"repeatAllChanged", text(value)});
    });
    connect(pl, &Pl::nameChanged, this, [=, this](const QString& name) {
        add(origin, {"nameChanged", name});
    });
}

void SignalLog::watch(CollectionBase* cl, const QString& origin) {
    using Cl = CollectionBase;
    connect(cl, &Cl::playlistAdded, this, [=, this] { add(origin, {"playlistAdded"}); });
    connect(cl, &Cl::playlistRemoved, this, [=, this] { add(origin, {"playlistRemoved"}); });
}

void SignalLog::watch(PlayListManager* manager, const QString& origin) {
    using Manager = PlayListManager;
    connect(manager, &Manager::playlistCreated, this, [=, this](int uid) {
        add(origin, {"playlistCreated", text(uid)});
    });
    connect(manager, &Manager::playlistDeleted, this, [=, this](int uid) {
        add(origin, {"playlistDeleted", text(uid)});
    });
    connect(manager, &Manager::collectionCreated, this, [=, this](int uid) {
        add(origin, {"collectionCreated", text(uid)});
    });
    connect(manager, &Manager::collectionDeleted, this, [=, this](int uid) {
        add(origin, {"collectionDeleted", text(uid)});
    });
}

QStringList SignalLog::take() {
    QStringList lines;
    lines.swap(m_lines);
    return lines;
}

void SignalLog::add(const QString& origin, const QStringList& words) {
    const QString line = words.join(QLatin1Char(' '));
    m_lines.append(origin.isEmpty() ? line : origin + QLatin1Char(' ') + line);
}
