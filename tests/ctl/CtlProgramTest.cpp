#include <QJsonArray>
#include <QJsonObject>
#include <QTimer>

#include "CtlFixture.h"
#include "OrvoPlayListPaths.h"

using CtlProgram = CtlFixture;

TEST_F(CtlProgram, helpListsTheVerbs) {
    for (const QStringList& words : {QStringList{"--help"}, {"help"}, {"show", "--help"}}) {
        const CtlRun run = runProgram(words);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.out.contains("collection remove COLLECTION PLAYLIST"));
        EXPECT_EQ(run.err, "");
    }
}

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
