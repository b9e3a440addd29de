#include "Workplace.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "CMLog.h"

namespace {

constexpr const char* floorFile = "floor.sqlite";
constexpr const char* storeFolder = "data-rw/playlists";
constexpr const char* storeFile = "data-rw/playlists/playlists.sqlite";

void fill(floor_store* store, const Workplace::Contents& contents) {
    const Items& items = Items::of(contents.length, contents.order);
    for (int i = 0; i < contents.lists; ++i) {
        const QByteArray name = "list " + QByteArray::number(i);
        floor_list list;
        CM_ASSERT(floor_create_playlist(store, {name.constData(), name.size()}, &list),
                  "no list to begin with");
        CM_ASSERT(contents.length == 0 ||
                      floor_add(store, &list, floor_append, items.forFloor().data(), items.size()),
                  "no entries to begin with");
    }
}

} // namespace

Workplace::Workplace(const QString& storage, const Contents& contents, bool durable)
    : m_oldFolder(QDir::currentPath()), m_durable(durable) {
    CM_ASSERT(QDir().mkpath(storage), "the storage cannot be made");
    QTemporaryDir folder(storage + QStringLiteral("/orvo-bench-XXXXXX"));
    CM_ASSERT(folder.isValid(), "no folder on the storage");
    folder.setAutoRemove(false);
    m_folder = folder.path();
    QDir::setCurrent(m_folder);
    CM_ASSERT(QDir().mkpath(QString::fromLatin1(storeFolder)), "no folder for the store");

    m_image = image(contents);
    restore();
}

// The file with these contents. Another process makes it: the heap of this one stays as it is.
QByteArray Workplace::image(const Contents& contents) const {
    const pid_t child = fork();
    CM_ASSERT(child >= 0, "no process");
    if (child == 0) {
        fill(openFloor().get(), contents);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    QFile laidOut(QString::fromLatin1(floorFile));
    CM_ASSERT(status == 0 && laidOut.open(QIODevice::ReadOnly), "what was laid out cannot be read");
    return laidOut.readAll();
}

Workplace::~Workplace() {
    QDir::setCurrent(m_oldFolder);
    QDir(m_folder).removeRecursively();
}

FloorStore Workplace::openFloor() const {
    FloorStore store(floor_open(floorFile));
    CM_ASSERT(store, "the floor's store cannot be opened");
    return store;
}

void Workplace::restore() {
    copy(QString::fromLatin1(floorFile));
    copy(QString::fromLatin1(storeFile));
}

void Workplace::copy(const QString& to) const {
    QFile file(to);
    CM_ASSERT(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                  file.write(m_image) == m_image.size() && file.flush() &&
                  (!m_durable || fsync(file.handle()) == 0),
              "a store cannot be laid out");
}
