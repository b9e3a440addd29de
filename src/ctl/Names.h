#pragma once

#include <QVector>

#include "Device.h"

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

// Turns what a person typed into a playlist or collection: its name, exactly as it is written, or
// "#" and its id. The play queue is "queue" or "#0". An id that is not listed is passed on for the
// device to judge: collections may be hidden. Failures are ClientFailure.
class Names {
public:
    static constexpr int QueueId = 0;

    explicit Names(Device* device) : m_device(device) {}

    // The play queue and all playlists.
    const QVector<Named>& playlists();
    const QVector<Named>& collections();

    Named playlist(const QString& text);
    Named collection(const QString& text);
    // The path of a playlist's tracks.
    QString itemsPath(const Named& playlist);

    // The name itself, a usage failure when nothing of it can be seen. An empty one is left to the
    // device.
    static QString visible(const QString& name);

    // The one among `all` that `text` means. `kind` is the word for messages.
    static Named find(const QVector<Named>& all, const QString& text, const QString& kind);

private:
    Device* m_device;
    QVector<Named> m_playlists;
    QVector<Named> m_collections;
    bool m_collectionsRead = false;
};
