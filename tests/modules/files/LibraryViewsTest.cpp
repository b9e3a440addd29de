#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSignalSpy>

#include "FilesFixture.h"
#include "LibraryNode.h"
#include "TaggedFiles.h"

namespace {

class LibraryViewsTest : public FilesFixture {
protected:
    void writeTrack(const QString& name, const QMap<QString, QString>& tags) {
        ASSERT_TRUE(TaggedFiles::write(file(name), tags)) << qUtf8Printable(name);
    }
    // Ann's two albums, one by many artists of two discs, and one file that says nothing.
    void writeLibrary() {
        const auto track = [this](const char* name, const char* title, const char* artist,
                                  const char* album, const char* genre, int number) {
            writeTrack(name, {{"TITLE", title},
                              {"ARTIST", artist},
                              {"ALBUM", album},
                              {"GENRE", genre},
                              {"TRACKNUMBER", QString::number(number)},
                              {"DATE", "2001-05-01"}});
        };
        track("a/x.ape", "Two", "Ann", "10th", "Folk", 2);
        track("a/y.ape", "One", "Ann", "10th", "Jazz", 1);
        track("a/z.ape", "Three", "ann", "2nd", "Folk", 3);
        for (const char* disc : {"2", "1"}) {
            for (const char* number : {"2", "1"})
                writeTrack(QString("v/%1-%2.ape").arg(disc, number),
                           {{"TITLE", QString("%1.%2").arg(disc, number)},
                            {"ARTIST", QString("Singer %1").arg(number)},
                            {"ALBUMARTIST", "Various"},
                            {"ALBUM", "Hits"},
                            {"COMPOSER", "Émile"},
                            {"DISCNUMBER", disc},
                            {"TRACKNUMBER", number}});
        }
        writeTrack("untagged.ape", {});
    }
    QString error(const QString& path) const {
        const Rows result = rows(path);
        EXPECT_EQ(result.error.name(), CMError::InvalidValue()) << qUtf8Printable(path);
        return result.error.message().toString();
    }
    // The titles of the list that a row of another list leads to.
    QStringList below(const QString& path, int row) const {
        return titles(rows(path).row(row).path().toString());
    }
};

TEST_F(LibraryViewsTest, artistsLeadToTheirAlbumsAndTheseToTheirTracks) {
    writeLibrary();
    startAndScan();
    EXPECT_EQ(titles("files:artists"), (QStringList{"Ann", "Various", "Unknown artist"}));
    EXPECT_EQ(rows("files:artists").answer.rowsCount(), 3);
    EXPECT_EQ(rows("files:artists").row(0).type(), int(OrvoRolesType::Container));
    EXPECT_EQ(below("files:artists", 0), (QStringList{"2nd", "10th"}));
    EXPECT_EQ(below("files:artists", 1), QStringList{"Hits"});
    EXPECT_EQ(below("files:artists", 2), QStringList{"Unknown album"});
    EXPECT_EQ(below("files:albums?albumArtist=Ann", 1), (QStringList{"One", "Two"}));
    EXPECT_EQ(below("files:albums?albumArtist=Various", 0),
              (QStringList{"1.1", "1.2", "2.1", "2.2"}));
    EXPECT_EQ(below("files:albums?albumArtist=", 0), QStringList{"untagged"});
}

TEST_F(LibraryViewsTest, albumsTellArtistYearAndPicture) {
    writeLibrary();
    SoundFiles::writeBytes(file("a/cover.png"), "x");
    startAndScan();
    const Rows albums = rows("files:albums");
    EXPECT_EQ(albums.titles(), (QStringList{"2nd", "10th", "Hits", "Unknown album"}));
    const OrvoMetaData data = albums.row(1).mediaData().metaData();
    EXPECT_EQ(data.artist(), "Ann");
    EXPECT_EQ(data.album(), "10th");
    EXPECT_EQ(data.attribute("year"), "2001");
    EXPECT_EQ(data.artworkUrl(), url(file("a/cover.png")));
    EXPECT_EQ(albums.row(1).path().toString(), "files:select?album=10th&albumArtist=Ann");
    EXPECT_FALSE(albums.row(2).mediaData().metaData().contains("year"));
}

TEST_F(LibraryViewsTest, genresLeadToTheAlbumsThatHaveThemAndTheirTracksOfIt) {
    writeLibrary();
    startAndScan();
    EXPECT_EQ(titles("files:genres"), (QStringList{"Folk", "Jazz", "Unknown genre"}));
    EXPECT_EQ(below("files:genres", 0), (QStringList{"2nd", "10th"}));
    EXPECT_EQ(below("files:albums?genre=folk", 1), QStringList{"Two"});
    EXPECT_EQ(below("files:genres", 1), QStringList{"10th"});
}

TEST_F(LibraryViewsTest, recentListsTheNewestAlbumsFirst) {
    writeLibrary();
    QFile newest(file("a/z.ape"));
    ASSERT_TRUE(newest.open(QIODevice::ReadWrite));
    ASSERT_TRUE(newest.setFileTime(QDateTime::currentDateTime().addSecs(60),
                                   QFileDevice::FileModificationTime));
    newest.close();
    QFile oldest(file("untagged.ape"));
    ASSERT_TRUE(oldest.open(QIODevice::ReadWrite));
    ASSERT_TRUE(oldest.setFileTime(QDateTime::currentDateTime().addSecs(-60),
                                   QFileDevice::FileModificationTime));
    oldest.close();
    startAndScan();
    EXPECT_EQ(titles("files:recent").constFirst(), "2nd");
    EXPECT_EQ(titles("files:recent").constLast(), "Unknown album");
}

TEST_F(LibraryViewsTest, aTrackHasItsPlaceInTheTreeAndAllItsTags) {
    writeLibrary();
    startAndScan();
    const OrvoRoles row = rows("files:select?album=Hits").row(3);
    EXPECT_EQ(row.path().toString(), "files:tree/v/2-2.ape");
    EXPECT_EQ(row.type(), int(OrvoRolesType::Audio));
    const OrvoMetaData data = row.mediaData().metaData();
    EXPECT_EQ(data.artist(), "Singer 2");
    EXPECT_EQ(data.attribute("albumArtist"), "Various");
    EXPECT_EQ(data.attribute("composer"), "Émile");
    EXPECT_EQ(data.attribute("disc"), 2);
    EXPECT_EQ(data.trackNumber(), 2);
    EXPECT_FALSE(data.contains("date"));
}

TEST_F(LibraryViewsTest, selectTakesAnyRolesAndSorts) {
    writeLibrary();
    startAndScan();
    EXPECT_EQ(titles("files:select?artist=Ann&genre=Folk"), (QStringList{"Three", "Two"}));
    EXPECT_EQ(titles("files:select?composer=%C3%A9mile&artist=singer%201"),
              (QStringList{"1.1", "2.1"}));
    EXPECT_EQ(titles("files:select?artist=Ann&sort=title"), (QStringList{"One", "Three", "Two"}));
    EXPECT_EQ(titles("files:select?artist=Ann&sort=-title"), (QStringList{"Two", "Three", "One"}));
    EXPECT_EQ(titles("files:select?artist=Ann&sort=genre,-trackNumber"),
              (QStringList{"Three", "Two", "One"}));
    EXPECT_EQ(rows("files:select?artist=nobody").answer.rowsCount(), 0);
    EXPECT_EQ(rows("files:select").answer.rowsCount(), 8);
    EXPECT_EQ(rows("files:select", 2, 3).titles(), titles("files:select").mid(2, 2));
    EXPECT_EQ(rows("files:select", 2, 3).answer.rowsCount(), 8);
}

TEST_F(LibraryViewsTest, distinctTellsTheNamesOfARoleByGroup) {
    writeLibrary();
    startAndScan();
    EXPECT_EQ(titles("files:distinct?role=artist"),
              (QStringList{"Ann", "Singer 1", "Singer 2", "Unknown artist"}));
    EXPECT_EQ(titles("files:distinct?role=genre&artist=Ann"), (QStringList{"Folk", "Jazz"}));
    const Rows grouped = rows("files:distinct?role=album&group=genre");
    EXPECT_EQ(grouped.titles(), (QStringList{"2nd", "10th", "10th", "Hits", "Unknown album"}));
    EXPECT_EQ(grouped.row(2).mediaData().metaData().attribute("genre"), "Jazz");
    EXPECT_EQ(below("files:distinct?role=album&group=genre", 2), QStringList{"One"});
}

TEST_F(LibraryViewsTest, whatAPathAsksWronglyIsRefused) {
    startAndScan();
    EXPECT_EQ(error("files:albums?colour=red"), "The list has no parameter \"colour\".");
    EXPECT_EQ(error("files:artists?sort=title"), "The list has no parameter \"sort\".");
    EXPECT_EQ(error("files:select?sort=title,colour"), "There is no role \"colour\" to sort by.");
    EXPECT_EQ(error("files:distinct"), "There is no role \"\" to tell apart.");
    EXPECT_EQ(error("files:distinct?role=artist&group=x"), "There is no role \"x\" to group by.");
    EXPECT_EQ(error("files:select?sort=" + QString("title,").repeated(20)),
              "These are too many roles to sort by: 20.");
    EXPECT_EQ(rows("files:artists/Ann").error.name(), CMError::NoSuchNode());
}

TEST_F(LibraryViewsTest, namesKeepTheirCharacters) {
    const QStringList names = {"AC/DC & ?=#%", "עברית", "日本語", "  ", "a+b", "é"};
    for (const QString& name : names)
        writeTrack(QString("%1.ape").arg(names.indexOf(name)), {{"ARTIST", name}, {"ALBUM", name}});
    startAndScan();
    const Rows artists = rows("files:artists");
    ASSERT_EQ(artists.answer.rowsCount(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        const CMPath path(artists.row(i).path().toString());
        ASSERT_EQ(rows(path.toString()).answer.rowsCount(), 1) << qUtf8Printable(path.toString());
        EXPECT_EQ(below(path.toString(), 0).size(), 1);
    }
}

TEST_F(LibraryViewsTest, everyViewIsResetWhenTheLibraryIsAnother) {
    writeLibrary();
    startAndScan();
    QStringList resets;
    QObject::connect(CMRoot()->events(), &CMSubscribe::changed, worker(),
                     [&resets](const CMChange& change) {
                         if (change.kind == CMChange::Kind::StartingWith)
                             resets.append(change.path.toString());
                     });
    ASSERT_TRUE(waitUntil([&] { return resets.size() >= int(LibraryViews::all().size()); }));
    resets.clear();
    writeTrack("new.ape", {{"ARTIST", "Zoe"}});
    ASSERT_TRUE(waitUntil([&] { return resets.contains("files:distinct"); }));
    for (const char* path : {"files:artists", "files:albums", "files:genres", "files:recent",
                             "files:select", "files:distinct"})
        EXPECT_TRUE(resets.contains(path)) << path;
    EXPECT_TRUE(titles("files:artists").contains("Zoe"));
    ASSERT_TRUE(QFile::remove(file("new.ape")));
    EXPECT_TRUE(waitUntil([&] { return !titles("files:artists").contains("Zoe"); }));
}

TEST_F(LibraryViewsTest, whatAListSelectsCanBePrepared) {
    writeLibrary();
    startAndScan();
    EXPECT_EQ(itemTitles(prepare({"files:select?album=Hits&albumArtist=Various",
                                  "files:tree/untagged.ape", "files:albums?albumArtist=Ann"})),
              (QStringList{"1.1", "1.2", "2.1", "2.2", "untagged", "Three", "One", "Two"}));
    EXPECT_TRUE(prepare({"files:select?album=None", "files:select?colour=x"}).isEmpty());
}

TEST_F(LibraryViewsTest, aRowIsFoundByItsTitle) {
    writeLibrary();
    startAndScan();
    const auto match = [](const QString& path, const QString& text, int from) {
        const CMReply<int> reply;
        CMRoot()->matchRowRequest(CMMatchRowRequest(CMPath(path), text, from, reply));
        return reply.value();
    };
    EXPECT_EQ(match("files:artists", "var", 0), 1);
    EXPECT_EQ(match("files:artists", "var", 2), -1);
    EXPECT_EQ(match("files:albums", "10", 0), 1);
    EXPECT_EQ(match("files:select?artist=ann", "two", 0), 2);
}

// The tracks need no files: the library reads none.
TEST(LibraryTest, tenThousandAlbumsOfOneArtistAreListedByThePage) {
    std::vector<LibraryTrack> tracks;
    const auto folder = std::make_shared<Folder>();
    for (int i = 0; i < 10000; ++i) {
        TrackTags tags;
        tags.artist = "Ann";
        tags.album = QString("Album %1").arg(9999 - i);
        auto track = std::make_shared<Track>();
        track->name = QString("%1.wav").arg(i);
        track->tags = std::make_shared<const TrackTags>(tags);
        tracks.push_back({folder, track});
    }
    const Library library(tracks);
    const CMPath path("files:albums?albumArtist=ANN");
    const LibraryList list = LibraryViews::list(library, *LibraryViews::find(path), path);
    ASSERT_EQ(list.rows.size(), 10000U);
    const auto answer = [&](int from, int to) {
        return LibraryNode::answer(library, list,
                                   CMGetRowsRequest(path, from, to, {OrvoRoles::Title()}, {}));
    };
    const QVariantList rows = answer(0, CMGetRowsRequest::LastRow).rows();
    EXPECT_EQ(rows.size(), LibraryNode::MaxRowsAtOnce);
    EXPECT_EQ(TrString::fromVariant(rows.at(12).toList().at(0)).toString(), "Album 12");
    EXPECT_EQ(answer(9990, 20000).rows().size(), 10);
    EXPECT_EQ(answer(9990, 20000).rowsCount(), 10000);
}

} // namespace
