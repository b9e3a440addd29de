#include "HttpClient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QHostAddress>
#include <QJsonDocument>
#include <QTimer>

QJsonObject HttpAnswer::json() const {
    return QJsonDocument::fromJson(body).object();
}

QString HttpAnswer::errorName() const {
    return json()
        .value(QStringLiteral("error"))
        .toObject()
        .value(QStringLiteral("name"))
        .toString();
}

QString HttpAnswer::errorMessage() const {
    return json()
        .value(QStringLiteral("error"))
        .toObject()
        .value(QStringLiteral("message"))
        .toString();
}

HttpClient::HttpClient(quint16 port) : m_port(port) {}

HttpAnswer HttpClient::send(const QByteArray& method, const QByteArray& target,
                            const QByteArray& body, const QByteArray& extraHeaders) {
    QByteArray message = method + ' ' + target + " HTTP/1.1\r\nHost: localhost\r\n" + extraHeaders;
    if (!body.isEmpty() || method == "POST" || method == "PUT")
        message += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    write(message + "\r\n" + body);
    return readAnswer(method == "HEAD");
}

void HttpClient::write(const QByteArray& bytes) {
    if (m_socket.state() != QAbstractSocket::ConnectedState) {
        m_buffer.clear();
        QEventLoop loop;
        QObject::connect(&m_socket, &QTcpSocket::connected, &loop, &QEventLoop::quit);
        QObject::connect(&m_socket, &QTcpSocket::errorOccurred, &loop, &QEventLoop::quit);
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
        loop.exec();
    }
    m_socket.write(bytes);
}

bool HttpClient::waitForMore(int patienceMs) {
    if (m_socket.bytesAvailable() == 0 && m_socket.state() == QAbstractSocket::ConnectedState &&
        patienceMs > 0) {
        QEventLoop loop;
        QTimer::singleShot(patienceMs, &loop, &QEventLoop::quit);
        QObject::connect(&m_socket, &QTcpSocket::readyRead, &loop, &QEventLoop::quit);
        QObject::connect(&m_socket, &QTcpSocket::disconnected, &loop, &QEventLoop::quit);
        loop.exec();
    }
    const QByteArray more = m_socket.readAll();
    m_buffer += more;
    return !more.isEmpty();
}

QByteArray HttpClient::readUntil(const QByteArray& wanted, int patienceMs) {
    QElapsedTimer clock;
    clock.start();
    while (!m_buffer.contains(wanted)) {
        if (!waitForMore(patienceMs - int(clock.elapsed())) && clock.elapsed() >= patienceMs)
            break;
        if (m_socket.state() != QAbstractSocket::ConnectedState && m_socket.bytesAvailable() == 0)
            break;
    }
    return m_buffer;
}

HttpAnswer HttpClient::readAnswer(bool headRequest) {
    HttpAnswer answer;
    readUntil("\r\n\r\n");
    const int end = m_buffer.indexOf("\r\n\r\n");
    if (end < 0)
        return answer;
    const QList<QByteArray> lines = m_buffer.left(end).split('\n');
    m_buffer.remove(0, end + 4);
    answer.status = lines.first().mid(9, 3).toInt();
    for (const QByteArray& line : lines.mid(1)) {
        const int colon = line.indexOf(':');
        answer.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    const int length = headRequest ? 0 : answer.headers.value("content-length").toInt();
    QElapsedTimer clock;
    clock.start();
    while (m_buffer.size() < length && clock.elapsed() < PatienceMs) {
        if (!waitForMore(PatienceMs - int(clock.elapsed())))
            break;
    }
    answer.body = m_buffer.left(length);
    m_buffer.remove(0, length);
    return answer;
}
