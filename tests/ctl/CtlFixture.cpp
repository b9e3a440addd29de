#include "CtlFixture.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

CtlFixture::CtlFixture() : m_files(musicFolder()) {
    QDir().mkpath(musicFolder());
}

CtlRun CtlFixture::ctl(const QStringList& words, const QByteArray& input) {
    return runProgram(QStringList{QStringLiteral("--url"), url()} + words, input);
}

CtlRun CtlFixture::runProgram(const QStringList& words, const QByteArray& input) {
    QProcess program;
    QEventLoop loop;
    QObject::connect(&program, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    QTimer::singleShot(PatienceMs, &loop, &QEventLoop::quit);
    program.start(QStringLiteral(ORVOCTL), words);
    program.write(input);
    program.closeWriteChannel();
    loop.exec();
    CtlRun run;
    if (program.state() == QProcess::NotRunning && program.exitStatus() == QProcess::NormalExit)
        run.status = program.exitCode();
    program.kill();
    program.waitForFinished();
    run.out = program.readAllStandardOutput();
    run.err = program.readAllStandardError();
    return run;
}

int CtlFixture::playlist(const QString& name, const QStringList& tracks) {
    const int id = m_playLists.lists.lastKey() + 10;
    m_playLists.lists.insert(id, {name, tracks, -1, 0, 0});
    return id;
}

QString CtlFixture::makeFile(const QString& name) {
    const QString file = musicFolder() + QLatin1Char('/') + name;
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly));
    return file;
}
