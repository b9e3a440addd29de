#pragma once

#include "Device.h"
#include "Names.h"

// The device's playlists and collections by the names that a person typed. Failures are
// ClientFailure. Made by main.
class Lists {
public:
    explicit Lists(Device* device) : m_device(device) {}

    // The play queue and all playlists.
    const QVector<Named>& playlists();
    const QVector<Named>& collections();

    Named playlist(const QString& text);
    Named collection(const QString& text);
    // The path of a playlist's tracks.
    QString itemsPath(const Named& playlist);

private:
    Device* m_device;
    QVector<Named> m_playlists;
    std::optional<QVector<Named>> m_collections;
};
