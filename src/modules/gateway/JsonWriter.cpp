#include "JsonWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <QLocale>
#include <QVarLengthArray>

#include "CMPath.h"
#include "PlainUnits.h"
#include "TrString.h"

namespace {

// Deeper than any record; a value nested deeper is cut to null rather than followed down the stack.
constexpr int MaxDepth = 256;

constexpr char Hex[] = "0123456789abcdef";

char* putEscaped(char* out, ushort unit) {
    *out++ = '\\';
    switch (unit) {
    case '"':
    case '\\':
        *out++ = char(unit);
        return out;
    case '\n':
        *out++ = 'n';
        return out;
    case '\r':
        *out++ = 'r';
        return out;
    case '\t':
        *out++ = 't';
        return out;
    default:
        break;
    }
    for (const char c :
         {'u', Hex[unit >> 12], Hex[(unit >> 8) & 15], Hex[(unit >> 4) & 15], Hex[unit & 15]})
        *out++ = c;
    return out;
}

char* putUtf8(char* out, uint code) {
    if (code < 0x800) {
        *out++ = char(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        *out++ = char(0xE0 | (code >> 12));
        *out++ = char(0x80 | ((code >> 6) & 0x3F));
    } else {
        *out++ = char(0xF0 | (code >> 18));
        *out++ = char(0x80 | ((code >> 12) & 0x3F));
        *out++ = char(0x80 | ((code >> 6) & 0x3F));
    }
    *out++ = char(0x80 | (code & 0x3F));
    return out;
}

} // namespace

QByteArray JsonWriter::text() {
    m_out.resize(m_size);
    return m_out;
}

void JsonWriter::grow(int count) {
    m_out.resize(qMax(m_size + count, 2 * m_out.size()));
}

void JsonWriter::raw(const char* text, int size) {
    std::copy_n(text, size, room(size));
    m_size += size;
}

void JsonWriter::member(const char* name, bool first) {
    raw(first ? "\"" : ",\"");
    raw(name);
    raw("\":");
}

void JsonWriter::member(const QString& name, bool first) {
    if (!first)
        raw(',');
    value(name);
    raw(':');
}

void JsonWriter::value(const QString& text) {
    constexpr int LongestUnit = 6; // an escaped one
    constexpr int Part = 4096;     // a long text does not ask for six times its room at once
    raw('"');
    const QChar* at = text.constData();
    const QChar* const end = at + text.size();
    while (at != end) {
        const QChar* const partEnd = at + qMin<qptrdiff>(end - at, Part);
        char* out = room(LongestUnit * int(partEnd - at + 1));
        while (at < partEnd) {
            while (partEnd - at >= PlainUnits::Block) {
                const PlainUnits::Units units = PlainUnits::load(at);
                if (!PlainUnits::arePlain(units))
                    break;
                PlainUnits::store(units, out);
                at += PlainUnits::Block;
                out += PlainUnits::Block;
            }
            while (at < partEnd && PlainUnits::isPlain(at->unicode()))
                *out++ = char((at++)->unicode());
            if (at >= partEnd)
                break;
            const ushort unit = (at++)->unicode();
            if (unit < 0x80)
                out = putEscaped(out, unit);
            else if (QChar::isHighSurrogate(unit) && at != end && at->isLowSurrogate())
                out = putUtf8(out, QChar::surrogateToUcs4(unit, (at++)->unicode()));
            else if (QChar::isSurrogate(unit))
                out = putUtf8(out, QChar::ReplacementCharacter);
            else
                out = putUtf8(out, unit);
        }
        m_size = int(out - m_out.data());
    }
    raw('"');
}

void JsonWriter::value(qint64 number) {
    constexpr int LongestNumber = 20;
    char* const out = room(LongestNumber);
    m_size += int(std::to_chars(out, out + LongestNumber, number).ptr - out);
}

void JsonWriter::value(double number) {
    constexpr double exactLimit =
        9007199254740992.0; // 2^53: up to it a whole double is written as a whole number
    if (!std::isfinite(number))
        raw("null");
    else if (std::trunc(number) == number && std::fabs(number) <= exactLimit)
        value(qint64(number));
    else
        raw(QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
}

void JsonWriter::value(const QVariant& value) {
    if (m_depth >= MaxDepth) {
        raw("null");
        return;
    }
    ++m_depth;
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QString:
        this->value(*static_cast<const QString*>(value.constData()));
        break;
    case QMetaType::Bool:
        raw(value.toBool() ? "true" : "false");
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::UShort:
        this->value(value.toLongLong());
        break;
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        raw(QByteArray::number(value.toULongLong()));
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        this->value(value.toDouble());
        break;
    case QMetaType::QVariantHash:
        hash(*static_cast<const QVariantHash*>(value.constData()));
        break;
    case QMetaType::QVariantMap:
        map(*static_cast<const QVariantMap*>(value.constData()));
        break;
    case QMetaType::QVariantList:
        list(*static_cast<const QVariantList*>(value.constData()));
        break;
    case QMetaType::QStringList:
        list(*static_cast<const QStringList*>(value.constData()));
        break;
    default:
        if (value.userType() == qMetaTypeId<TrString>())
            this->value(static_cast<const TrString*>(value.constData())->toString());
        else if (value.userType() == qMetaTypeId<CMPath>())
            this->value(static_cast<const CMPath*>(value.constData())->toString());
        else if (value.isValid() && value.canConvert<QString>())
            this->value(value.toString());
        else
            raw("null");
    }
    --m_depth;
}

void JsonWriter::hash(const QVariantHash& hash) {
    constexpr int Usual = 16;
    QVarLengthArray<QVariantHash::const_iterator, Usual> members;
    for (auto it = hash.begin(); it != hash.end(); ++it)
        members.append(it);
    std::sort(members.begin(), members.end(),
              [](const auto& a, const auto& b) { return a.key() < b.key(); });
    beginObject();
    for (int i = 0; i < members.size(); ++i) {
        member(members.at(i).key(), i == 0);
        value(members.at(i).value());
    }
    endObject();
}

void JsonWriter::map(const QVariantMap& map) {
    beginObject();
    for (auto it = map.begin(); it != map.end(); ++it) {
        member(it.key(), it == map.begin());
        value(it.value());
    }
    endObject();
}

template <typename List>
void JsonWriter::list(const List& list) {
    raw('[');
    bool first = true;
    for (const auto& element : list) {
        if (!first)
            raw(',');
        first = false;
        value(element);
    }
    raw(']');
}

QByteArray JsonWriter::quoted(const QString& text) {
    JsonWriter writer(text.size() + 2);
    writer.value(text);
    return writer.text();
}
