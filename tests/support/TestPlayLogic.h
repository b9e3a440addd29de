#pragma once

#include <QStringList>

#include "StreamerPlayLogic.h"

// A play logic over a fixed list of tracks that writes down what it is asked. It keeps its place
// the way a playlist does: in the track's own value.
class TestPlayLogic : public StreamerPlayLogic {
public:
    using StreamerPlayLogic::StreamerPlayLogic;

    static OrvoRoles track(int number, const QString& uri) {
        OrvoResource resource;
        resource.setUri(uri);
        OrvoMediaData media;
        media.setResources({resource});
        OrvoRoles roles;
        roles.setTitle(QStringLiteral("t%1").arg(number));
        roles.setType(OrvoRolesType::Audio);
        roles.setValue(OrvoValue::fromI32(number));
        roles.setMediaData(media);
        return roles;
    }
    void setTracks(const QStringList& uris) {
        tracks.clear();
        for (const QString& uri : uris)
            tracks.append(track(tracks.size(), uri));
    }

    QStringList calls;
    QList<OrvoRoles> tracks;
    int current = -1;
    int announced = -1;
    bool answers = true;
    // At most so many failures in a row are passed over.
    int failuresLeft = 5;
    OrvoPlayLogicPlayArgs lastArgs;
    int lastStopReason = -1;
    OrvoPlayerPlayMode::Enum lastMode = OrvoPlayerPlayMode::Normal;
    OrvoPlayLogicPlayModesSupported modes;

    void playInternal(const CMSetDataRequest& request, const OrvoPlayLogicPlayArgs& args) override {
        note(QStringLiteral("play"));
        lastArgs = args;
        current = args.index();
        announced = -1;
        if (current < tracks.size())
            playTrack(current);
        answer(request);
    }
    void stopInternal(const CMSetDataRequest& request) override {
        note(QStringLiteral("stop"));
        lastStopReason = OrvoPlayLogicStopArgs(request.value()).reason();
        StreamerPlayLogic::stopInternal(request);
    }
    void nextInternal(const CMSetDataRequest& request) override {
        note(QStringLiteral("next"));
        if (current + 1 < tracks.size())
            playTrack(current + 1);
        answer(request);
    }
    void previousInternal(const CMSetDataRequest& request) override {
        note(QStringLiteral("previous"));
        if (current > 0)
            playTrack(current - 1);
        answer(request);
    }
    void changePlayModeInternal(const CMSetDataRequest& request) override {
        lastMode = OrvoPlayLogicChangePlayModeArgs(request.value()).playMode();
        note(QStringLiteral("mode:") + OrvoPlayerPlayMode::toString(lastMode));
        setPlayMode(lastMode);
        answer(request);
    }
    OrvoPlayLogicPlayModesSupported playModesSupported() override { return modes; }

    void prepareNextMedia() override {
        note(QStringLiteral("prepare"));
        announce(current + 1);
    }
    OrvoPlayLogicData mediaPlaybackStarted(const OrvoRoles& oldRoles,
                                           const OrvoRoles& newRoles) override {
        note(QStringLiteral("started:%1>%2")
                 .arg(oldRoles.title().toString(), newRoles.title().toString()));
        current = newRoles.value().i32();
        announced = -1;
        failuresLeft = 5;
        return StreamerPlayLogic::mediaPlaybackStarted(oldRoles, newRoles);
    }
    void tryResumePlayback() override {
        note(data().containsStreamerError() ? QStringLiteral("resume after error")
                                            : QStringLiteral("resume"));
        if (announced >= 0)
            current = announced;
        if (data().containsStreamerError() && failuresLeft-- == 0) {
            note(QStringLiteral("gave up"));
            playbackEnded();
        } else if (current + 1 < tracks.size()) {
            playTrack(current + 1);
        } else {
            playbackEnded();
        }
    }

    void playTrack(int number) {
        current = number;
        const Sending sending(this);
        sendPlayCommand(tracks.at(number), {});
    }
    void announce(int number) {
        const Sending sending(this);
        announced = number < tracks.size() ? number : -1;
        if (announced >= 0)
            sendSetNextMediaCommand(tracks.at(number), {});
        else
            sendNoNextMediaCommand();
    }

private:
    // A command must not come back in before it returns.
    struct Sending {
        explicit Sending(TestPlayLogic* owner) : logic(owner) { ++logic->m_sending; }
        ~Sending() { --logic->m_sending; }
        TestPlayLogic* logic;
    };
    void note(const QString& call) {
        calls.append(m_sending ? QStringLiteral("RE-ENTERED ") + call : call);
    }
    void answer(const CMSetDataRequest& request) {
        if (answers)
            request.reply().setValue({});
    }
    int m_sending = 0;
};
