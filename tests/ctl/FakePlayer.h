#pragma once

#include "CMWorker.h"

// Stands in for the player: keeps what it was asked to play, and says where playback was stopped.
class FakePlayer : public CMNodesWorker {
    Q_OBJECT
public:
    FakePlayer() : CMNodesWorker({}, QStringLiteral("Player")) {}

    QVariant getValue(const CMPath& path) override {
        return path.toString() == QLatin1String("player:resumePoint") ? QVariant(resumePoint)
                                                                      : QVariant();
    }
    void setDataRequest(const CMSetDataRequest& request) override {
        asked.append(request.path().toString());
        record = request.value().toHash();
        request.reply().setValue(QVariant());
    }

    QStringList asked;
    QVariantHash record; // that of the last request
    QVariantHash resumePoint;
};
