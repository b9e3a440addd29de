#include "TrackPlace.h"

#include <QDir>
#include <QRegularExpression>
#include <QUrl>

#include "ListText.h"

namespace {

QString withSlashes(const QString& name) {
    return QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
}

// Programs of old encode what is not UTF-8.
QString withoutPercentCodes(const QString& name) {
    static const QRegularExpression noCode(QStringLiteral("%(?![0-9A-Fa-f]{2})"));
    const QString codes = QString(name).replace(noCode, QStringLiteral("%25"));
    return ListText::decoded(QByteArray::fromPercentEncoding(codes.toUtf8()));
}

// "file:" alone, "file://", or "file://machine" before the name.
QString afterFileScheme(const QString& uri) {
    static const QRegularExpression scheme(QStringLiteral("^file:(//[^/\\\\]*(?=[/\\\\]))?"),
                                           QRegularExpression::CaseInsensitiveOption);
    return QString(uri).remove(scheme);
}

QString cleanName(const QString& name, const QString& base) {
    static const QRegularExpression drive(QStringLiteral("^/?[A-Za-z]:(?=/)"));
    static const QRegularExpression upwards(QStringLiteral("^(\\.\\./)+"));
    QString clean = QString(name).remove(drive);
    if (!clean.startsWith(QLatin1Char('/')) && !base.isEmpty())
        clean = base + QLatin1Char('/') + clean;
    return QDir::cleanPath(clean).remove(upwards);
}

} // namespace

TrackPlace TrackPlace::of(const QString& location, bool isUri, const QString& base) {
    static const QRegularExpression network(QStringLiteral("^https?://"),
                                            QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression file(QStringLiteral("^file:"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression otherScheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+://"));
    TrackPlace place;
    if (location.contains(network)) {
        if (!QUrl(location).host().isEmpty())
            place.address = location;
        return place;
    }
    const bool isFileUri = location.contains(file);
    if (location.isEmpty() || (!isFileUri && location.contains(otherScheme)))
        return place;
    const QString name = isFileUri ? afterFileScheme(location) : location;
    const QString decoded = withoutPercentCodes(name);
    const QStringList asItStands = {name, withSlashes(name)};
    const QStringList asAddress = {decoded, withSlashes(decoded)};
    const QStringList names = isUri || isFileUri ? asAddress + asItStands : asItStands + asAddress;
    for (const QString& each : names)
        place.files.append(cleanName(each, base));
    place.files.removeDuplicates();
    return place;
}
