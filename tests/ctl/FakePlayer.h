#pragma once

#include "CMWorker.h"

// Stands in for the player, which needs tracks that sound: keeps what it was asked, and says what
// plays and where playback was stopped as the test has it.
class FakePlayer : public CMNodesWorker {
    Q_OBJECT
public:
    FakePlayer() : CMNodesWorker({}, QStringLiteral("Player")) {}

    QVariant getValue(const CMPath& path) override {
        if (path.toString() == QLatin1String("player:resumePoint"))
            return resumePoint;
        return values.value(path.toString());
    }
    void setDataRequest(const CMSetDataRequest& request) override {
        asked.append(request.path().toString());
        record = request.value().toHash();
        request.reply().setValue(QVariant());
    }

    // What it was asked to play: the list, the place in it, and where in the track.
    QString list() const {
        return record.value(QStringLiteral("mediaRoles"))
            .toHash()
            .value(QStringLiteral("path"))
            .toString();
    }
    int index() const { return record.value(QStringLiteral("index")).toInt(); }
    int startPosition() const { return record.value(QStringLiteral("startPosition")).toInt(); }

    QStringList asked;
    QVariantHash record; // that of the last request
    QVariantHash resumePoint;
    // By their paths; a player that plays until a test says otherwise.
    QHash<QString, QVariant> values = {
        {"player:state", OrvoValue::fromString("playing").toVariant()},
        {"player:data", QVariantHash{{"controls", QVariantHash()}}},
        {"player:nextMedia", QVariantHash{{"title", ""}}},
        {"player:playMode", OrvoValue::fromString("normal").toVariant()},
        {"player:position", OrvoValue::fromI64(0).toVariant()},
        {"player:duration", OrvoValue::fromI64(300000).toVariant()},
        {"player:volume", OrvoValue::fromI32(50).toVariant()},
    };
};
