#include "CMPath.h"

#include <QSharedData>
#include <QUrl>

struct CMPath::Data : QSharedData {
    QString prefix;
    QStringList components;
    QMap<QString, QString> params;
};

namespace {

bool isPlain(const QString& text) {
    for (const QChar c : text) {
        const ushort u = c.unicode();
        const bool plain = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') ||
                           (u >= '0' && u <= '9') || u == '-' || u == '_' || u == '.' || u == '~';
        if (!plain)
            return false;
    }
    return true;
}

QString encode(const QString& text) {
    return isPlain(text) ? text : QString::fromLatin1(QUrl::toPercentEncoding(text));
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Paths come from clients: an escape that is none stays as it is. (QUrl would turn "%zz" into some
// byte, and end the text at a zero.)
QString decode(const QString& text) {
    if (!text.contains(QLatin1Char('%')))
        return text;
    const QByteArray encoded = text.toUtf8();
    QByteArray bytes("x"); // in front, a byte order mark would be dropped
    for (int i = 0; i < encoded.size(); ++i) {
        const int high =
            encoded.at(i) == '%' && i + 2 < encoded.size() ? hexDigit(encoded.at(i + 1)) : -1;
        const int low = high >= 0 ? hexDigit(encoded.at(i + 2)) : -1;
        bytes.append(low >= 0 ? char(high * 16 + low) : encoded.at(i));
        if (low >= 0)
            i += 2;
    }
    return QString::fromUtf8(bytes.constData(), bytes.size()).mid(1);
}

} // namespace

CMPath::CMPath() : d(new Data) {}
CMPath::CMPath(const CMPath& other) = default;
CMPath::CMPath(CMPath&& other) noexcept = default;
CMPath& CMPath::operator=(const CMPath& other) = default;
CMPath& CMPath::operator=(CMPath&& other) noexcept = default;
CMPath::~CMPath() = default;

CMPath::CMPath(const QString& text) : d(new Data) {
    const int colon = text.indexOf(QLatin1Char(':'));
    if (colon <= 0)
        return;
    d->prefix = text.left(colon);
    const int question = text.indexOf(QLatin1Char('?'), colon);
    const QString components = text.mid(colon + 1, question < 0 ? -1 : question - colon - 1);
    for (const QString& component : components.split(QLatin1Char('/'), Qt::SkipEmptyParts))
        d->components.append(decode(component));
    if (question < 0)
        return;
    for (const QString& pair : text.mid(question + 1).split(QLatin1Char('&'), Qt::SkipEmptyParts)) {
        const int equals = pair.indexOf(QLatin1Char('='));
        const QString name = decode(equals < 0 ? pair : pair.left(equals));
        d->params.insert(name, equals < 0 ? QString() : decode(pair.mid(equals + 1)));
    }
}

CMPath CMPath::fromPrefix(const QString& prefix) {
    CMPath path;
    path.d->prefix = prefix;
    return path;
}

CMPath CMPath::fromQVariant(const QVariant& value) {
    return value.userType() == qMetaTypeId<CMPath>() ? value.value<CMPath>()
                                                     : CMPath(value.toString());
}

bool CMPath::isEmpty() const {
    return d->prefix.isEmpty();
}

const QString& CMPath::prefix() const {
    return d->prefix;
}

const QStringList& CMPath::splitBase() const {
    return d->components;
}

const QMap<QString, QString>& CMPath::params() const {
    return d->params;
}

void CMPath::setParams(const QMap<QString, QString>& params) {
    d->params = params;
}

CMPath& CMPath::addParam(const QString& name, const QString& value) {
    d->params.insert(name, value);
    return *this;
}

QString CMPath::base() const {
    if (isEmpty())
        return {};
    QString text = d->prefix + QLatin1Char(':');
    bool first = true;
    for (const QString& component : d->components) {
        if (!first)
            text += QLatin1Char('/');
        first = false;
        text += encode(component);
    }
    return text;
}

QString CMPath::toString() const {
    QString text = base();
    QChar separator = QLatin1Char('?');
    for (auto it = d->params.begin(); it != d->params.end(); ++it) {
        text += separator + encode(it.key()) + QLatin1Char('=') + encode(it.value());
        separator = QLatin1Char('&');
    }
    return text;
}

CMPath CMPath::operator+(const QString& components) const {
    CMPath result(*this);
    for (const QString& component : components.split(QLatin1Char('/'), Qt::SkipEmptyParts))
        result.d->components.append(component);
    return result;
}

bool CMPath::startsWith(const CMPath& start) const {
    if (d->prefix != start.d->prefix || d->components.size() < start.d->components.size())
        return false;
    for (int i = 0; i < start.d->components.size(); ++i) {
        if (d->components.at(i) != start.d->components.at(i))
            return false;
    }
    return true;
}

bool CMPath::operator==(const CMPath& other) const {
    return d == other.d || (d->prefix == other.d->prefix && d->components == other.d->components &&
                            d->params == other.d->params);
}

uint qHash(const CMPath& path, uint seed) {
    return qHash(path.toString(), seed);
}
