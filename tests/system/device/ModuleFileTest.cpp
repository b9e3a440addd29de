#include "Device.h"

namespace {
QStringList outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished()) << qPrintable(program);
    EXPECT_EQ(process.exitCode(), 0);
    return QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
}
} // namespace

TEST(ModuleFile, showsWorkerCreateAndNothingElseOfOurs) {
    QStringList symbols;
    for (const QString& line : outputOf("nm", {"-D", "--defined-only", PLAYLISTS_MODULE}))
        symbols.append(line.section(' ', -1));
    EXPECT_EQ(symbols, QStringList{"worker_create"});
}

TEST(ModuleFile, importsTheThreePlatformLibraries) {
    const QStringList needed = outputOf("readelf", {"-d", PLAYLISTS_MODULE}).filter("(NEEDED)");
    for (const char* library : {"liborvo_api.so", "liborvo_api_play.so", "libplayListHelper.so"})
        EXPECT_EQ(needed.filter(QStringLiteral("[%1]").arg(library)).size(), 1) << library;
}

TEST(ModuleFile, aFreshDatabaseHoldsFiveTablesOneIndexAndThePlayQueue) {
    Device device;
    ASSERT_TRUE(device.start());
    device.kill();
    EXPECT_EQ(device.query(
                  "SELECT type || ' ' || name FROM sqlite_master WHERE sql IS NOT NULL ORDER BY 1"),
              (QStringList{"index itemUrlIndex", "table collections", "table collections_playlists",
                           "table items", "table playlists", "table playlists_items"}));
    EXPECT_EQ(device.query("SELECT * FROM playlists"), QStringList{"0|PlayQueue|0|0|-1"});
    EXPECT_EQ(device.query("PRAGMA journal_mode"), QStringList{"delete"});
    device.expectInvariants();
}
