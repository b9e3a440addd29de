#include <algorithm>

#include "CommandFixture.h"

namespace {

class ArgumentsTest : public CommandFixture {
protected:
    void SetUp() override { makeParty(); }

    QString flag(const char* column) {
        return query(QString("SELECT %1 FROM playlists WHERE uid = 1").arg(column)).join(' ');
    }
};

enum class Outcome { Off, On, Refused };

struct ModeRow {
    QVariant mode;
    Outcome outcome;
};

const qint64 wraps = 4294967296; // 2^32: 0 to who cuts it to 32 bits

// What is no mode whatever the command.
const QList<ModeRow> noModes = {
    {"", Outcome::Refused},
    {"garbage", Outcome::Refused},
    {"1.5", Outcome::Refused},
    {0.5, Outcome::Refused},
    {1.5, Outcome::Refused},
    {-0.5, Outcome::Refused},
    {false, Outcome::Refused},
    {true, Outcome::Refused},
    {QVariant(), Outcome::Refused},
    {QVariantList{1}, Outcome::Refused},
    {QVariantHash{{"mode", 1}}, Outcome::Refused},
    {2147483647, Outcome::Refused},
    {wraps, Outcome::Refused},
    {wraps + 1, Outcome::Refused},
    {wraps + 2, Outcome::Refused},
    {double(wraps + 1), Outcome::Refused},
    {double(wraps + 2), Outcome::Refused},
    {1e300, Outcome::Refused},
    {"4294967297", Outcome::Refused},
    {"4294967298", Outcome::Refused},
};

// No lower bound: a number below zero switches the mode off.
const QList<ModeRow> negativeModes = {
    {-1, Outcome::Off},
    {"-1", Outcome::Off},
    {-2147483647 - 1, Outcome::Off},
    {-1.0, Outcome::Off},
};

TEST_F(ArgumentsTest, aShuffleModeIsANumberOrAWord) {
    const QList<ModeRow> modes = {
        {0, Outcome::Off},
        {"0", Outcome::Off},
        {0.0, Outcome::Off},
        {"shuffleOff", Outcome::Off},
        {1, Outcome::On},
        {"1", Outcome::On},
        {1.0, Outcome::On},
        {"shuffleOn", Outcome::On},
        {qint64(1), Outcome::On},
        {2, Outcome::Refused},
        {"2", Outcome::Refused},
        {"ShuffleOn", Outcome::Refused},
        {"repeatAll", Outcome::Refused},
    };
    for (const ModeRow& row : modes + negativeModes + noModes) {
        for (const QVariant& before : {QVariant(0), QVariant(1)}) {
            expectDone(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", before}});
            const QVariantHash args{{"plid", 1}, {"mode", row.mode}};
            if (row.outcome == Outcome::Refused) {
                EXPECT_EQ(
                    QString(
                        "Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)"),
                    refusal(OrvoPlayListPlSetShufflePath(), args))
                    << row.mode.typeName() << ' ' << qPrintable(row.mode.toString());
                EXPECT_EQ(before.toString(), flag("shuffle"));
            } else {
                expectDone(OrvoPlayListPlSetShufflePath(), args);
                EXPECT_EQ(QString(row.outcome == Outcome::On ? "1" : "0"), flag("shuffle"))
                    << row.mode.typeName() << ' ' << qPrintable(row.mode.toString());
            }
        }
    }
}

TEST_F(ArgumentsTest, aRepeatModeIsANumberOrAWord) {
    const QList<ModeRow> modes = {
        {0, Outcome::Off},           {"0", Outcome::Off},
        {"repeatOff", Outcome::Off}, {1, Outcome::Off},
        {"1", Outcome::Off},         {"repeatOne", Outcome::Off},
        {3, Outcome::Off},           {"3", Outcome::Off},
        {3.0, Outcome::Off},         {2, Outcome::On},
        {"2", Outcome::On},          {"repeatAll", Outcome::On},
        {2.0, Outcome::On},          {4, Outcome::Refused},
        {"4", Outcome::Refused},     {"shuffleOn", Outcome::Refused},
    };
    for (const ModeRow& row : modes + negativeModes + noModes) {
        for (const QVariant& before : {QVariant(0), QVariant(2)}) {
            expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", before}});
            const QVariantHash args{{"plid", 1}, {"mode", row.mode}};
            if (row.outcome == Outcome::Refused) {
                EXPECT_EQ(
                    QString(
                        "Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)"),
                    refusal(OrvoPlayListPlSetRepeatPath(), args))
                    << row.mode.typeName() << ' ' << qPrintable(row.mode.toString());
                EXPECT_EQ(QString(before == 2 ? "1" : "0"), flag("repeatAll"));
            } else {
                expectDone(OrvoPlayListPlSetRepeatPath(), args);
                EXPECT_EQ(QString(row.outcome == Outcome::On ? "1" : "0"), flag("repeatAll"))
                    << row.mode.typeName() << ' ' << qPrintable(row.mode.toString());
            }
        }
    }
}

TEST_F(ArgumentsTest, aMissingModeIsRefused) {
    EXPECT_EQ(
        QString("Could not set shuffle mode on playlist. Invalid shuffle mode. (shuffle-mode)"),
        refusal(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}}));
    EXPECT_EQ(QString("Could not set repeat mode on playlist. Invalid repeat mode. (repeat-mode)"),
              refusal(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}}));
}

TEST_F(ArgumentsTest, halfACharacterOfANameIsReplacedWhenItArrives) {
    const QString half = QStringLiteral("a") + QChar(0xd83d) + QStringLiteral("b") + QChar(0xdc00);
    const QString kept = QStringLiteral("a\uFFFDb\uFFFD");
    const auto namesShown = [this] {
        QStringList names;
        for (const OrvoRoles& row : asRoles(rows(OrvoPlayListsRootPath())))
            names.append(row.title().toString());
        return names.filter(QStringLiteral("b"));
    };
    const int plid = createPlayList(half);
    createCollection(half);
    EXPECT_EQ(QStringList(kept), namesShown());
    EXPECT_EQ(QStringList(kept), query("SELECT name FROM collections WHERE uid = 2"));
    restart();
    EXPECT_EQ(QStringList(kept), namesShown());
    const QString whole = QString::fromUcs4(U"b\U0001F600");
    expectDone(OrvoPlayListPlSetNamePath(),
               QVariantHash{{"plid", plid}, {"name", QString(whole + QChar(0xd83d))}});
    EXPECT_EQ(QStringList(whole + QChar(0xfffd)), namesShown());
    restart();
    EXPECT_EQ(QStringList(whole + QChar(0xfffd)), namesShown());
}

TEST_F(ArgumentsTest, modesAreLoggedAsNumbersHoweverTheyCame) {
    const LogCapture log("PlayLists");
    for (const QVariant& mode : {QVariant("shuffleOn"), QVariant(-1), QVariant("-7")})
        expectDone(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", mode}});
    refusal(OrvoPlayListPlSetShufflePath(), QVariantHash{{"plid", 1}, {"mode", "5"}});
    expectDone(OrvoPlayListPlSetRepeatPath(), QVariantHash{{"plid", 1}, {"mode", "repeatAll"}});
    EXPECT_EQ(QStringList({"Playlist id:1 set shuffle: 1", "Playlist id:1 set shuffle: -1",
                           "Playlist id:1 set shuffle: -7", "Playlist id:1 set repeat all: 2"}),
              log.texts("INFO"));
    EXPECT_EQ(QStringList("Cannot set shuffle mode: 5"), log.errors());
}

struct AddModeRow {
    QVariant mode;
    const char* result; // of adding d to a b c of which a was played last; null: refused
};

TEST_F(ArgumentsTest, anAddModeIsANumberOrAWord) {
    const QList<AddModeRow> modes = {
        {0, "a d b c"},
        {"now", "a d b c"},
        {"0", "a d b c"},
        {1, "a d b c"},
        {"afterCurrent", "a d b c"},
        {2, "a b c d"},
        {"append", "a b c d"},
        {2.0, "a b c d"},
        {3, nullptr},
        {-1, nullptr},
        {"garbage", nullptr},
        {true, nullptr},
        {1.5, nullptr},
        {wraps, nullptr},
        {wraps + 2, nullptr},
        {double(wraps), nullptr},
        {QVariant(), nullptr},
    };
    restartAfter("UPDATE playlists SET lastPlayedIndex = 0 WHERE uid = 1");
    FakeModules others;
    offer(others.files, "files:d", "d");
    const QList<QPair<Path, QVariantList>> commands = {
        {OrvoPlayListPlAddExternalItemsPath, itemHashes({"d"})},
        {OrvoPlayListPlAddItemsPath, QVariantList{"files:d"}}};
    for (const auto& [path, items] : commands) {
        for (const AddModeRow& row : modes) {
            const Answer answer =
                send(path(), QVariantHash{{"plid", 1}, {"items", items}, {"mode", row.mode}});
            EXPECT_EQ(row.result == nullptr, answer.failed) << qPrintable(row.mode.toString());
            EXPECT_EQ(QString(row.result ? row.result : "a b c"), stored(1))
                << qPrintable(row.mode.toString());
            if (!answer.failed) {
                const QVariantList added{stored(1).split(' ').indexOf("d")};
                expectDone(OrvoPlayListPlRemoveItemsPath(),
                           QVariantHash{{"plid", 1}, {"items", added}});
            }
        }
        expectDone(path(), QVariantHash{{"plid", 1}, {"items", items}});
        EXPECT_EQ(QString("a b c d"), stored(1)) << "without a mode";
        expectDone(OrvoPlayListPlRemoveItemsPath(),
                   QVariantHash{{"plid", 1}, {"items", QVariantList{3}}});
    }
}

TEST_F(ArgumentsTest, whatIsNoIdNeverReachesAnything) {
    addItems(0, {"q", "r"});
    const QVariantList noIds = {QVariant(),
                                "",
                                "abc",
                                "0x0",
                                "0.0",
                                0.5,
                                wraps,
                                double(wraps),
                                "4294967296",
                                -wraps,
                                true,
                                false,
                                QVariantList{0},
                                QVariantHash{{"plid", 0}},
                                1e300};
    FakeModules others;
    int withId = 0;
    for (const Command& command : commands()) {
        if (!command.args.contains("plid"))
            continue;
        ++withId;
        const QString invalid = QString(command.prefix) + " Cannot find playlist with invalid ID.";
        QVariantHash args = command.args;
        args.remove("plid");
        EXPECT_EQ(invalid, refusal(command.path(), args)) << command.handler << " without an id";
        for (const QVariant& noId : noIds) {
            args.insert("plid", noId);
            EXPECT_EQ(invalid, refusal(command.path(), args))
                << command.handler << ' ' << noId.typeName() << ' ' << qPrintable(noId.toString());
        }
    }
    EXPECT_EQ(13, withId);
    EXPECT_EQ(QString("q r"), stored(0));
    EXPECT_EQ(QString("a b c"), stored(1));
    EXPECT_EQ(QStringList("0/0"),
              query("SELECT shuffle || '/' || repeatAll FROM playlists WHERE uid = 0"));
    EXPECT_EQ(QStringList("1/2"),
              query("SELECT collection || '/' || playlist FROM collections_playlists"));
    EXPECT_TRUE(others.player.requests.isEmpty());
}

TEST_F(ArgumentsTest, whatIsNoSourceNeverReadsTheQueue) {
    addItems(0, {"q"});
    for (const QVariant& noId : {QVariant(), QVariant(wraps), QVariant("abc"), QVariant(false)}) {
        EXPECT_EQ(
            QString("Could not add items to playlist. Please select one or more items to add."),
            refusal(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 1}, {"fromPlid", noId}}));
    }
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(ArgumentsTest, whatIsNoCollectionIdIsNoCollection) {
    for (const QVariant& noId :
         {QVariant(), QVariant(wraps + 1), QVariant("abc"), QVariant(true), QVariant(1.5)}) {
        EXPECT_EQ(QString("Could not delete collection. There is no collection with this ID. (-1)"),
                  refusal(OrvoPlayListClDeletePath(), QVariantHash{{"clid", noId}}));
        EXPECT_EQ(
            QString("Could not add items to collection. There is no collection with this ID. (-1)"),
            refusal(OrvoPlayListClAddItemPath(), QVariantHash{{"clid", noId}, {"plid", 1}}));
        EXPECT_EQ(
            QString(
                "Could not remove items from collection. There is no collection with this ID. (-1)"),
            refusal(OrvoPlayListClRemoveItemPath(), QVariantHash{{"clid", noId}, {"plid", 2}}));
    }
    EXPECT_EQ(QStringList("Box"), query("SELECT name FROM collections"));
}

TEST_F(ArgumentsTest, idsAreTakenAsNumbersAndAsDecimalText) {
    for (const QVariant& id :
         {QVariant(1), QVariant("1"), QVariant(1.0), QVariant(qint64(1)), QVariant(1u)})
        expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", id}, {"name", "Party"}});
    EXPECT_EQ(QString("Could not clear playlist. There is no playlist with this ID. (-2)"),
              refusal(OrvoPlayListPlClearPath(), QVariantHash{{"plid", -2}}));
}

TEST_F(ArgumentsTest, namesOfEveryKindComeBackWhole) {
    const QStringList names = {
        QString::fromUtf8("naïve ✓ 𝄞 👩‍🎤"),
        QString::fromUtf8("nul\0inside", 10),
        "%1",
        "%1 %2 %3 %L1",
        " ",
        "'; DROP TABLE playlists; --",
        "line\nbreak\ttab",
        QString(4096, QLatin1Char('x')), // the longest
        "</b>&amp;",
        "-1",
        "0",
    };
    ASSERT_EQ(10, names.at(1).size());
    int plid = 2;
    for (const QString& name : names) {
        const LogCapture log("PlayLists");
        ASSERT_EQ(++plid, createPlayList(name));
        const QString message = "Playlist created successfully. (" + name + ')';
        const QString end = QString("res: 1 val: %1 msg: ").arg(plid) +
                            (name.size() < 4096 ? message : message.left(200) + "… (3,929 more)");
        const QStringList traces = log.texts("TRACE");
        EXPECT_TRUE(std::any_of(traces.begin(), traces.end(), [&](const QString& line) {
            return line.endsWith(end);
        })) << qPrintable(name.left(40));
    }
    restart();
    for (int i = 0; i < names.size(); ++i) {
        const OrvoRoles roles = rows(OrvoPlayListPlGetItemsPath() + QString::number(i + 3)).roles();
        const QString title = roles.title().toString();
        EXPECT_TRUE(title.endsWith(" - " + names.at(i))) << i << qPrintable(title.left(40));
        EXPECT_TRUE(
            query(QString("SELECT name FROM playlists WHERE uid = %1").arg(i + 3)).value(0) ==
            names.at(i))
            << i;
    }
    expectDone(OrvoPlayListPlSetNamePath(), QVariantHash{{"plid", 1}, {"name", names.at(1)}});
    EXPECT_EQ(QStringList("10"),
              query("SELECT length(CAST(name AS BLOB)) FROM playlists WHERE uid = 1"));
    expectInvariants();
}

TEST_F(ArgumentsTest, aNameThatIsANumberIsItsText) {
    expectDone(OrvoPlayListPlCreatePath(), QVariantHash{{"name", 42}});
    EXPECT_EQ(QStringList("42"), query("SELECT name FROM playlists WHERE uid = 3"));
    for (const QVariant& noName :
         {QVariant(), QVariant(QVariantList{"x"}), QVariant(QVariantHash{{"name", "x"}})})
        refusal(OrvoPlayListPlCreatePath(), QVariantHash{{"name", noName}});
    EXPECT_EQ(QStringList("4"), query("SELECT count(*) FROM playlists"));
}

TEST_F(ArgumentsTest, whatIsNoPositionIsNoEntry) {
    const QVariantList noPositions = {"x",           QVariant(),      true, 0.5, wraps,
                                      double(wraps), QVariantList{0}, -1,   3,   2147483647};
    for (const QVariant& noPosition : noPositions) {
        // The list gets the element as it is, a list inside a list included.
        QVariantList items{QVariant(0)};
        items.append(noPosition);
        EXPECT_EQ(
            QString("Could not remove items from playlist. Remove items failed"),
            refusal(OrvoPlayListPlRemoveItemsPath(), QVariantHash{{"plid", 1}, {"items", items}}))
            << qPrintable(noPosition.toString());
        EXPECT_EQ(QString("Could not move items in playlist. Move items failed"),
                  refusal(OrvoPlayListPlMoveItemspath(),
                          QVariantHash{{"plid", 1}, {"items", items}, {"to", 2}}))
            << qPrintable(noPosition.toString());
    }
    EXPECT_EQ(QString("a b c"), stored(1));
    expectInvariants();
}

TEST_F(ArgumentsTest, positionsAreTakenAsNumbersAndAsDecimalText) {
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{"0", 1.0}}, {"to", "2"}});
    EXPECT_EQ(QString("c a b"), stored(1));
    expectDone(OrvoPlayListPlRemoveItemsPath(),
               QVariantHash{{"plid", 1}, {"items", QStringList{"2", "0"}}});
    EXPECT_EQ(QString("a"), stored(1));
}

TEST_F(ArgumentsTest, whatIsNoTargetPositionIsNegative) {
    for (const QVariant& noTarget :
         {QVariant(), QVariant("x"), QVariant(wraps), QVariant(true), QVariant(0.5)}) {
        EXPECT_EQ(
            QString("Could not move items in playlist. Cannot move items to negative position."),
            refusal(OrvoPlayListPlMoveItemspath(),
                    QVariantHash{{"plid", 1}, {"items", QVariantList{1}}, {"to", noTarget}}));
    }
    EXPECT_EQ(QString("Could not move items in playlist. Cannot move items to negative position."),
              refusal(OrvoPlayListPlMoveItemspath(),
                      QVariantHash{{"plid", 1}, {"items", QVariantList{1}}}));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(ArgumentsTest, removingAPositionTwiceRemovesNothing) {
    EXPECT_EQ(QString("Could not remove items from playlist. Remove items failed"),
              refusal(OrvoPlayListPlRemoveItemsPath(),
                      QVariantHash{{"plid", 1}, {"items", QVariantList{1, 1}}}));
    EXPECT_EQ(QString("a b c"), stored(1));
}

TEST_F(ArgumentsTest, movingAPositionTwiceMovesItOnceAndCountsTwo) {
    const LogCapture log("PlayLists");
    expectDone(OrvoPlayListPlMoveItemspath(),
               QVariantHash{{"plid", 1}, {"items", QVariantList{0, 0}}, {"to", 2}});
    EXPECT_EQ(QString("b c a"), stored(1));
    EXPECT_FALSE(log.texts("TRACE")
                     .filter("msg: 2 Items removed successfully from playlist. (Party)")
                     .isEmpty());
}

TEST_F(ArgumentsTest, itemsThatAreNoListAreNone) {
    for (const QVariant& noList : {QVariant(), QVariant(1), QVariant("0"), QVariant(true),
                                   QVariant(QVariantHash{{"0", 1}})}) {
        EXPECT_TRUE(
            refusal(OrvoPlayListPlRemoveItemsPath(), QVariantHash{{"plid", 1}, {"items", noList}})
                .endsWith("Please select one or more items to remove."));
        EXPECT_TRUE(refusal(OrvoPlayListPlMoveItemspath(),
                            QVariantHash{{"plid", 1}, {"to", 0}, {"items", noList}})
                        .endsWith("Please select one or more items to move."));
        EXPECT_TRUE(refusal(OrvoPlayListPlAddExternalItemsPath(),
                            QVariantHash{{"plid", 1}, {"items", noList}})
                        .endsWith("Please select one or more items to add."));
        EXPECT_TRUE(
            refusal(OrvoPlayListPlAddItemsPath(), QVariantHash{{"plid", 1}, {"items", noList}})
                .endsWith("Please select one or more items to add."));
    }
    EXPECT_EQ(QString("a b c"), stored(1));
}

} // namespace
