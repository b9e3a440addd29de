#pragma once

#include <dirent.h>
#include <memory>
#include <vector>

#include <QCollator>
#include <QDeadlineTimer>
#include <QString>

// What one folder on the disk holds, sub-folders and tracks each in the order of listing.
struct FolderEntries {
    struct Entry {
        QString name;
        QCollatorSortKey sortKey;
        QString mimeType;    // tracks only
        qint64 size = 0;     // tracks only
        qint64 modified = 0; // tracks only, nanoseconds
    };
    std::vector<Entry> folders;
    std::vector<Entry> tracks;
    QString artwork; // the name of the picture to show for the folder, empty when there is none
};

// Reads one folder in slices. Left out are hidden files, files that are no audio, and with a word
// in the log: names that are not UTF-8, links to folders (whatever they may lead to is listed at
// its own place, and without them there are no loops), and links to files outside the music folder.
// A folder that cannot be read is logged and empty.
//
// The order is that of a person: "2 b" before "10 a", upper and lower case alike, and where that
// leaves two names equal, by their code points, so that it is the same every time.
class FolderListing {
public:
    // Both paths are canonical; `folder` is `root` or below it.
    FolderListing(const QString& folder, const QString& root);

    // Reads on until the deadline. True when everything is there.
    bool read(const QDeadlineTimer& deadline);
    const FolderEntries& entries() const { return m_entries; }

private:
    struct CloseDir {
        void operator()(DIR* dir) const { closedir(dir); }
    };

    void open();
    void add(const dirent& found);
    bool leadsInside(const QString& name) const;
    void considerArtwork(const QString& name);
    void finish();

    QString m_folder;
    QString m_root;
    std::unique_ptr<DIR, CloseDir> m_dir;
    QCollator m_collator;
    FolderEntries m_entries;
    int m_artworkRank;
    bool m_finished = false;
};
