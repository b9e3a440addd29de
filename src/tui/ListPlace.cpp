#include "ListPlace.h"

namespace {

// What a title says before the row's own: "Playlist - " in "Playlist - Party", opened from "Party".
QString leadOf(const QString& published, const QString& rowTitle) {
    const bool says = !rowTitle.isEmpty() && published != rowTitle &&
                      published.endsWith(QStringLiteral(" - ") + rowTitle);
    return says ? published.chopped(rowTitle.size()) : QString();
}

QString counted(int count, const QString& what) {
    return QStringLiteral("%1 %2%3").arg(count).arg(what,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

QSet<QString> pathsOf(const QHash<QString, BrowseRow>& rows) {
    return {rows.keyBegin(), rows.keyEnd()};
}

} // namespace

ListPlace::ListPlace(const QString& path, const BrowseRow& row, RowReader* reader,
                     const QString& name)
    : m_row(row), m_name(name), m_store(path, reader), m_cursor(&m_store), m_finder(&m_store) {
    connect(&m_store, &ListStore::titleChanged, this, [this] {
        if (m_lead.isEmpty())
            m_lead = leadOf(m_store.title(), m_row.title());
    });
    for (const auto signal : {&ListStore::rowsChanged, &ListStore::countChanged,
                              &ListStore::titleChanged, &ListStore::stale})
        connect(&m_store, signal, this, &ListPlace::changed);
    connect(&m_finder, &ListFinder::changed, this, [this] {
        if (m_finder.match() >= 0)
            m_cursor.jumpTo(m_finder.match());
        Q_EMIT changed();
    });
}

QString ListPlace::title() const {
    QString published = m_store.title();
    if (published.isEmpty())
        return m_row.isThere() ? m_row.title() : m_name;
    if (!m_lead.isEmpty() && published.startsWith(m_lead))
        return published.mid(m_lead.size());
    if (!m_row.title().isEmpty() && published.startsWith(m_row.title()))
        return m_row.title();
    return published;
}

QString ListPlace::amount() const {
    if (!m_store.isLoaded())
        return {};
    if (m_store.count() == 0)
        return QStringLiteral("empty");
    const bool tracks = activeRow().type() == BrowseRow::Audio ||
                        m_store.row(m_cursor.top()).type() == BrowseRow::Audio;
    return counted(m_store.count(), tracks ? QStringLiteral("track") : QStringLiteral("item"));
}

QString ListPlace::playLogicPath() const {
    const QString own = BrowseRow(m_store.roles()).playLogicPath();
    return own.isEmpty() ? m_row.playLogicPath() : own;
}

QJsonObject ListPlace::container() const {
    QJsonObject roles{
        {QStringLiteral("mediaData"), m_row.roles().value(QLatin1String("mediaData"))}};
    const QJsonObject& own = m_store.roles();
    for (auto role = own.begin(); role != own.end(); ++role)
        roles.insert(role.key(), role.value());
    roles.insert(QStringLiteral("path"), path());
    roles.insert(QStringLiteral("type"), int(BrowseRow::Container));
    return roles;
}

bool ListPlace::followRow(const ListStore& parent) {
    if (!m_row.isThere() || !parent.isCurrent())
        return true;
    for (int i = 0; i < parent.count(); ++i) {
        if (parent.row(i).path() == path()) {
            m_row = parent.row(i);
            return true;
        }
    }
    return false;
}

void ListPlace::toggleChosen(const BrowseRow& row) {
    if (!m_chosen.remove(row.path()))
        m_chosen.insert(row.path(), row);
}

QVector<BrowseRow> ListPlace::chosenRows() const {
    QVector<BrowseRow> rows;
    QHash<QString, BrowseRow> left = m_chosen;
    for (const int index : m_store.indicesOf(pathsOf(left)))
        rows.append(left.take(m_store.row(index).path()));
    for (const BrowseRow& row : qAsConst(left))
        rows.append(row);
    return rows;
}

QVector<int> ListPlace::chosenIndices() const {
    if (!m_chosen.isEmpty())
        return m_store.indicesOf(pathsOf(m_chosen));
    return m_cursor.active() >= 0 && m_store.isFresh(m_cursor.active())
               ? QVector<int>{m_cursor.active()}
               : QVector<int>();
}

bool ListPlace::isSettling() const {
    return m_store.isReading() ||
           (m_chosen.isEmpty() && m_cursor.active() >= 0 && !m_store.isFresh(m_cursor.active()));
}

int ListPlace::indexAt(const QPoint& point) const {
    if (!m_area.contains(point))
        return -1;
    const int index = m_cursor.top() + point.y() - m_area.top();
    return index < m_store.count() ? index : -1;
}
