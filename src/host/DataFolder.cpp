#include "DataFolder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>

bool DataFolder::take(QString* error) {
    const QDir folder(m_path);
    if (!folder.mkpath(QStringLiteral("."))) {
        *error = QStringLiteral("cannot make the data folder %1").arg(m_path);
        return false;
    }
    if (!lockFolder(error) || !lockFile(error))
        return false;
    if (!QDir::setCurrent(m_path)) {
        *error = QStringLiteral("cannot enter the data folder %1").arg(m_path);
        return false;
    }
    return true;
}

DataFolder::~DataFolder() {
    if (m_folder >= 0)
        ::close(m_folder);
}

// A file in it can be deleted while it is locked, and the next host would lock another one; the
// folder itself cannot. The locks are the kernel's and end with the process, so one that is killed
// at any moment leaves nothing that bars the next one.
bool DataFolder::lockFolder(QString* error) {
    m_folder = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_folder < 0) {
        *error = QStringLiteral("cannot open the data folder %1: %2")
                     .arg(m_path, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    // Some network file systems lock no folders. There the lock of the file has to do.
    if (flock(m_folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return true;
    *error = inUse();
    return false;
}

// Older hosts know this lock alone. The file stays, and what is in it only tells people who has the
// folder.
bool DataFolder::lockFile(QString* error) {
    const int descriptor = ::open(QFile::encodeName(lockFileName()).constData(),
                                  O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
    if (descriptor < 0 || !m_lock.open(descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered,
                                       QFileDevice::AutoCloseHandle)) {
        *error = QStringLiteral("cannot write to the data folder %1").arg(m_path);
        return false;
    }
    struct stat about {};
    if (::fstat(descriptor, &about) != 0 || !S_ISREG(about.st_mode)) {
        *error = QStringLiteral("cannot lock the data folder %1: orvo-host.lock is no regular file")
                     .arg(m_path);
        return false;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        *error = inUse();
        return false;
    }
    m_lock.resize(0);
    m_lock.write(QByteArray::number(getpid()) + '\n');
    return true;
}

QString DataFolder::inUse() const {
    QFile file(lockFileName());
    QString process;
    if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly))
        process = QString::fromLatin1(file.readLine(32).trimmed());
    return process.isEmpty()
               ? QStringLiteral("the data folder %1 is in use by another process").arg(m_path)
               : QStringLiteral("the data folder %1 is in use by process %2").arg(m_path, process);
}

QString DataFolder::lockFileName() const {
    return QDir(m_path).filePath(QStringLiteral("orvo-host.lock"));
}

QString DataFolder::settingsFile() const {
    return QDir(m_path).filePath(QStringLiteral("settings.json"));
}
