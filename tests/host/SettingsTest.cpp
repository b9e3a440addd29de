#include <sys/stat.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include "HostProcess.h"

namespace {

class HostSettings : public HostFixture {
protected:
    QJsonObject stored() const {
        QJsonParseError error;
        const QJsonObject object =
            QJsonDocument::fromJson(read(data("settings.json")).toUtf8(), &error).object();
        EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(error.errorString());
        return object;
    }
    // Starts and ends a host.
    int run(const QStringList& more = {}) {
        HostProcess host(arguments(more));
        host.waitUntilReady();
        return host.endBy(SIGTERM);
    }
};

const QString Limit = "settings:playlists/databaseItemsLimit";
const QString Queue = "settings:playlists/playqueueVisible";
const QString Collections = "settings:playlists/collectionsVisible";

TEST_F(HostSettings, aFirstStartShowsThePlayQueueAndCollections) {
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(stored(), (QJsonObject{{Queue, true}, {Collections, true}}));
    EXPECT_EQ(probeLog().value(1), "queue visible: yes");
}

TEST_F(HostSettings, aLaterStartKeepsWhatWasChosen) {
    EXPECT_EQ(run({"--set", Queue + "=false", "--set", Limit + "=50"}), 0);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(stored(), (QJsonObject{{Queue, false}, {Collections, true}, {Limit, 50}}));
    EXPECT_EQ(probeLog().filter("queue visible"),
              (QStringList{"queue visible: no", "queue visible: no"}));
}

TEST_F(HostSettings, theLastOfTwoValuesCounts) {
    EXPECT_EQ(run({"--set", Limit + "=1", "--set", Limit + "=2"}), 0);
    EXPECT_EQ(stored().value(Limit), 2);
}

TEST_F(HostSettings, aWrongSettingEndsTheStartWithStatusTwo) {
    struct Case {
        QString setting;
        QString message;
    };
    const Case cases[] = {
        {"settings:nothing=1", "there is no setting \"settings:nothing\""},
        {"nonsense=1", "there is no setting \"nonsense\""},
        {"powermanager:target=1", "there is no setting \"powermanager:target\""},
        {Limit + "=many", Limit + "=many: The value of " + Limit + " must be a int."},
        {Limit + "=99999999999", Limit + "=99999999999: The value of " + Limit + " must be a int."},
        {Queue + "=", Queue + "=: The value of " + Queue + " must be a bool."},
    };
    for (const Case& each : cases) {
        HostProcess host(arguments({"--set", each.setting}));
        EXPECT_EQ(host.end(), 2) << qPrintable(each.setting);
        EXPECT_EQ(host.errors(), "orvo-host: " + each.message + "\n");
        EXPECT_FALSE(QFile::exists(data("probe.log"))) << "no module is loaded";
    }
    EXPECT_FALSE(stored().contains(Limit));
}

TEST_F(HostSettings, damagedSettingsAreKeptAsideAndTheDeviceStartsAsNew) {
    EXPECT_EQ(run({"--set", Limit + "=7"}), 0);
    QFile file(data("settings.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"settings:pl");
    file.close();
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(stored(), (QJsonObject{{Queue, true}, {Collections, true}}));
    EXPECT_EQ(read(data("settings.json.damaged")), "{\"settings:pl");
}

TEST_F(HostSettings, thatAreNoRegularFileEndTheStartAndStay) {
    EXPECT_EQ(run(), 0);
    ASSERT_TRUE(QFile::remove(data("settings.json")));
    const QByteArray file = QFile::encodeName(data("settings.json"));
    ASSERT_EQ(::mkfifo(file.constData(), 0600), 0);
    HostProcess host(arguments());
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(host.errors(), QString("orvo-host: cannot read the settings %1: no regular file\n")
                                 .arg(data("settings.json")));
    struct stat about {};
    ASSERT_EQ(::stat(file.constData(), &about), 0);
    EXPECT_TRUE(S_ISFIFO(about.st_mode));
}

TEST_F(HostSettings, thatAreTooLongEndTheStartAndStay) {
    EXPECT_EQ(run({"--set", Limit + "=7"}), 0);
    const QByteArray kept = read(data("settings.json")).toUtf8();
    const auto write = [&](const QByteArray& text) {
        QFile file(data("settings.json"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    const QByteArray longest = kept + QByteArray(65536 - kept.size(), ' ');
    write(longest);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(stored().value(Limit), 7);
    write(longest + ' ');
    HostProcess host(arguments({"--set", Limit + "=8"}));
    EXPECT_EQ(host.end(), 1);
    EXPECT_EQ(host.errors(),
              QString("orvo-host: cannot read the settings %1: more than 65536 bytes\n")
                  .arg(data("settings.json")));
    EXPECT_EQ(read(data("settings.json")).toUtf8(), longest + ' ');
}

TEST_F(HostSettings, thatCannotBeWrittenForWantOfDescriptorsAreRefusedAndTheNextOnesKept) {
    HostProcess host(arguments(), "descriptors");
    ASSERT_TRUE(host.waitUntilReady()) << qPrintable(host.errors());
    EXPECT_EQ(host.endBy(SIGTERM), 0);
    EXPECT_TRUE(probeLog().contains("without: The setting could not be written."));
    EXPECT_TRUE(probeLog().contains("with: "));
    EXPECT_TRUE(host.errors().contains("ERROR Settings - cannot write settings " +
                                       data("settings.json") + ": Too many open files\n"))
        << qPrintable(host.errors());
    EXPECT_TRUE(host.errors().contains("INFO  Probe - without descriptors\n"));
    EXPECT_EQ(stored(), (QJsonObject{{Queue, true},
                                     {Collections, true},
                                     {"settings:playlists/databaseVacuum", true}}));
}

TEST_F(HostSettings, aHostKilledWhileWritingLeavesWholeSettings) {
    int last = -1;
    for (int round = 0; round < 15; ++round) {
        HostProcess host(arguments(), "write");
        ASSERT_TRUE(host.waitUntilReady());
        QThread::msleep(5 + ulong(round));
        host.endBy(SIGKILL);
        const QJsonObject settings = stored();
        EXPECT_EQ(settings.value(Queue), true);
        last = qMax(last, settings.value(Limit).toInt(-1));
    }
    EXPECT_GT(last, 0) << "the probe did write";
}

} // namespace
