#include "HostProcess.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>

namespace {
constexpr int LimitMs = 20000;
}

HostProcess::HostProcess(const QStringList& arguments, const QString& mode,
                         const QString& workingDir, const QString& before) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVO_PROBE", mode);
    // The poorest of locales, as a service has it.
    environment.insert("LC_ALL", "C");
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(workingDir);
    m_process.start("/bin/sh",
                    QStringList{"-c", before + R"( && exec "$0" "$@")", ORVO_HOST} + arguments);
    EXPECT_TRUE(m_process.waitForStarted(LimitMs));
}

HostProcess::~HostProcess() {
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(LimitMs);
    }
}

bool HostProcess::waitUntil(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (m_process.state() == QProcess::NotRunning || timer.hasExpired(LimitMs))
            return false;
        m_process.waitForReadyRead(20);
    }
    return true;
}

int HostProcess::end() {
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(LimitMs))
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

int HostProcess::endBy(int number) {
    signal(number);
    return end();
}

QString HostFixture::read(const QString& file) {
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? QString::fromUtf8(in.readAll()) : QString();
}
