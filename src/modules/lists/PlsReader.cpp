#include <map>

#include <QRegularExpression>

#include "ListReader.h"
#include "TextLines.h"

// Entries go by their numbers, which may have gaps and come in any order; NumberOfEntries is wrong
// too often to count.
ListReader::Result ListReader::readPls(const QString& text) {
    static const QRegularExpression form(
        QStringLiteral("^(file|title|length)([0-9]{1,9})\\s*=\\s*(.*)$"),
        QRegularExpression::CaseInsensitiveOption);
    constexpr int MsPerSecond = 1000;
    std::map<int, ListedTrack> tracks;
    TextLines lines(text);
    while (lines.next()) {
        if (lines.isTooLong())
            return {{}, lineTooLong(lines.number())};
        const QRegularExpressionMatch match = form.match(lines.line());
        if (!match.hasMatch())
            continue;
        ListedTrack& track = tracks[match.captured(2).toInt()];
        const QString value = match.captured(3);
        const QString key = match.captured(1).toLower();
        if (key == QLatin1String("title")) {
            track.title = value;
        } else if (key == QLatin1String("length")) {
            track.durationMs = qMax(0, value.toInt()) * qint64(MsPerSecond);
        } else {
            track.line = lines.number();
            track.location = value;
        }
    }
    Result result;
    for (const auto& [number, track] : tracks) {
        if (track.location.isEmpty())
            continue;
        result.refusal = add(&result.list, track);
        if (!result.refusal.isEmpty())
            break;
    }
    return result;
}
