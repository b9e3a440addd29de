#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

#include <QFile>

#include "SoundFiles.h"
#include "SoundServer.h"
#include "TestEngine.h"

namespace {

// Leaves the process no more than so many file descriptors to open.
class FewDescriptors {
public:
    explicit FewDescriptors(int left) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit low = m_before;
        low.rlim_cur = 200;
        setrlimit(RLIMIT_NOFILE, &low);
        for (int opened = 0; (opened = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
            m_taken.push_back(opened);
        for (; left > 0 && !m_taken.empty(); --left) {
            close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~FewDescriptors() {
        for (const int taken : m_taken)
            close(taken);
        setrlimit(RLIMIT_NOFILE, &m_before);
    }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlimit m_before{};
    std::vector<int> m_taken;
};

// In a process of its own, because libraries open files when they are first used. Returns what went
// wrong, 0 for nothing.
int playWithFewDescriptors(const QString& sink, bool fromNetwork) {
    SoundFiles files;
    const Pcm pcm = SoundFiles::pcm(2000, 1);
    QStringList uris = {files.wav("a.wav", pcm), files.ogg("a.ogg", pcm)};
    QFile wav(files.fileName("a.wav"));
    if (!wav.open(QIODevice::ReadOnly))
        return 1;
    SoundServer server(wav.readAll());
    if (fromNetwork)
        uris = QStringList{server.url("/whole"), server.url("/again/2")};
    TestEngine engine(sink, {{"player/files", "anywhere"}, {"player/networkTimeoutMs", 500}});
    Listener listener(engine);
    quint64 generation = 0;
    const auto isOver = [&] { return listener.isOver(generation); };
    for (const int left :
         {0, 1, 2, 3, 4, 6, 8, 10, 12, 14, 15, 16, 17, 18, 20, 22, 24, 28, 32, 40}) {
        for (const QString& uri : uris) {
            const FewDescriptors few(left);
            engine.play(++generation, uri, 0, false);
            if (!waitUntil(isOver))
                return 2;
            if (left < 10 && listener.failure != "there are not enough file descriptors or memory")
                return 3;
            // Enough for the decoder, which takes some of them.
            if (left == 16 && sink == "auto" &&
                listener.failure != "the sound output cannot be opened")
                return 5;
            listener.failure.clear();
            engine.stop();
        }
    }
    for (const QString& uri : uris) {
        engine.play(++generation, uri, 0, false);
        if (!waitUntil(isOver) || !listener.failure.isEmpty())
            return 4;
    }
    return 0;
}

struct Row {
    const char* name;
    const char* sink;
    bool fromNetwork;
};

class ShortageTest : public ::testing::TestWithParam<Row> {};

TEST_P(ShortageTest, withoutDescriptorsItemsFailAndTheProcessGoesOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(_exit(playWithFewDescriptors(GetParam().sink, GetParam().fromNetwork)),
                ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Sources, ShortageTest,
                         ::testing::Values(Row{"files", "null", false},
                                           Row{"network", "null", true},
                                           Row{"filesToTheDevice", "auto", false}),
                         [](const auto& row) { return std::string(row.param.name); });

} // namespace
