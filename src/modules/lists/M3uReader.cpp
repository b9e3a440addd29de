#include <QRegularExpression>

#include "ListReader.h"
#include "TextLines.h"

namespace {

// What the lines before an entry say about it.
struct Pending {
    QString display; // as #EXTINF has it, often "Artist - Title"
    QString artist;
    QString album;
    qint64 durationMs = 0;
};

// "#EXTINF:  -1 logo="a,b",Artist - Title": a length in seconds, attributes that no one needs here,
// and behind the first comma outside of quotation marks what to show.
void readInf(const QString& value, Pending* pending) {
    static const QRegularExpression form(
        QStringLiteral("^\\s*+(-?[0-9.]*+)(?:[^\",]++|\"[^\"]*+\")*+,(.*)$"));
    const QRegularExpressionMatch match = form.match(value);
    if (!match.hasMatch()) {
        pending->display = value.section(QLatin1Char(','), 1).trimmed();
        return;
    }
    constexpr double MaxSeconds = 1e9;
    constexpr double MsPerSecond = 1000;
    const double seconds = match.captured(1).toDouble();
    pending->durationMs = seconds > 0 && seconds < MaxSeconds ? qint64(seconds * MsPerSecond) : 0;
    pending->display = match.captured(2).trimmed();
}

ListedTrack trackOf(const Pending& pending, const QString& location, int line) {
    ListedTrack track;
    track.line = line;
    track.location = location;
    track.title = pending.display;
    track.artist = pending.artist;
    track.album = pending.album;
    track.durationMs = pending.durationMs;
    const QString prefix = pending.artist + QStringLiteral(" - ");
    if (!pending.artist.isEmpty() && track.title.startsWith(prefix))
        track.title.remove(0, prefix.size());
    return track;
}

} // namespace

ListReader::Result ListReader::readM3u(const QString& text) {
    Result result;
    Pending pending;
    TextLines lines(text);
    while (lines.next()) {
        if (lines.isTooLong())
            return {{}, lineTooLong(lines.number())};
        const QString line = lines.line();
        const auto value = [&line](const char* tag) -> QString {
            const QLatin1String name(tag);
            return line.startsWith(name, Qt::CaseInsensitive) ? line.mid(name.size()).trimmed()
                                                              : QString();
        };
        if (line.startsWith(QLatin1String("#EXT-X-"), Qt::CaseInsensitive))
            return {{},
                    TrString("Lists", "These are the segments of a stream, not tracks. Please use "
                                      "the address of the stream itself.")};
        if (const QString inf = value("#EXTINF:"); !inf.isEmpty())
            readInf(inf, &pending);
        else if (const QString artist = value("#EXTART:"); !artist.isEmpty())
            pending.artist = artist;
        else if (const QString album = value("#EXTALB:"); !album.isEmpty())
            pending.album = album;
        else if (const QString name = value("#PLAYLIST:"); !name.isEmpty())
            result.list.name = name;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        result.refusal = add(&result.list, trackOf(pending, line, lines.number()));
        if (!result.refusal.isEmpty())
            return result;
        pending = {};
    }
    return result;
}
