#include "JsonWriter.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

#include "CMPath.h"
#include "TrString.h"

namespace {

// Deeper than any record; a value nested deeper is cut to null rather than followed down the stack.
constexpr int MaxDepth = 256;

constexpr char Hex[] = "0123456789abcdef";

void appendEscaped(QByteArray& out, ushort unit) {
    switch (unit) {
    case '"':
        out.append("\\\"");
        return;
    case '\\':
        out.append("\\\\");
        return;
    case '\n':
        out.append("\\n");
        return;
    case '\r':
        out.append("\\r");
        return;
    case '\t':
        out.append("\\t");
        return;
    default:
        break;
    }
    const char escape[] = {
        '\\', 'u', Hex[unit >> 12], Hex[(unit >> 8) & 15], Hex[(unit >> 4) & 15], Hex[unit & 15]};
    out.append(escape, sizeof escape);
}

void appendUtf8(QByteArray& out, uint code) {
    char bytes[4];
    int count = 0;
    if (code < 0x800) {
        bytes[count++] = char(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        bytes[count++] = char(0xE0 | (code >> 12));
        bytes[count++] = char(0x80 | ((code >> 6) & 0x3F));
    } else {
        bytes[count++] = char(0xF0 | (code >> 18));
        bytes[count++] = char(0x80 | ((code >> 12) & 0x3F));
        bytes[count++] = char(0x80 | ((code >> 6) & 0x3F));
    }
    bytes[count++] = char(0x80 | (code & 0x3F));
    out.append(bytes, count);
}

bool isPlain(ushort unit) {
    return unit >= 0x20 && unit < 0x7F && unit != '"' && unit != '\\';
}

} // namespace

void JsonWriter::member(const char* name, bool first) {
    m_out.append(first ? "\"" : ",\"").append(name).append("\":");
}

void JsonWriter::member(const QString& name, bool first) {
    if (!first)
        m_out.append(',');
    value(name);
    m_out.append(':');
}

void JsonWriter::value(const QString& text) {
    m_out.append('"');
    const QChar* at = text.constData();
    const QChar* const end = at + text.size();
    while (at != end) {
        // Most texts are plain: copied as one run.
        const QChar* const run = at;
        while (at != end && isPlain(at->unicode()))
            ++at;
        const int start = m_out.size();
        m_out.resize(start + int(at - run));
        std::transform(run, at, m_out.data() + start, [](QChar c) { return char(c.unicode()); });
        if (at == end)
            break;
        const ushort unit = (at++)->unicode();
        if (unit < 0x80)
            appendEscaped(m_out, unit);
        else if (QChar::isHighSurrogate(unit) && at != end && at->isLowSurrogate())
            appendUtf8(m_out, QChar::surrogateToUcs4(unit, (at++)->unicode()));
        else if (QChar::isSurrogate(unit))
            appendUtf8(m_out, QChar::ReplacementCharacter);
        else
            appendUtf8(m_out, unit);
    }
    m_out.append('"');
}

void JsonWriter::value(double number) {
    constexpr double exactLimit =
        9007199254740992.0; // 2^53: up to it a whole double is written as a whole number
    if (!std::isfinite(number))
        m_out.append("null");
    else if (std::trunc(number) == number && std::fabs(number) <= exactLimit)
        value(qint64(number));
    else
        m_out.append(QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
}

void JsonWriter::value(const QVariant& value) {
    if (m_depth >= MaxDepth) {
        m_out.append("null");
        return;
    }
    ++m_depth;
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QString:
        this->value(*static_cast<const QString*>(value.constData()));
        break;
    case QMetaType::Bool:
        m_out.append(value.toBool() ? "true" : "false");
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
        m_out.append(QByteArray::number(value.toULongLong()));
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
            m_out.append("null");
    }
    --m_depth;
}

void JsonWriter::hash(const QVariantHash& hash) {
    QVector<QVariantHash::const_iterator> members;
    members.reserve(hash.size());
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
    m_out.append('[');
    bool first = true;
    for (const auto& element : list) {
        if (!first)
            m_out.append(',');
        first = false;
        value(element);
    }
    m_out.append(']');
}

QByteArray JsonWriter::quoted(const QString& text) {
    JsonWriter writer(text.size() + 2);
    writer.value(text);
    return writer.m_out;
}
