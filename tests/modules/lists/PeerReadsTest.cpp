#include <totem-pl-parser.h>

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include "ListsFixture.h"

namespace {

// What programs that are none of ours make of the files that are written. They lie in the music
// folder, from which relative names start.
class PeerReads : public ListsFixture {
protected:
    void SetUp() override {
        track("Ann/First/01 One.wav", {"One", "Ann", "First", {}, 1});
        track(QString::fromUtf8("Zoë/Café/#1, 100% & more.wav"), {"<Percent>", {}, {}, {}, 0});
        track("[odd] 'names'/a;b=c?.wav");
        track("#start.wav");
        start();
        call("playlists:pl/create", {{"name", "Mine"}});
        call("playlists:pl/addItems", {{"plid", 1}, {"items", QStringList{"files:tree"}}});
        ASSERT_EQ(tracks(1).size(), 4);
    }

    static void write(const QString& name, const QByteArray& bytes) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    // The playlist as such a file.
    QString exported(const QString& format, const QString& paths) const {
        const QString name = musicFolder() + '/' + paths + '.' + format;
        write(name, exportList(1, format, paths).text().toUtf8());
        return name;
    }

    QString belowMusicFolder(QString file) const { return file.remove(musicFolder() + '/'); }
};

// A music player daemon, told what to do over its socket.
class Daemon {
public:
    ~Daemon() {
        m_process.terminate();
        m_process.waitForFinished();
    }

    void start() {
        const QString socketName = QDir::currentPath() + "/mpd.socket";
        QFile file("mpd.conf");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral("music_directory \"%1/music\"\n"
                                  "db_file \"%1/mpd.db\"\n"
                                  "bind_to_address \"%2\"\n"
                                  "zeroconf_enabled \"no\"\n"
                                  "audio_output {\n type \"null\"\n name \"null\"\n}\n")
                       .arg(QDir::currentPath(), socketName)
                       .toUtf8());
        file.close();
        m_process.setStandardErrorFile("mpd.log");
        m_process.start("mpd", {"--no-daemon", "--stderr", "mpd.conf"});
        ASSERT_TRUE(m_process.waitForStarted());
        while (m_process.state() == QProcess::Running && !m_socket.isValid()) {
            m_socket.connectToServer(socketName);
            if (!m_socket.waitForConnected(100))
                m_process.waitForFinished(100); // it is about to listen, or to end
        }
        ASSERT_TRUE(m_socket.waitForReadyRead());
        m_socket.readAll();
        ask("update");
        while (ask("status").contains("updating_db"))
            m_process.waitForFinished(50);
    }

    QByteArray ask(const QByteArray& command) {
        m_socket.write(command + '\n');
        QByteArray answer;
        while (!answer.endsWith("OK\n") && !answer.startsWith("ACK") && m_socket.waitForReadyRead())
            answer += m_socket.readAll();
        return answer;
    }

    // The files that it queues when it is told to load this one.
    QStringList load(const QString& list) {
        ask("clear");
        EXPECT_EQ(ask("load \"" + list.toUtf8() + '"').toStdString(), "OK\n") << qPrintable(list);
        QStringList files;
        for (const QByteArray& line : ask("playlistinfo").split('\n')) {
            if (line.startsWith("file: "))
                files.append(QString::fromUtf8(line.mid(6)));
        }
        return files;
    }

private:
    QProcess m_process;
    QLocalSocket m_socket;
};

struct ParsedTrack {
    QString file;
    QString title;
};

void takeEntry(TotemPlParser*, const char* uri, GHashTable* data, QList<ParsedTrack>* tracks) {
    const auto* title =
        static_cast<const char*>(g_hash_table_lookup(data, TOTEM_PL_PARSER_FIELD_TITLE));
    const QUrl url(QString::fromUtf8(uri));
    tracks->append(
        {url.isLocalFile() ? url.toLocalFile() : QString::fromUtf8(uri), QString::fromUtf8(title)});
}

// What the parser of the desktop's players finds in a file.
QList<ParsedTrack> parsed(const QString& list) {
    QList<ParsedTrack> tracks;
    TotemPlParser* parser = totem_pl_parser_new();
    g_object_set(parser, "recurse", FALSE, "disable-unsafe", FALSE, nullptr);
    g_signal_connect(parser, "entry-parsed", G_CALLBACK(takeEntry), &tracks);
    EXPECT_EQ(
        totem_pl_parser_parse(parser, QUrl::fromLocalFile(list).toEncoded().constData(), FALSE),
        TOTEM_PL_PARSER_RESULT_SUCCESS)
        << qPrintable(list);
    g_object_unref(parser);
    return tracks;
}

} // namespace

// It takes no file: addresses, and no percent codes in XSPF.
TEST_F(PeerReads, aMusicPlayerDaemonLoadsTheSameTracks) {
    if (QStandardPaths::findExecutable("mpd").isEmpty())
        GTEST_SKIP() << "mpd is not installed";
    Daemon daemon;
    daemon.start();
    for (const char* paths : {"relative", "absolute"}) {
        const QString list = exported("m3u8", paths);
        QStringList files;
        for (const QString& file : daemon.load(belowMusicFolder(list)))
            files.append(belowMusicFolder(file));
        EXPECT_EQ(files, tracks(1)) << paths;
    }
}

// It takes the relative addresses of XSPF for names.
TEST_F(PeerReads, theParserOfDesktopPlayersFindsTheSameTracksAndTitles) {
    struct Kind {
        const char* format;
        const char* paths;
    };
    for (const Kind& kind : {Kind{"m3u8", "relative"}, Kind{"m3u8", "absolute"},
                             Kind{"m3u8", "url"}, Kind{"xspf", "absolute"}}) {
        QStringList files;
        QStringList titles;
        for (const ParsedTrack& track : parsed(exported(kind.format, kind.paths))) {
            files.append(belowMusicFolder(track.file));
            titles.append(track.title);
        }
        EXPECT_EQ(files, tracks(1)) << kind.format << ' ' << kind.paths;
        EXPECT_EQ(titles.value(2), "<Percent>") << kind.format << ' ' << kind.paths;
    }
}
