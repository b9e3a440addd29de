#include "JsonWriter.h"

#include <algorithm>
#include <cmath>

#include <QLocale>
#include <QVarLengthArray>

#include "CMPath.h"
#include "TrString.h"

namespace {

// Deeper than any record; a value nested deeper is cut to null rather than followed down the stack.
constexpr int MaxDepth = 256;

} // namespace

void JsonWriter::value(const QString& text) {
    // Unlike unicode() it ends with a zero, which the encoding looks at behind half a pair.
    m_json.String(text.utf16(), rapidjson::SizeType(text.size()));
}

void JsonWriter::value(double number) {
    constexpr double MaxExact =
        9007199254740992.0; // 2^53: up to it a whole double is written as a whole number
    if (!std::isfinite(number)) {
        m_json.Null();
    } else if (std::trunc(number) == number && std::fabs(number) <= MaxExact) {
        m_json.Int64(qint64(number));
    } else {
        const QString text = QString::number(number, 'g', QLocale::FloatingPointShortest);
        m_json.RawValue(text.utf16(), std::size_t(text.size()), rapidjson::kNumberType);
    }
}

void JsonWriter::value(const QVariant& value) {
    if (m_depth >= MaxDepth || isFull()) {
        m_json.Null();
        return;
    }
    ++m_depth;
    switch (static_cast<QMetaType::Type>(value.userType())) {
    case QMetaType::QString:
        this->value(*static_cast<const QString*>(value.constData()));
        break;
    case QMetaType::Bool:
        m_json.Bool(value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::Short:
    case QMetaType::UShort:
        m_json.Int64(value.toLongLong());
        break;
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        m_json.Uint64(value.toULongLong());
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
            m_json.Null();
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
    for (const auto& member : members) {
        if (isFull())
            break;
        name(member.key());
        value(member.value());
    }
    endObject();
}

void JsonWriter::map(const QVariantMap& map) {
    beginObject();
    for (auto it = map.begin(); it != map.end() && !isFull(); ++it) {
        name(it.key());
        value(it.value());
    }
    endObject();
}

template <typename List>
void JsonWriter::list(const List& list) {
    beginList();
    for (const auto& element : list) {
        if (isFull())
            break;
        value(element);
    }
    endList();
}
