#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

// Pictures from inside of music files, kept as files of the data folder that are named after their
// content, so that the picture of an album is there once. Belongs to the thread that reads tags.
// Fails by keeping nothing, with a word in the log.
class PictureStore {
public:
    // Larger ones are no covers; the gateway would not serve them either.
    static constexpr int MaxPictureBytes = 8 * 1024 * 1024;
    // Of all together: a disk must not fill up with them.
    static constexpr qint64 MaxTotalBytes = 512LL * 1024 * 1024;

    // An empty folder keeps nothing.
    explicit PictureStore(const QString& folder, qint64 maxTotalBytes = MaxTotalBytes);

    // Where pictures are kept in a data folder.
    static QString folderIn(const QString& dataFolder);

    bool isUsable() const { return !m_folder.isEmpty(); }
    // The name of the file that has these bytes now. Empty for what is neither PNG, JPEG, GIF nor
    // WebP, too large, or cannot be written.
    QString keep(const QByteArray& bytes);
    bool has(const QString& name) const { return m_names.contains(name); }
    QString file(const QString& name) const { return m_folder + QLatin1Char('/') + name; }

private:
    bool write(const QString& name, const QByteArray& bytes);

    QString m_folder;
    qint64 m_maxTotalBytes;
    QSet<QString> m_names;
    qint64 m_totalBytes = 0;
    bool m_failureLogged = false;
};
