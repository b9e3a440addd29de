#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include "Library.h"
#include "Scanner.h"

// Keeps the library: has it made anew, in a thread, when tracks or tags have changed. That is when
// a scan has ended, and now and then during a long one. Owned by the worker, on the event loop's
// thread; cannot fail.
class LibraryIndex : public QObject {
    Q_OBJECT
public:
    LibraryIndex(MusicTree* tree, Scanner* scanner, QObject* parent = nullptr);
    ~LibraryIndex() override;

    // The tracks whose tags are read, as of the last time; never null.
    const LibraryPtr& library() const { return m_library; }
    // What is listed is not what it should be yet.
    bool isBehind() const { return m_isDirty || m_isBuilding; }
    // For what reads the library in a thread.
    QThreadPool* pool() { return &m_pool; }

Q_SIGNALS:
    void changed();

private:
    void build();
    void take(const LibraryPtr& library);

    MusicTree* m_tree;
    Scanner* m_scanner;
    LibraryPtr m_library = std::make_shared<const Library>();
    bool m_isDirty = false;
    bool m_isBuilding = false;
    QTimer m_timer;
    QElapsedTimer m_buildTime;
    QThreadPool m_pool;
};
