#pragma once

#include <csignal>
#include <functional>
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

// One run of the built orvo-host. Ended by its destructor if it still runs.
class HostProcess {
public:
    // `mode` is what the probe module does, `before` a shell's command that comes first ("ulimit").
    HostProcess(const QStringList& arguments, const QString& mode = {},
                const QString& workingDir = {}, const QString& before = "true");
    ~HostProcess();

    // False when the process ends instead.
    bool waitUntil(const std::function<bool()>& condition);
    bool waitUntilReady() {
        return waitUntil([this] { return output().contains("orvo-host is ready\n"); });
    }
    void signal(int number) const { ::kill(pid_t(m_process.processId()), number); }
    // Waits for the end and gives the exit status; -1 when it did not end, or not by itself.
    int end();
    // Signals the end and waits for it.
    int endBy(int number);
    bool diedBySignal() const { return m_process.exitStatus() == QProcess::CrashExit; }
    qint64 pid() const { return m_process.processId(); }

    QString output() { return m_output += QString::fromUtf8(m_process.readAllStandardOutput()); }
    QString errors() { return m_errors += QString::fromUtf8(m_process.readAllStandardError()); }

private:
    QProcess m_process;
    QString m_output;
    QString m_errors;
};

// A temporary folder with room for a data folder.
class HostFixture : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString data(const QString& name) const { return path("data/" + name); }
    // --data and the probe module, and what follows.
    QStringList arguments(const QStringList& more = {}) const {
        return QStringList{"--data", path("data"), "--module", PROBE_MODULE} + more;
    }
    static QString read(const QString& file);
    QStringList probeLog() const { return read(data("probe.log")).split('\n', Qt::SkipEmptyParts); }

private:
    QTemporaryDir m_folder;
};
