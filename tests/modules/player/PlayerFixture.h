#pragma once

#include <gtest/gtest.h>

#include "CMRootWorker.h"
#include "EventLoop.h"
#include "LogCapture.h"
#include "PlayerWorker.h"
#include "SoundFiles.h"
#include "TestPlayLogic.h"

// The player module with two play logics of other modules, over real files.
class PlayerFixture : public ::testing::Test {
protected:
    explicit PlayerFixture(const QString& sink = QStringLiteral("null")) {
        startPlayer(sink);
        logic.modes.setShuffle(true);
        logic.modes.setRepeatAll(true);
    }
    ~PlayerFixture() override {
        EXPECT_TRUE(logic.calls.filter("RE-ENTERED").isEmpty());
        EXPECT_TRUE(other.calls.filter("RE-ENTERED").isEmpty());
    }

    void startPlayer(const QString& sink) {
        player.reset();
        player = std::make_unique<PlayerWorker>(
            QHash<QString, QVariant>{{QStringLiteral("player/audioSink"), sink},
                                     {QStringLiteral("player/networkTimeoutMs"), 300},
                                     {QStringLiteral("musicDir"), files.fileName({})}});
    }

    CMReply<QVariant> invoke(const CMPath& path, const QVariantHash& args = {}) {
        const CMReply<QVariant> reply;
        CMRoot()->invoke(path, args, reply);
        return reply;
    }
    // Invoked and carried out.
    CMReply<QVariant> done(const CMPath& path, const QVariantHash& args = {}) {
        const CMReply<QVariant> reply = invoke(path, args);
        EXPECT_TRUE(waitUntil([&] { return reply.isFinished(); }));
        return reply;
    }
    static OrvoRoles container(const TestPlayLogic& playLogic) {
        return containerOf(playLogic.path());
    }
    static OrvoRoles containerOf(const CMPath& playLogicPath) {
        OrvoMetaData meta;
        meta.setPlayLogicPath(playLogicPath);
        OrvoMediaData media;
        media.setMetaData(meta);
        OrvoRoles roles;
        roles.setMediaData(media);
        roles.setType(OrvoRolesType::Container);
        roles.setPath(CMPath(QStringLiteral("source:list/1")));
        return roles;
    }
    CMReply<QVariant> play(TestPlayLogic& playLogic, int index = 0, int startMs = 0,
                           bool paused = false) {
        return PlayLogicInterface::playerInstance()->playContainer(container(playLogic), {}, index,
                                                                   startMs, paused);
    }
    QString state() const { return OrvoValue(CMRoot()->getValue(OrvoPlayerStatePath())).string(); }
    qint64 position() const {
        return OrvoValue(CMRoot()->getValue(OrvoPlayerPositionPath())).i64();
    }
    bool waitForCall(const TestPlayLogic& playLogic, const QString& call) {
        return waitUntil([&] { return playLogic.calls.contains(call); });
    }
    bool waitForState(const QString& wanted) {
        return waitUntil([&] { return state() == wanted; });
    }
    // The end of everything: stopped, and nothing more under way.
    bool waitForTheEnd() {
        if (!waitForState("stopped"))
            return false;
        turnEventsFor(20);
        return state() == QLatin1String("stopped");
    }
    QString sound(const QString& name, int ms, unsigned seed = 1) {
        return files.wav(name, SoundFiles::pcm(44100 * ms / 1000, seed));
    }

    SoundFiles files;
    CMRootWorker root;
    CMNodesWorker source{{}, QStringLiteral("Source")};
    TestPlayLogic logic{source.nodes(), CMPath(QStringLiteral("source:playlogic"))};
    TestPlayLogic other{source.nodes(), CMPath(QStringLiteral("source:other"))};
    std::unique_ptr<PlayerWorker> player;
};

// What is heard goes into a file.
class PlayerRecordingFixture : public PlayerFixture {
protected:
    PlayerRecordingFixture() { startPlayer("wav=" + files.fileName("out.wav")); }
    Pcm recorded() {
        player.reset();
        return SoundFiles::readWav(files.fileName("out.wav")).samples();
    }
};
