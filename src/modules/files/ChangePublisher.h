#pragma once

#include <unordered_map>

#include <QObject>
#include <QTimer>

#include "CMSubscribe.h"
#include "LibraryIndex.h"
#include "MusicTree.h"
#include "Scanner.h"

// Tells readers what changed: a reset for each folder whose rows are not what they were, and the
// scan's progress as the value `files:scan`. During a scan changes come by the thousand, so they
// are gathered and sent a few times a second; where very many folders changed at once, one reset of
// the whole tree stands for them. Each view of the library is reset when the library is another.
// Owned by the worker, on its thread.
class ChangePublisher : public QObject {
    Q_OBJECT
public:
    ChangePublisher(MusicTree* tree, Scanner* scanner, LibraryIndex* index, CMSubscribe* subscribe,
                    QObject* parent = nullptr);

    static CMPath scanPath();
    // {"state": "scanning" or "ready", "folders", "tracks", "done": tracks whose tags are read}
    OrvoValue scanValue() const;
    // The library has all that is in the music folder.
    bool isReady() const;
    // The first scan is about to begin: from now on the state is what the scanner does.
    void scanBegins() { m_begun = true; }

private:
    void publish();
    void publishRows();
    void publishLibrary();

    MusicTree* m_tree;
    Scanner* m_scanner;
    LibraryIndex* m_index;
    CMSubscribe* m_subscribe;
    QTimer m_timer;
    bool m_libraryChanged = false;
    bool m_begun = false;
    OrvoValue m_published;
    std::unordered_map<const Folder*, std::weak_ptr<Folder>> m_changed;
};
