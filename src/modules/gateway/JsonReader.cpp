#include "JsonReader.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <rapidjson/encodedstream.h>
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <vector>

#include "QtTextEncoding.h"

namespace {

// Makes the record from what the parser finds, in the form that the parser calls. Each function
// returns whether to go on.
class RecordBuilder {
public:
    explicit RecordBuilder(int maxValues) : m_maxValues(maxValues) {}

    const QVariant& record() const { return m_record; }
    // Why it did not go on.
    const QString& refusal() const { return m_refusal; }

    // NOLINTBEGIN(readability-identifier-naming)
    bool Null() { return add({}); }
    bool Bool(bool value) { return add(value); }
    bool Int(int value) { return add(qint64(value)); }
    bool Uint(unsigned value) { return add(qint64(value)); }
    bool Int64(qint64 value) { return add(value); }
    bool Uint64(quint64 value) {
        return value > quint64(std::numeric_limits<qint64>::max()) ? add(double(value))
                                                                   : add(qint64(value));
    }
    bool Double(double value) {
        // A whole number is one however it is spelled.
        constexpr double limit = 9223372036854775808.0; // 2^63
        return std::trunc(value) == value && value >= -limit && value < limit ? add(qint64(value))
                                                                              : add(value);
    }
    bool RawNumber(const ushort*, rapidjson::SizeType, bool) { return false; }
    bool String(const ushort* units, rapidjson::SizeType size, bool) {
        return add(textOf(units, size));
    }
    bool Key(const ushort* units, rapidjson::SizeType size, bool) {
        Level& level = m_open.back();
        level.name = textOf(units, size);
        if (level.object.contains(level.name))
            return refuse(QStringLiteral("The body has a name twice in one object."));
        if (level.object.size() == JsonReader::MaxNames)
            return refuse(QStringLiteral("The body has an object with more than %1 names.")
                              .arg(JsonReader::MaxNames));
        return true;
    }
    bool StartObject() { return open(true); }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool StartArray() { return open(false); }
    bool EndArray(rapidjson::SizeType) { return close(); }
    // NOLINTEND(readability-identifier-naming)

private:
    struct Level {
        bool isObject;
        QVariantHash object;
        QString name; // of the value that comes next
        QVariantList list;
    };

    bool refuse(const QString& reason) {
        m_refusal = reason;
        return false;
    }

    static QString textOf(const ushort* units, rapidjson::SizeType size) {
        return QString(reinterpret_cast<const QChar*>(units), int(size));
    }

    bool add(const QVariant& value) {
        if (++m_values > m_maxValues)
            return refuse(QStringLiteral("The body has more than %1 values.").arg(m_maxValues));
        put(value);
        return true;
    }

    bool open(bool isObject) {
        if (m_open.size() == JsonReader::MaxDepth)
            return refuse(QStringLiteral("The body is nested too deeply."));
        if (++m_values > m_maxValues)
            return refuse(QStringLiteral("The body has more than %1 values.").arg(m_maxValues));
        m_open.push_back({isObject, {}, {}, {}});
        return true;
    }

    bool close() {
        const Level level = std::move(m_open.back());
        m_open.pop_back();
        put(level.isObject ? QVariant(level.object) : QVariant(level.list));
        return true;
    }

    void put(const QVariant& value) {
        if (m_open.empty())
            m_record = value;
        else if (m_open.back().isObject)
            m_open.back().object.insert(m_open.back().name, value);
        else
            m_open.back().list.append(value);
    }

    int m_maxValues;
    int m_values = 0;
    std::vector<Level> m_open; // the outermost first
    QVariant m_record;
    QString m_refusal;
};

constexpr int EscapeSize = 6; // \uXXXX

// The unit that the escape at `at` stands for, -1 when there is none.
int escapedUnit(const QByteArray& text, int at) {
    if (at + EscapeSize > text.size() || text.at(at) != '\\' || text.at(at + 1) != 'u')
        return -1;
    const char* const end = text.constData() + at + EscapeSize;
    int unit = -1;
    return std::from_chars(end - 4, end, unit, 16).ptr == end ? unit : -1;
}

// JSON where each escape of half a surrogate pair is that of the replacement character. The parser
// refuses the half, which other programs write where they cut a text.
QByteArray withoutHalfPairs(QByteArray text) {
    // A backslash and what it escapes are one step, so that "\\ud800" is no escape.
    for (int at = text.indexOf('\\'); at >= 0; at = text.indexOf('\\', at)) {
        const int unit = escapedUnit(text, at);
        if (unit < 0) {
            at += 2;
            continue;
        }
        if (QChar::isHighSurrogate(uint(unit)) &&
            QChar::isLowSurrogate(uint(escapedUnit(text, at + EscapeSize))))
            at += EscapeSize;
        else if (QChar::isSurrogate(uint(unit)))
            text.replace(at + 2, EscapeSize - 2, "fffd");
        at += EscapeSize;
    }
    return text;
}

} // namespace

bool JsonReader::readObject(const QByteArray& given, QVariantHash* object, QString* reason,
                            int maxValues) {
    const QByteArray text = withoutHalfPairs(given);
    using Utf8 = rapidjson::UTF8<>;
    rapidjson::MemoryStream bytes(text.constData(), std::size_t(text.size()));
    rapidjson::EncodedInputStream<Utf8, rapidjson::MemoryStream> input(bytes);
    // Room for the longest text at once: one that grows with it, copy by copy, takes as long as
    // reading does.
    const std::size_t longestText = std::size_t(text.size()) * sizeof(ushort);
    rapidjson::GenericReader<Utf8, QtTextEncoding> parser(nullptr, longestText);
    RecordBuilder builder(maxValues);
    const rapidjson::ParseResult result =
        parser.Parse<rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag>(
            input, builder);
    if (result.Code() == rapidjson::kParseErrorTermination) {
        *reason = builder.refusal();
        return false;
    }
    if (result.IsError()) {
        *reason = QStringLiteral("The body is no JSON at byte %1: %2")
                      .arg(result.Offset())
                      .arg(QString::fromLatin1(rapidjson::GetParseError_En(result.Code())));
        return false;
    }
    // To the parser a zero is the end of the text, wherever it stands.
    if (input.Tell() != std::size_t(text.size())) {
        *reason = QStringLiteral("The body is no JSON at byte %1: A zero.").arg(input.Tell());
        return false;
    }
    if (builder.record().userType() != QMetaType::QVariantHash) {
        *reason = QStringLiteral("The body must be a JSON object.");
        return false;
    }
    *object = builder.record().toHash();
    return true;
}
