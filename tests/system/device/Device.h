#pragma once

#include <gtest/gtest.h>
#include <memory>

#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

#include "HttpClient.h"
#include "StoreFile.h"

// A process as a user without privileges has it: a file that is read-only is read-only for root,
// too.
class UnprivilegedProcess : public QProcess {
public:
    // No file may become longer, as on a full disk.
    void limitFileSize(qint64 bytes) { m_fileSize = bytes; }
    // So many files can be open at once, at most.
    void limitOpenFiles(int count) { m_openFiles = count; }

protected:
    void setupChildProcess() override;

private:
    qint64 m_fileSize = -1;
    int m_openFiles = -1;
};

// One running orvo-host over its own data and music folders, with the default modules. Killed by
// its destructor.
class Device {
public:
    struct ProgramRun {
        int status = -1;
        QString out;
        QString err;
    };

    // Three albums of short WAV files are in the music folder. The arguments are the host's.
    explicit Device(const QStringList& arguments = {"--audio-sink", "null"});
    ~Device();

    bool start() { return launch() && waitUntilReady(); }
    // The two halves of start(), for what happens during it.
    bool launch();
    bool waitUntilReady();
    // The log has the text so many times.
    bool waitForLog(const QString& text, int times = 1);
    // A start that is to fail. The status is that of the process, -1 when a signal ended it.
    ProgramRun failingStart();
    void limitFileSize(qint64 bytes) { m_process.limitFileSize(bytes); }
    void limitOpenFiles(int count) { m_process.limitOpenFiles(count); }
    // SIGTERM. The status is that of the process, -1 when it did not end by itself.
    int end();
    // SIGKILL: nothing in the process gets a chance to tidy up.
    void kill();
    void waitForScan();

    // The command's answer; `value` is the JSON text of its value.
    HttpAnswer command(const QByteArray& path, const QByteArray& value);
    QJsonObject rows(const QByteArray& path, const QByteArray& roles = "title");
    QStringList titles(const QByteArray& path);
    ProgramRun ctl(const QStringList& arguments);

    // The string value at the path, e.g. the player's state.
    QString stringValue(const QByteArray& path);
    bool waitForValue(const QByteArray& path, const QString& value);

    qint64 pid() const { return m_process.processId(); }
    quint16 port() const { return m_port; }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }
    QString musicFolder() const { return m_folder.filePath("music"); }
    QString databaseFile() const {
        return m_folder.filePath("device/data-rw/playlists/playlists.sqlite");
    }
    QString log() const;

    QStringList query(const char* sql) const { return StoreFile(databaseFile()).query(sql); }
    void expectInvariants() const;

private:
    QStringList hostArguments() const;
    QString portFile() const { return m_folder.filePath("port"); }

    QTemporaryDir m_folder;
    QStringList m_arguments;
    UnprivilegedProcess m_process;
    quint16 m_port = 0;
    std::unique_ptr<HttpClient> m_client;
};
