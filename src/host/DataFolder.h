#pragma once

#include <QFile>
#include <QString>

// The folder where everything is kept that outlives the process. Taking it makes it, locks it
// against a second host (two processes on one database would corrupt each other's view) and makes
// it the working directory. Owned by main; the lock goes with this object, or with the process
// however it ends.
class DataFolder {
public:
    explicit DataFolder(const QString& path) : m_path(path) {}

    // False when the folder cannot be used; *error says why.
    bool take(QString* error);

    QString settingsFile() const;

private:
    bool lock(const QString& name, QString* error);

    QString m_path;
    QFile m_lock;
};
