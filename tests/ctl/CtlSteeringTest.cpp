#include <QJsonObject>

#include "CtlFixture.h"
#include "FakePlayer.h"

namespace {

class CtlSteering : public CtlFixture {
protected:
    void setVolume(int volume) {
        m_player.values["player:volume"] = OrvoValue::fromI32(volume).toVariant();
    }
    void setState(const char* state) {
        m_player.values["player:state"] = OrvoValue::fromString(state).toVariant();
    }
    // Paused, so that the position stays where it is.
    void pausedAt(qint64 milliseconds) {
        setState("paused");
        m_player.values["player:position"] = OrvoValue::fromI64(milliseconds).toVariant();
    }
    // What the player was asked by this run, with the number behind `key`.
    QString asked(const QStringList& words, const char* key) {
        m_player.asked.clear();
        const CtlRun run = ctl(words);
        if (run.status != 0)
            return QStringLiteral("status %1").arg(run.status);
        return QStringLiteral("%1 %2")
            .arg(m_player.asked.join(' '))
            .arg(m_player.record.value(key).toInt());
    }

    FakePlayer m_player;
};

} // namespace

TEST_F(CtlSteering, aVolumeWithASignIsAStepFromThePresentOne) {
    setVolume(50);
    EXPECT_EQ(asked({"volume", "+5"}, "volume"), "player:setVolume 55");
    EXPECT_EQ(asked({"volume", "-5"}, "volume"), "player:setVolume 45");
    EXPECT_EQ(asked({"volume", "5"}, "volume"), "player:setVolume 5");
    EXPECT_EQ(asked({"volume", "-80"}, "volume"), "player:setVolume 0");
    EXPECT_EQ(asked({"volume", "+80"}, "volume"), "player:setVolume 100");
    EXPECT_EQ(ctl({"volume", "+5"}).err.toStdString(), "volume: 55\n");
    for (const char* word : {"+", "-", "+-5", "loud", "+1.5", ""})
        EXPECT_EQ(asked({"volume", word}, "volume"), "status 2") << word;
}

TEST_F(CtlSteering, aTimeWithASignIsAStepWithinTheTrack) {
    pausedAt(60000);
    EXPECT_EQ(asked({"seek", "+10"}, "time"), "player:seekTime 70000");
    EXPECT_EQ(asked({"seek", "-10"}, "time"), "player:seekTime 50000");
    EXPECT_EQ(asked({"seek", "+0:10"}, "time"), "player:seekTime 70000");
    EXPECT_EQ(asked({"seek", "-1:30"}, "time"), "player:seekTime 0");
    EXPECT_EQ(asked({"seek", "1:30"}, "time"), "player:seekTime 90000");
    EXPECT_EQ(ctl({"seek", "+1:00:00"}).err.toStdString(), "at 5:00\n") << "the end of the track";
    for (const char* word : {"+", "-", "+-5", "x", "+0:99", "--5"})
        EXPECT_EQ(asked({"seek", word}, "time"), "status 2") << word;
}

TEST_F(CtlSteering, toggleTurnsPlayingAndPauseOver) {
    for (const auto& [state, path] : {std::pair("playing", "player:pause"),
                                      {"opening", "player:pause"},
                                      {"paused", "player:resume"},
                                      {"stopped", "player:resume"}}) {
        setState(state);
        EXPECT_EQ(asked({"toggle"}, ""), path + QStringLiteral(" 0")) << state;
    }
    setState("playing");
    EXPECT_EQ(ctl({"toggle"}).err.toStdString(), "paused\n");
    setState("paused");
    EXPECT_EQ(ctl({"toggle"}).err.toStdString(), "going on\n");
}
