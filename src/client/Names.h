#pragma once

#include <QJsonObject>
#include <QVector>

// A playlist or collection: what people call it and what commands call it.
struct Named {
    int id = -1;
    QString name;

    // As shown to people: Party (#5), or only #5 where the device lists none of that id.
    QString label() const {
        const QString number = QStringLiteral("#%1").arg(id);
        return name.isEmpty() ? number : name + QStringLiteral(" (") + number + QLatin1Char(')');
    }
};

// Playlists and collections in the rows that list them, and by what a person types: the name,
// exactly as it is written, or "#" and the id. The play queue is "queue" or "#0".
namespace Names {

constexpr int QueueId = 0;

// The play queue, and all playlists of the rows. `items`: the path below which their tracks are.
QVector<Named> playlists(const QVector<QJsonObject>& rows, const QString& items);
QVector<Named> collections(const QVector<QJsonObject>& rows, const QString& items);
// The number behind `list` in `path`; -1 when there is none, as in rows that do something else.
int idBelow(const QString& path, const QString& list);

// The one among `all` that `text` means; `kind` is the word for messages. An id that is not listed
// is passed on for the device to judge: collections may be hidden. Failures are ClientFailure.
Named find(const QVector<Named>& all, const QString& text, const QString& kind);
// The name itself, a usage failure when nothing of it can be seen. An empty one is left to the
// device.
QString visible(const QString& name);

} // namespace Names
