#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "FuzzTarget.h"
#include "QuietLog.h"

// Every input that is kept, through its target: what was found once stays mended, and the seeds
// stay of use. An input that breaks a promise ends this program; its name is the last one printed.

namespace {

class ReplayTest : public ::testing::TestWithParam<FuzzTarget> {
protected:
    int replay(const QString& kind) {
        const QDir folder(QStringLiteral(ORVO_FUZZ_INPUTS) + '/' + kind + '/' + GetParam().name);
        const QStringList files = folder.entryList(QDir::Files, QDir::Name);
        for (const QString& name : files) {
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
            std::printf("%s/%s/%s\n", qPrintable(kind), GetParam().name, qPrintable(name));
            std::fflush(stdout);
            GetParam().run(file.readAll());
        }
        return files.size();
    }
    QuietLog m_log;
};

} // namespace

TEST_P(ReplayTest, seedsAreTaken) {
    EXPECT_GT(replay(QStringLiteral("corpus")), 0);
}

TEST_P(ReplayTest, whatWasFoundStaysMended) {
    replay(QStringLiteral("regressions"));
}

TEST_P(ReplayTest, anyHalfOfASeedIsTaken) {
    const QDir folder(QStringLiteral(ORVO_FUZZ_INPUTS) + "/corpus/" + GetParam().name);
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray whole = file.readAll();
        GetParam().run(whole.left(whole.size() / 2));
        GetParam().run(whole.mid(whole.size() / 2));
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, ReplayTest,
                         ::testing::ValuesIn(FuzzTarget::all().begin(), FuzzTarget::all().end()),
                         [](const auto& row) { return std::string(row.param.name); });
