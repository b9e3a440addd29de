#pragma once

#include <QJsonDocument>
#include <QProcess>

#include "FilesWorker.h"
#include "GatewayFixture.h"
#include "PlayListManager.h"
#include "PlayListWorker.h"
#include "PlayLogicProbe.h"
#include "StoreFile.h"
#include "TrackSource.h"

// What one run of the program left behind.
struct CtlRun {
    int status = -1;
    QByteArray out;
    QByteArray err;

    QJsonDocument json() const { return QJsonDocument::fromJson(out); }
};

// The program against a device in the test's process: the real gateway, playlists and files, and
// "x" as a further source. A test that needs a player brings its own.
class CtlFixture : public GatewayFixture {
protected:
    CtlFixture();
    ~CtlFixture() override;

    // Runs orvoctl with the device's address, these words and this standard input.
    CtlRun ctl(const QStringList& words, const QByteArray& input = {});
    static CtlRun runProgram(const QStringList& words, const QByteArray& input = {});

    // A playlist with these tracks of "x"; gives its id.
    int playlist(const QString& name, const QStringList& tracks = {});
    PlayListBase* list(int id) { return logic().manager()->getPlayListByUid(id); }
    PlayLogicProbe logic();
    // The playlists module ends, its file is changed, and it starts anew.
    void restartPlayLists(const QString& sql = {});
    // What the file says: the names of all playlists but the queue, and where a list's tracks are.
    // Those in the music folder go by their names there.
    QStringList names() { return m_store.query("SELECT name FROM playlists WHERE uid > 0"); }
    QStringList tracks(int id);

    // A file in the music folder, with its folders.
    QString makeFile(const QString& name);
    QString musicFolder() const { return m_folder.filePath(QStringLiteral("music")); }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(port()); }

    TrackSource m_source;
    StoreFile m_store;

private:
    QString m_oldFolder;
    std::unique_ptr<FilesWorker> m_files;
    std::unique_ptr<PlayListWorker> m_playLists;
};
