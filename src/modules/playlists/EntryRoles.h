#pragma once

#include <QByteArray>
#include <QVector>

// What the rows of a page are made of: of some entries the numbers and the stored roles texts, in
// UTF-8 one behind the other, and nothing else of their items. A value; made by the store.
struct EntryRoles {
    struct Entry {
        int sequenceNumber;
        int uid;
        // Where the text ends; it begins where the one before does.
        int end;
    };
    QVector<Entry> entries;
    QByteArray texts;
    // The entry where the reading stopped, because there were texts enough; -1 when all were read.
    int next = -1;
};
