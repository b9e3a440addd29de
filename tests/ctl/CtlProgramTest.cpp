#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include "CtlFixture.h"
#include "OrvoPlayListPaths.h"

using CtlProgram = CtlFixture;

TEST_F(CtlProgram, wrongUseIsStatusTwoAndSaysWhy) {
    for (const QStringList& words : {QStringList{},
                                     {"dance"},
                                     {"create"},
                                     {"create", "a", "b"},
                                     {"show"},
                                     {"playlists", "--loud"},
                                     {"rows", "x:y", "--from", "-1"},
                                     {"set", "x:y", "{"},
                                     {"set", "x:y", ""},
                                     {"set", "x:y", "1,2"},
                                     {"value"},
                                     {"watch", "--count", "0"},
                                     {"collection"},
                                     {"--url"},
                                     {"--url", "ftp://x", "paths"},
                                     {"--url", "x", "paths"}}) {
        const CtlRun run = words.value(0) == "--url" ? runProgram(words) : ctl(words);
        EXPECT_EQ(run.status, 2) << words.join(' ').toStdString();
        EXPECT_EQ(run.out, "") << words.join(' ').toStdString();
        EXPECT_TRUE(run.err.startsWith("orvoctl: ")) << words.join(' ').toStdString();
    }
}

TEST_F(CtlProgram, noDeviceIsStatusOne) {
    const QString address = url();
    m_gateway.reset();
    for (const QStringList& words : {QStringList{"playlists"}, {"watch"}, {"add", "a", "x:y"}}) {
        const CtlRun run = runProgram(QStringList{"--url", address} + words);
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.err.contains(address.toUtf8())) << run.err.data();
    }
}

TEST_F(CtlProgram, pathsAndRowsAreShown) {
    EXPECT_TRUE(ctl({"paths"}).out.contains("OrvoPlayListPlMoveItemspath"));
    EXPECT_EQ(ctl({"paths", "--json"}).json().object().value("OrvoPlayListsRootPath"),
              "playlists:root");
    EXPECT_EQ(
        ctl({"rows", "test:list", "--from", "8", "--roles", "title,nosuch"}).out.toStdString(),
        "ROW  TITLE  NOSUCH\n  8  row 8\n  9  row 9\n");
    const QJsonObject answer =
        ctl({"rows", "test:big", "--json", "--roles", "title"}).json().object();
    EXPECT_EQ(answer.value("rows").toArray().size(), 20000);
    EXPECT_EQ(answer.value("title"), "List of 20000");
    const CtlRun run = ctl({"rows", "test:nothing"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.toStdString(), "orvoctl: There is nothing at test:nothing.\n");
}

TEST_F(CtlProgram, anyCommandIsSentAndAnyValueSet) {
    EXPECT_EQ(ctl({"set", "test:echo", R"({"a":[1,"é"]})", "--json"}).out.toStdString(),
              "{\"result\":{\"a\":[1,\"é\"]}}\n");
    EXPECT_EQ(ctl({"set", "test:refuse", "{}"}).err.toStdString(), "orvoctl: No \"way\".\n");
    EXPECT_EQ(ctl({"value", "test:number", "-5"}).out.toStdString(), "-5\n");
    EXPECT_EQ(ctl({"value", "test:number"}).out.toStdString(), "-5\n");
    EXPECT_EQ(ctl({"value", "settings:playlists/databaseItemsLimit", "{\"i32\":7}", "--json"})
                  .out.toStdString(),
              "{\"i32\":7}\n");
    EXPECT_EQ(ctl({"value", "test:nothing"}).status, 1);
}

TEST_F(CtlProgram, aPathWithEveryKindOfCharacterArrivesWhole) {
    // Encoded once as a path, once more for the address.
    const CtlRun run = ctl({"rows", "test:a%20b%2Bc%26d%25?x=1+1&y=%26"});
    EXPECT_EQ(run.err.toStdString(),
              "orvoctl: There is nothing at test:a%20b%2Bc%26d%25?x=1%2B1&y=%26.\n");
}

TEST_F(CtlProgram, watchShowsChangesAsTheyCome) {
    QTimer ticker;
    int row = 0;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        events().rowsChanged(CMPath(QStringLiteral("test:list")), {CMSubscribe::RowInserted(row++)},
                             0, -1);
    });
    ticker.start(5);
    const CtlRun run = ctl({"watch", "--count", "3"});
    EXPECT_EQ(run.status, 0);
    const QList<QByteArray> lines = run.out.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 3);
    const int first = lines.at(0).mid(lines.at(0).indexOf('+') + 1).toInt();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(lines.at(i), "rows  test:list  +" + QByteArray::number(first + i));
    const CtlRun json = ctl({"watch", "--count", "1", "--json"});
    EXPECT_EQ(json.json().object().value("event"), "rows");
    EXPECT_EQ(json.json().object().value("data").toObject().value("path"), "test:list");
}

TEST_F(CtlProgram, watchGoesOnWhenTheDeviceComesBack) {
    const QString address = QStringLiteral("127.0.0.1:%1").arg(port());
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        events().rowsChanged(CMPath(QStringLiteral("test:list")), CMSubscribe::RowsChangeReset(),
                             -1);
        if (m_gateway->openStreams() == 1 && ticker.interval() == 5) {
            ticker.setInterval(20);
            QTimer::singleShot(50, [&] {
                m_gateway.reset();
                m_gateway = std::make_unique<GatewayWorker>(
                    QHash<QString, QVariant>{{"gateway/listen", address}});
                EXPECT_TRUE(m_gateway->start());
                ticker.setInterval(21);
            });
        }
    });
    ticker.start(5);
    QStringList words{"--url", "http://" + address, "watch", "--count", "40"};
    const CtlRun run = runProgram(words);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.toStdString(), "the connection is lost, trying again\n");
    EXPECT_EQ(run.out.count("resync"), 1);
}

TEST_F(CtlProgram, theTokenComesFromAFileOrTheEnvironment) {
    const QString file = m_folder.filePath(QStringLiteral("token"));
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    ASSERT_TRUE(out.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    out.write("the-token-of-this-test\n");
    out.close();
    restart({{"gateway/tokenFile", file}});
    EXPECT_EQ(ctl({"paths"}).err.toStdString(), "orvoctl: This device wants its token.\n");
    EXPECT_EQ(ctl({"paths"}).status, 1);
    EXPECT_EQ(ctl({"paths", "--token-file", file}).status, 0);
    EXPECT_EQ(runProgram({"--token-file", file, "--url", url(), "paths"}).status, 0);
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [this] {
        events().rowsChanged(CMPath(QStringLiteral("test:list")), CMSubscribe::RowsChangeReset(),
                             -1);
    });
    ticker.start(5);
    EXPECT_EQ(ctl({"watch", "--count", "1", "--token-file", file}).status, 0);
    EXPECT_EQ(ctl({"watch", "--count", "1"}).status, 1);
    EXPECT_EQ(ctl({"paths", "--token-file", file + "x"}).status, 2);
    const struct {
        const char* name;
        QByteArray value;
        int status;
    } rows[] = {
        {"ORVO_TOKEN", "the-token-of-this-test", 0},
        {"ORVO_TOKEN", "another-token", 1},
        {"ORVO_TOKEN_FILE", QFile::encodeName(file), 0},
    };
    for (const auto& row : rows) {
        qputenv(row.name, row.value);
        EXPECT_EQ(ctl({"paths"}).status, row.status) << row.name;
        qunsetenv(row.name);
    }
}

// Whatever the verb, no name reaches the terminal as anything but text.
TEST_F(CtlProgram, noVerbLetsANameSteerTheTerminal) {
    const QString bad = QStringLiteral("a\n\x1b[2J\x07") + QChar(0x9b) + QChar(0x202e) +
                        QChar(0xd800) + QStringLiteral("<b>");
    playlist(bad, {bad, bad});
    playlist(bad);
    const QVector<QStringList> runs = {
        {"playlists"},
        {"show", bad},
        {"collections"},
        {"rows", "playlists:root"},
        {"create", bad},
        {"delete", bad},
        {"rename", "nosuch", bad},
        {"add", bad, bad},
        {"rows", bad},
        {"value", "x:" + bad},
        {bad},
        {"--" + bad},
        {"set", "x:y", bad},
        {"playlists", "--json"},
        {"rows", "playlists:root", "--json"},
        {"status"},
        {"collection", bad},
        {"show", "queue"},
    };
    for (const QStringList& words : runs) {
        const CtlRun run = ctl(words);
        for (const QChar c : QString::fromUtf8(run.out + run.err))
            EXPECT_TRUE(c == '\n' ||
                        (c.unicode() >= 0x20 && c.unicode() != 0x7f &&
                         !(c.unicode() >= 0x80 && c.unicode() < 0xa0) && c.unicode() != 0x202e))
                << words.first().toStdString() << ": " << run.out.data() << run.err.data();
    }
    // A line stays one line.
    EXPECT_EQ(ctl({"delete", bad}).err.count('\n'), 1);
}
