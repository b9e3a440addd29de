#pragma once

#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

// An HTTP server on the loopback with one sound file, which it sends as the path asks:
//
//   /whole       at once
//   /silent      takes the request and says nothing
//   /headers     its headers, then nothing
//   /half        half of it, then nothing
//   /slow/MS     half of it, and after so long the rest
//   /late/MS     the whole, after so long
//   /again/N     sent on N times, then the whole
//   /to/TARGET   sent on to TARGET (percent-encoded)
//
// Serves from the event loop of the thread that made it.
class SoundServer : public QTcpServer {
public:
    explicit SoundServer(const QByteArray& sound);

    QString url(const QString& path) const {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path);
    }
    static QString redirect(const QString& target) {
        return QStringLiteral("/to/") + QString::fromLatin1(QUrl::toPercentEncoding(target));
    }

    // The paths that were asked for.
    QStringList requests;

private:
    void answer(QTcpSocket* client, const QString& path);
    QByteArray headers() const;

    const QByteArray m_sound;
};
