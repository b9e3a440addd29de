#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include "FilesFixture.h"
#include "LogCapture.h"
#include "OrvoRoles.h"

using SoundFiles::writeWav;

namespace {

class PrepareItems : public FilesFixture {};

OrvoRoles parsedRoles(const OrvoPlayListItem& item) {
    return OrvoRoles(QJsonDocument::fromJson(item.orvoRoles().toUtf8()).object().toVariantHash());
}

TEST_F(PrepareItems, aTrackGivesOneCompleteItem) {
    writeWav(file("Ann/Album/01 Söng.wav"), {"The Söng", "Ann", "Album", "Folk", 1}, 2600);
    SoundFiles::writeBytes(file("Ann/Album/front.png"), "x");
    startAndScan();
    const QList<OrvoPlayListItem> items = prepare({"files:tree/Ann/Album/01%20S%C3%B6ng.wav"});
    ASSERT_EQ(items.size(), 1);
    const OrvoPlayListItem& item = items.at(0);
    EXPECT_EQ(item.title(), "The Söng");
    EXPECT_EQ(item.artist(), "Ann");
    EXPECT_EQ(item.album(), "Album");
    EXPECT_EQ(item.genre(), "Folk");
    EXPECT_EQ(item.artworkUrl(), url(file("Ann/Album/front.png")));
    EXPECT_EQ(item.durationSeconds(), 3);
    EXPECT_EQ(item.url(), url(file("Ann/Album/01 Söng.wav")));
    EXPECT_EQ(item.serviceId(), "files");

    const OrvoRoles roles = parsedRoles(item);
    EXPECT_EQ(roles.type(), OrvoRolesType::Audio);
    EXPECT_EQ(roles.title().toString(), "The Söng");
    EXPECT_EQ(roles.path().toString(), "files:tree/Ann/Album/01%20S%C3%B6ng.wav");
    EXPECT_EQ(roles.mediaData().metaData().duration(), 2600);
    EXPECT_EQ(roles.mediaData().metaData().prePlayPath(), CMPath("files:prePlay"));
    EXPECT_EQ(roles.mediaData().metaData().serviceId(), "files");
    ASSERT_EQ(roles.mediaData().resources().size(), 1);
    EXPECT_EQ(roles.mediaData().resources().at(0).uri(), item.url());
}

TEST_F(PrepareItems, aFileWithoutTagsIsNamedAfterItsFile) {
    SoundFiles::writeBytes(file("broken.flac"), "this is no music");
    startAndScan();
    const QList<OrvoPlayListItem> items = prepare({"files:tree/broken.flac"});
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items.at(0).title(), "broken");
    EXPECT_EQ(items.at(0).durationSeconds(), 0);
    EXPECT_EQ(parsedRoles(items.at(0)).title().toString(), "broken");
}

TEST_F(PrepareItems, tagsThatAreNotReadYetAreReadForIt) {
    writeWav(file("A/x.wav"), {"The Title", {}, {}, {}, 0});
    start();
    const CMReply<QVariant> reply = set("files:prepareItems", QStringList{"files:tree/A/x.wav"});
    ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    EXPECT_EQ(scanValue().value("done"), 1) << "what is waited for is not read twice";
    EXPECT_EQ(OrvoPlayListItem(reply.value().toList().value(0)).title(), "The Title");
}

TEST_F(PrepareItems, aFolderGivesAllItsTracksInTheOrderOfListing) {
    for (const char* name :
         {"2.wav", "10.wav", "B/b.wav", "A/a2.wav", "A/a1.wav", "A/Deep/d.wav", "Empty/notes.txt"})
        writeWav(file(name));
    const QStringList expected = {"d", "a1", "a2", "b", "2", "10"};
    start();
    EXPECT_EQ(itemTitles(prepare({"files:tree"})), expected) << "before the scan";
    ASSERT_TRUE(waitUntilScanned());
    EXPECT_EQ(itemTitles(prepare({"files:tree"})), expected) << "after the scan";
    EXPECT_EQ(itemTitles(prepare({"files:tree/A"})), (QStringList{"d", "a1", "a2"}));
}

TEST_F(PrepareItems, itemsComeInTheOrderAskedAndAsOftenAsAsked) {
    for (const char* name : {"a.wav", "b.wav", "F/c.wav"})
        writeWav(file(name));
    startAndScan();
    EXPECT_EQ(itemTitles(prepare(
                  {"files:tree/b.wav", "files:tree/F", "files:tree/a.wav", "files:tree/b.wav"})),
              (QStringList{"b", "c", "a", "b"}));
}

TEST_F(PrepareItems, unknownPathsGiveNothingButAWordInTheLog) {
    writeWav(file("a.wav"));
    startAndScan();
    LogCapture log("Files");
    EXPECT_EQ(itemTitles(prepare({"files:tree/gone.wav", "files:tree/a.wav", "nonsense", ""})),
              QStringList{"a"});
    EXPECT_EQ(log.texts("WARN"),
              (QStringList{"nothing to prepare at files:tree/gone.wav",
                           "nothing to prepare at nonsense", "nothing to prepare at "}));
}

TEST_F(PrepareItems, thousandsOfUnknownPathsDoNotFillTheLog) {
    startAndScan();
    QStringList paths;
    for (int i = 0; i < 3000; ++i)
        paths.append(QString("files:tree/%1.wav").arg(i));
    LogCapture log("Files");
    EXPECT_TRUE(prepare(paths).isEmpty());
    EXPECT_EQ(log.texts("WARN").size(), 6);
    EXPECT_EQ(log.texts("WARN").constLast(), "nothing to prepare at 3000 paths in all");
}

TEST_F(PrepareItems, noPathsGiveNoItems) {
    startAndScan();
    EXPECT_TRUE(prepare({}).isEmpty());
}

TEST_F(PrepareItems, aValueThatIsNoListIsRefused) {
    startAndScan();
    for (const QVariant& value :
         {QVariant(), QVariant("files:tree"), QVariant(7), QVariant(QVariantHash{{"a", 1}})}) {
        const CMReply<QVariant> reply = set("files:prepareItems", value);
        ASSERT_TRUE(reply.isError()) << value.typeName();
        EXPECT_EQ(reply.error().name(), CMError::InvalidValue());
        EXPECT_EQ(reply.error().message().toString(), "The value must be a list of paths.");
    }
}

TEST_F(PrepareItems, elementsThatAreNoPathsGiveNothing) {
    writeWav(file("a.wav"));
    startAndScan();
    const QVariantList elements = {7, QVariantHash{{"path", "files:tree"}},
                                   QVariantList{"files:tree"}, QVariant(),
                                   QVariant::fromValue(CMPath("files:tree/a.wav"))};
    const CMReply<QVariant> reply = set("files:prepareItems", elements);
    ASSERT_TRUE(waitUntil([&] { return reply.isFinished(); }));
    EXPECT_EQ(reply.value().toList().size(), 1);
}

TEST_F(PrepareItems, aLongCallLetsTheEventLoopTurn) {
    constexpr int Tracks = 4000;
    for (int i = 0; i < Tracks; ++i)
        writeWav(file(QString("%1/%2.wav").arg(i / 100).arg(i)), {}, 10);
    start();
    int turns = 0;
    QTimer ticking;
    QObject::connect(&ticking, &QTimer::timeout, [&turns] { ++turns; });
    ticking.start(0);
    const CMReply<QVariant> reply = set("files:prepareItems", QStringList{"files:tree"});
    EXPECT_FALSE(reply.isFinished());
    ASSERT_TRUE(waitUntil([&] { return reply.isFinished(); }));
    EXPECT_GE(turns, 5);
    const QVariantList items = reply.value().toList();
    ASSERT_EQ(items.size(), Tracks);
    for (int i = 0; i < Tracks; ++i)
        ASSERT_EQ(OrvoPlayListItem(items.at(i)).title(), QString::number(i));
}

TEST_F(PrepareItems, twoCallsAtATimeEachGetTheirOwnAnswer) {
    for (int i = 0; i < 1000; ++i)
        writeWav(file(QString("%1/%2.wav").arg(i % 2 ? "odd" : "even").arg(i)), {}, 10);
    start();
    const CMReply<QVariant> odd = set("files:prepareItems", QStringList{"files:tree/odd"});
    const CMReply<QVariant> even = set("files:prepareItems", QStringList{"files:tree/even"});
    ASSERT_TRUE(waitUntil([&] { return odd.isFinished() && even.isFinished(); }));
    ASSERT_EQ(odd.value().toList().size(), 500);
    ASSERT_EQ(even.value().toList().size(), 500);
    EXPECT_EQ(OrvoPlayListItem(odd.value().toList().at(0)).title(), "1");
    EXPECT_EQ(OrvoPlayListItem(even.value().toList().at(499)).title(), "998");
}

TEST_F(PrepareItems, aCallThatIsCutOffByTheEndGetsAnError) {
    for (int i = 0; i < 4000; ++i)
        writeWav(file(QString("%1.wav").arg(i)), {}, 10);
    start();
    QString error;
    {
        // The caller keeps no handle of its own, as callers do that only register callbacks.
        const CMReply<QVariant> reply = set("files:prepareItems", QStringList{"files:tree"});
        ASSERT_FALSE(reply.isFinished());
        reply.onError([&error](const CMError& told) { error = told.name(); });
    }
    stop();
    EXPECT_EQ(error, CMError::NotAnswered());
}

TEST_F(PrepareItems, moreItemsThanAnyLibraryHasAreRefused) {
    writeWav(file("a/One.wav"));
    startAndScan();
    QStringList paths;
    for (int i = 0; i <= 100000; ++i)
        paths.append("files:tree/a");
    const CMReply<QVariant> reply = set("files:prepareItems", paths);
    ASSERT_TRUE(reply.waitForFinished(150000));
    EXPECT_EQ(reply.error().name(), CMError::InvalidValue());
    paths.removeLast();
    const CMReply<QVariant> most = set("files:prepareItems", paths);
    ASSERT_TRUE(most.waitForFinished(150000));
    EXPECT_EQ(most.value().toList().size(), 100000);
}

TEST_F(PrepareItems, prePlayIsAlwaysFine) {
    startAndScan();
    const CMReply<QVariant> reply = set("files:prePlay", QVariantHash{{"anything", 1}});
    EXPECT_TRUE(reply.isFinished());
    EXPECT_FALSE(reply.isError());
}

TEST_F(PrepareItems, otherCommandsAreRefused) {
    startAndScan();
    EXPECT_EQ(set("files:nothing", {}).error().name(), CMError::NoSuchNode());
    EXPECT_EQ(set("files:tree", {}).error().name(), CMError::NotSupported());
}

} // namespace
