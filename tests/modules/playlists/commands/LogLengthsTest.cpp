#include <algorithm>

#include "CommandFixture.h"

namespace {

constexpr int ManyMore = 100'000;

// What commands with long values and with many of them leave in the log.
class LogLengthsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    static QString letters(int count) { return QString(count, 'n'); }
    // What the log has of a name.
    static QString shown(int letterCount) {
        return letterCount <= 200 ? letters(letterCount)
                                  : letters(200) + QString("… (%1 more)").arg(letterCount - 200);
    }

    static QVariantList numbersBelow(int count) {
        QVariantList numbers;
        for (int i = 0; i < count; ++i)
            numbers.append(i);
        return numbers;
    }

    // Each line `count` times, at most five, and how many more there were.
    static QStringList repeated(const QString& line, int count) {
        QStringList lines;
        for (int i = 0; i < std::min(count, 5); ++i)
            lines.append(line);
        if (count > 5)
            lines.append(QString("and %1 more").arg(count == ManyMore ? "99,995" : "1"));
        return lines;
    }

    static QStringList enterLines(const LogCapture& log, const QString& start) {
        QStringList arguments;
        for (const QString& line : log.texts("TRACE").filter(start))
            arguments.append(line.mid(line.indexOf("): ") + 3));
        return arguments;
    }

    FakeModules others;
};

TEST_F(LogLengthsTest, namesAreCut) {
    for (const int size : {6, 200, 201, 999}) {
        SCOPED_TRACE(size);
        const QString name = shown(size);
        LogCapture log("PlayLists");
        const int plid =
            send(OrvoPlayListPlCreatePath(), QVariantHash{{"name", letters(size)}}).result().i32();
        EXPECT_EQ(
            QStringList(
                QString("Playlist id: %1, name: %2 created successfully").arg(plid).arg(name)),
            log.texts("INFO"));
        EXPECT_EQ(QStringList({"name=" + name, "name=" + name}),
                  enterLines(log, "::createPlayList("));
        EXPECT_TRUE(
            log.contains("TRACE", QString("Created playlist uid=%1 name=%2").arg(plid).arg(name)));
        EXPECT_TRUE(log.lines().filter("value: ").value(0).endsWith(
            QString(R"( value: {"name":"%1"})").arg(name)))
            << log.lines().join('\n').toStdString();

        log.clear();
        expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 2}, {"name", letters(size)}});
        EXPECT_EQ(QStringList(QString("Playlist id:2 successfully renamed to: %1").arg(name)),
                  log.texts("INFO"));

        log.clear();
        const int clid =
            send(OrvoPlayListClCreatePath(), QVariantHash{{"name", letters(size)}}).result().i32();
        EXPECT_EQ(
            QStringList(
                QString("Collection id: %1, name: %2 created successfully").arg(clid).arg(name)),
            log.texts("INFO"));

        log.clear();
        rows(OrvoPlayListPlGetlistPath());
        EXPECT_TRUE(log.contains("DEBUG", QString("plid:%1 plname:%2").arg(plid).arg(name)));
    }
}

TEST_F(LogLengthsTest, aNameThatCannotBeStoredIsCut) {
    forbid("INSERT ON playlists");
    const LogCapture log("PlayLists");
    send(OrvoPlayListPlCreatePath(), QVariantHash{{"name", letters(300)}});
    EXPECT_TRUE(log.contains("ERROR", "Unable to create PlayList " + shown(300) + " in database"));
}

TEST_F(LogLengthsTest, positionsAreCut) {
    QStringList kept;
    for (int number = 0; number <= 141; ++number)
        kept.append(QString::number(number));
    const QString rest = ", … and 99,858 more";
    {
        const LogCapture log("PlayLists");
        send(OrvoPlayListPlRemoveItemsPath(),
             QVariantHash{{"plid", 1}, {"items", numbersBelow(ManyMore)}});
        EXPECT_EQ(QStringList({"indices=" + kept.join(", ") + rest,
                               "pl=1 indices=" + kept.join(", ") + rest}),
                  enterLines(log, "::removeItems("));
    }
    {
        const LogCapture log("PlayLists");
        send(OrvoPlayListPlMoveItemspath(),
             QVariantHash{{"plid", 1}, {"to", 0}, {"items", numbersBelow(ManyMore)}});
        // Here with nothing between comma and number.
        QStringList closer;
        for (int number = 0; number <= 176; ++number)
            closer.append(QString::number(number));
        const QString positions = closer.join(",") + ",… and 99,823 more";
        EXPECT_TRUE(log.contains("TRACE", "indicies: " + positions + " toSeqNum 0"));
        EXPECT_EQ(
            QStringList("Unable to move items (" + positions + ") to seqnum 0 in playlist id: 1"),
            log.errors());
    }
}

TEST_F(LogLengthsTest, itemsWithoutRolesAreCounted) {
    for (const int count : {1, 5, 6, ManyMore}) {
        OrvoPlayListItem bare;
        bare.setUrl("file:///" + letters(300));
        QVariantList items;
        for (int i = 0; i < count; ++i)
            items.append(bare.toHash());
        items.append(makeItem("d").toHash());
        const LogCapture log("PlayLists");
        expectDone(OrvoPlayListPlAddExternalItemsPath(),
                   QVariantHash{{"plid", 1}, {"items", items}});
        EXPECT_EQ(repeated("Invalid file, missing roles: file:///" + letters(192) + "… (108 more)",
                           count),
                  log.texts("WARN"));
        EXPECT_EQ(QStringList(), log.errors());
    }
}

TEST_F(LogLengthsTest, whatIsLeftOutStandsBeforeTheEndOfTheCommand) {
    const QVariantList bare = QVector<QVariant>(6, QVariantHash{{"url", "file:///u"}}).toList();
    const LogCapture log("PlayLists", log4cplus::WARN_LOG_LEVEL);
    send(OrvoPlayListPlAddExternalItemsPath(), QVariantHash{{"plid", 1}, {"items", bare}});
    QStringList expected;
    for (const QString& line : repeated("Invalid file, missing roles: file:///u", 6))
        expected.append("WARN " + line);
    expected.append({"ERROR no playitem found", "ERROR No items were added to playlist id: 1"});
    EXPECT_EQ(expected, log.lines());
}

TEST_F(LogLengthsTest, unknownItemsAreCounted) {
    for (const int count : {1, 5, 6, ManyMore}) {
        QVariantList paths;
        for (int i = 0; i < count; ++i)
            paths.append(QString("playlists:item/%1").arg(1000 + i));
        const LogCapture log("PlayLists");
        send(OrvoPlayListPlPrepareItemsPath(), paths);
        EXPECT_EQ(repeated("Error fetching item by UID", count), log.errors());
    }
}

TEST_F(LogLengthsTest, modulesThatDoNotAnswerAreCounted) {
    for (const int count : {5, 6}) {
        QVariantList paths;
        for (int i = 0; i < count; ++i)
            paths.append(QString("made-up%1:x").arg(i));
        const LogCapture log("PlayLists");
        send(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 1}, {"items", paths}});
        EXPECT_EQ(repeated("replay error: NoSuchNode", count) + QStringList("no playitem found"),
                  log.errors());
    }
}

TEST_F(LogLengthsTest, pathsAndPreparedItemsAreCut) {
    QStringList paths;
    for (int i = 0; i < 200; ++i) {
        const QString number = QString("%1").arg(i, 3, 10, QChar('0'));
        paths.append("files:" + number);
        offer(others.files, paths.last(), number);
    }
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 2}, {"items", paths}});
    // 54 × 11 characters without the last separator, 592; 55 would have 603.
    EXPECT_EQ(
        QStringList("items: " + QStringList(paths.mid(0, 54)).join(", ") + ", … and 146 more"),
        log.texts("TRACE").filter("items: files:"));
    const QString list = log.texts("TRACE").filter("itemList: ").value(0);
    EXPECT_TRUE(list.startsWith(R"(itemList: ({"orvoRoles":)")) << list.toStdString();
    EXPECT_TRUE(list.contains(QRegularExpression(R"(\}, … and 19\d more\)$)")))
        << list.toStdString();
    EXPECT_LE(list.size(), 650);
    QVariantList entries;
    for (int uid = 4; uid < 204; ++uid)
        entries.append(QString("playlists:item/%1").arg(uid));
    send(OrvoPlayListPlPrepareItemsPath(), entries);
    const QString prepared = log.texts("TRACE").filter("preparedItems: ").value(0);
    EXPECT_TRUE(prepared.contains(QRegularExpression(R"(\},… and 19\d more\]$)")))
        << prepared.toStdString();
}

TEST_F(LogLengthsTest, linesForEachEntryAreCounted) {
    addItems(2, QString("d e f g h i").split(' '));
    const LogCapture log("PlayLists");
    const auto linesWith = [&log](const QString& start) {
        const QStringList lines = log.texts("TRACE");
        int at = 0;
        while (at < lines.size() && !lines.at(at).startsWith(start))
            ++at;
        return lines.mid(at, 6);
    };
    expectDone(OrvoPlayListPlAddExternalItemsPath(),
               QVariantHash{{"plid", 2}, {"items", itemHashes({"j", "k", "l", "m", "n", "o"})}});
    EXPECT_EQ(QStringList({"uid: 4 seqNum: 0 name: d", "uid: 5 seqNum: 1 name: e",
                           "uid: 6 seqNum: 2 name: f", "uid: 7 seqNum: 3 name: g",
                           "uid: 8 seqNum: 4 name: h", "and 1 more"}),
              linesWith("uid: "));
    EXPECT_EQ(QStringList({"Inserted item into DB with uid10", "Inserted item into DB with uid11",
                           "Inserted item into DB with uid12", "Inserted item into DB with uid13",
                           "Inserted item into DB with uid14", "and 1 more"}),
              linesWith("Inserted "));
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 2}, {"items", QVariantList{0, 2, 4, 6, 8, 10}}});
    EXPECT_EQ(QStringList({"Remove partial from=0 to=0", "Remove partial from=2 to=2",
                           "Remove partial from=4 to=4", "Remove partial from=6 to=6",
                           "Remove partial from=8 to=8", "and 1 more"}),
              linesWith("Remove partial"));
    EXPECT_EQ(QStringList({"update seq: uid=5 old=1 new=0", "update seq: uid=7 old=3 new=1",
                           "update seq: uid=9 old=5 new=2", "update seq: uid=11 old=7 new=3",
                           "update seq: uid=13 old=9 new=4", "and 1 more"}),
              linesWith("update seq"));
}

} // namespace
