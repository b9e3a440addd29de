#pragma once

#include <QHash>
#include <QUrl>
#include <QVariant>

// What may be played, and how long it may keep the player waiting. Addresses come from strangers:
// anything but sound files of the music folder and HTTP reaches devices and files that are none of
// their business. A value, made from the configuration once; any thread.
class SourceRules {
public:
    // How often a server may send the player on to another address.
    static constexpr int MaxRedirects = 5;

    // What is opened, or why it is not.
    struct Source {
        QUrl url;
        // For the log alone: a stranger would learn from it which files and ports there are.
        QString refusal;
        // The longest that it may give nothing, in milliseconds.
        int timeoutMs = 0;
    };

    // Reads the keys "musicDir", "player/files", "player/fileTimeoutMs" and
    // "player/networkTimeoutMs". Files are played below "musicDir", and without it none, unless
    // "player/files" is "anywhere".
    explicit SourceRules(const QHash<QString, QVariant>& config);

    // The address of a file becomes that of the place where all links end.
    Source source(const QString& uri) const;
    // Where the server of `from` sends the player on to.
    Source redirected(const QUrl& from, const QString& location) const;

private:
    Source file(const QUrl& url) const;
    bool isInMusicFolder(const QString& canonical) const;

    QString m_musicDir;
    bool m_anywhere;
    int m_fileTimeoutMs;
    int m_networkTimeoutMs;
};
