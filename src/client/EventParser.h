#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QVector>

struct DeviceEvent {
    QByteArray id;
    QByteArray type;
    QByteArray data;

    bool isResync() const { return type == "resync"; }
    QJsonObject object() const;
};

// Takes the pieces of an event stream as they arrive and gives the events that are complete.
// Comments are left out.
class EventParser {
public:
    QVector<DeviceEvent> feed(const QByteArray& bytes);
    // The id to go on from after a lost connection; empty before the first one.
    const QByteArray& lastId() const { return m_lastId; }
    // A new connection begins with a new line.
    void restart();

private:
    void takeLine(const QByteArray& line, QVector<DeviceEvent>* complete);

    QByteArray m_rest;
    QByteArray m_lastId;
    DeviceEvent m_event;
};
