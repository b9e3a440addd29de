#include "Sqlite3Statement.h"

#include <cstring>
#include <sqlite3.h>

#include "LoneSurrogates.h"
#include "ModuleLog.h"
#include "PlainUnits.h"

namespace {

constexpr int FirstBytes = 1024;
// More than this is given back after the use.
constexpr int MaxBytesKept = 64 * 1024;

// Whether `text` is these bytes, all of them ASCII.
bool isSameAscii(const QString& text, const unsigned char* bytes, int size) {
    if (text.size() != size)
        return false;
    const ushort* units = text.utf16();
    for (int i = 0; i < size; ++i) {
        if (units[i] != bytes[i] || bytes[i] >= 0x80)
            return false;
    }
    return true;
}

} // namespace

Sqlite3Statement* Sqlite3Statement::create(sqlite3* db, const QString& sql, const QString& name) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &statement, nullptr);
    if (code != SQLITE_OK) {
        LOG4CPLUS_FATAL(moduleLog(),
                        "Unable to prepare statement " << name << ": " << sqlite3_errstr(code));
        return nullptr;
    }
    return new Sqlite3Statement(statement, name);
}

Sqlite3Statement::Sqlite3Statement(sqlite3_stmt* statement, const QString& name)
    : m_statement(statement), m_name(name) {}

Sqlite3Statement::~Sqlite3Statement() {
    sqlite3_finalize(m_statement);
}

bool Sqlite3Statement::bindInt(const int& index, const int& value) {
    return sqlite3_bind_int(m_statement, index, value) == SQLITE_OK;
}

bool Sqlite3Statement::bindText(const int& index, const QString& value) {
    int size = value.size();
    char* bytes = roomForBytes(size);
    if (!PlainUnits::copyAscii(value, bytes)) {
        const QByteArray utf8 = replaceLoneSurrogates(value).toUtf8();
        size = utf8.size();
        bytes = roomForBytes(size);
        std::memcpy(bytes, utf8.constData(), std::size_t(size));
    }
    m_boundBytes += size;
    return sqlite3_bind_text(m_statement, index, bytes, size, SQLITE_STATIC) == SQLITE_OK;
}

// Never null, also for no bytes: SQLite would bind NULL.
char* Sqlite3Statement::roomForBytes(int count) {
    const int size = m_boundTexts.isEmpty() ? 0 : m_boundTexts.constLast().size();
    if (m_boundBytes + count >= size) {
        m_boundTexts.append(QByteArray(qMax(2 * size, count + FirstBytes), Qt::Uninitialized));
        m_boundBytes = 0;
    }
    return m_boundTexts.last().data() + m_boundBytes;
}

int Sqlite3Statement::columnInt(const int& index) const {
    return sqlite3_column_int(m_statement, index);
}

QString Sqlite3Statement::columnText(const int& index) const {
    const unsigned char* utf8 = sqlite3_column_text(m_statement, index);
    // The length comes after the text, whose conversion may change it. It is what keeps a NUL
    // inside a text.
    return QString::fromUtf8(reinterpret_cast<const char*>(utf8),
                             sqlite3_column_bytes(m_statement, index));
}

void Sqlite3Statement::updateText(int index, QString* text) const {
    const unsigned char* utf8 = sqlite3_column_text(m_statement, index);
    const int size = sqlite3_column_bytes(m_statement, index);
    if (size == 0 || !isSameAscii(*text, utf8, size))
        *text = QString::fromUtf8(reinterpret_cast<const char*>(utf8), size);
}

void Sqlite3Statement::appendColumnText(int index, QByteArray* utf8) const {
    const unsigned char* bytes = sqlite3_column_text(m_statement, index);
    utf8->append(reinterpret_cast<const char*>(bytes), sqlite3_column_bytes(m_statement, index));
}

bool Sqlite3Statement::step_row() {
    return step() == SQLITE_ROW;
}

int Sqlite3Statement::step() {
    return sqlite3_step(m_statement);
}

bool Sqlite3Statement::reset() {
    if (m_boundTexts.size() > 1)
        m_boundTexts.erase(m_boundTexts.begin(), m_boundTexts.end() - 1);
    if (!m_boundTexts.isEmpty() && m_boundTexts.constLast().size() > MaxBytesKept)
        m_boundTexts.clear();
    m_boundBytes = 0;
    // SQLite calls the reset of no statement a success.
    const int code = m_statement ? sqlite3_reset(m_statement) : SQLITE_MISUSE;
    if (code == SQLITE_OK)
        return true;
    LOG4CPLUS_ERROR(moduleLog(), "Unable to reset sql statement: " << m_name << " msg: "
                                                                   << sqlite3_errstr(code));
    return false;
}
