#pragma once

#include <QStringView>

#include "OrvoPlayListItem.h"

// Counts what the texts of several items come to, against a limit. A value of the code that
// collects the items; nothing here fails.
class TextBudget {
public:
    explicit TextBudget(qint64 maxBytes) : m_left(maxBytes) {}

    // In UTF-8, without making it.
    static qint64 bytesOf(QStringView text);
    // Every text of the item, also those that the store has no column for.
    static qint64 bytesOf(const OrvoPlayListItem& item);

    // False when the items are more than the limit now; then it stays so.
    bool take(qint64 bytes) {
        m_left -= bytes;
        return !isExceeded();
    }
    bool isExceeded() const { return m_left < 0; }

private:
    qint64 m_left;
};
