#pragma once

#include <QTimer>

#include "CMWorker.h"
#include "PlayerTransport.h"
#include "PositionPublisher.h"

// The module's root object: carries requests at the player's paths to the transport and publishes
// what the transport does as values. The host owns it; everything lives on the thread that made it.
// Unknown paths and arguments that make no sense get an error reply.
class PlayerWorker : public CMNodesWorker {
    Q_OBJECT
public:
    // Reads the key "player/audioSink" (auto, null or wav=FILE) and those of SourceRules.
    explicit PlayerWorker(const QHash<QString, QVariant>& config);
    ~PlayerWorker() override;

    QVariant getValue(const CMPath& path) override;
    // A written position seeks, a written play mode or volume is the command of that name.
    void setValue(const CMPath& path, const QVariant& value, const CMVoidReply& reply) override;
    void setDataRequest(const CMSetDataRequest& request) override;

private:
    using Command = void (PlayerTransport::*)(const CMSetDataRequest& request);
    struct CommandRow {
        CMPath path;
        Command call;
    };
    struct ValueRow {
        CMPath path;
        OrvoValue (*read)(const PlayerTransport& transport);
        bool publishedByItself = false;
        // How a written value becomes a command; null for one that is only read.
        Command write = nullptr;
        QString argument = {};
    };
    static const QList<CommandRow>& commandRows();
    static const QList<ValueRow>& valueRows();
    static const ValueRow* valueRow(const CMPath& path);

    void publishSoon();
    void publish();
    void publishSleepTimer();
    void takeVolume(const OrvoValue& stored);
    void keepVolume();
    void takeResumePoint(const OrvoValue& stored);
    void keepResumePoint();
    void keep(const CMPath& setting, const QVariant& value, const char* what);

    PlayerTransport m_transport;
    PositionPublisher m_position;
    QHash<QString, OrvoValue> m_published;
    bool m_publishing = false;
    QTimer m_volumeTimer;
};
