#pragma once

#include <string_view>

// Whether the head of a request can be read in one way only. The HTTP library also takes folded
// lines, lone line feeds and bytes behind a zero, and shows nothing of them. It leaves what it
// names where it arrived, so that whatever it passed over is a gap between two names. Kept by the
// connection, on the server's thread; nothing here fails.
//
// The parts are told in their order: the target, the rest of its line, each field, the end. No byte
// but those of the given texts is looked at.
class HeadCheck {
public:
    HeadCheck() = default;
    // A new request; the target as it arrived, which the library decodes in place later.
    explicit HeadCheck(std::string_view target);
    void takeRequestLine(std::string_view method, std::string_view version);
    void takeField(std::string_view name, std::string_view value);
    // `size`: of the whole head, with the empty line.
    void end(size_t size);

    // Every byte was told, no text holds control characters, no name a blank, and there is one
    // statement about the body's length at most.
    bool isPlain() const { return m_isPlain; }
    // The body comes in chunks.
    bool isChunked() const { return m_codings > 0; }

private:
    void expect(bool holds) { m_isPlain = m_isPlain && holds; }

    std::string_view m_target; // its place; the bytes may be others by now
    const char* m_start = nullptr;
    const char* m_next = nullptr; // where the next line has to begin
    bool m_isPlain = true;
    bool m_knowsChunks = false; // the version of HTTP
    int m_lengths = 0;
    int m_codings = 0;
};
