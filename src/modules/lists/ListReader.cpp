#include "ListReader.h"

#include "ListFormats.h"
#include "ListLimits.h"
#include "ListText.h"

ListReader::Result ListReader::read(const QString& text, const QString& suffix) {
    if (const TrString refusal = ListText::refusal(text); !refusal.isEmpty())
        return {{}, refusal};
    const ListFormat* format = ListFormats::beginningOf(text);
    if (!format)
        format = ListFormats::ofSuffix(suffix.isEmpty() ? QStringLiteral("m3u") : suffix);
    if (!format)
        return {{}, TrString("Lists", "This is not a playlist file.")};
    return format->read(text);
}

TrString ListReader::lineTooLong(int line) {
    return TrString("Lists", "Line %1 is longer than %2 characters.",
                    {QString::number(line), QString::number(ListLimits::MaxLineLength)});
}

TrString ListReader::add(TrackList* list, const ListedTrack& track) {
    if (list->tracks.size() >= std::size_t(ListLimits::MaxEntries))
        return TrString("Lists", "The file has more than %1 entries.",
                        {QString::number(ListLimits::MaxEntries)});
    list->tracks.push_back(track);
    return {};
}
