#include "CtlFixture.h"

using CtlCollection = CtlFixture;

TEST_F(CtlCollection, collectionsAreMadeFilledShownAndDeleted) {
    const int party = playlist("Party");
    const int quiet = playlist("Quiet");
    EXPECT_EQ(ctl({"collection", "create", "Weekend"}).out.toStdString(), "#1 Weekend\n");
    EXPECT_EQ(ctl({"collection", "add", "Weekend", "Party"}).status, 0);
    EXPECT_EQ(ctl({"collection", "add", "#1", QStringLiteral("#%1").arg(quiet)}).status, 0);
    EXPECT_EQ(m_playLists.groups.value(1).members, (QList<int>{party, quiet}));
    EXPECT_EQ(ctl({"collections"}).out.toStdString(), "ID  NAME\n#1  Weekend\n");
    EXPECT_EQ(ctl({"collection", "show", "Weekend"}).out.toStdString(),
              " ID  NAME\n#10  Party\n#20  Quiet\n");
    EXPECT_EQ(ctl({"collection", "remove", "Weekend", "Party"}).status, 0);
    EXPECT_EQ(ctl({"collection", "show", "Weekend", "--json"}).out.toStdString(),
              "[{\"id\":20,\"name\":\"Quiet\"}]\n");
    EXPECT_EQ(ctl({"collection", "remove", "Weekend", "Party"}).err.toStdString(),
              "orvoctl: Not in it.\n");
    EXPECT_EQ(ctl({"collection", "delete", "Weekend"}).status, 0);
    EXPECT_TRUE(m_playLists.groups.isEmpty());
}

TEST_F(CtlCollection, whereNoneIsListedTheSettingIsNamed) {
    CtlRun run = ctl({"collections"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "ID  NAME\n");
    EXPECT_TRUE(run.err.contains("orvoctl value settings:playlists/collectionsVisible true"));
    EXPECT_EQ(ctl({"value", "settings:playlists/collectionsVisible", "true"}).status, 0);
    EXPECT_EQ(ctl({"collections"}).err, "");
    EXPECT_EQ(ctl({"collection", "delete", "#7"}).err.toStdString(), "orvoctl: No such group.\n");
    EXPECT_EQ(ctl({"collection", "delete", "Nobody"}).status, 1);
}
