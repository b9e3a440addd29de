#include "ListCursor.h"

#include "ListStore.h"

namespace {
// So far away a row is still recognised as the active one.
constexpr int Reach = 200;
} // namespace

ListCursor::ListCursor(ListStore* store) : m_store(store) {
    connect(store, &ListStore::rowsChanged, this, &ListCursor::onRows);
    connect(store, &ListStore::inserted, this, &ListCursor::onInserted);
    connect(store, &ListStore::countChanged, this, &ListCursor::onCount);
    connect(store, &ListStore::stale, this, &ListCursor::remember);
}

void ListCursor::setHeight(int rows) {
    if (m_height != qMax(1, rows)) {
        m_height = qMax(1, rows);
        reveal();
    }
    want();
}

void ListCursor::move(int by) {
    if (m_store->count() <= 0)
        return;
    const int last = m_store->count() - 1;
    const int to = int(qBound<qint64>(0, qint64(m_active) + by, last));
    setActive(nearestChoosable(to, by < 0 ? -1 : 1));
}

void ListCursor::home() {
    if (m_store->count() > 0)
        setActive(nearestChoosable(0, 1));
}

void ListCursor::end() {
    if (m_store->count() > 0)
        setActive(nearestChoosable(m_store->count() - 1, -1));
}

void ListCursor::jumpTo(int index) {
    if (m_store->count() <= 0)
        return;
    const int to = qBound(0, index, m_store->count() - 1);
    // In the middle of the view, unless it is in view anyway.
    if (to < m_top || to >= m_top + m_height)
        m_top = qMax(0, to - m_height / 2);
    setActive(to);
}

void ListCursor::expect(int index, const QString& path) {
    m_active = index;
    m_isLooking = true;
    m_key = path;
    want();
}

// Where there is none in that direction, the other one is looked at.
int ListCursor::nearestChoosable(int from, int direction) const {
    for (const int step : {direction, -direction}) {
        for (int i = from; i >= 0 && i < m_store->count(); i += step) {
            if (m_store->row(i).canBeChosen())
                return i;
        }
    }
    return from;
}

void ListCursor::setActive(int index) {
    m_active = index;
    if (m_isLooking)
        m_key = m_store->row(index).path();
    reveal();
    want();
}

void ListCursor::reveal() {
    if (m_active < 0) {
        m_top = 0;
        return;
    }
    if (m_active < m_top)
        m_top = m_active;
    else if (m_active >= m_top + m_height)
        m_top = m_active - m_height + 1;
    m_top = qBound(0, m_top, qMax(0, m_store->count() - m_height));
    // A heading above the first row that can be chosen is shown with it.
    int above = m_top;
    while (above > 0 && m_store->row(above - 1).isThere() && !m_store->row(above - 1).canBeChosen())
        --above;
    if (m_active - above < m_height)
        m_top = above;
}

// A view's length ahead in both directions.
void ListCursor::want() {
    int from = m_top - m_height;
    int to = m_top + 2 * m_height;
    if (m_isLooking && m_store->isLoaded()) {
        from = qMin(from, m_active - Reach);
        to = qMax(to, m_active + Reach + 1);
    }
    m_store->want(from, to);
}

void ListCursor::onRows() {
    if (m_isLooking)
        keepPlace();
    if (m_store->count() > 0) {
        const int from = qBound(0, m_active, m_store->count() - 1);
        m_active = nearestChoosable(from, 1);
        reveal();
    }
    want();
}

void ListCursor::onInserted(int at, int count) {
    if (m_active >= at)
        m_active += count;
    if (m_top > 0 && m_top >= at)
        m_top += count;
    reveal();
}

void ListCursor::onCount() {
    m_active = qMin(m_active, m_store->count() - 1);
    reveal();
    want();
}

void ListCursor::remember() {
    if (m_active < 0 || m_isLooking)
        return;
    m_key = m_store->row(m_active).path();
    m_isLooking = !m_key.isEmpty();
}

void ListCursor::keepPlace() {
    const int count = m_store->count();
    if (count <= 0) {
        m_isLooking = false;
        return;
    }
    const int near = qBound(0, m_active, count - 1);
    const int found = find(m_key, near);
    if (found >= 0) {
        m_isLooking = false;
        m_top += found - m_active;
        m_active = found;
        return;
    }
    for (int i = qMax(0, near - Reach); i < qMin(count, near + Reach + 1); ++i) {
        if (!m_store->isFresh(i))
            return; // perhaps among those that are still to come
    }
    m_isLooking = false;
    m_active = near;
}

int ListCursor::find(const QString& key, int near) const {
    for (int distance = 0; distance <= Reach; ++distance) {
        for (const int i : {near - distance, near + distance}) {
            if (m_store->isFresh(i) && m_store->row(i).path() == key)
                return i;
        }
    }
    return -1;
}
