#include <glib.h>
#include <gtest/gtest.h>
#include <random>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "SoundFiles.h"
#include "TestEngine.h"

namespace {

constexpr int FilesOfAFormat = 200;
constexpr int FileTimeoutMs = 3000;
constexpr int LongestMs = 3 * FileTimeoutMs;

// Counts what GStreamer's libraries complain about while it lives.
class Complaints {
public:
    Complaints() : m_old(g_log_set_default_handler(count, this)) {}
    ~Complaints() { g_log_set_default_handler(m_old, nullptr); }
    Complaints(const Complaints&) = delete;
    Complaints& operator=(const Complaints&) = delete;

    int critical() const { return m_critical; }

private:
    static void count(const gchar* domain, GLogLevelFlags level, const gchar* text, gpointer self) {
        if (level & (G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR))
            ++static_cast<Complaints*>(self)->m_critical;
        g_log_default_handler(domain, level, text, nullptr);
    }

    GLogFunc m_old;
    std::atomic<int> m_critical{0};
};

// Files that were cut off or garbled, and an engine that plays them.
class BrokenSoundsTest : public ::testing::TestWithParam<const char*> {
protected:
    BrokenSoundsTest()
        : engine("null", {{"musicDir", folder.path()}, {"player/fileTimeoutMs", FileTimeoutMs}}) {}

    QStringList make(const QStringList& arguments) {
        EXPECT_EQ(
            QProcess::execute(QStringLiteral(PYTHON),
                              QStringList{QStringLiteral(MAKE_SOUNDS), folder.path()} + arguments),
            0);
        QStringList uris;
        for (const QFileInfo& file : QDir(folder.path()).entryInfoList(QDir::Files, QDir::Name))
            uris.append(QUrl::fromLocalFile(file.filePath()).toString());
        return uris;
    }

    QTemporaryDir folder;
    TestEngine engine;
    Listener listener{engine};
};

TEST_P(BrokenSoundsTest, eachEndsOrFailsInTime) {
    const QStringList uris =
        make({"--formats", GetParam(), "--each", QString::number(FilesOfAFormat)});
    ASSERT_EQ(uris.size(), FilesOfAFormat);
    quint64 generation = 0;
    int lost = 0;
    for (const QString& uri : uris) {
        engine.play(++generation, uri, 0, false);
        ASSERT_TRUE(waitUntil([&] { return listener.isOver(generation); }, LongestMs))
            << uri.toStdString();
        // The time is a net below all else, not the way in which a broken file ends.
        if (listener.failure == "it does not begin in time" ||
            listener.failure == "it gives nothing more")
            ++lost;
        listener.failure.clear();
    }
    EXPECT_EQ(lost, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, BrokenSoundsTest, ::testing::Values("ogg", "flac", "mp3", "wav"),
                         [](const auto& row) { return std::string(row.param); });

// An Ogg file without the end of its headers ends its decoder while that is still being put
// together; leaving it just then is what a decoder comes to rest from least easily.
TEST_F(BrokenSoundsTest, decodersAreAtRestBeforeTheyGo) {
    constexpr int Plays = 3000;
    const Complaints complaints;
    const QStringList uris =
        make({"--formats", "ogg", "--damage", "cut", "--each", "20"}).filter("cut");
    std::minstd_rand random(1);
    for (int i = 1; i <= Plays; ++i) {
        engine.play(quint64(i), uris.at(int(random() % unsigned(uris.size()))), 0, false);
        QThread::usleep(random() % 2000);
    }
    engine.stop();
    EXPECT_EQ(complaints.critical(), 0);
}

} // namespace
