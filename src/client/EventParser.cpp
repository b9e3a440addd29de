#include "EventParser.h"

#include <QJsonDocument>

QJsonObject DeviceEvent::object() const {
    return QJsonDocument::fromJson(data).object();
}

QVector<DeviceEvent> EventParser::feed(const QByteArray& bytes) {
    QVector<DeviceEvent> complete;
    m_rest += bytes;
    int start = 0;
    for (int end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n', start)) {
        takeLine(m_rest.mid(start, end - start), &complete);
        start = end + 1;
    }
    m_rest.remove(0, start);
    return complete;
}

void EventParser::restart() {
    m_rest.clear();
    m_event = {};
}

void EventParser::takeLine(const QByteArray& line, QVector<DeviceEvent>* complete) {
    if (line.isEmpty()) {
        if (!m_event.id.isEmpty())
            m_lastId = m_event.id;
        if (!m_event.data.isEmpty())
            complete->append(m_event);
        m_event = {};
        return;
    }
    const int colon = line.indexOf(':');
    const QByteArray field = line.left(colon);
    QByteArray value = colon < 0 ? QByteArray() : line.mid(colon + 1);
    if (value.startsWith(' '))
        value.remove(0, 1);
    if (field == "id")
        m_event.id = value;
    else if (field == "event")
        m_event.type = value;
    else if (field == "data")
        m_event.data += value;
}
