#include <QEventLoop>
#include <QProcess>

#include "CtlFixture.h"

namespace {

class CtlCompletion : public CtlFixture {
protected:
    // The candidates for the end of the line, one a line.
    QStringList at(const QString& line, const QStringList& options = {}) {
        const CtlRun run =
            ctl(QStringList{"completion", "line"} + options + QStringList{"--", line});
        EXPECT_EQ(run.status, 0) << run.err.data();
        EXPECT_EQ(run.err, "");
        return QString::fromUtf8(run.out).split('\n', Qt::SkipEmptyParts);
    }
};

} // namespace

TEST_F(CtlCompletion, verbsAndTheirOptionsAreOffered) {
    EXPECT_EQ(at("orvoctl pla"), (QStringList{"playlists", "play"}));
    EXPECT_EQ(at("orvoctl --json coll"), (QStringList{"collections", "collection"}));
    EXPECT_EQ(at("orvoctl collection "),
              (QStringList{"create", "delete", "add", "remove", "show"}));
    EXPECT_EQ(at("orvoctl sort Party --r"), QStringList{"--reverse"});
    EXPECT_EQ(at("orvoctl sort Party --by a"), (QStringList{"artist", "album"}));
    EXPECT_EQ(at("orvoctl export Party x.m3u8 --paths "),
              (QStringList{"relative", "absolute", "url"}));
    EXPECT_EQ(at("orvoctl shuffle Party o"), (QStringList{"on", "off"}));
    EXPECT_EQ(at("orvoctl mode shuffleR"), (QStringList{"shuffleRepeatOne", "shuffleRepeatAll"}));
    EXPECT_EQ(at("orvoctl completion "), (QStringList{"bash", "zsh"}));
    EXPECT_EQ(at("orvoctl dance P"), QStringList());
}

TEST_F(CtlCompletion, listsAreOfferedByTheirNames) {
    playlist("Party");
    playlist("Sunday morning");
    playlist("Twice");
    playlist("Twice");
    playlist("a\x1b[2Jb");
    EXPECT_EQ(at("orvoctl show P"), QStringList{"Party"});
    EXPECT_EQ(at("orvoctl show S"), QStringList{"Sunday morning"});
    EXPECT_EQ(at("orvoctl show Sunday\\ m"), QStringList{"Sunday morning"});
    EXPECT_EQ(at("orvoctl show 'Sunday m"), QStringList{"Sunday morning"});
    EXPECT_EQ(at("orvoctl merge Party \"Sun"), QStringList{"Sunday morning"});
    EXPECT_EQ(at("orvoctl search night train --add P"), QStringList{"Party"});
    EXPECT_EQ(at("orvoctl search night P"), QStringList()) << "words are anything";
    EXPECT_EQ(at("orvoctl show #3"), QStringList{"#3"});
    EXPECT_EQ(at("orvoctl show "),
              (QStringList{"queue", "Party", "Sunday morning", "#3", "#4", "#5"}));
    EXPECT_EQ(at("orvoctl show Party P"), QStringList()) << "show takes one list";
}

TEST_F(CtlCompletion, foldersOfTheDeviceAreOfferedAndFilesHere) {
    playlist("Party");
    makeFile("Band A/1.flac");
    makeFile("Band A/2.flac");
    EXPECT_EQ(at("orvoctl add Party files:tree/"), QStringList{"files:tree/Band%20A/"});
    EXPECT_EQ(at("orvoctl add Party x files:tree/Band%20A/1"),
              QStringList{"files:tree/Band%20A/1.flac"});
    EXPECT_EQ(at("orvoctl add Party files:"), QStringList{"files:tree/"});
    EXPECT_EQ(at("orvoctl add Party files:tree/Ba", {"--after-colon"}),
              QStringList{"tree/Band%20A/"});
    EXPECT_EQ(at("orvoctl add Party " + musicFolder() + "/Ba"),
              QStringList{musicFolder() + "/Band A/"});
    EXPECT_EQ(at("orvoctl check " + musicFolder() + "/Band\\ A/1"),
              QStringList{musicFolder() + "/Band A/1.flac"});
}

TEST_F(CtlCompletion, withoutADeviceItSaysNothing) {
    const CtlRun run =
        runProgram({"--url", "http://127.0.0.1:1", "completion", "line", "--", "orvoctl show P"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(ctl({"completion", "fish"}).status, 2);
}

TEST_F(CtlCompletion, theLineItselfMayNameTheDevice) {
    playlist("Party");
    const CtlRun run =
        runProgram({"completion", "line", "--", "orvoctl --url " + url() + " show P"});
    EXPECT_EQ(run.out.toStdString(), "Party\n");
}

// As an interactive shell calls it.
TEST_F(CtlCompletion, bashGetsTheCandidates) {
    playlist("Sunday morning");
    QProcess bash;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ORVO_URL", url());
    bash.setProcessEnvironment(environment);
    QEventLoop loop;
    QObject::connect(&bash, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    bash.start("bash", {"--norc", "-c",
                        "source <('" ORVOCTL "' completion bash)\n"
                        "COMP_LINE='orvoctl show Sunday\\ mo' COMP_POINT=${#COMP_LINE}\n"
                        "_orvoctl '" ORVOCTL "' 2>/dev/null\n"
                        "printf '<%s>' \"${COMPREPLY[@]}\"; complete -p orvoctl"});
    loop.exec();
    EXPECT_EQ(bash.readAllStandardOutput().toStdString(),
              "<Sunday morning>complete -o default -o filenames -F _orvoctl orvoctl\n");
}
