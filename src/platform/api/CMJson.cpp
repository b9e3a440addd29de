#include "CMJson.h"

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Qt's parser goes no deeper, so nothing there is ever an object to it.
constexpr std::size_t MaxDepth = 1024;

// Finds a name that stands twice in one object, however it is written. Says nothing about texts
// that are no JSON beyond what it understood of them: the parser refuses those.
class RepeatedNames {
public:
    explicit RepeatedNames(const QByteArray& text)
        : m_at(text.constData()), m_end(m_at + text.size()) {}

    bool found() {
        for (; m_at != m_end && m_open.size() <= MaxDepth; ++m_at) {
            switch (*m_at) {
            case '{':
            case '[':
                m_open.push_back({*m_at == '{', m_names.size()});
                m_nameComes = *m_at == '{';
                break;
            case '}':
            case ']':
                if (m_open.empty())
                    return false;
                if (isRepeatedSince(m_open.back().firstName))
                    return true;
                m_names.resize(m_open.back().firstName);
                m_open.pop_back();
                m_nameComes = false;
                break;
            case ',':
                m_nameComes = !m_open.empty() && m_open.back().isObject;
                break;
            case '"':
                if (!takeText())
                    return false;
                break;
            default:
                break;
            }
        }
        return false;
    }

private:
    struct Open {
        bool isObject;
        std::size_t firstName; // in m_names
    };

    bool isRepeatedSince(std::size_t first) {
        const auto begin = m_names.begin() + std::ptrdiff_t(first);
        std::sort(begin, m_names.end());
        return std::adjacent_find(begin, m_names.end()) != m_names.end();
    }

    // Goes on to the closing quotation mark; false when there is none.
    bool takeText() {
        const char* const begin = ++m_at;
        bool isEscaped = false;
        for (; m_at != m_end && *m_at != '"'; ++m_at) {
            if (*m_at != '\\')
                continue;
            isEscaped = true;
            if (++m_at == m_end)
                return false;
        }
        if (m_at == m_end)
            return false;
        if (m_nameComes) {
            const std::string_view name(begin, std::size_t(m_at - begin));
            m_names.push_back(isEscaped ? unescaped(name) : name);
        }
        m_nameComes = false;
        return true;
    }

    // A name with escapes is rare: the parser says what it is.
    std::string_view unescaped(std::string_view name) {
        const QByteArray list = "[\"" + QByteArray(name.data(), int(name.size())) + "\"]";
        m_unescaped.push_back(
            QJsonDocument::fromJson(list).toVariant().toStringList().value(0).toStdString());
        return m_unescaped.back();
    }

    const char* m_at;
    const char* m_end;
    std::vector<Open> m_open;
    std::vector<std::string_view> m_names; // of all open objects
    std::deque<std::string> m_unescaped;
    bool m_nameComes = false;
};

// The unit that is escaped at a backslash, 0 where none is.
ushort escapedUnit(const QByteArray& text, int backslash) {
    constexpr int Hexadecimal = 16;
    return text.mid(backslash, 2) == "\\u"
               ? text.mid(backslash + 2, 4).toUShort(nullptr, Hexadecimal)
               : ushort(0);
}

// Each escaped half of a surrogate pair as an escaped U+FFFD of the same length.
QByteArray withWholeEscapes(QByteArray text) {
    constexpr int EscapeLength = 6;
    int at = 0;
    while ((at = text.indexOf('\\', at)) >= 0) {
        const ushort unit = escapedUnit(text, at);
        const bool isPair = QChar::isHighSurrogate(unit) &&
                            QChar::isLowSurrogate(escapedUnit(text, at + EscapeLength));
        if (QChar::isSurrogate(unit) && !isPair)
            text.replace(at, EscapeLength, "\\ufffd");
        at += unit == 0 ? 2 : isPair ? 2 * EscapeLength : EscapeLength;
    }
    return text;
}

} // namespace

QJsonDocument cmReadJson(const QByteArray& given, QJsonParseError* error) {
    const QByteArray text = withWholeEscapes(given);
    if (!RepeatedNames(text).found())
        return QJsonDocument::fromJson(text, error);
    if (error) {
        error->error = QJsonParseError::IllegalValue;
        error->offset = 0;
    }
    return {};
}
