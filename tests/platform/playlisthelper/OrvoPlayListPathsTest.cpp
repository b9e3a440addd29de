#include "OrvoPlayListPaths.h"

#include <gtest/gtest.h>

#include <QSet>

#include "Printing.h"

TEST(OrvoPlayListPaths, everyFunctionNamesThePathOfItsRow) {
#define CHECK_ROW(function, path) EXPECT_EQ(function().toString(), path);
    ORVO_PLAYLIST_PATHS(CHECK_ROW)
#undef CHECK_ROW
#define COUNT_ROW(function, path) +1
    EXPECT_EQ(orvoPlayListPaths().size(), 0 ORVO_PLAYLIST_PATHS(COUNT_ROW));
#undef COUNT_ROW
    EXPECT_EQ(orvoPlayListPaths().size(), 32);
}

TEST(OrvoPlayListPaths, thePathsBelongToTheModuleAndAreTold) {
    QSet<QString> functions;
    QSet<QString> paths;
    for (const OrvoPathRow& row : orvoPlayListPaths()) {
        const CMPath path{QString(row.path)};
        EXPECT_EQ(path.prefix(), "playlists") << row.function;
        EXPECT_FALSE(path.splitBase().isEmpty()) << row.function;
        EXPECT_TRUE(path.params().isEmpty()) << row.function;
        EXPECT_EQ(path.toString(), row.path) << "the text is the normal form";
        functions.insert(row.function);
        paths.insert(row.path);
    }
    EXPECT_EQ(functions.size(), orvoPlayListPaths().size());
    EXPECT_EQ(paths.size(), orvoPlayListPaths().size());
}

TEST(OrvoPlayListPaths, noPathIsTheStartOfAnotherOne) {
    for (const OrvoPathRow& one : orvoPlayListPaths()) {
        for (const OrvoPathRow& other : orvoPlayListPaths()) {
            if (one.function == other.function)
                continue;
            EXPECT_FALSE(CMPath(QString(other.path)).startsWith(CMPath(QString(one.path))))
                << one.function << " would reset " << other.function;
        }
    }
}

TEST(OrvoPlayListPaths, noIdBelowAnItemsPathMeetsAFixedPath) {
    for (const CMPath& extended : {OrvoPlayListPlGetItemsPath(), OrvoPlayListItemPath()}) {
        for (int id : {0, 1, 10, 2147483647}) {
            const CMPath path = extended + QString::number(id);
            for (const OrvoPathRow& row : orvoPlayListPaths())
                EXPECT_FALSE(CMPath(QString(row.path)).startsWith(path)) << row.function;
        }
    }
}

TEST(OrvoPlayListPaths, everyPlaylistHasAnItemsPathOfItsOwnAndTheQueueItsFixedOne) {
    EXPECT_EQ(OrvoPlayListItemsPathOf(0).toString(), "playlists:pq/items");
    EXPECT_EQ(OrvoPlayListItemsPathOf(1).toString(), "playlists:pl/items/1");
    EXPECT_EQ(OrvoPlayListItemPathOf(17).toString(), "playlists:item/17");
}

TEST(OrvoPlayListPaths, thePrepareCallBelowThePrefixIsTheModulesPreparePath) {
    EXPECT_EQ(CMPath::fromPrefix("playlists") + OrvoPlayListPrepareItems(),
              OrvoPlayListPlPrepareItemsPath());
    EXPECT_EQ(OrvoPlayListPrepareItems(), "prepareItems");
}
