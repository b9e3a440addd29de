#include <QRegularExpression>
#include <QUrl>
#include <QXmlStreamReader>

#include "ListLimits.h"
#include "ListReader.h"

namespace {

// The parser compares each attribute of a tag with all before it, so a tag of many thousand would
// keep it busy for long. A "<" stands nowhere but at the beginning of a tag, and each attribute has
// a "=". Empty when all tags are fine.
TrString checkTags(const QString& text) {
    int line = 1;
    for (int from = 0; from < text.size();) {
        const int next = text.indexOf(QLatin1Char('<'), from + 1);
        const QStringRef tag = text.midRef(from, next < 0 ? -1 : next - from);
        if (tag.size() > ListLimits::MaxLineLength)
            return ListReader::lineTooLong(line);
        if (tag.count(QLatin1Char('=')) > ListLimits::MaxAttributes)
            return TrString("Lists", "A tag in line %1 has more than %2 attributes.",
                            {QString::number(line), QString::number(ListLimits::MaxAttributes)});
        line += tag.count(QLatin1Char('\n'));
        from = next < 0 ? text.size() : next;
    }
    return {};
}

QString textOf(QXmlStreamReader* xml) {
    return xml->readElementText(QXmlStreamReader::SkipChildElements).simplified();
}

// Where relative addresses inside of this element start: what it says itself, else what the
// elements around it do. Empty when none does.
QUrl baseOf(const QXmlStreamReader& xml, const QUrl& around) {
    const QStringRef own = xml.attributes().value(QLatin1String("xml:base"));
    return own.isEmpty() ? around : around.resolved(QUrl(own.toString()));
}

QString addressFrom(const QUrl& base, const QString& location) {
    const QUrl address(location);
    return base.isEmpty() || !address.isValid() || !address.isRelative()
               ? location
               : base.resolved(address).toString(QUrl::FullyEncoded);
}

ListedTrack readTrack(QXmlStreamReader* xml, const QUrl& around) {
    ListedTrack track;
    const QUrl base = baseOf(*xml, around);
    track.line = int(xml->lineNumber());
    track.isUri = true;
    while (xml->readNextStartElement()) {
        const QString name = xml->name().toString();
        if (name == QLatin1String("location")) {
            const int line = int(xml->lineNumber());
            const QUrl ownBase = baseOf(*xml, base);
            const QString location = textOf(xml);
            // The first that is named is the one to be taken.
            if (track.location.isEmpty() && !location.isEmpty()) {
                track.location = addressFrom(ownBase, location);
                track.line = line;
            }
        } else if (name == QLatin1String("title")) {
            track.title = textOf(xml);
        } else if (name == QLatin1String("creator")) {
            track.artist = textOf(xml);
        } else if (name == QLatin1String("album")) {
            track.album = textOf(xml);
        } else if (name == QLatin1String("image")) {
            track.artworkUrl = textOf(xml);
        } else if (name == QLatin1String("duration")) {
            track.durationMs = qMax(0LL, textOf(xml).toLongLong());
        } else {
            xml->skipCurrentElement();
        }
    }
    return track;
}

TrString readTracks(QXmlStreamReader* xml, const QUrl& around, TrackList* list) {
    const QUrl base = baseOf(*xml, around);
    while (xml->readNextStartElement()) {
        if (xml->name() != QLatin1String("track")) {
            xml->skipCurrentElement();
            continue;
        }
        const TrString refusal = ListReader::add(list, readTrack(xml, base));
        if (!refusal.isEmpty())
            return refusal;
    }
    return {};
}

} // namespace

ListReader::Result ListReader::readXspf(const QString& text) {
    // Entities of a file's own are how a few bytes become gigabytes, and no list needs them.
    if (text.contains(QLatin1String("<!DOCTYPE"), Qt::CaseInsensitive))
        return {{}, TrString("Lists", "This is not a playlist file: it has a document type.")};
    if (const TrString refusal = checkTags(text); !refusal.isEmpty())
        return {{}, refusal};
    QXmlStreamReader xml(text);
    if (xml.readNextStartElement() && xml.name() != QLatin1String("playlist"))
        return {{}, TrString("Lists", "This is not a playlist file.")};
    const QUrl base = baseOf(xml, {});
    Result result;
    while (result.refusal.isEmpty() && xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("title"))
            result.list.name = textOf(&xml);
        else if (xml.name() == QLatin1String("trackList"))
            result.refusal = readTracks(&xml, base, &result.list);
        else
            xml.skipCurrentElement();
    }
    while (result.refusal.isEmpty() && !xml.atEnd())
        xml.readNext();
    if (xml.hasError() && result.refusal.isEmpty())
        result.refusal =
            TrString("Lists", "The file is damaged in line %1: %2.",
                     {QString::number(xml.lineNumber()),
                      xml.errorString().remove(QRegularExpression(QStringLiteral("\\.$")))});
    return result;
}
