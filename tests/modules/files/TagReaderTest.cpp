#include "TagReader.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "SoundFiles.h"

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
