#include "SoundFiles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QtEndian>

namespace {

QByteArray number32(quint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray number16(quint16 value) {
    QByteArray bytes(2, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const char* id, const QByteArray& content) {
    QByteArray bytes = id + number32(quint32(content.size())) + content;
    if (content.size() % 2 != 0)
        bytes += '\0';
    return bytes;
}

QByteArray infoChunk(const SoundTags& tags) {
    QByteArray info;
    const auto add = [&info](const char* id, const QString& text) {
        if (!text.isEmpty())
            info += chunk(id, text.toUtf8() + '\0');
    };
    add("INAM", tags.title);
    add("IART", tags.artist);
    add("IPRD", tags.album);
    add("IGNR", tags.genre);
    if (tags.track > 0)
        add("IPRT", QString::number(tags.track));
    return info.isEmpty() ? info : chunk("LIST", "INFO" + info);
}

} // namespace

void SoundFiles::writeWav(const QString& file, const SoundTags& tags, int durationMs) {
    constexpr quint32 Rate = 1000;
    constexpr char Silence = char(0x80);
    const QByteArray format =
        number16(1) + number16(1) + number32(Rate) + number32(Rate) + number16(1) + number16(8);
    writeBytes(file, chunk("RIFF", "WAVE" + chunk("fmt ", format) + infoChunk(tags) +
                                       chunk("data", QByteArray(durationMs, Silence))));
}

bool SoundFiles::writeWithSox(const QString& file, const SoundTags& tags, double seconds) {
    QDir().mkpath(QFileInfo(file).path());
    const QStringList comments = {
        QStringLiteral("TITLE=") + tags.title, QStringLiteral("ARTIST=") + tags.artist,
        QStringLiteral("ALBUM=") + tags.album, QStringLiteral("GENRE=") + tags.genre,
        QStringLiteral("TRACKNUMBER=") + QString::number(tags.track)};
    QStringList arguments = {"-n", "-r", "16000", "-c", "1"};
    for (const QString& comment : comments)
        arguments << QStringLiteral("--add-comment") << comment;
    arguments << file << "synth" << QString::number(seconds) << "sine"
              << "440";
    return QProcess::execute(QStringLiteral("sox"), arguments) == 0;
}

void SoundFiles::writeBytes(const QString& file, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly)) << qUtf8Printable(file);
    ASSERT_EQ(out.write(bytes), bytes.size());
}
