#include "PathText.h"

#include <QRegularExpression>
#include <QUrl>

namespace {
QString decode(const QString& text) {
    return QUrl::fromPercentEncoding(text.toUtf8());
}

QString basePart(const QString& path) {
    return path.section(QLatin1Char('?'), 0, 0);
}
} // namespace

bool PathText::isPath(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("^[a-z][a-z0-9_-]*:"));
    return pattern.match(text).hasMatch();
}

QString PathText::append(const QString& path, const QStringList& components) {
    QString text = path;
    for (const QString& component : components) {
        if (!text.endsWith(QLatin1Char(':')))
            text += QLatin1Char('/');
        text += QString::fromLatin1(QUrl::toPercentEncoding(component));
    }
    return text;
}

QStringList PathText::components(const QString& path) {
    const QString base = basePart(path).section(QLatin1Char(':'), 1);
    QStringList result;
    for (const QString& component : base.split(QLatin1Char('/'), Qt::SkipEmptyParts))
        result.append(decode(component));
    return result;
}

QString PathText::parameter(const QString& path, const QString& name) {
    for (const QString& pair :
         path.section(QLatin1Char('?'), 1).split(QLatin1Char('&'), Qt::SkipEmptyParts)) {
        if (decode(pair.section(QLatin1Char('='), 0, 0)) == name)
            return decode(pair.section(QLatin1Char('='), 1));
    }
    return {};
}

bool PathText::isSamePlace(const QString& a, const QString& b) {
    return basePart(a) == basePart(b);
}

bool PathText::isAtOrBelow(const QString& path, const QString& start) {
    const QString base = basePart(path);
    const QString of = basePart(start);
    return base == of ||
           base.startsWith(of.endsWith(QLatin1Char(':')) ? of : of + QLatin1Char('/'));
}
