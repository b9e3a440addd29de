#include "SourceRules.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "LogCapture.h"

namespace {

const char* NoFile = "there is no such file";
const char* Outside = "it is outside of the music folder";
const char* NoAddress = "there is no address to play";
const char* OtherKind = "its kind of address is not played";

class SourceRulesTest : public ::testing::Test {
protected:
    SourceRulesTest() {
        QDir(m_folder.path()).mkpath("music/album");
        QDir(m_folder.path()).mkpath("music2");
        for (const char* name : {"music/album/in.wav", "music2/out.wav", "secret.wav"}) {
            QFile file(path(name));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        }
        link("../music/album/in.wav", "music/to-inside.wav");
        link("../secret.wav", "music/to-outside.wav");
        link("../music2", "music/folder-outside");
        link("music", "linked-music");
        link("nowhere", "music/to-nothing.wav");
    }
    void link(const char* target, const char* name) {
        ASSERT_EQ(symlink(target, path(name).toLocal8Bit().constData()), 0);
    }
    QString path(const QString& name) const {
        return QDir(m_folder.path()).canonicalPath() + '/' + name;
    }
    QString uri(const QString& name) const { return "file://" + path(name); }
    SourceRules rules(QHash<QString, QVariant> config = {}) const {
        if (!config.contains("musicDir"))
            config.insert("musicDir", path("music"));
        return SourceRules(config);
    }

    QTemporaryDir m_folder;
};

TEST_F(SourceRulesTest, filesArePlayedBelowTheMusicFolderOnly) {
    const QList<QPair<QString, QString>> rows = {
        {uri("music/album/in.wav"), {}},
        {uri("music/album/../album/in.wav"), {}},
        {uri("music/to-inside.wav"), {}},
        {uri("linked-music/album/in.wav"), {}},
        {uri("music2/out.wav"), Outside},
        {uri("secret.wav"), Outside},
        {uri("music/../secret.wav"), Outside},
        {uri("music/%2e%2e/secret.wav"), Outside},
        {uri("music/to-outside.wav"), Outside},
        {uri("music/folder-outside/out.wav"), Outside},
        {"file:///etc/passwd", Outside},
        {"FILE:///etc/passwd", Outside},
        {uri("music/to-nothing.wav"), NoFile},
        {uri("music/album"), NoFile},
        {uri("music"), NoFile},
        {uri("music/album/in.wav%00.flac"), NoFile},
        {"file:secret.wav", NoFile},
        {"file:///dev/zero", NoFile},
        {"file:", NoFile},
        {QString(), NoAddress},
        {"no address", NoAddress},
        {"/etc/passwd", NoAddress},
        {"fd://0", OtherKind},
        {"ftp://127.0.0.1/a.wav", OtherKind},
        {"data:audio/x-wav;base64,UklGRg==", OtherKind},
    };
    for (const auto& row : rows)
        EXPECT_EQ(rules().source(row.first).refusal, row.second) << row.first.toStdString();
}

TEST_F(SourceRulesTest, aFileIsOpenedWhereItsLinksEnd) {
    EXPECT_EQ(rules().source(uri("linked-music/to-inside.wav")).url,
              QUrl::fromLocalFile(path("music/album/in.wav")));
}

TEST_F(SourceRulesTest, theMusicFolderMayBeALinkOrComeLater) {
    const SourceRules linked = rules({{"musicDir", path("linked-music")}});
    EXPECT_EQ(linked.source(uri("music/album/in.wav")).refusal, QString());
    EXPECT_EQ(linked.source(uri("secret.wav")).refusal, Outside);
    const SourceRules later = rules({{"musicDir", path("later")}});
    EXPECT_EQ(later.source(uri("music2/out.wav")).refusal, Outside);
    ASSERT_TRUE(QFile::rename(path("music2"), path("later")));
    EXPECT_EQ(later.source(uri("later/out.wav")).refusal, QString());
}

TEST_F(SourceRulesTest, withoutAMusicFolderNoFileIsPlayed) {
    EXPECT_EQ(rules({{"musicDir", ""}}).source(uri("secret.wav")).refusal, Outside);
    EXPECT_EQ(rules({{"musicDir", ""}}).source("http://127.0.0.1/a.wav").refusal, QString());
}

TEST_F(SourceRulesTest, anywhereIsAnywhere) {
    const SourceRules anywhere = rules({{"musicDir", ""}, {"player/files", "anywhere"}});
    EXPECT_EQ(anywhere.source(uri("secret.wav")).refusal, QString());
    EXPECT_EQ(anywhere.source(uri("music/to-outside.wav")).refusal, QString());
    EXPECT_EQ(anywhere.source(uri("missing.wav")).refusal, NoFile);
    EXPECT_EQ(rules({{"player/files", "everywhere"}}).source(uri("secret.wav")).refusal, Outside);
}

TEST_F(SourceRulesTest, filesAndTheNetworkHaveTheirTime) {
    const LogCapture log("Player");
    const QString file = uri("music/album/in.wav");
    EXPECT_EQ(rules().source(file).timeoutMs, 15000);
    EXPECT_EQ(rules().source("https://127.0.0.1/a.wav").timeoutMs, 30000);
    const SourceRules short_({{"musicDir", path("music")},
                              {"player/fileTimeoutMs", "70"},
                              {"player/networkTimeoutMs", 80}});
    EXPECT_EQ(short_.source(file).timeoutMs, 70);
    EXPECT_EQ(short_.source("http://127.0.0.1/a.wav").timeoutMs, 80);
    EXPECT_EQ(short_.redirected(QUrl("http://127.0.0.1/a.wav"), "b.wav").timeoutMs, 80);
    EXPECT_EQ(log.lines(), QStringList());
    for (const char* wrong : {"0", "-5", "soon", ""})
        EXPECT_EQ(rules({{"player/fileTimeoutMs", wrong}}).source(file).timeoutMs, 15000) << wrong;
    EXPECT_EQ(log.texts("WARN").count(
                  "player/fileTimeoutMs is no positive number of milliseconds, using 15000"),
              4);
}

} // namespace
