#pragma once

#include <QJsonDocument>
#include <QProcess>

#include "FakeFiles.h"
#include "FakePlayLists.h"
#include "GatewayFixture.h"

// What one run of the program left behind.
struct CtlRun {
    int status = -1;
    QByteArray out;
    QByteArray err;

    QJsonDocument json() const { return QJsonDocument::fromJson(out); }
};

// The program against a device made of the test's own modules.
class CtlFixture : public GatewayFixture {
protected:
    CtlFixture();

    // Runs orvoctl with the device's address, these words and this standard input.
    CtlRun ctl(const QStringList& words, const QByteArray& input = {});
    static CtlRun runProgram(const QStringList& words, const QByteArray& input = {});
    // A playlist with these tracks; gives its id.
    int playlist(const QString& name, const QStringList& tracks = {});
    // A file in the music folder, with its folders.
    QString makeFile(const QString& name);
    QString musicFolder() const { return m_folder.filePath(QStringLiteral("music")); }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(port()); }

    FakePlayLists m_playLists;
    FakeFiles m_files;
};
