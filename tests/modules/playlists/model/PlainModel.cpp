#include "PlainModel.h"

#include <algorithm>

namespace {

QString numbers(const QList<int>& values) {
    QStringList texts;
    for (int value : values)
        texts.append(QString::number(value));
    return texts.join(QLatin1Char(','));
}

QString origin(const PlainList& list) {
    return QStringLiteral("pl%1 ").arg(list.uid);
}

} // namespace

void PlainList::rearrange(const QStringList& newEntries) {
    const QString before = played();
    entries = newEntries;
    if (!before.isEmpty() && entries.contains(before))
        last = entries.indexOf(before);
}

int PlainModel::itemCount() const {
    int count = 0;
    for (const PlainList& list : lists)
        count += list.entries.size();
    return count;
}

PlainModel::Outcome PlainModel::add(PlainList& list, int position,
                                    const QStringList& titles) const {
    static const char* const names[] = {"now", "afterCurrent", "append"};
    const int room = itemsLimit == 0 ? titles.size() : itemsLimit - itemCount();
    const QStringList fitting = titles.mid(0, room);
    if (fitting.isEmpty())
        return {-2, {}};
    const bool behindPlayed = position != 2 && !list.played().isEmpty();
    const int first = behindPlayed ? list.last + 1 : list.entries.size();
    list.entries = list.entries.mid(0, first) + fitting + list.entries.mid(first);
    return {first,
            {origin(list) + QStringLiteral("itemsAdded %1 %2 %3")
                                .arg(QLatin1String(names[position]))
                                .arg(first)
                                .arg(fitting.size())}};
}

PlainModel::Outcome PlainModel::addAt(PlainList& list, const QList<int>& positions,
                                      const QStringList& titles, bool allOrNothing) const {
    QList<int> sorted = positions;
    std::sort(sorted.begin(), sorted.end());
    const QSet<int> distinct(positions.begin(), positions.end());
    if (titles.isEmpty() || positions.size() != titles.size() || sorted != positions ||
        distinct.size() != positions.size() || sorted.first() < 0 ||
        sorted.last() >= list.entries.size() + titles.size())
        return {-1, {}};
    const int room = itemsLimit == 0 ? titles.size() : std::max(0, itemsLimit - itemCount());
    const int count = std::min(room, titles.size());
    if (count == 0 || (allOrNothing && count < titles.size()))
        return {-2, {}};
    QStringList entries = list.entries;
    for (int i = 0; i < count; ++i)
        entries.insert(positions.at(i), titles.at(i));
    list.rearrange(entries);
    return {positions.first(),
            {origin(list) + QStringLiteral("itemsInserted ") + numbers(positions.mid(0, count))}};
}

PlainModel::Outcome PlainModel::remove(PlainList& list, const QList<int>& indices) {
    if (indices.isEmpty())
        return {0, {}};
    const QSet<int> gone(indices.begin(), indices.end());
    const bool bad = gone.size() != indices.size() ||
                     std::any_of(indices.begin(), indices.end(), [&list](int index) {
                         return index < 0 || index >= list.entries.size();
                     });
    if (bad)
        return {-1, {}};
    QStringList left;
    int before = 0;
    for (int i = 0; i < list.entries.size(); ++i) {
        if (!gone.contains(i))
            left.append(list.entries.at(i));
        else if (i < list.last)
            ++before;
    }
    QList<int> sorted = indices;
    std::sort(sorted.begin(), sorted.end());
    const QStringList heard = {
        origin(list) + QStringLiteral("itemsRemoved %1 %2").arg(numbers(sorted)).arg(list.last)};
    // A played entry that goes leaves its place to the next one.
    list.last -= before;
    list.entries = left;
    return {indices.size(), heard};
}

PlainModel::Outcome PlainModel::move(PlainList& list, int from, int to) {
    const int size = list.entries.size();
    if (std::min(from, size) == std::min(to, size))
        return {1, {}};
    if (from < 0 || to < 0 || from >= size)
        return {0, {}};
    to = std::min(to, size - 1);
    if (from == to)
        return {1, {}};
    QStringList entries = list.entries;
    entries.insert(to, entries.takeAt(from));
    list.rearrange(entries);
    return {1, {origin(list) + QStringLiteral("itemMoved %1 %2").arg(from).arg(to)}};
}

PlainModel::Outcome PlainModel::moveSeveral(PlainList& list, const QList<int>& indices, int to) {
    if (indices.isEmpty())
        return {1, {}};
    const int size = list.entries.size();
    const QSet<int> moved(indices.begin(), indices.end());
    const bool bad = to < 0 || std::any_of(moved.begin(), moved.end(), [size](int index) {
                         return index < 0 || index >= size;
                     });
    if (bad)
        return {0, {}};
    to = std::min(to, size - 1);
    const bool fromBefore =
        std::any_of(moved.begin(), moved.end(), [to](int index) { return index <= to; });
    QStringList front;
    QStringList block;
    QStringList back;
    for (int i = 0; i < size; ++i) {
        const bool isFront = fromBefore ? i <= to : i < to;
        (moved.contains(i) ? block : isFront ? front : back).append(list.entries.at(i));
    }
    list.rearrange(front + block + back);
    return {1, {}};
}

PlainModel::Outcome PlainModel::setOrder(PlainList& list, const QList<int>& order) {
    QStringList entries;
    for (int position : order)
        entries.append(list.entries.value(position));
    const QSet<int> named(order.begin(), order.end());
    if (named.size() != order.size() || order.size() != list.entries.size() ||
        QSet<QString>(entries.begin(), entries.end()) !=
            QSet<QString>(list.entries.begin(), list.entries.end()))
        return {0, {}};
    if (entries == list.entries)
        return {1, {}};
    list.rearrange(entries);
    return {1, {origin(list) + QStringLiteral("itemsReordered ") + numbers(order)}};
}

PlainModel::Outcome PlainModel::clear(PlainList& list) {
    if (list.entries.isEmpty())
        return {1, {}};
    list.entries.clear();
    return {1, {origin(list) + QStringLiteral("itemsCleared")}};
}

PlainModel::Outcome PlainModel::deleteList(int index) {
    if (index == 0)
        return {0, {}};
    const int uid = lists.at(index).uid;
    Outcome outcome{1, {}};
    for (PlainCollection& collection : collections) {
        if (collection.members.remove(uid))
            outcome.heard.append(QStringLiteral("cl%1 playlistRemoved").arg(collection.uid));
    }
    outcome.heard.append(QStringLiteral("playlistDeleted %1").arg(uid));
    lists.removeAt(index);
    return outcome;
}

void PlainModel::restart() {
    lists.first().entries.clear();
}

QString toText(const PlainList& list) {
    return QStringLiteral("%1 '%2' shuffle %3 repeat %4 last %5: %6")
        .arg(list.uid)
        .arg(list.name)
        .arg(int(list.shuffle))
        .arg(int(list.repeatAll))
        .arg(list.last)
        .arg(list.entries.join(QLatin1Char(' ')));
}

QString toText(const PlainCollection& collection) {
    QList<int> members = collection.members.values();
    std::sort(members.begin(), members.end());
    return QStringLiteral("%1 '%2': %3").arg(collection.uid).arg(collection.name, numbers(members));
}
