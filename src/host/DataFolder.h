#pragma once

#include <QFile>
#include <QString>

// The folder where everything is kept that outlives the process. Taking it makes it, locks it
// against a second host (two processes on one database would corrupt each other's view) and makes
// it the working directory. The lock is on the folder itself; the file orvo-host.lock says who has
// it and is locked as well. Owned by main; the locks go with this object, or with the process
// however it ends.
class DataFolder {
public:
    explicit DataFolder(const QString& path) : m_path(path) {}
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    // False when the folder cannot be used; *error says why.
    bool take(QString* error);

    QString settingsFile() const;

private:
    bool lockFolder(QString* error);
    bool lockFile(QString* error);
    QString inUse() const;
    QString lockFileName() const;

    QString m_path;
    int m_folder = -1;
    QFile m_lock;
};
