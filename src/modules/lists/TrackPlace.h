#pragma once

#include <QStringList>

// Where an entry of a playlist file leads. Nothing here looks at the disk.
struct TrackPlace {
    // Of an entry on the network, as it stands in the file.
    QString address;
    // What a file may be called, the likeliest first: absolute, or relative to the music folder.
    // Programs do not say whether a backslash divides folders and whether "%20" is a blank.
    QStringList files;

    // `base` is the folder of the playlist file, from which relative names start.
    static TrackPlace of(const QString& location, bool isUri, const QString& base);
};
