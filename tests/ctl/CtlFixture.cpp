#include "CtlFixture.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <QUrl>

#include "OrvoPlayListPaths.h"

CtlFixture::CtlFixture()
    : m_store(m_folder.filePath(QStringLiteral("device/") + StoreFile::File)),
      m_oldFolder(QDir::currentPath()) {
    QDir().mkpath(musicFolder());
    QDir().mkpath(m_folder.filePath(QStringLiteral("device")));
    QDir::setCurrent(m_folder.filePath(QStringLiteral("device")));
    m_files = std::make_unique<FilesWorker>(
        QHash<QString, QVariant>{{QStringLiteral("musicDir"), musicFolder()}});
    restartPlayLists();
}

CtlFixture::~CtlFixture() {
    m_playLists.reset();
    turnEventLoop();
    QDir::setCurrent(m_oldFolder);
}

void CtlFixture::restartPlayLists(const QString& sql) {
    m_playLists.reset();
    turnEventLoop();
    m_store.run(sql);
    m_playLists = std::make_unique<PlayListWorker>(QHash<QString, QVariant>());
}

PlayLogicProbe CtlFixture::logic() {
    return PlayLogicProbe(
        static_cast<PlayListPlayLogic*>(m_playLists->nodes()->find(OrvoPlayListsPlayLogicPath())));
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
    PlayListBase* list = logic().manager()->createPlayList(name);
    QList<OrvoPlayListItem> items;
    for (const QString& track : tracks)
        items.append(TrackSource::item(track));
    if (!items.isEmpty()) {
        EXPECT_EQ(list->addItems(OrvoPlayListAddPosition::Append, items), 0);
    }
    return list->getUid();
}

QStringList CtlFixture::tracks(int id) {
    QStringList tracks =
        m_store.query(QStringLiteral("SELECT url FROM playlists_items JOIN items ON item = uid"
                                     " WHERE playlist = %1 ORDER BY sequenceNumber")
                          .arg(id));
    for (QString& track : tracks) {
        if (QUrl(track).isLocalFile())
            track = QDir(musicFolder()).relativeFilePath(QUrl(track).toLocalFile());
    }
    return tracks;
}

QString CtlFixture::makeFile(const QString& name) {
    const QString file = musicFolder() + QLatin1Char('/') + name;
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    EXPECT_TRUE(out.open(QIODevice::WriteOnly));
    return file;
}
