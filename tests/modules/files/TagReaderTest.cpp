#include "TagReader.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "SoundFiles.h"
#include "TaggedFiles.h"

namespace {

class TagReaderTest : public ::testing::Test {
protected:
    QString file(const QString& name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

void expectTags(const TrackTags& read, const SoundTags& written, double seconds) {
    EXPECT_EQ(read.title, written.title);
    EXPECT_EQ(read.artist, written.artist);
    EXPECT_EQ(read.album, written.album);
    EXPECT_EQ(read.genre, written.genre);
    EXPECT_EQ(read.trackNumber, written.track);
    EXPECT_NEAR(double(read.durationMs), seconds * 1000, 5);
}

TEST_F(TagReaderTest, wavTagsAndDurationAreRead) {
    const SoundTags tags{"Grüße", "Ann & Bob", "日本", "Folk", 12};
    SoundFiles::writeWav(file("x.wav"), tags, 1234);
    expectTags(TagReader::read(file("x.wav")), tags, 1.234);
}

TEST_F(TagReaderTest, flacAndOggTagsAndDurationsAreRead) {
    const SoundTags tags{"Grüße", "Ann & Bob", "日本", "Folk", 12};
    for (const char* name : {"x.flac", "x.ogg"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(SoundFiles::writeWithSox(file(name), tags, 1.5)) << "sox is needed";
        expectTags(TagReader::read(file(name)), tags, 1.5);
    }
}

TEST_F(TagReaderTest, everyKindOfFileTellsAllItsTags) {
    const QMap<QString, QString> written = {
        {"TITLE", "Grüße"}, {"ARTIST", "Ann"},   {"ALBUMARTIST", "Ann & Bob"},
        {"ALBUM", "日本"},  {"GENRE", "Folk"},   {"COMPOSER", "J. S."},
        {"DATE", "1999"},   {"DISCNUMBER", "2"}, {"TRACKNUMBER", "7"}};
    for (const QString& suffix : TaggedFiles::suffixes()) {
        SCOPED_TRACE(qUtf8Printable(suffix));
        ASSERT_TRUE(TaggedFiles::write(file("x." + suffix), written)) << "sox is needed";
        const TrackTags tags = TagReader::read(file("x." + suffix));
        EXPECT_EQ(tags.title, "Grüße");
        EXPECT_EQ(tags.artist, "Ann");
        EXPECT_EQ(tags.albumArtist, "Ann & Bob");
        EXPECT_EQ(tags.album, "日本");
        EXPECT_EQ(tags.genre, "Folk");
        EXPECT_EQ(tags.composer, "J. S.");
        EXPECT_EQ(tags.date, "1999");
        EXPECT_EQ(tags.disc, 2);
        EXPECT_EQ(tags.trackNumber, 7);
    }
}

TEST_F(TagReaderTest, theDiscIsTheFirstOfTwoNumbers) {
    ASSERT_TRUE(TaggedFiles::write(file("x.flac"), {{"DISCNUMBER", "2/3"}}));
    EXPECT_EQ(TagReader::read(file("x.flac")).disc, 2);
    ASSERT_TRUE(TaggedFiles::write(file("y.flac"), {{"DISCNUMBER", "-1"}}));
    EXPECT_EQ(TagReader::read(file("y.flac")).disc, 0);
}

TEST_F(TagReaderTest, picturesAreFoundInEveryKindThatHasThem) {
    for (const char* suffix : {"flac", "mp3", "ogg", "opus", "spx", "m4a", "wma", "ape"}) {
        SCOPED_TRACE(suffix);
        const QString name = file(QString("x.") + suffix);
        const QByteArray png = TaggedFiles::png(suffix);
        ASSERT_TRUE(TaggedFiles::write(name, {{"TITLE", "T"}}));
        QByteArray picture = "before";
        TagReader::read(name, &picture);
        EXPECT_EQ(picture, "");
        ASSERT_TRUE(TaggedFiles::addPicture(name, png));
        EXPECT_EQ(TagReader::read(name, &picture).title, "T");
        EXPECT_EQ(picture, png);
    }
}

TEST_F(TagReaderTest, aTagOfAMegabyteIsCut) {
    const QString note = QString::fromUtf8("🎵");
    const QString most = QString(TagReader::MaxTagText - 1, 'x');
    ASSERT_TRUE(TaggedFiles::write(file("x.flac"),
                                   {{"TITLE", QString(1 << 20, 'x')}, {"ALBUM", most + note}}));
    const TrackTags tags = TagReader::read(file("x.flac"));
    EXPECT_EQ(tags.title, QString(TagReader::MaxTagText, 'x'));
    EXPECT_EQ(tags.album, most) << "no half a character is left";
}

TEST_F(TagReaderTest, controlCharactersBecomeBlanks) {
    ASSERT_TRUE(TaggedFiles::write(file("x.flac"),
                                   {{"TITLE", "\x1b[31mone\ntwo\x7f\t"}, {"ARTIST", "עברית"}}));
    EXPECT_EQ(TagReader::read(file("x.flac")).title, "[31mone two");
    EXPECT_EQ(TagReader::read(file("x.flac")).artist, "עברית");
}

TEST_F(TagReaderTest, aFileWithoutTagsHasItsDuration) {
    SoundFiles::writeWav(file("x.wav"), {}, 800);
    expectTags(TagReader::read(file("x.wav")), {}, 0.8);
}

TEST_F(TagReaderTest, aDamagedFileHasNoTagsAndNoDuration) {
    QByteArray zeros(3000, '\0');
    QByteArray noise;
    for (int i = 0; i < 3000; ++i)
        noise += char(i * 7919 >> 3);
    for (const char* suffix : {"aac", "aiff", "ape", "flac", "m4a", "mp3", "mpc", "ogg", "opus",
                               "spx", "tta", "wav", "wma", "wv"}) {
        int number = 0;
        for (const QByteArray& bytes :
             {QByteArray(), QByteArray("RIFF"), QByteArray("fLaC\xff\xff\xff\xff"),
              QByteArray("OggS"), zeros, noise}) {
            const QString name = file(QString("%1.%2").arg(number++).arg(suffix));
            SoundFiles::writeBytes(name, bytes);
            const TrackTags tags = TagReader::read(name);
            EXPECT_EQ(tags.title, "") << qUtf8Printable(name);
            EXPECT_GE(tags.durationMs, 0);
        }
    }
}

TEST_F(TagReaderTest, aFileCutShortAnywhereIsSurvived) {
    SoundFiles::writeWav(file("x.wav"), {"Title", "Artist", "Album", "Genre", 3}, 100);
    QFile whole(file("x.wav"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    for (int length = 0; length < bytes.size(); ++length) {
        SoundFiles::writeBytes(file("cut.wav"), bytes.left(length));
        EXPECT_GE(TagReader::read(file("cut.wav")).durationMs, 0);
    }
}

TEST_F(TagReaderTest, aFileThatIsGoneHasNoTags) {
    EXPECT_EQ(TagReader::read(file("gone.flac")).title, "");
}

} // namespace
