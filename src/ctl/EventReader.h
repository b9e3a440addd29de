#pragma once

#include <functional>

#include <QStringList>

#include "EventParser.h"

class ApiClient;

// Follows the device's events for as long as it is wanted, over lost connections too: it goes on
// behind the last event it saw. A device that gives no events at all is a ClientFailure.
class EventReader {
public:
    // False ends the reading.
    using Handler = std::function<bool(const DeviceEvent& event)>;

    // `watched`: the values whose changes are wanted that come only while somebody watches.
    explicit EventReader(ApiClient* client, const QStringList& watched = {})
        : m_client(client), m_watched(watched) {}

    void read(const Handler& handler);

private:
    bool readConnection(const Handler& handler);

    ApiClient* m_client;
    QStringList m_watched;
    EventParser m_parser;
    QString m_reason;
    bool m_ended = false;
};
