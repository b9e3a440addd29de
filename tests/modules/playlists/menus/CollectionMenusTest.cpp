#include "MenuFixture.h"
#include "OrvoPlayListPaths.h"
#include "playlistUI/collection/CollectionAddToClNode.h"
#include "playlistUI/collection/CollectionContextNode.h"

namespace {

const QString contextPath = "playlists:cl/context";
const QString addPath = "playlists:cl/addToCollection";
const QString addTitle = "CollectionAddToClNode|Add playlist to collection";

class CollectionMenusTest : public MenuFixture {
protected:
    static QString menuTitle(const QString& name) {
        return "CollectionContextNode|Collection Context Menu - %1|" + name;
    }
    static QJsonObject create(const QString& further) {
        return Expected::edit("CollectionAddToClNode|Create new collection",
                              addPath + "?action=createCl" + further, Expected::text(""));
    }
    static QJsonObject target(int clid, const QString& name, const QString& further) {
        return Expected::action('=' + name,
                                addPath + QString("?action=addItem&clid=%1").arg(clid) + further);
    }
    QStringList collections() {
        QStringList names;
        for (const OrvoRoles& row : asRoles(rowsAt(addPath)).mid(2))
            names.append(row.title().toString());
        return names;
    }
    int members(int clid) {
        return rowsAt(QString("playlists:cl/items?clid=%1").arg(clid)).rowsCount();
    }
};

class CollectionMenusAloneTest : public MenuAloneFixture {};

} // namespace

TEST_F(CollectionMenusTest, aCollectionCanBeDeleted) {
    createCollection("Rock");
    const int jazz = createCollection("Jazz");
    const QString path = contextPath + QString("?action=cmnode&clid=%1&x=y").arg(jazz);
    expectMenu(path, menuTitle("Jazz"),
               {Expected::action("CollectionContextNode|Delete collection",
                                 contextPath + QString("?action=delete&clid=%1&x=y").arg(jazz))});
}

TEST_F(CollectionMenusTest, anUnknownCollectionHasNoEntries) {
    createCollection("Rock");
    for (const char* params :
         {"", "?clid=", "?clid=0", "?clid=-1", "?clid=99", "?clid=abc", "?plid=1"})
        expectMenu(contextPath + params, menuTitle(""), {});
}

TEST_F(CollectionMenusTest, deletingHappensAndClosesTheMenu) {
    createCollection("Rock");
    createCollection("Jazz");
    EXPECT_EQ(answerText(select(contextPath + "?action=delete&clid=1")),
              Expected::doneAndClosed(Expected::flag(true), contextPath));
    EXPECT_EQ(collections(), QStringList("Jazz"));
    restart();
    EXPECT_EQ(collections(), QStringList("Jazz"));
    EXPECT_EQ(select(contextPath + "?action=delete&clid=1").message(),
              "Could not delete collection. There is no collection with this ID. (1)");
    EXPECT_EQ(select(contextPath + "?action=delete").message(),
              "Could not delete collection. There is no collection with this ID. (-1)");
    expectNotTaken({contextPath + "?clid=2", contextPath + "?action=cmnode&clid=2",
                    contextPath + "?action=Delete&clid=2", contextPath + "?action=delPL&clid=2"});
    EXPECT_EQ(collections(), QStringList("Jazz"));
}

TEST_F(CollectionMenusTest, theAddMenuListsTheCollectionsAfterTheEntryThatMakesOne) {
    for (const bool visible : {false, true}) {
        show(false, visible);
        restart();
        expectMenu(addPath, addTitle, {create(""), Expected::separator()});
    }
    const int rock = createCollection("Rock");
    const int jazz = createCollection("%1 Jazz");
    expectMenu(addPath + "?action=cmnode&plid=5&x=y", addTitle,
               {create("&plid=5&x=y"), Expected::separator(), target(rock, "Rock", "&plid=5&x=y"),
                target(jazz, "%1 Jazz", "&plid=5&x=y")});
}

TEST_F(CollectionMenusTest, aCollectionThatTheRequestNamesIsReplacedByTheOneOfTheEntry) {
    const int rock = createCollection("Rock");
    expectMenu(addPath + "?clid=77", addTitle,
               {create("&clid=77"), Expected::separator(), target(rock, "Rock", "")});
}

TEST_F(CollectionMenusTest, whatIsListedIsLogged) {
    const int rock = createCollection("Rock");
    const LogCapture log("PlayLists", log4cplus::DEBUG_LOG_LEVEL);
    rowsAt(addPath);
    EXPECT_EQ(log.lines(), QStringList(QString("DEBUG clid:%1 clname:Rock").arg(rock)));
}

TEST_F(CollectionMenusTest, creatingKeepsTheMenuOpenAndAddingClosesIt) {
    createPlayList("Mix");
    EXPECT_EQ(answerText(select(addPath + "?action=createCl&plid=1", {{"string", "Rock"}})),
              Expected::done(QJsonObject{{"i32", 1}}));
    EXPECT_EQ(collections(), QStringList("Rock"));
    EXPECT_EQ(members(1), 0) << "creating one adds nothing to it";
    EXPECT_EQ(answerText(select(addPath + "?action=addItem&clid=1&plid=1")),
              Expected::doneAndClosed(Expected::flag(true), addPath));
    EXPECT_EQ(members(1), 1);
    restart();
    EXPECT_EQ(members(1), 1);
}

TEST_F(CollectionMenusTest, theCommandsRefusalsArriveAsTheyAre) {
    createPlayList("Mix");
    createCollection("Rock");
    select(addPath + "?action=addItem&clid=1&plid=1");
    struct Refusal {
        const char* params;
        const char* message;
    };
    const Refusal refusals[] = {
        {"action=createCl",
         "Could not create collection. Please provide a non-empty string as field. (name)"},
        {"action=addItem&clid=1&plid=1",
         "Could not add items to collection. Add playlist to collection failed."},
        {"action=addItem&clid=1",
         "Could not add items to collection. Cannot find playlist with invalid ID."},
        {"action=addItem&clid=1&plid=x",
         "Could not add items to collection. Cannot find playlist with invalid ID."},
        {"action=addItem&clid=1&plid=9",
         "Could not add items to collection. There is no playlist with this ID. (9)"},
        {"action=addItem&plid=1",
         "Could not add items to collection. There is no collection with this ID. (-1)"},
        {"action=addItem&plid=1&clid=9",
         "Could not add items to collection. There is no collection with this ID. (9)"},
    };
    for (const Refusal& refusal : refusals) {
        const Answer answer = select(addPath + '?' + refusal.params);
        EXPECT_EQ(answer.message(), refusal.message) << refusal.params;
        EXPECT_TRUE(answer.value.isNull()) << refusal.params;
    }
    expectNotTaken({addPath + "?clid=1&plid=1", addPath + "?action=cmnode&clid=1&plid=1",
                    addPath + "?action=additem&clid=1&plid=1", addPath + "?action=createPl"});
    EXPECT_EQ(collections(), QStringList("Rock"));
    EXPECT_EQ(members(1), 1);
}

TEST_F(CollectionMenusAloneTest, everyActionSendsItsCommandWithWhatThereIs) {
    EXPECT_EQ(sent(contextPath + "?action=delete&clid=7&plid=5"),
              R"(playlists:cl/delete {"clid":7})");
    EXPECT_EQ(sent(contextPath + "?action=delete"), R"(playlists:cl/delete {"clid":-1})");
    EXPECT_EQ(sent(contextPath + "?clid=7"), "nothing");
    EXPECT_EQ(sent(addPath + "?action=createCl&clid=7&plid=5", QVariantHash{{"string", "Rock"}}),
              R"(playlists:cl/create {"name":"Rock"})");
    EXPECT_EQ(sent(addPath + "?action=addItem&clid=7&plid=5"),
              R"(playlists:cl/addItem {"clid":7,"plid":5})");
    EXPECT_EQ(sent(addPath + "?action=addItem&plid=0"), R"(playlists:cl/addItem {"plid":0})");
    EXPECT_EQ(sent(addPath + "?action=addItem&clid=7"), R"(playlists:cl/addItem {"clid":7})");
    EXPECT_EQ(sent(addPath + "?action=addItem"), R"(playlists:cl/addItem {})");
    EXPECT_EQ(sent(addPath + "?action=addItem&clid=x&plid=y"),
              R"(playlists:cl/addItem {"clid":-1,"plid":-1})");
    EXPECT_EQ(sent(addPath + "?plid=5&clid=7"), "nothing");
}
