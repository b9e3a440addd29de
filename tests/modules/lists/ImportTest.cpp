#include <csignal>
#include <sys/resource.h>

#include <QCoreApplication>

#include "ListsFixture.h"

namespace {

class Import : public ListsFixture {};

// A files module whose first scan takes too long.
class ScanningFiles : public CMNodesWorker {
public:
    ScanningFiles() : CMNodesWorker({}, QStringLiteral("Files")) {}

    void setDataRequest(const CMSetDataRequest& request) override {
        request.reply().setError(CMError("Scanning", TrString("Still looking."), TrString()));
    }
};

// While it is there no file can be written.
class FullDisk {
public:
    FullDisk() {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {1, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before = {};
};

} // namespace

TEST_F(Import, theNameIsTheOneGivenElseTheListsOwnElseThatOfTheFile) {
    track("a.wav");
    start();
    const QString text = "#EXTM3U\n#PLAYLIST:Own\na.wav\n";
    EXPECT_EQ(call("lists:import", {{"text", text}, {"file", "f.m3u"}, {"name", "Given"}})
                  .value.value("name"),
              "Given");
    EXPECT_EQ(importText(text).value.value("name"), "Own");
    EXPECT_EQ(importText("a.wav\n", "Summer 1.5.m3u").value.value("name"), "Summer 1.5");
    EXPECT_EQ(call("lists:import", {{"text", "a.wav\n"}}).value.value("name"), "Imported");
    EXPECT_EQ(playlistNames(), (QStringList{"Given", "Own", "Summer 1.5", "Imported"}));
}

TEST_F(Import, aNameThatThePlaylistsModuleRefusesLeavesNothing) {
    track("a.wav");
    start({{"playlists/maxNameBytes", 10}});
    const Answer answer = call("lists:import", {{"text", "a.wav\n"}, {"name", "more than ten"}});
    EXPECT_EQ(answer.message(), "Could not create playlist. Name is too long.");
    EXPECT_EQ(call("lists:import", {{"text", "a.wav\n"}, {"name", ""}}).error.name().isEmpty(),
              false);
    EXPECT_EQ(playlistNames(), QStringList());
}

TEST_F(Import, whatIsAskedForWronglyIsRefused) {
    start();
    EXPECT_EQ(call("lists:import", {}).message(), "Either \"text\" or \"bytes\" is needed.");
    EXPECT_EQ(call("lists:import", {{"text", "a"}, {"bytes", "YQ=="}}).message(),
              "Either \"text\" or \"bytes\" is needed.");
    EXPECT_EQ(call("lists:import", {{"bytes", ""}}).message(), "The file is empty.");
    EXPECT_EQ(call("lists:import", {{"bytes", "no base64!"}}).message(),
              "\"bytes\" is not base64.");
    EXPECT_EQ(call("lists:nothing", {}).error.name(), CMError::NoSuchNode());
}

TEST_F(Import, whatTheStoreHasNoRoomForIsNotImportedAtAll) {
    track("a.wav");
    setItemsLimit(300);
    start();
    EXPECT_EQ(importText(QString("a.wav\n").repeated(250), "fits.m3u").added(), 250);
    // For more than there is room for, in the first part and in a later one.
    EXPECT_EQ(importText(QString("http://a/\n").repeated(200)).error.name().isEmpty(), false);
    EXPECT_EQ(playlistNames(), QStringList{"fits"});
    for (const int streams : {49, 50, 51, 60, 250}) {
        QString text;
        for (int i = 0; i < streams; ++i)
            text += QStringLiteral("http://example.org/%1\n").arg(i);
        const Answer answer = importText(text);
        EXPECT_EQ(answer.error.name().isEmpty(), streams <= 50) << streams;
        if (answer.plid() >= 0)
            call("playlists:pl/delete", {{"plid", answer.plid()}});
        EXPECT_EQ(playlistNames(), QStringList{"fits"}) << streams;
    }
}

TEST_F(Import, fiveHundredEntriesKeepTheirOrderAcrossParts) {
    QString text;
    QStringList expected;
    for (int i = 0; i < 20; ++i)
        track(QStringLiteral("%1.wav").arg(i));
    for (int i = 0; i < 501; ++i) {
        const bool isStream = i % 7 == 3;
        expected.append(isStream ? QStringLiteral("http://example.org/%1").arg(i)
                                 : QStringLiteral("%1.wav").arg(i % 20));
        text += expected.last() + '\n';
    }
    start();
    const Answer answer = importText(text);
    EXPECT_EQ(answer.added(), 501);
    EXPECT_EQ(tracks(answer.plid()), expected);
}

TEST_F(Import, namesThatLeadOutOfTheMusicFolderFindNothingThere) {
    track("a.wav");
    SoundFiles::writeWav(musicFolder() + "/../secret.wav");
    start();
    const Answer answer = importText("../secret.wav\n/etc/passwd\nfile:///etc/passwd\n"
                                     "a.wav/../../secret.wav\n" +
                                     musicFolder() + "/../secret.wav\na.wav\n");
    EXPECT_EQ(answer.notFound().size(), 5);
    EXPECT_EQ(tracks(answer.plid()), QStringList{"a.wav"});
}

TEST_F(Import, aFifthImportOrExportAtTheSameTimeIsRefused) {
    track("a.wav");
    start();
    const int plid = importText("a.wav\n").plid();
    const struct {
        const char* path;
        QVariantHash args;
        const char* refusal;
    } kinds[] = {
        {"lists:import",
         {{"text", "a.wav\n"}},
         "Too many files are being imported. Please try again."},
        {"lists:export", {{"plid", plid}}, "Too many files are being exported. Please try again."},
    };
    for (const auto& kind : kinds) {
        QVector<CMReply<QVariant>> replies(5);
        for (CMReply<QVariant>& reply : replies) {
            reply = CMReply<QVariant>();
            CMRoot()->invoke(CMPath(kind.path), kind.args, reply);
        }
        EXPECT_EQ(replies.at(4).error().name(), "TooManyFiles");
        EXPECT_EQ(replies.at(4).error().message().toString(), kind.refusal);
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(waitUntil([&] { return replies.at(i).isFinished(); }));
            EXPECT_FALSE(replies.at(i).isError());
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(call(kind.path, kind.args).error.name(), "");
    }
}

TEST_F(Import, whatAnotherClientDoesWithThePlaylistMeanwhileStays) {
    track("a.wav");
    start();
    const QVariantHash args = {{"text", QString("a.wav\n").repeated(2000)}, {"name", "Long"}};
    // Another client removes a track; deletes the playlist; and makes one that gets its number.
    const QStringList edits = {"playlists:pl/removeItems", "playlists:pl/delete"};
    for (const QString& edit : edits) {
        const CMReply<QVariant> reply;
        CMRoot()->invoke(CMPath("lists:import"), args, reply);
        ASSERT_TRUE(waitUntil([] { return !playlistNames().isEmpty() && rows(1).size() > 1; }));
        EXPECT_EQ(playlistNames(), QStringList{"Long (import unfinished)"});
        const int size = rows(1).size();
        EXPECT_EQ(call(edit, {{"plid", 1}, {"items", QVariantList{0}}}).error.name(), "");
        if (playlistNames().isEmpty())
            call("playlists:pl/create", {{"name", "Other"}});
        ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
        EXPECT_TRUE(reply.isError());
        EXPECT_TRUE(reply.error().message().toString().endsWith(
            QStringLiteral(" Tracks added until then: %1.").arg(size)));
        if (edit == edits.last()) {
            EXPECT_EQ(playlistNames(), QStringList{"Other"});
        } else {
            EXPECT_EQ(reply.error().name(), "Conflict");
            EXPECT_EQ(playlistNames(), QStringList{"Long (import unfinished)"});
            EXPECT_EQ(rows(1).size(), size - 1);
            call("playlists:pl/delete", {{"plid", 1}});
        }
    }
}

TEST_F(Import, untilTheLastTrackIsThereTheNameSaysSoAlsoAfterARestart) {
    track("a.wav");
    start();
    const QVariantHash args = {{"text", QString("a.wav\n").repeated(500)}, {"name", "Long"}};
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath("lists:import"), args, reply);
    ASSERT_TRUE(waitUntil([] { return !playlistNames().isEmpty() && rows(1).size() > 1; }));
    const int size = rows(1).size();
    ASSERT_LT(size, 500);
    restart();
    EXPECT_EQ(playlistNames(), QStringList{"Long (import unfinished)"});
    EXPECT_EQ(rows(1).size(), size);
    EXPECT_EQ(call("lists:import", args).added(), 500);
    EXPECT_EQ(playlistNames(), (QStringList{"Long (import unfinished)", "Long"}));
}

TEST_F(Import, aNameThatAnotherClientGivesItMeanwhileStays) {
    track("a.wav");
    start();
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath("lists:import"),
                     QVariantHash{{"text", QString("a.wav\n").repeated(500)}, {"name", "Long"}},
                     reply);
    ASSERT_TRUE(waitUntil([] { return !playlistNames().isEmpty(); }));
    call("playlists:pl/setName", {{"plid", 1}, {"name", "Mine"}});
    ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    EXPECT_FALSE(reply.isError());
    EXPECT_EQ(playlistNames(), QStringList{"Mine"});
    EXPECT_EQ(rows(1).size(), 500);
}

TEST_F(Import, aNameThatLeavesNoRoomForTheMarkIsTakenAsItIs) {
    track("a.wav");
    start({{"playlists/maxNameBytes", 10}});
    const Answer answer = call("lists:import", {{"text", "a.wav\n"}, {"name", "ten bytes!"}});
    EXPECT_EQ(answer.added(), 1);
    EXPECT_EQ(playlistNames(), QStringList{"ten bytes!"});
}

TEST_F(Import, beforeTheFirstScanHasEndedTheRefusalIsPassedOnAndNothingIsMade) {
    start();
    unloadFiles();
    const ScanningFiles files;
    const Answer answer = importText("a.wav\n");
    EXPECT_EQ(answer.error.name(), "Scanning");
    EXPECT_EQ(answer.message(), "Still looking.");
    EXPECT_EQ(playlistNames(), QStringList());
}

TEST_F(Import, whereTheDiskIsFullSoThatNothingCanBeUndoneTheAnswerSaysWhatStays) {
    track("a.wav");
    start();
    const CMReply<QVariant> reply;
    CMRoot()->invoke(CMPath("lists:import"),
                     QVariantHash{{"text", QString("a.wav\n").repeated(2000)}, {"name", "Long"}},
                     reply);
    ASSERT_TRUE(waitUntil([] { return !playlistNames().isEmpty() && rows(1).size() > 1; }));
    const int size = rows(1).size();
    ASSERT_LT(size, 2000);
    {
        const FullDisk full;
        ASSERT_TRUE(waitUntil([&reply] { return reply.isFinished(); }));
    }
    EXPECT_EQ(reply.error().message().toString(),
              QStringLiteral("Could not add external items to playlist. No items were added. "
                             "Tracks added until then: %1.")
                  .arg(size));
    EXPECT_EQ(playlistNames(), QStringList{"Long (import unfinished)"});
    EXPECT_EQ(rows(1).size(), size);
}
