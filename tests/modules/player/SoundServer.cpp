#include "SoundServer.h"

#include <gtest/gtest.h>

#include <QTimer>

namespace {
void sendOn(QTcpSocket* client, const QByteArray& target) {
    client->write("HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n");
}
} // namespace

SoundServer::SoundServer(const QByteArray& sound) : m_sound(sound) {
    EXPECT_TRUE(listen(QHostAddress::LocalHost));
    connect(this, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* client = nextPendingConnection();
        connect(client, &QTcpSocket::readyRead, this, [this, client] {
            const QByteArray request = client->readAll(); // small, and in one piece here
            const QString path = QString::fromLatin1(request.split(' ').value(1));
            requests.append(path);
            answer(client, path);
        });
    });
}

QByteArray SoundServer::headers() const {
    return "HTTP/1.1 200 OK\r\nContent-Type: audio/x-wav\r\nContent-Length: " +
           QByteArray::number(m_sound.size()) + "\r\n\r\n";
}

void SoundServer::answer(QTcpSocket* client, const QString& path) {
    const QString what = path.section(QLatin1Char('/'), 1, 1);
    const QString rest = path.section(QLatin1Char('/'), 2);
    const int half = m_sound.size() / 2;
    if (what == QLatin1String("whole")) {
        client->write(headers() + m_sound);
    } else if (what == QLatin1String("headers")) {
        client->write(headers());
    } else if (what == QLatin1String("half")) {
        client->write(headers() + m_sound.left(half));
    } else if (what == QLatin1String("slow")) {
        client->write(headers() + m_sound.left(half));
        QTimer::singleShot(rest.toInt(), client,
                           [this, client, half] { client->write(m_sound.mid(half)); });
    } else if (what == QLatin1String("late")) {
        QTimer::singleShot(rest.toInt(), client,
                           [this, client] { client->write(headers() + m_sound); });
    } else if (what == QLatin1String("again") && rest.toInt() > 0) {
        sendOn(client, "/again/" + QByteArray::number(rest.toInt() - 1));
    } else if (what == QLatin1String("again")) {
        client->write(headers() + m_sound);
    } else if (what == QLatin1String("to")) {
        sendOn(client, QByteArray::fromPercentEncoding(rest.toLatin1()));
    } else {
        EXPECT_EQ(what, "silent");
    }
}
