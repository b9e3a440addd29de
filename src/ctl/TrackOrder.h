#pragma once

#include <QJsonObject>
#include <QList>
#include <QVector>

// The order in which people sort tracks, by the rows of a list: numbers by their value, case and
// accents aside, an album's tracks in the album's own order. What lacks the text that is sorted by
// comes last, and equals stay as they are.
//   by title, {"Track 10", "élan", "track 9"} gives {1, 2, 0}
class TrackOrder {
public:
    enum class Field { Title, Artist, Album, Duration };

    // Null when there is no field of that name; `names` lists them.
    static const Field* field(const QString& name);
    static QString names();

    // The present positions in the new order. Reversed, an album keeps its own order, and what
    // lacks the text stays last.
    static QList<int> sorted(const QVector<QJsonObject>& rows, Field by, bool reversed = false);
    // The positions of those whose file or address stands further up already.
    static QList<int> duplicates(const QVector<QJsonObject>& rows);
};
