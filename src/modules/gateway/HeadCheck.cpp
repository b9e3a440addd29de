#include "HeadCheck.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <strings.h>

namespace {

constexpr int LineEnd = 2; // CR LF
constexpr unsigned char Delete = 0x7f;

bool isSame(std::string_view text, std::string_view other) {
    return text.size() == other.size() && strncasecmp(text.data(), other.data(), text.size()) == 0;
}

// What a method and the name of a field may hold.
bool isToken(std::string_view text) {
    const auto isAllowed = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               (c != '\0' && std::strchr("!#$%&'*+-.^_`|~", c));
    };
    return !text.empty() && std::all_of(text.begin(), text.end(), isAllowed);
}

bool isTarget(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(),
                                        [](unsigned char c) { return c > ' ' && c != Delete; });
}

bool isValue(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return c == '\t' || (c >= ' ' && c != Delete); });
}

const char* behind(std::string_view text) {
    return text.data() + text.size();
}

} // namespace

HeadCheck::HeadCheck(std::string_view target) : m_target(target), m_isPlain(isTarget(target)) {}

void HeadCheck::takeRequestLine(std::string_view method, std::string_view version) {
    m_start = method.data();
    expect(isToken(method));
    expect(m_target.data() == behind(method) + 1);
    expect(version.data() == behind(m_target) + 1);
    m_knowsChunks = version != "HTTP/1.0";
    m_next = behind(version) + LineEnd;
}

void HeadCheck::takeField(std::string_view name, std::string_view value) {
    expect(name.data() == m_next && isToken(name));
    // The colon, and the blanks behind it.
    expect(std::less<>()(behind(name), value.data()) && isValue(value));
    m_next = behind(value) + LineEnd;
    if (isSame(name, "Content-Length")) {
        ++m_lengths;
    } else if (isSame(name, "Transfer-Encoding")) {
        ++m_codings;
        expect(m_knowsChunks && isSame(value, "chunked"));
    }
    expect(m_lengths + m_codings <= 1);
}

void HeadCheck::end(size_t size) {
    expect(m_next + LineEnd == m_start + size);
}
