#include "DataFolder.h"

#include <sys/file.h>
#include <unistd.h>

#include <QDir>

bool DataFolder::take(QString* error) {
    const QDir folder(m_path);
    if (!folder.mkpath(QStringLiteral("."))) {
        *error = QStringLiteral("cannot make the data folder %1").arg(m_path);
        return false;
    }
    if (!lock(folder.filePath(QStringLiteral("orvo-host.lock")), error))
        return false;
    if (!QDir::setCurrent(m_path)) {
        *error = QStringLiteral("cannot enter the data folder %1").arg(m_path);
        return false;
    }
    return true;
}

// The lock is the kernel's and ends with the process; the file itself stays, and what is in it only
// tells people who has it. So a process killed at any moment leaves nothing that bars the next one.
bool DataFolder::lock(const QString& name, QString* error) {
    m_lock.setFileName(name);
    if (!m_lock.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
        *error = QStringLiteral("cannot write to the data folder %1").arg(m_path);
        return false;
    }
    if (flock(m_lock.handle(), LOCK_EX | LOCK_NB) != 0) {
        *error = QStringLiteral("the data folder %1 is in use by process %2")
                     .arg(m_path, QString::fromLatin1(m_lock.readLine(32).trimmed()));
        return false;
    }
    m_lock.resize(0);
    m_lock.write(QByteArray::number(getpid()) + '\n');
    return true;
}

QString DataFolder::settingsFile() const {
    return QDir(m_path).filePath(QStringLiteral("settings.json"));
}
