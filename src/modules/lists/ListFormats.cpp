#include "ListFormats.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr ListFormat Formats[] = {
    {"m3u8", "#extm3u", ListReader::readM3u, ListWriter::writeM3u8, false, "audio/x-mpegurl"},
    {"m3u", nullptr, ListReader::readM3u, nullptr, false, "audio/x-mpegurl"},
    {"pls", "[playlist]", ListReader::readPls, nullptr, false, "audio/x-scpls"},
    {"xspf", "<", ListReader::readXspf, ListWriter::writeXspf, true, "application/xspf+xml"},
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
