#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QTcpSocket>

#include "EventLoop.h"

// One answer as it came over the wire. `status` 0: there was none.
struct HttpAnswer {
    int status = 0;
    QHash<QByteArray, QByteArray> headers; // names in lower case
    QByteArray body;

    QJsonObject json() const;
    // The name inside {"error": {…}}.
    QString errorName() const;
    QString errorMessage() const;
};

// A plain client over one kept-alive connection. Waiting runs the event loop, so the server may
// live in this process.
class HttpClient {
public:
    explicit HttpClient(quint16 port);

    HttpAnswer get(const QByteArray& target) { return send("GET", target); }
    HttpAnswer post(const QByteArray& target, const QByteArray& body) {
        return send("POST", target, body);
    }
    HttpAnswer put(const QByteArray& target, const QByteArray& body) {
        return send("PUT", target, body);
    }
    HttpAnswer send(const QByteArray& method, const QByteArray& target, const QByteArray& body = {},
                    const QByteArray& extraHeaders = {});

    // The parts of send(), for tests that do something in between.
    void write(const QByteArray& bytes);
    HttpAnswer readAnswer(bool headRequest = false);
    // Everything that has come until `wanted` is part of it, or patience is over.
    QByteArray readUntil(const QByteArray& wanted, int patienceMs = PatienceMs);
    // Forgets what was read so far.
    void discard() { m_buffer.clear(); }
    QTcpSocket& socket() { return m_socket; }

private:
    bool waitForMore(int patienceMs);

    quint16 m_port;
    QTcpSocket m_socket;
    QByteArray m_buffer;
};
