#include "ItemRolesReader.h"

#include <cstring>

#include "OrvoRoles.h"
#include "PlainUnits.h"

namespace {

// Deeper than any roles; what is deeper is left to the other parser, which has a limit of its own.
constexpr int MaxDepth = 8;
// As many digits always fit.
constexpr int MaxDigits = 15;
// Places at the top level that serve again; foreign names could make them any number.
constexpr int MaxKeptRoles = 32;

bool equals(const QString& text, const QChar* begin, int length) {
    return text.size() == length &&
           std::memcmp(text.constData(), begin, std::size_t(length) * sizeof(QChar)) == 0;
}

// Whether a unit of a text stands for itself, alone.
bool isPlain(ushort unit) {
    return unit >= ' ' && !QChar::isSurrogate(unit);
}

// What stands for a character behind a backslash; 0 for those that are left to the other parser.
QChar unescaped(QChar letter) {
    switch (letter.unicode()) {
    case '"':
    case '\\':
    case '/':
        return letter;
    case 'b':
        return QLatin1Char('\b');
    case 'f':
        return QLatin1Char('\f');
    case 'n':
        return QLatin1Char('\n');
    case 'r':
        return QLatin1Char('\r');
    case 't':
        return QLatin1Char('\t');
    default:
        return {};
    }
}

// The names that roles have: shared by all rows.
const std::vector<QString>& knownKeys() {
    static const std::vector<QString> keys = {
        OrvoRoles::Title(),        OrvoRoles::Type(),
        OrvoRoles::Path(),         OrvoRoles::MediaData(),
        OrvoMediaData::MetaData(), OrvoMediaData::Resources(),
        OrvoResource::Uri(),       OrvoResource::MimeType(),
        OrvoMetaData::Artist(),    OrvoMetaData::Album(),
        OrvoMetaData::Genre(),     OrvoMetaData::ArtworkUrl(),
        OrvoMetaData::ServiceId(), OrvoMetaData::TrackNumber(),
        OrvoMetaData::Duration(),  OrvoMetaData::PrePlayPath(),
        OrvoRoles::Id(),           OrvoRoles::Value()};
    return keys;
}

} // namespace

ItemRolesReader::ItemRolesReader()
    : m_following(knownKeys().size() + 1), m_last(knownKeys().size() + 1) {}

bool ItemRolesReader::read(const QString& text) {
    return readRoles(text, &ItemRolesReader::readMediaData);
}

bool ItemRolesReader::readTopLevel(const QString& text) {
    return readRoles(text, &ItemRolesReader::passMediaData);
}

bool ItemRolesReader::readRoles(const QString& text, bool (ItemRolesReader::*readNested)()) {
    m_at = text.constData();
    m_end = m_at + text.size();
    if (roles.size() > MaxKeptRoles)
        roles.clear();
    for (QVariant& role : roles)
        role.clear();
    mediaData = {};
    metaData = {};
    skipBlanks();
    if (!readHash(&roles, OrvoRoles::MediaData(), &mediaData, readNested))
        return false;
    skipBlanks();
    return m_at == m_end;
}

bool ItemRolesReader::readMediaData() {
    return readHash(&mediaData, OrvoMediaData::MetaData(), &metaData,
                    &ItemRolesReader::readMetaData);
}

bool ItemRolesReader::readMetaData() {
    return readHash(&metaData, QString(), nullptr, nullptr);
}

bool ItemRolesReader::passMediaData() {
    skipBlanks();
    return m_at != m_end && *m_at == QLatin1Char('{') && readValue(nullptr, 1);
}

void ItemRolesReader::skipBlanks() {
    while (m_at != m_end && (*m_at == QLatin1Char(' ') || *m_at == QLatin1Char('\n') ||
                             *m_at == QLatin1Char('\t') || *m_at == QLatin1Char('\r')))
        ++m_at;
}

bool ItemRolesReader::take(char wanted) {
    skipBlanks();
    if (m_at == m_end || *m_at != QLatin1Char(wanted))
        return false;
    ++m_at;
    return true;
}

bool ItemRolesReader::readText(const QChar** begin, int* length) {
    if (!take('"'))
        return false;
    *begin = m_at;
    while (m_end - m_at >= PlainUnits::Block && PlainUnits::arePlain(PlainUnits::load(m_at)))
        m_at += PlainUnits::Block;
    for (; m_at != m_end; ++m_at) {
        const ushort c = m_at->unicode();
        if (c == '"') {
            *length = int(m_at - *begin);
            ++m_at;
            return true;
        }
        if (c == '\\')
            return readEscapedText(begin, length);
        if (!isPlain(c) && !takePair())
            return false;
    }
    return false;
}

// The same from the first escape on: what is read goes into a text of its own.
bool ItemRolesReader::readEscapedText(const QChar** begin, int* length) {
    m_unescaped.resize(0);
    m_unescaped.append(*begin, int(m_at - *begin));
    for (; m_at != m_end; ++m_at) {
        const QChar* unit = m_at;
        const ushort c = unit->unicode();
        if (c == '"') {
            *begin = m_unescaped.constData();
            *length = m_unescaped.size();
            ++m_at;
            return true;
        }
        if (c == '\\') {
            const QChar meant = ++m_at == m_end ? QChar() : unescaped(*m_at);
            if (meant.isNull())
                return false;
            m_unescaped.append(meant);
            continue;
        }
        if (!isPlain(c) && !takePair())
            return false;
        m_unescaped.append(unit, int(m_at - unit) + 1);
    }
    return false;
}

// At the first half of a pair goes on to the second. A half that stands alone is for the other
// parser to judge.
bool ItemRolesReader::takePair() {
    if (!m_at->isHighSurrogate() || m_end - m_at < 2 || !m_at[1].isLowSurrogate())
        return false;
    ++m_at;
    return true;
}

bool ItemRolesReader::readKey(QString* key) {
    const QChar* begin = nullptr;
    int length = 0;
    if (!readText(&begin, &length) || !take(':'))
        return false;
    const std::vector<QString>& keys = knownKeys();
    std::size_t& following = m_following[m_key];
    if (following == keys.size() || !equals(keys[following], begin, length)) {
        following = 0;
        while (following != keys.size() && !equals(keys[following], begin, length))
            ++following;
    }
    m_key = following;
    *key = m_key == keys.size() ? QString(begin, length) : keys[m_key];
    return true;
}

bool ItemRolesReader::readString(QVariant* value) {
    const QChar* begin = nullptr;
    int length = 0;
    if (!readText(&begin, &length))
        return false;
    if (!value)
        return true;
    QString& last = m_last[m_key];
    if (!equals(last, begin, length))
        last = QString(begin, length);
    *value = last;
    return true;
}

bool ItemRolesReader::readNumber(QVariant* value) {
    const bool isNegative = *m_at == QLatin1Char('-');
    if (isNegative)
        ++m_at;
    const QChar* digits = m_at;
    qint64 number = 0;
    for (; m_at != m_end && m_at->unicode() >= '0' && m_at->unicode() <= '9'; ++m_at) {
        if (m_at - digits == MaxDigits)
            return false;
        number = number * 10 + (m_at->unicode() - '0');
    }
    // "-0" is no whole number, "01" is none at all.
    const bool isPlain =
        m_at != digits && (*digits != QLatin1Char('0') || (m_at - digits == 1 && !isNegative));
    const bool goesOn = m_at != m_end && (*m_at == QLatin1Char('.') || *m_at == QLatin1Char('e') ||
                                          *m_at == QLatin1Char('E'));
    if (!isPlain || goesOn)
        return false;
    if (value)
        *value = isNegative ? -number : number;
    return true;
}

bool ItemRolesReader::readWord(const char* word, const QVariant& meaning, QVariant* value) {
    if (value)
        *value = meaning;
    for (; *word; ++word, ++m_at) {
        if (m_at == m_end || *m_at != QLatin1Char(*word))
            return false;
    }
    return true;
}

bool ItemRolesReader::readValue(QVariant* value, int depth) {
    skipBlanks();
    if (m_at == m_end || depth > MaxDepth)
        return false;
    switch (m_at->unicode()) {
    case '"':
        return readString(value);
    case '{':
        return readMap(value, depth);
    case '[':
        return readArray(value, depth);
    case 't':
        return readWord("true", true, value);
    case 'f':
        return readWord("false", false, value);
    case 'n':
        return readWord("null", QVariant::fromValue(nullptr), value);
    default:
        return readNumber(value);
    }
}

bool ItemRolesReader::readArray(QVariant* value, int depth) {
    QVariantList list;
    take('[');
    if (!take(']')) {
        do {
            QVariant element;
            if (!readValue(value ? &element : nullptr, depth + 1))
                return false;
            if (value)
                list.append(element);
        } while (take(','));
        if (!take(']'))
            return false;
    }
    if (value)
        *value = list;
    return true;
}

// The members of an object, one after the other. Each name stands once: which of two counts is for
// the other parser to say.
template <typename ReadMember>
bool ItemRolesReader::readMembers(ReadMember readMember) {
    if (!take('{'))
        return false;
    if (take('}'))
        return true;
    QString key;
    do {
        if (!readKey(&key) || !readMember(key))
            return false;
    } while (take(','));
    return take('}');
}

bool ItemRolesReader::readMap(QVariant* value, int depth) {
    if (!value)
        return readMembers([&](const QString&) { return readValue(nullptr, depth + 1); });
    QVariantMap map;
    const bool ok = readMembers([&](const QString& key) {
        QVariant& member = map[key];
        return !member.isValid() && readValue(&member, depth + 1);
    });
    *value = map;
    return ok;
}

bool ItemRolesReader::readHash(QVariantHash* hash, const QString& nestedName, QVariantHash* nested,
                               bool (ItemRolesReader::*readNested)()) {
    bool hasNested = false;
    return readMembers([&](const QString& key) {
        if (nested && key == nestedName) {
            const bool isFirst = !hasNested;
            hasNested = true;
            return isFirst && (this->*readNested)();
        }
        QVariant& member = (*hash)[key];
        return !member.isValid() && readValue(&member, 1);
    });
}
