#include "CtlFixture.h"

using CtlCollection = CtlFixture;

TEST_F(CtlCollection, collectionsAreMadeFilledShownAndDeleted) {
    EXPECT_EQ(ctl({"value", "settings:playlists/collectionsVisible", "true"}).status, 0);
    restartPlayLists(); // where it takes effect
    playlist("Party");
    const int quiet = playlist("Quiet");
    EXPECT_EQ(ctl({"collection", "create", "Weekend"}).out.toStdString(), "#1 Weekend\n");
    EXPECT_EQ(ctl({"collection", "add", "Weekend", "Party"}).status, 0);
    EXPECT_EQ(ctl({"collection", "add", "#1", QStringLiteral("#%1").arg(quiet)}).status, 0);
    EXPECT_EQ(m_store.query("SELECT collection, playlist FROM collections_playlists"),
              (QStringList{"1|1", "1|2"}));
    EXPECT_EQ(ctl({"collections"}).out.toStdString(), "ID  NAME\n#1  Weekend\n");
    EXPECT_EQ(ctl({"collection", "show", "Weekend"}).out.toStdString(),
              "ID  NAME\n#1  Party\n#2  Quiet\n");
    EXPECT_EQ(ctl({"collection", "remove", "Weekend", "Party"}).status, 0);
    EXPECT_EQ(ctl({"collection", "show", "Weekend", "--json"}).out.toStdString(),
              "[{\"id\":2,\"name\":\"Quiet\"}]\n");
    EXPECT_EQ(
        ctl({"collection", "remove", "Weekend", "Party"}).err.toStdString(),
        "orvoctl: Could not remove items from collection. Remove playlist from collection failed.\n");
    EXPECT_EQ(ctl({"collection", "delete", "Weekend"}).status, 0);
    EXPECT_EQ(m_store.query("SELECT name FROM collections"), QStringList());
}

TEST_F(CtlCollection, whereNoneIsListedTheSettingIsNamed) {
    CtlRun run = ctl({"collections"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "ID  NAME\n");
    EXPECT_TRUE(run.err.contains("orvoctl value settings:playlists/collectionsVisible true"));
    EXPECT_EQ(ctl({"value", "settings:playlists/collectionsVisible", "true"}).status, 0);
    EXPECT_EQ(ctl({"collections"}).err, "");
    EXPECT_EQ(ctl({"collection", "delete", "#7"}).err.toStdString(),
              "orvoctl: Could not delete collection. There is no collection with this ID. (7)\n");
    EXPECT_EQ(ctl({"collection", "delete", "Nobody"}).status, 1);
}
