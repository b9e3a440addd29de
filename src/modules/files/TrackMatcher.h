#pragma once

#include <optional>

#include <QHash>
#include <QStringList>

#include "Library.h"

// What another program's list says about a track.
struct TrackHint {
    // What its file may be called, the likeliest first: absolute, or relative to the music folder,
    // with "/" between the parts.
    QStringList files;
    QString title; // where there is no artist: "Artist - Title"
    QString artist;
    QString album;
    qint64 durationMs = 0; // 0: unknown
};

// Finds the track of the library that a hint means:
// 1. the file itself;
// 2. the only file that has the longest ending of the path in common, in whole parts and without
//    case. Where no more than the file's name is the same, a length that differs speaks against it;
// 3. the track with this artist and title and a length within two seconds: the one of this album,
//    else the nearest in length. Without a length it must be the only one.
// Made of one state of the library, then never changed, so that threads share it. Nothing fails.
class TrackMatcher {
public:
    TrackMatcher(const LibraryPtr& library, const QString& musicFolder);

    const LibraryPtr& library() const { return m_library; }
    std::optional<quint32> find(const TrackHint& hint) const;

private:
    // The tracks whose paths have an ending: how many, and one of them.
    struct Ending {
        quint32 count = 0;
        quint32 track = 0;
    };

    QString relative(const QString& file) const;
    std::optional<quint32> byEnding(const QString& file, qint64 durationMs) const;
    std::optional<quint32> byTitle(const TrackHint& hint) const;
    qint64 durationOf(quint32 track) const;
    bool mayLast(quint32 track, qint64 durationMs) const;

    LibraryPtr m_library;
    QString m_musicFolder; // with a "/" at the end
    QHash<QString, quint32> m_files;
    QHash<QString, Ending> m_endings;
    QHash<QString, std::vector<quint32>> m_titles; // "artist - title"
};
