#pragma once

#include <functional>

#include <QSet>
#include <QStringList>

#include "Device.h"

// Turns what a person wants to add (files, folders, paths of the device) into the paths of tracks,
// in order. A local name is looked up in the device's own music folder; folders are read from the
// device, which knows what is a track. Failures are ClientFailure.
class TrackFinder {
public:
    // `found` is told how many tracks there are so far.
    TrackFinder(Device* device, std::function<void(int)> found)
        : m_device(device), m_found(std::move(found)) {}

    QStringList find(const QStringList& words);

    // The path of a local file or folder inside the music folder. Both names are canonical.
    static QString pathOf(const QString& file, const QString& musicFolder);

private:
    QString toPath(const QString& word, bool* isFolder);
    QString musicFolder();
    void addFolder(const QString& path, const DeviceRows& content, int depth);
    void addTrack(const QString& path);

    Device* m_device;
    std::function<void(int)> m_found;
    QString m_musicFolder;
    QStringList m_tracks;
    QSet<QString> m_open; // folders that are being read: none is entered from inside itself
};
