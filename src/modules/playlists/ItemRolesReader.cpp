#include "ItemRolesReader.h"

#include <algorithm>
#include <limits>
#include <rapidjson/reader.h>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvoRoles.h"

namespace {

// Deeper than any roles.
constexpr int MaxDepth = 8;

// More than any object in roles has: names that are passed over are compared one by one.
constexpr std::size_t MaxPassedNames = 64;

// Fills the reader's hashes from what RapidJSON finds, in the form that it calls. Each function
// returns whether to go on.
class RolesBuilder {
public:
    RolesBuilder(ItemRolesReader& result, bool withMediaData)
        : m_result(result), m_withMediaData(withMediaData) {
        m_open.reserve(MaxDepth);
    }

    // NOLINTBEGIN(readability-identifier-naming)
    bool Null() { return add(QVariant::fromValue(nullptr)); }
    bool Bool(bool value) { return add(value); }
    // A zero that comes here had a sign, and "-0" is no whole number.
    bool Int(int value) { return value != 0 && add(qint64(value)); }
    bool Uint(unsigned value) { return add(qint64(value)); }
    bool Int64(qint64 value) { return add(value); }
    bool Uint64(quint64 value) {
        return value <= quint64(std::numeric_limits<qint64>::max()) && add(qint64(value));
    }
    bool Double(double) { return false; }
    bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }
    bool String(const char* utf8, rapidjson::SizeType size, bool) {
        if (isPassing())
            return true;
        QString text;
        return readText({utf8, size}, &text) && add(text);
    }
    bool Key(const char* utf8, rapidjson::SizeType size, bool) {
        if (isPassing())
            return passName({utf8, size});
        return readText({utf8, size}, &m_open.back().name);
    }
    bool StartObject() { return open(false); }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool StartArray() { return open(true); }
    bool EndArray(rapidjson::SizeType) { return close(); }
    // NOLINTEND(readability-identifier-naming)

private:
    // An object or list whose end has not come.
    struct Level {
        QVariantHash* hash; // null: a map or a list of its own
        bool isList;
        bool hasNextHash; // one of its values went into a hash of its own
        QString name;     // of the value that comes next
        QVariantMap map;
        QVariantList list;
    };

    // Half of a surrogate pair is for the other parser to judge, and so is a byte-order mark, which
    // Qt drops at the beginning of some texts.
    static bool readText(std::string_view utf8, QString* text) {
        *text = QString::fromUtf8(utf8.data(), int(utf8.size()));
        return !startsWithMark(utf8) && !text->contains(QChar(QChar::ReplacementCharacter));
    }

    static bool startsWithMark(std::string_view utf8) {
        constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
        return utf8.substr(0, ByteOrderMark.size()) == ByteOrderMark;
    }

    // Where the value that comes next goes as an object of its own, null elsewhere.
    QVariantHash* nextHash() const {
        if (m_open.empty())
            return &m_result.roles;
        const Level& level = m_open.back();
        if (level.hash == &m_result.roles && level.name == OrvoRoles::MediaData())
            return &m_result.mediaData;
        if (level.hash == &m_result.mediaData && level.name == OrvoMediaData::MetaData())
            return &m_result.metaData;
        return nullptr;
    }

    // Inside of what is not kept.
    bool isPassing() const { return !m_passed.empty(); }

    bool pass() {
        m_passed.push_back(m_names.size());
        return int(m_open.size() + m_passed.size()) <= MaxDepth;
    }

    // A name that stands twice makes a text damaged, also there. What readText() leaves to the
    // other parser is left to it here, too.
    bool passName(std::string_view name) {
        constexpr char FirstByteOfHalves = '\xED';
        const auto begin = m_names.cbegin() + std::ptrdiff_t(m_passed.back());
        if (m_names.size() - m_passed.back() == MaxPassedNames || startsWithMark(name) ||
            name.find(FirstByteOfHalves) != name.npos ||
            std::find(begin, m_names.cend(), name) != m_names.cend())
            return false;
        m_names.push_back(name);
        return true;
    }

    bool open(bool isList) {
        if (isPassing())
            return pass();
        QVariantHash* hash = nextHash();
        if (int(m_open.size()) == MaxDepth || (hash && isList))
            return false;
        if (hash && !m_open.empty() && std::exchange(m_open.back().hasNextHash, true))
            return false;
        if (hash == &m_result.mediaData && !m_withMediaData)
            return pass();
        m_open.push_back({hash, isList, false, {}, {}, {}});
        return true;
    }

    bool close() {
        if (isPassing()) {
            m_names.resize(m_passed.back());
            m_passed.pop_back();
            return true;
        }
        const Level level = std::move(m_open.back());
        m_open.pop_back();
        if (level.hash)
            return true;
        return add(level.isList ? QVariant(level.list) : QVariant(level.map));
    }

    bool add(const QVariant& value) {
        if (isPassing())
            return true;
        if (nextHash())
            return false; // only an object may stand here
        Level& level = m_open.back();
        if (level.isList) {
            level.list.append(value);
            return true;
        }
        QVariant& member = level.hash ? (*level.hash)[level.name] : level.map[level.name];
        if (member.isValid())
            return false; // which of two counts is for the other parser to say
        member = value;
        return true;
    }

    ItemRolesReader& m_result;
    bool m_withMediaData;
    std::vector<Level> m_open; // the outermost first
    // Of each object or list that is open in what is not kept: where its names begin.
    std::vector<std::size_t> m_passed;
    std::vector<std::string_view> m_names;
};

} // namespace

bool ItemRolesReader::read(const QByteArray& utf8, bool withMediaData) {
    // RapidJSON unescapes within the text that it reads, and looks at whole blocks of it.
    constexpr int Block = 16;
    roles = {};
    mediaData = {};
    metaData = {};
    m_text.resize(0);
    m_text.append(utf8).append(Block, '\0');
    RolesBuilder builder(*this, withMediaData);
    rapidjson::InsituStringStream stream(m_text.data());
    rapidjson::Reader reader;
    // At a character 0 the text would end too early.
    return reader.Parse<rapidjson::kParseInsituFlag>(stream, builder) &&
           int(stream.Tell()) == utf8.size();
}
