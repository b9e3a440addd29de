#pragma once

#include <QString>

// How a playlist file names its tracks' files.
class TrackAddress {
public:
    enum class Paths { Relative, Absolute, Url };

    // `areUris`: this kind of file holds addresses with percent codes only, no names.
    TrackAddress(Paths paths, bool areUris, const QString& musicFolder);

    // Of the address that a track is played from. What is no file stays as it is. A name that a
    // line cannot hold is written with percent codes, whatever the kind.
    QString of(const QString& uri) const;

private:
    Paths m_paths;
    bool m_areUris;
    QString m_musicFolder; // with a "/" at the end
};
