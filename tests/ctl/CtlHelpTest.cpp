#include <QJsonObject>

#include "CtlFixture.h"

using CtlHelp = CtlFixture;

TEST_F(CtlHelp, helpListsTheVerbs) {
    for (const QStringList& words : {QStringList{"--help"}, {"help"}}) {
        const CtlRun run = runProgram(words);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.out.contains("collection remove COLLECTION PLAYLIST"));
        EXPECT_TRUE(run.out.contains("play PLAYLIST"));
        EXPECT_EQ(run.err, "");
    }
}

TEST_F(CtlHelp, helpOfAVerbIsThatVerbAloneWithAnExample) {
    for (const QStringList& words :
         {QStringList{"play", "--help"}, {"--help", "play"}, {"help", "play"}}) {
        const CtlRun run = runProgram(words);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out.toStdString(),
                  "usage: orvoctl play PLAYLIST [POS | --from POS]\n"
                  "\n"
                  "plays a playlist, from this track on or from where it was left\n"
                  "\n"
                  "for example: orvoctl play Party --from 3\n");
    }
    const CtlRun two = runProgram({"collection", "add", "--help"});
    EXPECT_TRUE(two.out.startsWith("usage: orvoctl collection add COLLECTION PLAYLIST\n"));
}

TEST_F(CtlHelp, helpOfTheFirstWordIsThatOfAllItsVerbs) {
    for (const QStringList& words : {QStringList{"collection", "--help"}, {"help", "collection"}}) {
        const CtlRun run = runProgram(words);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out.count("usage: "), 5);
        EXPECT_FALSE(run.out.contains("collections"));
    }
    EXPECT_EQ(runProgram({"help", "dance"}).status, 2);
    EXPECT_EQ(runProgram({"dance", "--help"}).status, 2);
}

TEST_F(CtlHelp, aMistypedVerbIsToldTheOneThatWasMeant) {
    const struct {
        QStringList words;
        const char* line;
    } rows[] = {
        {{"plya", "Party"}, R"(orvoctl: unknown verb "plya Party"; did you mean "play"?)"},
        {{"playlist"}, R"(orvoctl: unknown verb "playlist"; did you mean "playlists"?)"},
        {{"collection", "ad"},
         R"(orvoctl: unknown verb "collection ad"; did you mean "collection add"?)"},
        {{"volumne", "5"}, R"(orvoctl: unknown verb "volumne 5"; did you mean "volume"?)"},
        {{"dance"}, R"(orvoctl: unknown verb "dance")"},
        {{"x"}, R"(orvoctl: unknown verb "x")"},
    };
    for (const auto& row : rows) {
        const CtlRun run = ctl(row.words);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err.split('\n').first().toStdString(), row.line);
    }
}

TEST_F(CtlHelp, theVersionIsSaid) {
    const CtlRun run = runProgram({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.toStdString(), "orvoctl " ORVO_VERSION "\n");
}

TEST_F(CtlHelp, theDeviceIsNamedByTheEnvironmentUnlessAnOptionNamesIt) {
    qputenv("ORVO_URL", url().toUtf8());
    EXPECT_EQ(runProgram({"paths"}).status, 0);
    EXPECT_EQ(runProgram({"--url", "http://127.0.0.1:1", "paths"}).status, 1);
    qputenv("ORVO_URL", "nonsense");
    const CtlRun bad = runProgram({"paths"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.err.split('\n').first().toStdString(),
              "orvoctl: \"nonsense\" in ORVO_URL is no http URL");
    EXPECT_EQ(runProgram({"--url", url(), "paths"}).status, 0);
    qunsetenv("ORVO_URL");
}

TEST_F(CtlHelp, theManPageHasEveryVerbWithItsExample) {
    const CtlRun run = runProgram({"man"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.startsWith(".TH ORVOCTL 1"));
    EXPECT_TRUE(run.out.contains("orvoctl play Party \\-\\-from 3"));
    EXPECT_TRUE(run.out.contains(".B ORVO_URL"));
    const CtlRun help = runProgram({"--help"});
    // Verbs stand two columns in, in the help, and behind .TP in the page.
    int verbs = 0;
    for (const QByteArray& line : help.out.split('\n'))
        verbs += line.startsWith("  ") && !line.startsWith("   ");
    const QByteArray section = run.out.mid(run.out.indexOf(".SH VERBS"));
    EXPECT_EQ(section.left(section.indexOf(".SH OPTIONS")).count(".TP\n"), verbs);
    EXPECT_GT(verbs, 40);
}
