#include "ListFormats.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr ListFormat Formats[] = {
    {.suffix = "m3u8",
     .beginning = "#extm3u",
     .read = ListReader::readM3u,
     .write = ListWriter::writeM3u8,
     .mimeType = "audio/x-mpegurl"},
    {.suffix = "m3u", .read = ListReader::readM3u, .mimeType = "audio/x-mpegurl"},
    {.suffix = "pls",
     .beginning = "[playlist]",
     .read = ListReader::readPls,
     .mimeType = "audio/x-scpls"},
    {.suffix = "xspf",
     .beginning = "<",
     .read = ListReader::readXspf,
     .write = ListWriter::writeXspf,
     .areUris = true,
     .mimeType = "application/xspf+xml"},
};

template <typename Condition>
const ListFormat* first(const Condition& condition) {
    const auto found = std::find_if(std::begin(Formats), std::end(Formats), condition);
    return found == std::end(Formats) ? nullptr : found;
}

} // namespace

const ListFormat* ListFormats::ofSuffix(const QString& suffix) {
    return first([&suffix](const ListFormat& format) {
        return suffix.compare(QLatin1String(format.suffix), Qt::CaseInsensitive) == 0;
    });
}

const ListFormat* ListFormats::beginningOf(const QString& text) {
    constexpr int LongestBeginning = 64;
    const QString beginning = text.left(LongestBeginning).trimmed();
    return first([&beginning](const ListFormat& format) {
        return format.beginning &&
               beginning.startsWith(QLatin1String(format.beginning), Qt::CaseInsensitive);
    });
}
