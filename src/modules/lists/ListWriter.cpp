#include "ListWriter.h"

#include <algorithm>

#include <QXmlStreamWriter>

namespace {

// XML has no place for these, and a list of lines none for line breaks.
bool isUnwritable(uint letter) {
    constexpr uint NoLetters = 0xfffe; // and the one behind it, in each plane
    const QChar::Category category = QChar::category(letter);
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph || category == QChar::Other_Surrogate ||
           (letter & NoLetters) == NoLetters;
}

void writeText(QXmlStreamWriter* xml, const char* element, const QString& text) {
    const QString clean = ListWriter::plain(text);
    if (!clean.isEmpty())
        xml->writeTextElement(QString::fromLatin1(element), clean);
}

} // namespace

QString ListWriter::plain(const QString& text) {
    QVector<uint> letters = text.toUcs4();
    std::replace_if(letters.begin(), letters.end(), isUnwritable, uint(' '));
    return QString::fromUcs4(letters.constData(), letters.size()).simplified();
}

QByteArray ListWriter::writeM3u8(const TrackList& list) {
    constexpr qint64 MsPerSecond = 1000;
    QString text = QStringLiteral("#EXTM3U\n");
    const auto line = [&text](const char* tag, const QString& value) {
        const QString clean = plain(value);
        if (!clean.isEmpty())
            text += QLatin1String(tag) + clean + QLatin1Char('\n');
    };
    line("#PLAYLIST:", list.name);
    for (const ListedTrack& track : list.tracks) {
        const qint64 seconds =
            track.durationMs > 0 ? (track.durationMs + MsPerSecond / 2) / MsPerSecond : -1;
        const QString artist = plain(track.artist);
        const QString title = plain(track.title);
        text += QStringLiteral("#EXTINF:%1,").arg(seconds);
        text += artist.isEmpty() ? title : artist + QStringLiteral(" - ") + title;
        text += QLatin1Char('\n');
        line("#EXTART:", artist);
        line("#EXTALB:", track.album);
        text += track.location + QLatin1Char('\n');
    }
    return text.toUtf8();
}

QByteArray ListWriter::writeXspf(const TrackList& list) {
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("playlist"));
    xml.writeDefaultNamespace(QStringLiteral("http://xspf.org/ns/0/"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
    writeText(&xml, "title", list.name);
    xml.writeStartElement(QStringLiteral("trackList"));
    for (const ListedTrack& track : list.tracks) {
        xml.writeStartElement(QStringLiteral("track"));
        writeText(&xml, "location", track.location);
        writeText(&xml, "title", track.title);
        writeText(&xml, "creator", track.artist);
        writeText(&xml, "image", track.artworkUrl);
        writeText(&xml, "album", track.album);
        if (track.durationMs > 0)
            xml.writeTextElement(QStringLiteral("duration"), QString::number(track.durationMs));
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return bytes;
}
