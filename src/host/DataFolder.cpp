#include "DataFolder.h"

#include <QDir>

bool DataFolder::take(QString* error) {
    const QDir folder(m_path);
    if (!folder.mkpath(QStringLiteral("."))) {
        *error = QStringLiteral("cannot make the data folder %1").arg(m_path);
        return false;
    }
    m_lock = std::make_unique<QLockFile>(folder.filePath(QStringLiteral("orvo-host.lock")));
    // A lock is as old as its process: only the death of that process frees it.
    m_lock->setStaleLockTime(0);
    if (!m_lock->tryLock(0)) {
        if (m_lock->error() == QLockFile::LockFailedError) {
            qint64 pid = 0;
            QString host;
            QString program;
            m_lock->getLockInfo(&pid, &host, &program);
            *error =
                QStringLiteral("the data folder %1 is in use by process %2").arg(m_path).arg(pid);
        } else {
            *error = QStringLiteral("cannot write to the data folder %1").arg(m_path);
        }
        return false;
    }
    if (!QDir::setCurrent(m_path)) {
        *error = QStringLiteral("cannot enter the data folder %1").arg(m_path);
        return false;
    }
    return true;
}

QString DataFolder::settingsFile() const {
    return QDir(m_path).filePath(QStringLiteral("settings.json"));
}
