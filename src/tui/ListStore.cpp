#include "ListStore.h"

#include <algorithm>

#include <QPointer>

#include "PathText.h"

namespace {
constexpr int MaxRequests = 2;
constexpr int MaxKept = 4000;
constexpr int KeepAround = 1200;
} // namespace

ListStore::ListStore(const QString& path, RowReader* reader) : m_path(path), m_reader(reader) {}

const BrowseRow& ListStore::row(int index) const {
    static const BrowseRow onItsWay;
    const auto found = m_rows.find(index);
    return found == m_rows.end() ? onItsWay : found->second.row;
}

bool ListStore::isFresh(int index) const {
    const auto found = m_rows.find(index);
    return found != m_rows.end() && found->second.generation == m_generation;
}

QVector<int> ListStore::indicesOf(const QSet<QString>& paths) const {
    QVector<int> found;
    for (const auto& [index, slot] : m_rows) {
        if (slot.generation == m_generation && paths.contains(slot.row.path()))
            found.append(index);
    }
    return found;
}

bool ListStore::isCurrent() const {
    return isLoaded() && kept() == m_count && (m_count > 0 || m_emptyGeneration == m_generation) &&
           std::all_of(m_rows.begin(), m_rows.end(), [this](const auto& entry) {
               return entry.second.generation == m_generation;
           });
}

void ListStore::want(int from, int to) {
    m_wantedFrom = qMax(0, from);
    m_wantedTo = qMax(to, m_wantedFrom + 1);
    pump();
}

void ListStore::pump() {
    if (m_closed)
        return;
    for (const int page : missingPages()) {
        if (int(m_requests.size()) >= MaxRequests)
            return;
        if (!m_requests.count(page))
            fetch(page);
    }
}

// Those nearest to the middle of the view first.
QVector<int> ListStore::missingPages() const {
    const int last = isLoaded() ? qMax(0, m_count - 1) : PageSize - 1;
    const int first = qMin(m_wantedFrom, last) / PageSize;
    const int end = qMin(m_wantedTo - 1, last) / PageSize;
    QVector<int> pages;
    for (int page = first; page <= end; ++page) {
        if (!isPageFresh(page))
            pages.append(page);
    }
    const qint64 middle = (qint64(m_wantedFrom) + m_wantedTo) / 2;
    const auto distance = [middle](int page) {
        return qAbs(qint64(page) * PageSize + PageSize / 2 - middle);
    };
    std::stable_sort(pages.begin(), pages.end(),
                     [&](int a, int b) { return distance(a) < distance(b); });
    return pages;
}

bool ListStore::isPageFresh(int page) const {
    if (!isLoaded())
        return false;
    if (m_count == 0)
        return m_emptyGeneration == m_generation;
    const int end = int(qMin<qint64>(m_count, qint64(page + 1) * PageSize));
    for (int i = page * PageSize; i < end; ++i) {
        if (!isFresh(i))
            return false;
    }
    return true;
}

void ListStore::fetch(int page) {
    const int ticket = ++m_lastTicket;
    m_requests[page] = ticket;
    const int from = page * PageSize;
    m_reader->read(
        m_path, from, from + PageSize - 1,
        [self = QPointer<ListStore>(this), page, from, ticket](const RowsAnswer& answer) {
            if (!self || self->m_closed)
                return;
            const auto request = self->m_requests.find(page);
            if (request == self->m_requests.end() || request->second != ticket)
                return;
            self->m_requests.erase(request);
            if (!answer.error.isEmpty()) {
                Q_EMIT self->failed(answer.error, answer.status);
                return;
            }
            self->take(from, answer);
            // A listener may have let the list go.
            if (self)
                self->pump();
        });
}

// Everything is in its place before the listeners are told: they may ask for more.
void ListStore::take(int from, const RowsAnswer& answer) {
    const Head before = head();
    takeHead(answer);
    if (answer.count == 0)
        m_emptyGeneration = m_generation;
    // A list that shrank meanwhile answers with its end instead.
    if (from < m_count) {
        for (int i = 0; i < answer.rows.size(); ++i)
            m_rows[from + i] = {BrowseRow(answer.rows.at(i)), m_generation};
        m_rows.erase(m_rows.lower_bound(m_count), m_rows.end());
    }
    forgetFarRows();
    tellHead(before);
    Q_EMIT rowsChanged();
}

void ListStore::takeHead(const RowsAnswer& answer) {
    m_roles = answer.roles;
    m_title = answer.title;
    m_revision = answer.revision;
    if (answer.count == m_count)
        return;
    if (isLoaded()) {
        // The device did not say where: everything may have shifted.
        Q_EMIT stale();
        ++m_generation;
        cancelFrom(0);
    }
    m_count = answer.count;
    m_rows.erase(m_rows.lower_bound(m_count), m_rows.end());
}

void ListStore::tellHead(const Head& before) {
    if (before.count != m_count)
        Q_EMIT countChanged();
    if (before.title != m_title)
        Q_EMIT titleChanged();
}

void ListStore::forgetFarRows() {
    if (kept() <= MaxKept)
        return;
    const int middle = int((qint64(m_wantedFrom) + m_wantedTo) / 2);
    m_rows.erase(m_rows.begin(), m_rows.lower_bound(middle - KeepAround));
    m_rows.erase(m_rows.upper_bound(middle + KeepAround), m_rows.end());
}

void ListStore::apply(const ListChange& change) {
    if (m_closed || !(change.below ? PathText::isAtOrBelow(m_path, change.path)
                                   : PathText::isSamePlace(m_path, change.path)))
        return;
    if (change.revision >= 0)
        m_revision = change.revision;
    const QPointer<ListStore> self(this);
    const QVector<Run> runs = insertedRuns(change.changes);
    if (!runs.isEmpty() && !isLoaded()) {
        invalidate();
    } else {
        for (const Run& run : runs)
            insert(run);
    }
    if (self && change.changes.contains(QLatin1String("reset")))
        invalidate();
    if (self && change.changes.contains(QLatin1String("close")))
        close();
}

// "+4", "+5", "+9" are runs of neighbours: 2 rows at 4, 1 row at 9.
QVector<ListStore::Run> ListStore::insertedRuns(const QStringList& changes) {
    QVector<Run> runs;
    for (const QString& change : changes) {
        if (!change.startsWith(QLatin1Char('+')))
            continue;
        const int at = change.midRef(1).toInt();
        if (!runs.isEmpty() && at == runs.last().at + runs.last().count)
            ++runs.last().count;
        else
            runs.append({at, 1});
    }
    return runs;
}

void ListStore::insert(const Run& run) {
    const int at = qBound(0, run.at, m_count);
    cancelFrom(at);
    std::map<int, Slot> moved;
    for (auto entry = m_rows.lower_bound(at); entry != m_rows.end(); ++entry) {
        // Those behind carry their position: it is another one now.
        entry->second.generation = 0;
        moved.emplace(entry->first + run.count, std::move(entry->second));
    }
    m_rows.erase(m_rows.lower_bound(at), m_rows.end());
    m_rows.merge(moved);
    m_count += run.count;
    Q_EMIT inserted(at, run.count);
    Q_EMIT countChanged();
    pump();
}

void ListStore::invalidate() {
    if (m_closed)
        return;
    Q_EMIT stale();
    ++m_generation;
    cancelFrom(0);
    pump();
}

void ListStore::cancelFrom(int index) {
    for (auto request = m_requests.begin(); request != m_requests.end();) {
        const bool touched = (request->first + 1) * PageSize > index;
        request = touched ? m_requests.erase(request) : std::next(request);
    }
}

void ListStore::close() {
    if (m_closed)
        return;
    m_closed = true;
    cancelFrom(0);
    Q_EMIT closed();
}

void ListStore::lookAtHead() {
    if (m_closed || isReading() || !isLoaded())
        return;
    m_reader->read(
        m_path, 0, 0,
        [self = QPointer<ListStore>(this), generation = m_generation](const RowsAnswer& answer) {
            // Only a second look: what is being read anyway knows better.
            if (!self || self->m_closed || self->isReading() || generation != self->m_generation ||
                !answer.error.isEmpty())
                return;
            const Head before = self->head();
            self->takeHead(answer);
            self->tellHead(before);
            if (self)
                self->pump();
        });
}
