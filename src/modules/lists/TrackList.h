#pragma once

#include <vector>

#include <QString>

// One entry of a playlist file. Texts are empty and numbers 0 where the file says nothing.
struct ListedTrack {
    int line = 0;       // in the file, from 1
    QString location;   // as it stands there
    bool isUri = false; // is what it is in this kind of file, and has percent codes
    QString title;      // in M3U and PLS often "Artist - Title"
    QString artist;
    QString album;
    QString artworkUrl;
    qint64 durationMs = 0;
};

// What a playlist file says.
struct TrackList {
    QString name;
    std::vector<ListedTrack> tracks;
};
