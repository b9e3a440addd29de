#include "CMValueStore.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include "CMLog.h"

#define ORVO_DEFINE_VALUE_PATH(function, path, key, type, persistent)                              \
    CMPath function() {                                                                            \
        static const CMPath thePath{QStringLiteral(path)};                                         \
        return thePath;                                                                            \
    }
ORVO_VALUE_PATHS(ORVO_DEFINE_VALUE_PATH)
#undef ORVO_DEFINE_VALUE_PATH

namespace {

log4cplus::Logger& settingsLog() {
    static log4cplus::Logger instance = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("Settings"));
    return instance;
}

// The bare value as the declared type, a null variant when it is none of it.
QVariant convert(const QVariant& bare, QMetaType::Type type) {
    if (type == QMetaType::Int) {
        const int low = OrvoHash::toInt(bare, 0);
        const int high = OrvoHash::toInt(bare, 1);
        return low == high ? QVariant(low) : QVariant();
    }
    if (type == QMetaType::Bool) {
        if (bare.type() == QVariant::Bool)
            return bare;
        const QString text = bare.toString();
        if (text == QLatin1String("true") || text == QLatin1String("1"))
            return true;
        if (text == QLatin1String("false") || text == QLatin1String("0"))
            return false;
        return {};
    }
    const bool fits =
        bare.type() == QVariant::String && bare.toString().size() <= CMValueStore::MaxTextLength;
    return fits ? bare : QVariant();
}

} // namespace

const QList<CMValueDeclaration>& CMValueStore::declarations() {
#define ORVO_VALUE_ROW(function, path, key, type, persistent)                                      \
    {#function, path, key, type, persistent},
    static const QList<CMValueDeclaration> rows = {ORVO_VALUE_PATHS(ORVO_VALUE_ROW)};
#undef ORVO_VALUE_ROW
    return rows;
}

CMValueStore::CMValueStore(const QString& file) : m_file(file) {
    load();
}

const CMValueDeclaration* CMValueStore::declaration(const CMPath& path) {
    const QString base = path.base();
    for (const CMValueDeclaration& row : declarations()) {
        if (base == QLatin1String(row.path))
            return &row;
    }
    return nullptr;
}

bool CMValueStore::isPersistent(const CMPath& path) const {
    const CMValueDeclaration* row = declaration(path);
    return row && row->persistent;
}

bool CMValueStore::setValue(const CMPath& path, const QVariant& value, CMError* error) {
    const CMValueDeclaration* row = declaration(path);
    if (!row) {
        *error = CMError(CMError::NoSuchNode(),
                         TrString("CMValueStore", "There is no value at %1.", {path.toString()}),
                         CMError::DefaultTitle());
        return false;
    }
    const QString key = QString::fromLatin1(row->key);
    const QVariant bare = value.type() == QVariant::Hash || value.type() == QVariant::Map
                              ? OrvoHash(value).attribute(key)
                              : value;
    const QVariant converted = convert(bare, row->type);
    if (!converted.isValid()) {
        *error = CMError(
            CMError::InvalidValue(),
            TrString("CMValueStore", "The value of %1 must be a %2.",
                     {path.toString(), QString::fromLatin1(QMetaType::typeName(row->type))}),
            CMError::DefaultTitle());
        return false;
    }
    OrvoValue stored;
    stored.setAttribute(key, converted);
    QHash<QString, OrvoValue> values = m_values;
    values.insert(path.base(), stored);
    if (row->persistent && !save(values)) {
        *error = CMError(TrString("CMValueStore", "The setting could not be written."));
        return false;
    }
    m_values = values;
    return true;
}

bool CMValueStore::readFile(QByteArray* text) {
    const auto fail = [this](const QString& reason) {
        m_readError = QStringLiteral("cannot read the settings %1: %2").arg(m_file, reason);
        return false;
    };
    // Not waiting: a pipe under this name must not hold the start up.
    const int descriptor =
        ::open(QFile::encodeName(m_file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return errno == ENOENT || fail(QString::fromLocal8Bit(std::strerror(errno)));
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return fail(file.errorString());
    }
    struct stat about {};
    if (::fstat(descriptor, &about) != 0 || !S_ISREG(about.st_mode))
        return fail(QStringLiteral("no regular file"));
    *text = file.read(MaxFileBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (text->size() > MaxFileBytes)
        return fail(QStringLiteral("more than %1 bytes").arg(MaxFileBytes));
    if (text->isNull())
        *text = QByteArray("");
    return true;
}

void CMValueStore::load() {
    QByteArray text;
    if (m_file.isEmpty() || !readFile(&text) || text.isNull())
        return;
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parseError);
    if (!document.isObject()) {
        // Kept aside, not overwritten: a person may want to look at what was in it.
        const QString aside = m_file + QStringLiteral(".damaged");
        QFile::remove(aside);
        QFile::rename(m_file, aside);
        const QString reason =
            document.isNull() ? parseError.errorString() : QStringLiteral("not a JSON object");
        LOG4CPLUS_ERROR(settingsLog(), "settings " << m_file << " are damaged (" << reason
                                                   << "), kept as " << aside
                                                   << ", starting with none");
        return;
    }
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const CMValueDeclaration* row = declaration(CMPath(it.key()));
        const QVariant converted = row ? convert(it.value().toVariant(), row->type) : QVariant();
        if (!row || !row->persistent || !converted.isValid()) {
            LOG4CPLUS_WARN(settingsLog(),
                           "setting " << it.key() << " is not understood and left out");
            continue;
        }
        OrvoValue stored;
        stored.setAttribute(QString::fromLatin1(row->key), converted);
        m_values.insert(QString::fromLatin1(row->path), stored);
    }
}

bool CMValueStore::save(const QHash<QString, OrvoValue>& values) const {
    if (m_file.isEmpty())
        return true;
    if (!m_readError.isEmpty()) {
        LOG4CPLUS_ERROR(settingsLog(), "cannot write settings: " << m_readError);
        return false;
    }
    QJsonObject object;
    for (const CMValueDeclaration& row : declarations()) {
        const QString path = QString::fromLatin1(row.path);
        if (row.persistent && values.contains(path))
            object.insert(path, QJsonValue::fromVariant(
                                    values.value(path).attribute(QString::fromLatin1(row.key))));
    }
    QSaveFile file(m_file);
    const QByteArray text = QJsonDocument(object).toJson(QJsonDocument::Indented);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    if (!written)
        LOG4CPLUS_ERROR(settingsLog(),
                        "cannot write settings " << m_file << ": " << file.errorString());
    return written;
}
