#include "OneLineLayout.h"

#include <algorithm>
#include <cstdio>
#include <log4cplus/spi/loggingevent.h>
#include <string_view>

namespace {

// Line separators, and what turns the direction of writing, in UTF-8: they end or rearrange a line
// where a log is looked at.
struct Rearranging {
    std::string_view bytes;
    const char* escape;
};
constexpr Rearranging RearrangingTexts[] = {
    {"\u061c", "\\u061c"}, {"\u200e", "\\u200e"}, {"\u200f", "\\u200f"}, {"\u2028", "\\u2028"},
    {"\u2029", "\\u2029"}, {"\u202a", "\\u202a"}, {"\u202b", "\\u202b"}, {"\u202c", "\\u202c"},
    {"\u202d", "\\u202d"}, {"\u202e", "\\u202e"}, {"\u2066", "\\u2066"}, {"\u2067", "\\u2067"},
    {"\u2068", "\\u2068"}, {"\u2069", "\\u2069"},
};

constexpr std::string_view CutMark = "… (cut)";

// Within a character of several bytes.
bool isContinuation(unsigned char byte) {
    return (byte & 0xc0) == 0x80;
}

const Rearranging* rearrangingAt(std::string_view text) {
    for (const Rearranging& row : RearrangingTexts) {
        if (text.substr(0, row.bytes.size()) == row.bytes)
            return &row;
    }
    return nullptr;
}

} // namespace

void OneLineLayout::formatAndAppend(log4cplus::tostream& output,
                                    const log4cplus::spi::InternalLoggingEvent& event) {
    constexpr std::size_t LevelWidth = 5;
    std::string level = log4cplus::getLogLevelManager().toString(event.getLogLevel());
    level.resize(std::max(level.size(), LevelWidth), ' ');
    const std::string head =
        log4cplus::helpers::getFormattedTime("%Y-%m-%d %H:%M:%S.%q", event.getTimestamp()) + ' ' +
        level + ' ' + event.getLoggerName() + " - ";
    const std::size_t taken = head.size() + 1;
    std::size_t room = std::string::npos;
    if (m_maxBytes > 0)
        room = std::max(m_maxBytes, taken) - taken;
    output << head << escaped(event.getMessage(), room) << '\n';
}

std::string OneLineLayout::escaped(const std::string& text, std::size_t room) {
    std::string result;
    result.reserve(std::min(text.size(), room));
    std::size_t beforeMark = 0; // characters up to here leave room for the mark
    const auto append = [&result](unsigned code) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\x%02x", code);
        result += escape;
    };
    for (std::size_t i = 0; i < text.size() && result.size() <= room; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (!isContinuation(byte) && result.size() + CutMark.size() <= room)
            beforeMark = result.size();
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        constexpr unsigned char Delete = 0x7f;
        // U+0080 to U+009F, which are C2 80 to C2 9F in UTF-8, steer terminals as well.
        constexpr unsigned char HighControlLead = 0xc2;
        if (byte == '\n')
            result += "\\n";
        else if (byte == '\t')
            result += "\\t";
        else if (byte < ' ' || byte == Delete)
            append(byte);
        else if (byte == HighControlLead && next >= 0x80 && next <= 0x9f)
            append(static_cast<unsigned char>(text[++i]));
        else if (const Rearranging* found =
                     byte < 0x80 ? nullptr : rearrangingAt(std::string_view(text).substr(i))) {
            result += found->escape;
            i += found->bytes.size() - 1;
        } else
            result += text[i];
    }
    if (result.size() > room)
        result.replace(beforeMark, std::string::npos, CutMark);
    return result;
}
