#pragma once

#include "AddFolderJob.h"

class Device;

// What a person wants to add (files, folders, paths of the device) as sources. A local name is
// looked up in the device's own music folder. Failures are ClientFailure.
class MusicSources {
public:
    explicit MusicSources(Device* device) : m_device(device) {}

    AddFolderJob::Source of(const QString& word);

    // The path of a local file or folder inside the music folder. Both names are canonical.
    static QString pathOf(const QString& file, const QString& musicFolder);

private:
    QString musicFolder();

    Device* m_device;
    QString m_musicFolder;
};
