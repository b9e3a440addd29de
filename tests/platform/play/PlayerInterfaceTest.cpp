#include <gtest/gtest.h>

#include "CMRootWorker.h"
#include "LogCapture.h"
#include "StreamerPlayLogic.h"

namespace {

// Stands where the player module would.
class PlayerStub : public CMNodesWorker {
public:
    PlayerStub() : CMNodesWorker({}, QStringLiteral("Player")) {}
    void setDataRequest(const CMSetDataRequest& request) override {
        paths.append(request.path().toString());
        values.append(request.value());
        request.reply().setValue({});
    }
    QStringList paths;
    QVariantList values;
};

TEST(PlayerInterface, playContainerIsAPlayRequestOfTypeOne) {
    CMRootWorker root;
    PlayerStub player;
    OrvoRoles container;
    container.setPath(CMPath(QStringLiteral("playlists:pl/items/4")));
    OrvoRoles track;
    track.setTitle(QStringLiteral("One"));
    const auto reply =
        PlayLogicInterface::playerInstance()->playContainer(container, track, 3, 250, true);
    EXPECT_FALSE(reply.isError());
    ASSERT_EQ(player.paths, QStringList{"player:playContainer"});
    const OrvoPlayLogicPlayArgs args(player.values.first());
    EXPECT_EQ(args.mediaRoles(), container);
    EXPECT_EQ(args.trackRoles(), track);
    EXPECT_EQ(args.index(), 3);
    EXPECT_EQ(args.type(), 1);
    EXPECT_EQ(args.startPosition(), 250);
    EXPECT_TRUE(args.paused());
}

TEST(PlayerInterface, stopCarriesItsReason) {
    CMRootWorker root;
    PlayerStub player;
    PlayLogicInterface::playerInstance()->stop(1);
    ASSERT_EQ(player.paths, QStringList{"player:stop"});
    EXPECT_EQ(OrvoPlayLogicStopArgs(player.values.first()).reason(), 1);
}

TEST(PlayerInterface, withoutAPlayerEverythingIsAnsweredAndLoggedAsAnError) {
    CMRootWorker root;
    CMNodes nodes;
    StreamerPlayLogic logic(&nodes, CMPath(QStringLiteral("source:playlogic")));
    const LogCapture log(QStringLiteral("Player"));
    EXPECT_TRUE(PlayLogicInterface::playerInstance()->playContainer({}, {}, 0, 0, false).isError());
    EXPECT_TRUE(PlayLogicInterface::playerInstance()->stop(0).isError());
    EXPECT_TRUE(logic.sendPlayCommand({}, {}).isError());
    EXPECT_EQ(log.errors(),
              (QStringList{"player:playContainer failed: There is nothing at player:playContainer.",
                           "player:stop failed: There is nothing at player:stop.",
                           "There is no player."}));
}

TEST(PlayerPaths, noneIsTheStartOfAnotherAndEachIsListedOnce) {
    const QList<OrvoPathRow>& rows = orvoPlayerPaths();
    EXPECT_EQ(rows.size(), 18);
    for (const OrvoPathRow& a : rows) {
        for (const OrvoPathRow& b : rows) {
            if (&a != &b) {
                EXPECT_FALSE(CMPath(QString::fromLatin1(a.path))
                                 .startsWith(CMPath(QString::fromLatin1(b.path))));
                EXPECT_STRNE(a.function, b.function);
            }
        }
    }
    EXPECT_EQ(OrvoPlayerSeekTimePath().toString(), "player:seekTime");
}

TEST(PlayEnums, everyNumberRoundTrips) {
    for (int number = -2; number < 8; ++number) {
        EXPECT_EQ(OrvoPlayerState::fromString(OrvoPlayerState::toString(number)), number);
        EXPECT_EQ(OrvoPlayLogicRequestKind::fromString(OrvoPlayLogicRequestKind::toString(number)),
                  number);
        EXPECT_EQ(OrvoPlayerStopReason::fromString(OrvoPlayerStopReason::toString(number)), number);
    }
}

TEST(ValueWatchers, areCountedPerValueAndToldAtTheFirstAndLast) {
    CMRootWorker root;
    const CMPath path = OrvoPlayerPositionPath();
    QStringList told;
    QObject::connect(&root, &CMRootWorker::valueWatched, &root, [&](const CMPath& p, bool watched) {
        told.append(p.toString() + (watched ? "+" : "-"));
    });
    EXPECT_FALSE(root.isValueWatched(path));
    {
        CMValueItem one(nullptr, path);
        CMValueItem two(nullptr, path);
        EXPECT_TRUE(root.isValueWatched(path));
        EXPECT_FALSE(root.isValueWatched(OrvoPlayerVolumePath()));
    }
    EXPECT_FALSE(root.isValueWatched(path));
    EXPECT_EQ(told, (QStringList{"player:position+", "player:position-"}));
    root.removeValueWatcher(path);
    EXPECT_EQ(told.size(), 2) << "one too many changes nothing";
}

} // namespace
