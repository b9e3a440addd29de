#include "ListFinder.h"

#include <QPointer>
#include <QTimer>

#include "ListStore.h"

namespace {
constexpr int SearchedAtOnce = 500;
// A list that changes is searched again when it rests.
constexpr int SettleMs = 300;
} // namespace

ListFinder::ListFinder(ListStore* store) : m_store(store) {
    connect(store, &ListStore::inserted, this, &ListFinder::forget);
    connect(store, &ListStore::stale, this, &ListFinder::forget);
}

QString ListFinder::searchText(const QString& text) {
    QString plain;
    for (const QChar c : text.normalized(QString::NormalizationForm_D)) {
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c;
    }
    return plain.toCaseFolded();
}

// What cannot be stood on is not found.
QString ListFinder::textOf(const BrowseRow& row) {
    if (!row.canBeChosen())
        return {};
    return searchText(QStringList{row.title(), row.artist(), row.album()}.join(QLatin1Char('\n')));
}

void ListFinder::forget() {
    ++m_run;
    m_texts.clear();
    m_isComplete = false;
    m_isSearching = false;
    m_matches.clear();
    m_at = -1;
    if (m_wanted.isEmpty())
        return;
    QTimer::singleShot(SettleMs, this, [this, run = m_run] {
        if (run == m_run && !m_wanted.isEmpty())
            begin();
    });
}

void ListFinder::stop() {
    m_wanted.clear();
    m_matches.clear();
    m_at = -1;
    ++m_run;
    m_isSearching = false;
    if (!m_isComplete)
        m_texts.clear();
}

void ListFinder::search(const QString& text, int from) {
    m_wanted = searchText(text.trimmed());
    m_from = from;
    if (m_wanted.isEmpty()) {
        m_matches.clear();
        m_at = -1;
        Q_EMIT changed();
    } else if (m_isComplete) {
        collect();
    } else if (!m_isSearching) {
        begin();
    }
}

void ListFinder::begin() {
    m_isSearching = true;
    m_texts.clear();
    ++m_run;
    readOn();
    Q_EMIT changed();
}

void ListFinder::readOn() {
    const int from = m_texts.size();
    m_store->reader()->read(
        m_store->path(), from, from + SearchedAtOnce - 1,
        [self = QPointer<ListFinder>(this), run = m_run](const RowsAnswer& answer) {
            if (!self || run != self->m_run)
                return;
            for (const QJsonObject& row : answer.rows)
                self->m_texts.append(textOf(BrowseRow(row)));
            const bool isOver = !answer.error.isEmpty() || answer.rows.isEmpty() ||
                                self->m_texts.size() >= answer.count;
            if (!isOver) {
                self->readOn();
                return;
            }
            self->m_isComplete = answer.error.isEmpty();
            self->m_isSearching = false;
            self->collect();
        });
}

void ListFinder::collect() {
    m_matches.clear();
    m_at = -1;
    for (int i = 0; i < m_texts.size(); ++i) {
        if (!m_wanted.isEmpty() && m_texts.at(i).contains(m_wanted))
            m_matches.append(i);
    }
    if (!m_matches.isEmpty()) {
        m_at = 0;
        while (m_at + 1 < m_matches.size() && m_matches.at(m_at) < m_from)
            ++m_at;
        if (m_matches.at(m_at) < m_from)
            m_at = 0;
    }
    Q_EMIT changed();
}

void ListFinder::step(int by) {
    if (m_matches.isEmpty())
        return;
    m_at = (m_at + by + m_matches.size()) % m_matches.size();
    Q_EMIT changed();
}
